#ifndef BSUTILS_TESTS_FRAMEWORK_DOUBLES_H
#define BSUTILS_TESTS_FRAMEWORK_DOUBLES_H

// Test doubles shared by the framework suites: a worker record that counts its destruction, and a
// tree cursor over nodes written as data.

#include <bsutils/fitreeiterator.h>
#include <bsutils/workerinfo.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace framework_test {

// Counts its destructions, so that a test sees exactly when the last reference went.
class CountedInfo : public WorkerInfo {
 public:
  explicit CountedInfo(int& destroyed) : destroyed_(&destroyed) {}
  ~CountedInfo() override { ++*destroyed_; }

 private:
  int* destroyed_;
};

// One node of a message, every value the cursor answers with.
struct Node {
  std::int32_t tagId = 0;
  const char16_t* tagName = u"";
  const char16_t* namespaceURI = u"";
  std::int32_t memberId = 0;
  std::vector<std::int32_t> memberIdPath{};
  std::vector<MbrPathItem> partialMemberPath{};
  std::int32_t category = eSelfDefiningField;
  std::int32_t repeatIndex = 0, pathBasedInfoIndex = 0, minOccurs = 0, maxOccurs = 0;
  std::int32_t occurrences = 0, minLength = 0, maxLength = 0, isNullable = 0;
  PWFData data{}, defaultData{};
  WorkerInfoPtr startInfo{}, dataInfo{}, endInfo{};
  bool treeChanged = false, anonymous = false;
  std::vector<Node> children{};
};

// A cursor over a list of sibling nodes (a message's header, content or footer), starting on the
// first. The list has no parent, so moving up from it fails, as it does at the top of a message.
class Cursor : public FITreeIteratorImpl {
 public:
  explicit Cursor(const std::vector<Node>& list, int* destroyed = nullptr)
      : list_(&list), destroyed_(destroyed) {}
  ~Cursor() override {
    if (destroyed_ != nullptr) ++*destroyed_;
  }

  bool moveToParent() override { return path_.size() > 1 && (path_.pop_back(), true); }
  bool moveToFirstChild() override {
    return !node().children.empty() && (path_.push_back(0), true);
  }
  bool moveToPreviousSibling() override { return path_.back() > 0 && (--path_.back(), true); }
  bool moveToNextSibling() override {
    return path_.back() + 1 < siblings().size() && (++path_.back(), true);
  }
  std::int32_t getTagId() const override { return node().tagId; }
  const char16_t* getTagName() const override { return node().tagName; }
  ZanStringBase getNamespaceURI() const override { return node().namespaceURI; }
  std::int32_t getMemberId() const override { return node().memberId; }
  std::vector<std::int32_t> getMemberIdPath() const override { return node().memberIdPath; }
  std::vector<MbrPathItem> getPartialMemberPath() const override {
    return node().partialMemberPath;
  }
  std::int32_t getCategory() const override { return node().category; }
  std::int32_t getRepeatIndex() const override { return node().repeatIndex; }
  std::int32_t getPathBasedInfoIndex() const override { return node().pathBasedInfoIndex; }
  std::int32_t getMinOccurs() const override { return node().minOccurs; }
  std::int32_t getMaxOccurs() const override { return node().maxOccurs; }
  std::int32_t getOccurrences() const override { return node().occurrences; }
  std::int32_t getMinLength() const override { return node().minLength; }
  std::int32_t getMaxLength() const override { return node().maxLength; }
  std::int32_t getIsNullable() const override { return node().isNullable; }
  PWFData getData() const override { return node().data; }
  PWFData getDefaultData() const override { return node().defaultData; }
  WorkerInfoPtr getStartWorkerInfo() const override { return node().startInfo; }
  WorkerInfoPtr getDataWorkerInfo() const override { return node().dataInfo; }
  WorkerInfoPtr getEndWorkerInfo() const override { return node().endInfo; }
  bool hasTreeChanged() const override { return node().treeChanged; }
  bool isAnonymous() const override { return node().anonymous; }

 private:
  const std::vector<Node>& siblings() const {
    const std::vector<Node>* list = list_;
    for (std::size_t depth = 0; depth + 1 < path_.size(); ++depth) {
      list = &(*list)[path_[depth]].children;
    }
    return *list;
  }
  const Node& node() const { return siblings()[path_.back()]; }

  const std::vector<Node>* list_;
  int* destroyed_;
  std::vector<std::size_t> path_{0};  // the index among its siblings of each node down to here
};

}  // namespace framework_test

#endif  // BSUTILS_TESTS_FRAMEWORK_DOUBLES_H
