// The in-memory message tree: its nodes, its project and worker information, and the iterators it
// hands out over its parts.

#include <bsutils/memorymessagetree.h>

#include <utility>

#include "framework/memorytreeiterator.h"

namespace {

// An owning handle on the part's first node, or a null one for an empty part: a writer tells an
// empty part by the null handle, as it does with the runtime's trees.
FITreeIterator iteratorOver(const MemoryTreeNode& part) {
  if (part.childCount() == 0) return FITreeIterator();
  return FITreeIterator(new bsutils::internal::MemoryTreeIterator(part), true);
}

}  // namespace

// --- MemoryTreeNode ---

MemoryTreeNode::MemoryTreeNode(ZanStringBase name, std::int32_t category, std::int32_t repeatIndex)
    : name_(std::move(name)), category_(category), repeatIndex_(repeatIndex) {}

MemoryTreeNode::MemoryTreeNode(std::int32_t memberId, std::int32_t category,
                               std::int32_t repeatIndex, std::int32_t tagId)
    : memberId_(memberId), tagId_(tagId), category_(category), repeatIndex_(repeatIndex) {}

MemoryTreeNode& MemoryTreeNode::setValue(PWFData value, WorkerInfoPtr info) {
  value_ = std::move(value);
  dataInfo_ = info;
  return *this;
}

MemoryTreeNode& MemoryTreeNode::setStartWorkerInfo(WorkerInfoPtr info) {
  startInfo_ = info;
  return *this;
}

MemoryTreeNode& MemoryTreeNode::setEndWorkerInfo(WorkerInfoPtr info) {
  endInfo_ = info;
  return *this;
}

MemoryTreeNode& MemoryTreeNode::child(std::int32_t index) {
  return *children_.at(static_cast<std::size_t>(index));
}

const MemoryTreeNode& MemoryTreeNode::child(std::int32_t index) const {
  return *children_.at(static_cast<std::size_t>(index));
}

MemoryTreeNode& MemoryTreeNode::addChild(MemoryTreeNode node) {
  children_.push_back(std::make_unique<MemoryTreeNode>(std::move(node)));
  return *children_.back();
}

// --- MemoryMessageTree ---

void MemoryMessageTree::setProjectId(ZanStringBase id) { projectId_ = std::move(id); }

void MemoryMessageTree::setProjectDependencies(std::vector<ZanStringBase> dependencies) {
  dependencies_ = std::move(dependencies);
}

void MemoryMessageTree::setMsgStartWorkerInfo(WorkerInfoPtr info) { startInfo_ = info; }

void MemoryMessageTree::setMsgEndWorkerInfo(WorkerInfoPtr info) { endInfo_ = info; }

const char16_t* MemoryMessageTree::getProjectId() const { return projectId_.terminatedData(); }

std::int32_t MemoryMessageTree::getNumProjDependencies() const {
  return static_cast<std::int32_t>(dependencies_.size());
}

const char16_t* MemoryMessageTree::getProjDependency(std::int32_t index) const {
  if (index < 0 || index >= getNumProjDependencies()) return nullptr;
  return dependencies_[static_cast<std::size_t>(index)].terminatedData();
}

WorkerInfoPtr MemoryMessageTree::getMsgStartWorkerInfo() { return startInfo_; }

WorkerInfoPtr MemoryMessageTree::getMsgEndWorkerInfo() { return endInfo_; }

FITreeIterator MemoryMessageTree::getMsgHeaderIterator() const { return iteratorOver(header_); }

FITreeIterator MemoryMessageTree::getMsgContentIterator() const { return iteratorOver(content_); }

FITreeIterator MemoryMessageTree::getMsgFooterIterator() const { return iteratorOver(footer_); }
