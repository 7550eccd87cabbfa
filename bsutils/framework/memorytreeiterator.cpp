// The in-memory tree's cursor: moves over the levels it holds, and the answers of a tree that has
// no wire format dictionary.

#include "framework/memorytreeiterator.h"

#include <algorithm>

namespace bsutils::internal {

namespace {

// The "no constraint" answers (see MemoryMessageTree::getMsgHeaderIterator).
constexpr std::int32_t kNoPathBasedInfo = -1;
constexpr std::int32_t kUnbounded = -1;
constexpr std::int32_t kNullable = 1;

}  // namespace

MemoryTreeIterator::MemoryTreeIterator(const MemoryTreeNode& part) : path_{{&part, 0}} {}

const MemoryTreeNode& MemoryTreeIterator::node() const {
  return parent().child(path_.back().index);
}

bool MemoryTreeIterator::moveToParent() {
  // The first level's parent is the part itself, which is not a node of the walk.
  if (path_.size() == 1) return false;
  path_.pop_back();
  return true;
}

bool MemoryTreeIterator::moveToFirstChild() {
  const MemoryTreeNode& present = node();
  if (present.childCount() == 0) return false;
  path_.push_back({&present, 0});
  return true;
}

bool MemoryTreeIterator::moveToPreviousSibling() {
  if (path_.back().index == 0) return false;
  --path_.back().index;
  return true;
}

bool MemoryTreeIterator::moveToNextSibling() {
  if (path_.back().index + 1 >= parent().childCount()) return false;
  ++path_.back().index;
  return true;
}

std::int32_t MemoryTreeIterator::getTagId() const { return node().tagId(); }

const char16_t* MemoryTreeIterator::getTagName() const { return node().name().terminatedData(); }

ZanStringBase MemoryTreeIterator::getNamespaceURI() const { return ZanStringBase(); }

std::int32_t MemoryTreeIterator::getMemberId() const { return node().memberId(); }

std::vector<std::int32_t> MemoryTreeIterator::getMemberIdPath() const {
  std::vector<std::int32_t> ids;
  ids.reserve(path_.size());
  for (const Level& level : path_) ids.push_back(level.parent->child(level.index).memberId());
  return ids;
}

std::vector<MbrPathItem> MemoryTreeIterator::getPartialMemberPath() const {
  std::vector<MbrPathItem> items;
  items.reserve(path_.size());
  for (const Level& level : path_) {
    const MemoryTreeNode& step = level.parent->child(level.index);
    items.emplace_back(step.memberId(), step.repeatIndex(), step.tagId());
  }
  return items;
}

std::int32_t MemoryTreeIterator::getCategory() const { return node().category(); }

std::int32_t MemoryTreeIterator::getRepeatIndex() const { return node().repeatIndex(); }

std::int32_t MemoryTreeIterator::getPathBasedInfoIndex() const { return kNoPathBasedInfo; }

std::int32_t MemoryTreeIterator::getMinOccurs() const { return 0; }

std::int32_t MemoryTreeIterator::getMaxOccurs() const { return kUnbounded; }

std::int32_t MemoryTreeIterator::getOccurrences() const {
  // Counted, not recorded: a repeated element is its siblings of the same name and member id.
  const MemoryTreeNode& present = node();
  std::int32_t count = 0;
  for (std::int32_t index = 0; index < parent().childCount(); ++index) {
    const MemoryTreeNode& sibling = parent().child(index);
    if (sibling.memberId() == present.memberId() && sibling.name() == present.name()) ++count;
  }
  return count;
}

std::int32_t MemoryTreeIterator::getMinLength() const { return 0; }

std::int32_t MemoryTreeIterator::getMaxLength() const { return kUnbounded; }

std::int32_t MemoryTreeIterator::getIsNullable() const { return kNullable; }

PWFData MemoryTreeIterator::getData() const { return node().value(); }

PWFData MemoryTreeIterator::getDefaultData() const { return PWFData(); }

WorkerInfoPtr MemoryTreeIterator::getStartWorkerInfo() const { return node().startWorkerInfo(); }

WorkerInfoPtr MemoryTreeIterator::getDataWorkerInfo() const { return node().dataWorkerInfo(); }

WorkerInfoPtr MemoryTreeIterator::getEndWorkerInfo() const { return node().endWorkerInfo(); }

bool MemoryTreeIterator::hasTreeChanged() const { return false; }

bool MemoryTreeIterator::isAnonymous() const { return node().isAnonymous(); }

}  // namespace bsutils::internal
