// The tree cursor handle (ownership, identity, forwarding, the two derived classifications) and the
// message tree's trace of its nodes.

#include <bsutils/fimessagetree.h>
#include <bsutils/fitreeiterator.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <iterator>
#include <map>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "framework/framework_doubles.h"
#include "support/capturing_sink.h"

namespace {

using framework_test::CountedInfo;
using framework_test::Cursor;
using framework_test::Node;

// A list holding A(1) with children B(2) (which holds D(4)) and C(3), then a sibling E(5).
std::vector<Node> sample() {
  return {{.tagId = 1, .children = {{.tagId = 2, .children = {{.tagId = 4}}}, {.tagId = 3}}},
          {.tagId = 5}};
}

TEST(TreeIteratorHandle, AnOwningHandleDeletesWithItsLastCopy) {
  const std::vector<Node> list = sample();
  int destroyed = 0;
  {
    FITreeIterator owner(new Cursor(list, &destroyed), true);
    {
      const FITreeIterator copy(owner);
      FITreeIterator assigned;
      assigned = owner;
    }
    EXPECT_EQ(destroyed, 0);
  }
  EXPECT_EQ(destroyed, 1);
  // Assigning over the last handle lets go too.
  FITreeIterator last(new Cursor(list, &destroyed), true);
  last = FITreeIterator();
  EXPECT_EQ(destroyed, 2);
}

TEST(TreeIteratorHandle, ANonOwningHandleNeverDeletes) {
  const std::vector<Node> list = sample();
  int destroyed = 0;
  {
    Cursor cursor(list, &destroyed);
    {
      const FITreeIterator byFlag(&cursor, false);
      const FITreeIterator byConst(static_cast<const FITreeIteratorImpl*>(&cursor));
      FITreeIterator copy(byFlag);
      copy = byConst;
    }
    EXPECT_EQ(destroyed, 0);
  }
  EXPECT_EQ(destroyed, 1);  // by the cursor's own owner alone
}

TEST(TreeIteratorHandle, NullAndIdentity) {
  const std::vector<Node> list = sample();
  Cursor first(list), second(list);
  const FITreeIterator owning(new Cursor(list), true);
  const FITreeIterator copy = owning;
  EXPECT_TRUE(FITreeIterator().isNull());
  EXPECT_FALSE(FITreeIterator(&first).isNull());
  EXPECT_TRUE(FITreeIterator() == FITreeIterator());
  EXPECT_TRUE(FITreeIterator() != FITreeIterator(&first));
  EXPECT_TRUE(FITreeIterator(&first, false) == FITreeIterator(&first));
  EXPECT_TRUE(owning == copy);
  EXPECT_FALSE(owning != copy);
  // Two cursors on the same node are still two cursors.
  EXPECT_TRUE(FITreeIterator(&first) != FITreeIterator(&second));
  EXPECT_FALSE(owning == FITreeIterator(&first));
}

TEST(TreeIteratorHandle, MovesGoToTheCursorAndCopiesShareThePosition) {
  const std::vector<Node> list = sample();
  FITreeIterator it(new Cursor(list), true);
  const FITreeIterator copy = it;
  using F = FITreeIterator;
  const std::tuple<bool (F::*)(), bool, int> steps[] = {
      {&F::moveToParent, false, 1},         {&F::moveToPreviousSibling, false, 1},
      {&F::moveToFirstChild, true, 2},      {&F::moveToNextSibling, true, 3},
      {&F::moveToNextSibling, false, 3},    {&F::moveToFirstChild, false, 3},
      {&F::moveToPreviousSibling, true, 2}, {&F::moveToFirstChild, true, 4},
      {&F::moveToParent, true, 2},          {&F::moveToParent, true, 1},
      {&F::moveToNextSibling, true, 5},
  };
  int step = 0;
  for (const auto& [move, moved, tagAfter] : steps) {
    SCOPED_TRACE(step++);
    EXPECT_EQ((it.*move)(), moved);
    EXPECT_EQ(it.getTagId(), tagAfter);
    EXPECT_EQ(copy.getTagId(), tagAfter);
  }
}

TEST(TreeIteratorHandle, EveryQueryAnswersFromTheCursor) {
  int gone = 0;
  WorkerInfo *start = new CountedInfo(gone), *data = new CountedInfo(gone),
             *end = new CountedInfo(gone);
  // clang-format off
  const std::vector<Node> list = {{.tagId = 5, .tagName = u"name", .namespaceURI = u"urn:x",
      .memberId = 7, .memberIdPath = {1, 2, 7}, .partialMemberPath = {{1, 2, 3}, {4, 5, 6}},
      .category = 3, .repeatIndex = 8, .pathBasedInfoIndex = 9, .minOccurs = 10, .maxOccurs = 11,
      .occurrences = 12, .minLength = 13, .maxLength = 14, .isNullable = 1,
      .data = PWFData(std::int32_t{42}), .defaultData = PWFData(u"x", eString), .startInfo = start,
      .dataInfo = data, .endInfo = end, .treeChanged = true, .anonymous = true}};
  const FITreeIterator it(new Cursor(list), true);
  const std::pair<const char*, bool> answers[] = {
      {"TagId", it.getTagId() == 5},
      {"TagName", ZanStringBase(it.getTagName()) == ZanStringBase(u"name")},
      {"NamespaceURI", it.getNamespaceURI() == ZanStringBase(u"urn:x")},
      {"MemberId", it.getMemberId() == 7},
      {"MemberIdPath", it.getMemberIdPath() == std::vector<std::int32_t>{1, 2, 7}},
      {"PartialMemberPath",
       it.getPartialMemberPath() == std::vector<MbrPathItem>{{1, 2, 3}, {4, 5, 6}}},
      {"Category", it.getCategory() == 3},
      {"RepeatIndex", it.getRepeatIndex() == 8},
      {"PathBasedInfoIndex", it.getPathBasedInfoIndex() == 9},
      {"MinOccurs", it.getMinOccurs() == 10},
      {"MaxOccurs", it.getMaxOccurs() == 11},
      {"Occurrences", it.getOccurrences() == 12},
      {"MinLength", it.getMinLength() == 13},
      {"MaxLength", it.getMaxLength() == 14},
      {"IsNullable", it.getIsNullable() == 1},
      {"Data", it.getData() == PWFData(std::int32_t{42})},
      {"DefaultData", it.getDefaultData() == PWFData(u"x", eString)},
      {"StartWorkerInfo", &*it.getStartWorkerInfo() == start},
      {"DataWorkerInfo", &*it.getDataWorkerInfo() == data},
      {"EndWorkerInfo", &*it.getEndWorkerInfo() == end},
      {"HasTreeChanged", it.hasTreeChanged()},
      {"IsAnonymous", it.isAnonymous()},
  };
  // clang-format on
  for (const auto& [name, answered] : answers) EXPECT_TRUE(answered) << name;
  // The handles the queries gave back took their own references, and have let go of them.
  EXPECT_EQ(gone, 0);
}

TEST(TreeIteratorClassification, WhereDefinedAndNodeType) {
  struct Row {
    std::int32_t memberId, category;
    EWhereDefined where;
    ENodeType type;
  };
  // clang-format off
  const Row rows[] = {
      {0, 0, eSelf, eSimple}, {0, 1, eTag, eSimple}, {0, 2, eSelf, eCompound},
      {0, 3, eTag, eCompound}, {0, 4, eUnknown, eUnparsedBufferNode}, {0, 5, eSelf, eMessage},
      {0, 6, eTag, eMessage}, {0, 7, eTag, eMessage}, {0, -1, eTag, eMessage},
      {-3, 2, eSelf, eCompound},
      // A member id above 0 names a type member whatever the category.
      {1, 0, eTypeMember, eSimple}, {7, 4, eTypeMember, eUnparsedBufferNode},
      {2, 6, eTypeMember, eMessage}, {INT32_MAX, 9, eTypeMember, eMessage},
  };
  // clang-format on
  for (const Row& row : rows) {
    SCOPED_TRACE(testing::Message()
                 << "member id " << row.memberId << ", category " << row.category);
    const std::vector<Node> list = {{.memberId = row.memberId, .category = row.category}};
    Cursor cursor(list);
    const FITreeIterator it(&cursor);
    EXPECT_EQ(it.getWhereDefined(), row.where);
    EXPECT_EQ(it.getNodeType(), row.type);
  }
}

// A tree whose header, content and footer are the lists it is given; an empty one has a null
// iterator.
class ListsTree : public FIMessageTree {
 public:
  std::vector<Node> header, content, footer;

