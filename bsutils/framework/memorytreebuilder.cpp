// The tree builder: the checker's order of callbacks decides what it takes, and each callback
// taken builds its part of the tree.

#include <bsutils/bitstreamworkerstatechecker.h>
#include <bsutils/memorytreebuilder.h>
#include <bsutils/pwfexception.h>

#include <cstdio>
#include <utility>

#include "framework/callorders.h"

using namespace bsutils::internal;

namespace {

constexpr std::int32_t kMessageEnded = 2;

[[noreturn]] void refuse(const char* callback, const char* reason, std::int32_t state) {
  char text[160];
  std::snprintf(text, sizeof text, "MemoryTreeBuilder: %s %s (state %d)", callback, reason,
                static_cast<int>(state));
  throw FIHandlerException(text);
}

}  // namespace

std::unique_ptr<MemoryMessageTree> MemoryTreeBuilder::take() {
  if (!messageEnded_) return nullptr;
  messageEnded_ = false;
  return std::move(tree_);
}

std::int32_t MemoryTreeBuilder::nextState(std::int32_t call, const char* callback) const {
  // The checker's own order of callbacks; endMessage, which it never checks, has the builder's
  // rule.
  const std::int32_t next = nextTreeState(state_, static_cast<EBitstreamWorkerCall>(call));
  if (next == kRefusedCall) refuse(callback, "out of order", state_);
  return next;
}

void MemoryTreeBuilder::startMessage(WorkerInfoPtr start, WorkerInfoPtr end) {
  const std::int32_t next = nextState(eStartMessage, "startMessage");
  // Starting over would drop a finished tree nobody has seen.
  if (messageEnded_) refuse("startMessage", "before the last message's tree was taken", state_);
  auto tree = std::make_unique<MemoryMessageTree>();
  tree->setMsgStartWorkerInfo(start);
  tree->setMsgEndWorkerInfo(end);
  tree_ = std::move(tree);
  state_ = next;
}

void MemoryTreeBuilder::endMessage(WorkerInfoPtr info) {
  if (tree_ == nullptr || messageEnded_) refuse("endMessage", "with no message started", state_);
  if (!open_.empty()) refuse("endMessage", "with an element open", state_);
  if (!info.isNull()) tree_->setMsgEndWorkerInfo(info);
  contentOpen_ = false;
  lastStarted_ = nullptr;
  messageEnded_ = true;
  state_ = kMessageEnded;
}

bool MemoryTreeBuilder::startMessageContent(const char16_t* name, std::uint16_t category,
                                            WorkerInfoPtr info) {
  startContent(MemoryTreeNode(ZanStringBase(name), category), info);
  return true;
}

bool MemoryTreeBuilder::startMessageContent(std::int32_t& memberId, std::uint16_t category,
                                            WorkerInfoPtr info, std::int32_t /*flags*/) {
  startContent(MemoryTreeNode(memberId, category), info);
  return true;
}

void MemoryTreeBuilder::startContent(MemoryTreeNode content, WorkerInfoPtr info) {
  const std::int32_t next = nextState(eStartMessageContent, "startMessageContent");
  // The table lets the content start only before any element, so its node has no children to lose.
  content.setStartWorkerInfo(info);
  tree_->content() = std::move(content);
  contentOpen_ = true;
  lastStarted_ = nullptr;
  state_ = next;
}

void MemoryTreeBuilder::endMessageContent(const char16_t* /*name*/, WorkerInfoPtr info) {
  endContent(info);
}

void MemoryTreeBuilder::endMessageContent(std::int32_t /*memberId*/, WorkerInfoPtr info) {
  endContent(info);
}

void MemoryTreeBuilder::endContent(WorkerInfoPtr info) {
  const std::int32_t next = nextState(eEndMessageContent, "endMessageContent");
  // The table takes the end only in state 8, where no element is open.
  tree_->content().setEndWorkerInfo(info);
  contentOpen_ = false;
  state_ = next;
}

void MemoryTreeBuilder::startElement(const char16_t* name, std::uint16_t category,
                                     WorkerInfoPtr info, std::int32_t repeatIndex) {
  start(eStartElementByName, "startElement",
        MemoryTreeNode(ZanStringBase(name), category, repeatIndex), info);
}

void MemoryTreeBuilder::startElement(std::int32_t memberId, std::uint16_t category,
                                     WorkerInfoPtr info, std::int32_t repeatIndex,
                                     std::int32_t tagId) {
  start(eStartElementById, "startElement", MemoryTreeNode(memberId, category, repeatIndex, tagId),
        info);
}

void MemoryTreeBuilder::start(std::int32_t call, const char* callback, MemoryTreeNode element,
                              WorkerInfoPtr info) {
  const std::int32_t next = nextState(call, callback);
  MemoryTreeNode& part = contentOpen_ ? tree_->content() : tree_->header();
  MemoryTreeNode& parent = open_.empty() ? part : *open_.back();
  element.setStartWorkerInfo(info);
  MemoryTreeNode& started = parent.addChild(std::move(element));
  open_.push_back(&started);
  lastStarted_ = &started;
  state_ = next;
}

void MemoryTreeBuilder::endElement(const char16_t* /*name*/, WorkerInfoPtr info) {
  end(eEndElementByName, "endElement", info);
}

void MemoryTreeBuilder::endElement(std::int32_t /*memberId*/, WorkerInfoPtr info) {
  end(eEndElementById, "endElement", info);
}

void MemoryTreeBuilder::end(std::int32_t call, const char* callback, WorkerInfoPtr info) {
  const std::int32_t next = nextState(call, callback);
  if (open_.empty()) refuse(callback, "with no element open", state_);
  open_.back()->setEndWorkerInfo(info);
  open_.pop_back();
  state_ = next;
}

void MemoryTreeBuilder::data(const PWFData& value, WorkerInfoPtr info) {
  const std::int32_t next = nextState(eData, "data");
  // The table takes data only after an element has started; this guards the builder's own pointer.
  if (lastStarted_ == nullptr) refuse("data", "with no element started", state_);
  lastStarted_->setValue(value, info);
  state_ = next;
}

void MemoryTreeBuilder::projectId(const char16_t* id) {
  const std::int32_t next = nextState(eProjectId, "projectId");
  tree_->setProjectId(ZanStringBase(id));
  state_ = next;
}

void MemoryTreeBuilder::projectDependencies(std::vector<ZanStringBase> dependencies) {
  const std::int32_t next = nextState(eProjectDependencies, "projectDependencies");
  tree_->setProjectDependencies(std::move(dependencies));
  state_ = next;
}
