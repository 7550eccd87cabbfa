// Worker information: the empty and map-backed records, and reference counting through handles.

#include <bsutils/workerinfo.h>
#include <gtest/gtest.h>
#include <zan/zanexception.h>

#include <cstdint>
#include <functional>

#include "support/expect_failure.h"

namespace {

// A record that counts its destructions, so that tests see exactly when the last reference went.
class CountedRecord : public MapWorkerInfo {
 public:
  explicit CountedRecord(int& destroyed) : destroyed_(&destroyed) {}
  ~CountedRecord() override { ++*destroyed_; }

  WorkerInfoPtr child;  // lets a record own the handle that is assigned from

 private:
  int* destroyed_;
};

TEST(WorkerInfo, EmptyRecordIgnoresSetsAndAnswersNotSet) {
  WorkerInfo record;
  record.setProperty(1, PWFData(std::int32_t{5}));
  record.setProperty(1, 5);
  EXPECT_EQ(&record.getDataProperty(1), &WorkerInfoNullData);
  EXPECT_EQ(record.getInt32Property(1), INT32_MIN);
  EXPECT_TRUE(WorkerInfoNullData.isNothing());
  EXPECT_FALSE(WorkerInfoNullData.isNull());
}

TEST(MapWorkerInfo, Int32PropertyReadsOnlyNonNullIntegers) {
  struct Case {
    const char* name;
    std::function<void(MapWorkerInfo&)> store;
    std::int32_t expected;
  };
  const Case cases[] = {
      {"nothing stored", [](MapWorkerInfo&) {}, INT32_MIN},
      {"32-bit integer", [](MapWorkerInfo& r) { r.setProperty(7, -42); }, -42},
      {"64-bit integer in range",
       [](MapWorkerInfo& r) { r.setProperty(7, PWFData(std::int64_t{-7})); }, -7},
      {"null integer", [](MapWorkerInfo& r) { r.setProperty(7, PWFData(eInteger)); }, INT32_MIN},
      {"string", [](MapWorkerInfo& r) { r.setProperty(7, PWFData(u"12", 2)); }, INT32_MIN},
      {"boolean", [](MapWorkerInfo& r) { r.setProperty(7, PWFData(true)); }, INT32_MIN},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    MapWorkerInfo record;
    c.store(record);
    EXPECT_EQ(record.getInt32Property(7), c.expected);
  }
}

TEST(MapWorkerInfo, WideIntegerOutside32BitsPropagatesOverflow) {
  MapWorkerInfo record;
  record.setProperty(7, PWFData(std::int64_t{2147483648}));
  expectFailure<ZanConversionException>(
      [&] { record.getInt32Property(7); }, "CP_CONV_INPUT_DATA_TOO_LONG", 0xC0001583,
      "Overflow converting a PWFInt64 to PWFInt32", "pwfdata", "PWFData::getInt32Value",
      {"integer", "4-byte integer", "2147483648"});
}

TEST(MapWorkerInfo, NotSetAndNothingRemoveOnlyTheirOwnId) {
  const std::function<void(MapWorkerInfo&)> removals[] = {
      [](MapWorkerInfo& r) { r.setProperty(7, INT32_MIN); },
      [](MapWorkerInfo& r) { r.setProperty(7, PWFData()); },
  };
  for (const auto& remove : removals) {
    MapWorkerInfo record;
    record.setProperty(7, 1);
    record.setProperty(8, 2);
    remove(record);
    EXPECT_EQ(&record.getDataProperty(7), &WorkerInfoNullData);
    EXPECT_EQ(record.getInt32Property(8), 2);
  }
}

TEST(MapWorkerInfo, StoresNullsReplacesValuesAndCopiesTheMap) {
  MapWorkerInfo record;
  record.setProperty(3, PWFData(eString));
  EXPECT_TRUE(record.getDataProperty(3).isNull());
  EXPECT_EQ(record.getDataProperty(3).getDataLogicalType(), eString);

  record.setProperty(3, 9);
  EXPECT_EQ(record.getDataProperty(3).getDataLength(), 4);  // stored as a 4-byte integer
  MapWorkerInfo copy(record);
  record.setProperty(3, 10);
  EXPECT_EQ(record.getInt32Property(3), 10);
  EXPECT_EQ(copy.getInt32Property(3), 9);
}

TEST(MapWorkerInfo, Int32PropertyAsksTheOverriddenDataProperty) {
  struct Fixed : MapWorkerInfo {
    const PWFData& getDataProperty(std::int32_t) const override { return value; }
    PWFData value{std::int32_t{11}};
  };
  EXPECT_EQ(Fixed().getInt32Property(99), 11);
}

TEST(WorkerInfoPtr, LastHandleDeletesTheRecord) {
  int destroyed = 0;
  {
    WorkerInfoPtr first(new CountedRecord(destroyed));
    {
      WorkerInfoPtr second(first);
      second->setProperty(1, 5);
    }
    EXPECT_EQ(destroyed, 0);
    EXPECT_EQ((*first).getInt32Property(1), 5);
  }
  EXPECT_EQ(destroyed, 1);

  WorkerInfoPtr empty;
  WorkerInfoPtr fromNull(nullptr);
  EXPECT_TRUE(empty.isNull());
  EXPECT_TRUE(!fromNull);
}

TEST(WorkerInfoPtr, AssignmentCountsOnlyAChangeOfRecord) {
  int destroyedA = 0;
  int destroyedB = 0;
  WorkerInfoPtr a(new CountedRecord(destroyedA));
  WorkerInfoPtr alsoA(a);
  WorkerInfoPtr b(new CountedRecord(destroyedB));

  WorkerInfoPtr& self = a;
  a = self;
  a = alsoA;  // same record: the count stays at 2
  alsoA = WorkerInfoPtr();
  EXPECT_EQ(destroyedA, 0);
  a = b;  // the last reference to A goes
  EXPECT_EQ(destroyedA, 1);
  b = WorkerInfoPtr();
  EXPECT_EQ(destroyedB, 0);
  a = WorkerInfoPtr();
  EXPECT_EQ(destroyedB, 1);
}

TEST(WorkerInfoPtr, AssignmentFromAHandleInsideTheReleasedRecord) {
  int destroyedParent = 0;
  int destroyedChild = 0;
  auto* parent = new CountedRecord(destroyedParent);
  parent->child = WorkerInfoPtr(new CountedRecord(destroyedChild));
  WorkerInfoPtr handle(parent);
  handle = parent->child;
  EXPECT_EQ(destroyedParent, 1);
  EXPECT_EQ(destroyedChild, 0);
  handle = WorkerInfoPtr();
  EXPECT_EQ(destroyedChild, 1);
}

TEST(CPRCObject, CopiesStartUncountedAndAssignmentKeepsTheCount) {
  int destroyed = 0;
  auto* original = new CountedRecord(destroyed);
  WorkerInfoPtr first(original);
  WorkerInfoPtr second(first);  // original: 2 references

  auto* copy = new CountedRecord(*original);
  WorkerInfoPtr copyHandle(copy);  // copy: 1 reference, not 3
  *copy = *original;               // and still 1
  copyHandle = WorkerInfoPtr();
  EXPECT_EQ(destroyed, 1);

  first.init();  // original: 3 references
  first = WorkerInfoPtr();
  second = WorkerInfoPtr();
  EXPECT_EQ(destroyed, 1);
  original->removeReference();
  EXPECT_EQ(destroyed, 2);
}

}  // namespace
