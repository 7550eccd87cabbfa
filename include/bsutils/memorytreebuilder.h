#ifndef BSUTILS_MEMORYTREEBUILDER_H
#define BSUTILS_MEMORYTREEBUILDER_H

// MemoryTreeBuilder: the handler that turns a parser's callbacks into a MemoryMessageTree, so that
// a parser can be run without the runtime and what it reported can be read back, compared, or
// handed to a writer.
//
// It takes the callbacks in the orders BitstreamWorkerStateChecker takes them (the checker's tree
// table, states 0 to 12), so that a parser run into a builder alone meets the refusals it would
// meet under the checker. Three orders the checker takes mean nothing for a tree; the builder
// refuses them too, rather than guess:
//   - an endElement with no element open (the checker lets an end by id open the header);
//   - a second startMessage before the first message's tree has been taken;
//   - an endMessage with no message started, or with an element still open.
// endMessage, which the checker never checks, is taken at any point of a started message with no
// element open, and ends the message content too when that is open. Every refusal is an
// FIHandlerException whose text names the callback and the state; a refused callback changes
// nothing.
//
// What goes where: startMessage begins a tree with the message's worker information; elements
// started before the message content go to the header, elements started inside it to the content,
// each under the element open when it started; startMessageContent and endMessageContent describe
// the content node itself (MemoryMessageTree::content()); data sets the value and data worker
// information of the element last started (even when it has ended since); projectId and
// projectDependencies set the tree's. An endElement ends the innermost open element whatever name
// or member id it gives: the nesting is what the tree records.

#include <bsutils/export.h>
#include <bsutils/fihandler.h>
#include <bsutils/memorymessagetree.h>

#include <cstdint>
#include <memory>
#include <vector>

class BSUTILS_EXPORT MemoryTreeBuilder : public FIHandler {
 public:
  // State 0: waiting for a message.
  MemoryTreeBuilder() = default;
  MemoryTreeBuilder(const MemoryTreeBuilder&) = delete;
  MemoryTreeBuilder& operator=(const MemoryTreeBuilder&) = delete;
  ~MemoryTreeBuilder() override = default;

  // The tree of the message last ended, handed over; null when no message has ended since the last
  // take (a message still being built stays with the builder).
  std::unique_ptr<MemoryMessageTree> take();

  // The present state, 0 to 12 as in the checker's tree table, for diagnostics.
  std::int32_t state() const { return state_; }

  // --- FIHandler ---
  void startMessage(WorkerInfoPtr start, WorkerInfoPtr end) override;
  // The message's end worker information becomes `info` when that is not null.
  void endMessage(WorkerInfoPtr info) override;
  // Both forms take the content (true) and leave `memberId` alone.
  bool startMessageContent(const char16_t* name, std::uint16_t category,
                           WorkerInfoPtr info) override;
  bool startMessageContent(std::int32_t& memberId, std::uint16_t category, WorkerInfoPtr info,
                           std::int32_t flags) override;
  void endMessageContent(const char16_t* name, WorkerInfoPtr info) override;
  void endMessageContent(std::int32_t memberId, WorkerInfoPtr info) override;
  // A null `name` is the empty name (an anonymous element).
  void startElement(const char16_t* name, std::uint16_t category, WorkerInfoPtr info,
                    std::int32_t repeatIndex) override;
  void startElement(std::int32_t memberId, std::uint16_t category, WorkerInfoPtr info,
                    std::int32_t repeatIndex, std::int32_t tagId) override;
  void endElement(const char16_t* name, WorkerInfoPtr info) override;
  void endElement(std::int32_t memberId, WorkerInfoPtr info) override;
  void data(const PWFData& value, WorkerInfoPtr info) override;
  // A null `id` is the empty id.
  void projectId(const char16_t* id) override;
  void projectDependencies(std::vector<ZanStringBase> dependencies) override;

 private:
  // The next state for the callback of code `call` (an EBitstreamWorkerCall), or the refusal.
  std::int32_t nextState(std::int32_t call, const char* callback) const;
  // The work shared by the two forms of each callback.
  void startContent(MemoryTreeNode content, WorkerInfoPtr info);
  void endContent(WorkerInfoPtr info);
  void start(std::int32_t call, const char* callback, MemoryTreeNode element, WorkerInfoPtr info);
  void end(std::int32_t call, const char* callback, WorkerInfoPtr info);

  std::int32_t state_ = 0;
  std::unique_ptr<MemoryMessageTree> tree_;  // the message being built, or the last one ended
  bool messageEnded_ = false;                // tree_ is finished and waits for take()
  bool contentOpen_ = false;
  std::vector<MemoryTreeNode*> open_;      // the open elements, outermost first
  MemoryTreeNode* lastStarted_ = nullptr;  // where data goes
};

#endif  // BSUTILS_MEMORYTREEBUILDER_H
