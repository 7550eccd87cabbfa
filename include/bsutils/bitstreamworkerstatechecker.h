#ifndef BSUTILS_BITSTREAMWORKERSTATECHECKER_H
#define BSUTILS_BITSTREAMWORKERSTATECHECKER_H

// BitstreamWorkerStateChecker: wraps one bitstream worker and presents its interfaces itself, so
// that every call made on the worker by the runtime, and every callback the worker makes while
// parsing or query while writing, is checked against the call orders a worker must keep. A call in
// order is forwarded with its arguments unchanged; one out of order throws, before anything is
// forwarded, the framework exception of its side (FIParseException, FIWriteException,
// FIHandlerException), default-constructed. While parsing, the checker stands between the worker
// and the runtime's handler; while writing, between the worker and the runtime's message tree.
//
// The checker serves one parse sequence or one write sequence: its states never reset, and stay as
// a checked call left them even when the forwarded call throws. release() releases the worker and
// destroys the checker (which must have been created with new); a checker destroyed any other way
// releases a worker it still holds.

#include <bsutils/export.h>
#include <bsutils/fihandler.h>
#include <bsutils/fimessagetree.h>
#include <bsutils/fiparser.h>

#include <cstdint>
#include <vector>

// The checked calls, one code each; both state machines read them.
enum EBitstreamWorkerCall : std::int32_t {
  eInitializeParse = 0,
  eSetFIHandler = 1,
  eGetFIHandler = 2,
  eParse = 3,
  eParseFirst = 4,
  eParseNext = 5,
  eHasNext = 6,
  eGetNumBytesParsed = 7,
  eInitializeWrite = 8,
  eSetFIMessageTree = 9,
  eGetFIMessageTree = 10,
  eWrite = 11,
  eGetWireFormatDescriptor = 12,
  eSetWireFormatDescriptor = 13,
  eRelease = 14,  // release() is not checked
  eStartElementById = 15,
  eStartElementByName = 16,
  eEndElementById = 17,
  eEndElementByName = 18,
  eStartMessage = 19,
  eEndMessage = 20,  // endMessage() is forwarded unchecked
  eStartMessageContent = 21,
  eEndMessageContent = 22,
  eData = 23,
  eProjectId = 24,
  eProjectDependencies = 25,  // projectDependencies() reports eGetProjDependency instead
  eGetProjectId = 26,
  eGetProjDependency = 27,
  eGetMsgStartWorkerInfo = 28,
  eGetMsgEndWorkerInfo = 29,
  eGetMsgHeaderIterator = 30,
  eGetMsgContentIterator = 31,
  eGetMsgFooterIterator = 32,
};

