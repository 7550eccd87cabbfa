#ifndef BSUTILS_FRAMEWORK_MEMORYTREEITERATOR_H
#define BSUTILS_FRAMEWORK_MEMORYTREEITERATOR_H

// MemoryTreeIterator: the cursor that MemoryMessageTree hands out inside an FITreeIterator. It is
// private to the library: users reach it only through the handle, and its answers are documented
// on MemoryMessageTree::getMsgHeaderIterator.

#include <bsutils/fitreeiterator.h>
#include <bsutils/memorymessagetree.h>

#include <cstdint>
#include <vector>

namespace bsutils::internal {

class MemoryTreeIterator final : public FITreeIteratorImpl {
 public:
  // On the first child of `part`, which must have one. The tree must outlive the iterator; nodes
  // may be added meanwhile (each lives at a fixed address and keeps its index), never removed.
  explicit MemoryTreeIterator(const MemoryTreeNode& part);

  bool moveToParent() override;
  bool moveToFirstChild() override;
  bool moveToPreviousSibling() override;
  bool moveToNextSibling() override;
  std::int32_t getTagId() const override;
  const char16_t* getTagName() const override;
  ZanStringBase getNamespaceURI() const override;
  std::int32_t getMemberId() const override;
  std::vector<std::int32_t> getMemberIdPath() const override;
  std::vector<MbrPathItem> getPartialMemberPath() const override;
  std::int32_t getCategory() const override;
  std::int32_t getRepeatIndex() const override;
  std::int32_t getPathBasedInfoIndex() const override;
  std::int32_t getMinOccurs() const override;
  std::int32_t getMaxOccurs() const override;
  std::int32_t getOccurrences() const override;
  std::int32_t getMinLength() const override;
  std::int32_t getMaxLength() const override;
  std::int32_t getIsNullable() const override;
  PWFData getData() const override;
  PWFData getDefaultData() const override;
  WorkerInfoPtr getStartWorkerInfo() const override;
  WorkerInfoPtr getDataWorkerInfo() const override;
  WorkerInfoPtr getEndWorkerInfo() const override;
  bool hasTreeChanged() const override;
  bool isAnonymous() const override;

 private:
  // One level of the walk: a node's parent and its index there. Holding the parent rather than
  // the node is what lets the sibling moves and the parent move work without parent pointers.
  struct Level {
    const MemoryTreeNode* parent;
    std::int32_t index;
  };

  const MemoryTreeNode& node() const;
  const MemoryTreeNode& parent() const { return *path_.back().parent; }

  std::vector<Level> path_;  // from the part down to the present node; never empty
};

}  // namespace bsutils::internal

#endif  // BSUTILS_FRAMEWORK_MEMORYTREEITERATOR_H