  const char16_t* getProjectId() const override { return u""; }
  std::int32_t getNumProjDependencies() const override { return 0; }
  const char16_t* getProjDependency(std::int32_t) const override { return u""; }
  WorkerInfoPtr getMsgStartWorkerInfo() override { return {}; }
  WorkerInfoPtr getMsgEndWorkerInfo() override { return {}; }
  FITreeIterator getMsgHeaderIterator() const override { return over(header); }
  FITreeIterator getMsgContentIterator() const override { return over(content); }
  FITreeIterator getMsgFooterIterator() const override { return over(footer); }

 private:
  static FITreeIterator over(const std::vector<Node>& nodes) {
    return nodes.empty() ? FITreeIterator() : FITreeIterator(new Cursor(nodes), true);
  }
};

const char* const kLabels[] = {"TagId",
                               "MemberId",
                               "TagName",
                               "RepeatIndex",
                               "WhereDefined",
                               "LogicalType",
                               "Data",
                               "Category",
                               "NodeType",
                               "Occurrences",
                               "PathBasedInfoIndex",
                               "MinOccurs",
                               "MaxOccurs",
                               "MinLength",
                               "MaxLength",
                               "IsNullable",
                               "DefaultData",
                               "HasTreeChanged",
                               "PartialMemberPath",
                               "StartWorkerInfo",
                               "DataWorkerInfo",
                               "EndWorkerInfo"};

using Values = std::map<std::string, std::string>;

// The node records written, each checked for its function, text and labels, as label to value.
std::vector<Values> nodeRecords(const CapturingSink& sink) {
  std::vector<Values> nodes;
  for (const ZanLog::Record& record : sink.ofKind(ZanLog::Kind::trace)) {
    EXPECT_EQ(record.function, "FIMessageTree::traceSubTree");
    EXPECT_EQ(record.text, "Message tree node");
    EXPECT_EQ(record.inserts.size(), std::size(kLabels));
    Values& values = nodes.emplace_back();
    for (std::size_t i = 0; i < std::min(record.inserts.size(), std::size(kLabels)); ++i) {
      const std::string prefix = std::string(kLabels[i]) + ": ";
      EXPECT_EQ(record.inserts[i].substr(0, prefix.size()), prefix);
      values[kLabels[i]] =
          record.inserts[i].substr(std::min(prefix.size(), record.inserts[i].size()));
    }
  }
  return nodes;
}

std::vector<std::string> tagsOf(const std::vector<Values>& nodes) {
  std::vector<std::string> tags;
  for (const Values& values : nodes) tags.push_back(values.at("TagId"));
  return tags;
}

TEST(TracerSubTree, WritesEachLabelledValue) {
  const std::vector<Node> list = {{.tagId = 5,
                                   .tagName = u"name",
                                   .repeatIndex = 2,
                                   .pathBasedInfoIndex = 4,
                                   .minOccurs = 1,
                                   .maxOccurs = 9,
                                   .occurrences = 3,
                                   .minLength = 2,
                                   .maxLength = 80,
                                   .isNullable = 1}};
  const Values expected = {{"TagId", "5"},       {"MemberId", "0"},           {"TagName", "name"},
                           {"RepeatIndex", "2"}, {"Occurrences", "3"},        {"MinOccurs", "1"},
                           {"MaxOccurs", "9"},   {"PathBasedInfoIndex", "4"}, {"MinLength", "2"},
                           {"MaxLength", "80"},  {"IsNullable", "1"}};
  ListsTree tree;
  FITreeIterator it(new Cursor(list), true);
  CapturingSink sink(3);
  tree.traceSubTree(it);
  const auto nodes = nodeRecords(sink);
  ASSERT_EQ(nodes.size(), 1u);
  for (const auto& [label, value] : expected) EXPECT_EQ(nodes[0].at(label), value) << label;
}

TEST(TracerSubTree, NamesTheClassificationsAndTheData) {
  struct Row {
    std::int32_t memberId, category;
    PWFData data;
    const char *categoryName, *where, *type, *dataText;  // a null text: the value's debug string
  };
  // clang-format off
  const Row rows[] = {
      {0, 0, PWFData(), "SELF_DEFINING_FIELD", "Self", "Simple", "NOTHING"},
      {0, 1, PWFData(eInteger), "PRE_DEFINED_FIELD", "Tag", "Simple", "NULL"},
      {0, 2, PWFData(eString), "SELF_DEFINING_STRUCTURE", "Self", "Compound", "NULL"},
      {4, 3, PWFData(std::int32_t{42}), "PRE_DEFINED_STRUCTURE", "TypeMember", "Compound", nullptr},
      {0, 4, PWFData(u"abc", eString), "UN_PARSED_BUFFER", "Unknown", "UnparsedBuffer", nullptr},
      {0, 5, PWFData(true), "SELF_DEFINING_MESSAGE", "Self", "Message", nullptr},
      {0, 6, PWFData(), "PRE_DEFINED_MESSAGE", "Tag", "Message", "NOTHING"},
      {0, 7, PWFData(), "ERROR invalid", "Tag", "Message", "NOTHING"},
      {0, -1, PWFData(), "ERROR invalid", "Tag", "Message", "NOTHING"},
  };
  // clang-format on
  ListsTree tree;
  for (const Row& row : rows) {
    SCOPED_TRACE(row.category);
    const std::vector<Node> list = {
        {.memberId = row.memberId, .category = row.category, .data = row.data}};
    FITreeIterator it(new Cursor(list), true);
    CapturingSink sink(3);
    tree.traceSubTree(it);
    const auto nodes = nodeRecords(sink);
    ASSERT_EQ(nodes.size(), 1u);
    EXPECT_EQ(nodes[0].at("Category"), row.categoryName);
    EXPECT_EQ(nodes[0].at("WhereDefined"), row.where);
    EXPECT_EQ(nodes[0].at("NodeType"), row.type);
    EXPECT_EQ(nodes[0].at("Data"), row.dataText != nullptr
                                       ? row.dataText
                                       : row.data.getDebugString().getPWFStringValue().toUtf8());
  }
}

TEST(TracerSubTree, DepthFirstBelowTheNodeAndBackToIt) {
  using F = FITreeIterator;
  // clang-format off
  const std::pair<std::vector<bool (F::*)()>, std::vector<std::string>> rows[] = {
      {{}, {"1", "2", "4", "3"}},  // the node's following siblings are not below it
      {{&F::moveToFirstChild}, {"2", "4"}},
      {{&F::moveToFirstChild, &F::moveToFirstChild}, {"4"}},
      {{&F::moveToFirstChild, &F::moveToNextSibling}, {"3"}},
      {{&F::moveToNextSibling}, {"5"}},
  };
  // clang-format on
  const std::vector<Node> list = sample();
  ListsTree tree;
  for (const auto& [moves, tags] : rows) {
    SCOPED_TRACE(tags.front());
    FITreeIterator it(new Cursor(list), true);
    for (auto move : moves) ASSERT_TRUE((it.*move)());
    CapturingSink sink(3);
    tree.traceSubTree(it);
    EXPECT_EQ(tagsOf(nodeRecords(sink)), tags);
    EXPECT_EQ(std::to_string(it.getTagId()), tags.front());
  }
  // Back at the same node, not just one with its tag: its sibling is still next.
  FITreeIterator it(new Cursor(list), true);
  CapturingSink sink(3);
  tree.traceSubTree(it);
  ASSERT_TRUE(it.moveToNextSibling());
  EXPECT_EQ(it.getTagId(), 5);
}

TEST(TracerSubTree, NothingWithTraceOff) {
  ListsTree tree;
  tree.header = tree.content = tree.footer = sample();
  for (int filter : {0, 2}) {
    SCOPED_TRACE(filter);
    FITreeIterator it(new Cursor(tree.content), true);
    ASSERT_TRUE(it.moveToFirstChild());
    CapturingSink sink(filter);
    tree.traceSubTree(it);
    tree.traceTree();
    EXPECT_TRUE(sink.records().empty());
    EXPECT_EQ(it.getTagId(), 2);
  }
}

TEST(TracerTree, TracesTheHeaderContentAndFooterLists) {
  struct Row {
    std::vector<Node> header, content, footer;
    std::vector<std::string> tags;
  };
  const std::vector<Node> nested = {{.tagId = 10, .children = {{.tagId = 11}}}};
  // clang-format off
  const Row rows[] = {
      {{{.tagId = 1}, {.tagId = 2}}, nested, {{.tagId = 20}}, {"1", "2", "10", "11", "20"}},
      {{{.tagId = 1}}, {{.tagId = 10}, {.tagId = 12}}, {}, {"1", "10", "12"}},  // no footer
      {{}, nested, {}, {"10", "11"}},
      {{}, {}, {}, {}},
  };
  // clang-format on
  for (const Row& row : rows) {
    SCOPED_TRACE(row.tags.size());
    ListsTree tree;
    tree.header = row.header;
    tree.content = row.content;
    tree.footer = row.footer;
    CapturingSink sink(3);
    tree.traceTree();
    EXPECT_EQ(tagsOf(nodeRecords(sink)), row.tags);
  }
}

}  // namespace