class BSUTILS_EXPORT BitstreamWorkerStateChecker : public BitstreamWorker,
                                                   public FIHandler,
                                                   public FIMessageTree {
 public:
  // Both states 0, no handler, no tree. `worker` (may be null) is released by release().
  explicit BitstreamWorkerStateChecker(BitstreamWorker* worker);
  BitstreamWorkerStateChecker(const BitstreamWorkerStateChecker&) = delete;
  BitstreamWorkerStateChecker& operator=(const BitstreamWorkerStateChecker&) = delete;
  // Releases a worker that release() has not.
  ~BitstreamWorkerStateChecker() override;

  // --- the parser (FIParser) ---
  void initializeParse(std::int32_t options, MessageInfo* info) override;
  // Remembers the runtime's handler and gives the worker the checker as its handler.
  void setFIHandler(FIHandler* handler) override;
  // The runtime's handler.
  FIHandler* getFIHandler() const override;
  std::int32_t parse(const BitstreamBuffer* buffer, std::int32_t* bytesParsed) override;
  std::int32_t parseFirst(const BitstreamBuffer* buffer, std::int32_t* bytesParsed,
                          bool partial) override;
  std::int32_t parseNext() override;
  bool hasNext() const override;
  std::int32_t getNumBytesParsed() const override;

  // --- the worker (BitstreamWorker) ---
  const DictionaryInfo* getWireFormatDescriptor() const override;
  void setWireFormatDescriptor(const DictionaryInfo* descriptor) override;
  // Not checked: releases the worker (FIParseException without one), then deletes the checker.
  void release() override;

  // --- the writer (FIWriter) ---
  void initializeWrite(MessageInfo* info, bool* complete) override;
  // Remembers the runtime's tree and gives the worker the checker as its tree; without a worker,
  // FIParseException.
  void setFIMessageTree(const FIMessageTree* tree) override;
  // The runtime's tree.
  const FIMessageTree* getFIMessageTree() const override;
  std::int32_t write(WritableBitstreamBuffer* buffer) override;

  // --- the worker's callbacks (FIHandler), forwarded to the runtime's handler ---
  void startMessage(WorkerInfoPtr start, WorkerInfoPtr end) override;
  // Not checked.
  void endMessage(WorkerInfoPtr info) override;
  bool startMessageContent(const char16_t* name, std::uint16_t category,
                           WorkerInfoPtr info) override;
  bool startMessageContent(std::int32_t& memberId, std::uint16_t category, WorkerInfoPtr info,
                           std::int32_t flags) override;
  // The three-argument form: checked as the others, forwarded as the four-argument form with 0.
  bool startMessageContent(std::int32_t& memberId, std::uint16_t category, WorkerInfoPtr info);
  void endMessageContent(const char16_t* name, WorkerInfoPtr info) override;
  void endMessageContent(std::int32_t memberId, WorkerInfoPtr info) override;
  void startElement(const char16_t* name, std::uint16_t category, WorkerInfoPtr info,
                    std::int32_t repeatIndex) override;
  void startElement(std::int32_t memberId, std::uint16_t category, WorkerInfoPtr info,
                    std::int32_t repeatIndex, std::int32_t tagId) override;
  void endElement(const char16_t* name, WorkerInfoPtr info) override;
  void endElement(std::int32_t memberId, WorkerInfoPtr info) override;
  void data(const PWFData& value, WorkerInfoPtr info) override;
  void projectId(const char16_t* id) override;
  void projectDependencies(std::vector<ZanStringBase> dependencies) override;

  // --- the worker's queries (FIMessageTree), forwarded to the runtime's tree ---
  const char16_t* getProjectId() const override;
  std::int32_t getNumProjDependencies() const override;
  const char16_t* getProjDependency(std::int32_t index) const override;
  WorkerInfoPtr getMsgStartWorkerInfo() override;
  WorkerInfoPtr getMsgEndWorkerInfo() override;
  FITreeIterator getMsgHeaderIterator() const override;
  FITreeIterator getMsgContentIterator() const override;
  FITreeIterator getMsgFooterIterator() const override;

  // The worker state machine: accepts `call` in the present state and moves on, or throws the
  // exception of the state's side. From the parse states 10 to 15, element and message callbacks
  // (15 to 25) go to the tree state machine instead. Const, as queries are checked too: the states
  // are the checker's bookkeeping, not its value.
  void _validateAndTransitionState(EBitstreamWorkerCall call) const;
  // The tree state machine of a parser's callbacks: accepts `call` or throws FIHandlerException.
  void _performTreeStateTransition(EBitstreamWorkerCall call) const;

  // The present states, for diagnostics: worker 0 to 15, tree 0 to 12.
  std::int32_t workerState() const { return workerState_; }
  std::int32_t treeState() const { return treeState_; }

 private:
  // The wrapped worker, the runtime's handler and its tree, or the exception for a missing one
  // (FIParseException, FIHandlerException, FIMessageTreeException).
  BitstreamWorker& worker() const;
  FIHandler& handler() const;
  FIMessageTree& tree() const;

  BitstreamWorker* worker_;
  FIHandler* handler_ = nullptr;
  const FIMessageTree* tree_ = nullptr;
  mutable std::int32_t workerState_ = 0;
  mutable std::int32_t treeState_ = 0;
};

#endif  // BSUTILS_BITSTREAMWORKERSTATECHECKER_H
