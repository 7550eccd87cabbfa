// Worker records: the not-set answers, the map record's storage rules, and reference counting.

#include <bsutils/workerinfo.h>
#include <gtest/gtest.h>
#include <zan/zanexception.h>

#include <cstdint>
#include <utility>

namespace {

// Counts its destructions, so that tests see exactly when the last reference went.
struct Counted : MapWorkerInfo {
  explicit Counted(int& destroyed) : destroyed(&destroyed) {}
  ~Counted() override { ++*destroyed; }
  int* destroyed;
  WorkerInfoPtr child;  // lets a record own the handle that is assigned from
};

TEST(WorkerInfo, UnsetAnswersNotSetAndNotSetOrNothingRemovesOnlyItsId) {
  WorkerInfo empty;
  empty.setProperty(1, 5);
  EXPECT_EQ(&empty.getDataProperty(1), &WorkerInfoNullData);
  EXPECT_EQ(empty.getInt32Property(1), INT32_MIN);
  EXPECT_TRUE(WorkerInfoNullData.isNothing());
  for (bool byNothing : {false, true}) {
    MapWorkerInfo record;
    record.setProperty(7, 1);
    record.setProperty(8, 2);
    byNothing ? record.setProperty(7, PWFData()) : record.setProperty(7, INT32_MIN);
    EXPECT_EQ(&record.getDataProperty(7), &WorkerInfoNullData);
    EXPECT_EQ(record.getInt32Property(8), 2);
  }
}

TEST(MapWorkerInfo, Int32PropertyReadsOnlyNonNullIntegersAndPassesOnOverflow) {
  const std::pair<PWFData, std::int32_t> cases[] = {
      {PWFData(std::int32_t{-42}), -42}, {PWFData(std::int64_t{-7}), -7},
      {PWFData(eInteger), INT32_MIN},    {PWFData(u"12", 2), INT32_MIN},
      {PWFData(true), INT32_MIN},        {PWFData(eString), INT32_MIN},
  };
  MapWorkerInfo record;
  for (const auto& [stored, expected] : cases) {
    record.setProperty(7, stored);
    EXPECT_EQ(record.getDataProperty(7).isNull(), stored.isNull());  // a typed null is kept
    EXPECT_EQ(record.getInt32Property(7), expected);
  }
  record.setProperty(7, PWFData(std::int64_t{2147483648}));
  try {
    record.getInt32Property(7);
    ADD_FAILURE() << "no exception";
  } catch (const ZanConversionException& failure) {
    EXPECT_EQ(static_cast<std::uint32_t>(failure.messageNumber()), 0xC0001583u);
  }
}

TEST(WorkerInfoPtr, SharesTheRecordAndTheLastHandleDeletesIt) {
  int destroyedA = 0, destroyedB = 0;
  auto* recordA = new Counted(destroyedA);
  recordA->child = WorkerInfoPtr(new Counted(destroyedB));
  {
    WorkerInfoPtr a(recordA);
    WorkerInfoPtr& self = a;
    a = self;  // the only handle: letting go before taking hold would delete the record
    WorkerInfoPtr(a)->setProperty(1, 5);
    EXPECT_EQ((*a).getInt32Property(1), 5);
    EXPECT_EQ(destroyedA, 0);
    a = recordA->child;  // B must be held before A, which holds it, goes
    EXPECT_EQ(destroyedA, 1);
    EXPECT_EQ(destroyedB, 0);
    EXPECT_TRUE(!WorkerInfoPtr(nullptr) && WorkerInfoPtr().isNull());
  }
  EXPECT_EQ(destroyedB, 1);
}

TEST(CPRCObject, CopiesStartUncountedAndAssignmentKeepsTheCount) {
  int destroyed = 0;
  auto* original = new Counted(destroyed);
  WorkerInfoPtr first(original), second(first);  // original: 2 references
  WorkerInfoPtr copy(new Counted(*original));    // copy: 1 reference, not 3
  *copy = *original;                             // and still 1
  copy = WorkerInfoPtr();
  EXPECT_EQ(destroyed, 1);
  first.init();  // original: 3 references
  first = second = WorkerInfoPtr();
  EXPECT_EQ(destroyed, 1);
  original->removeReference();
  EXPECT_EQ(destroyed, 2);
}

}  // namespace
