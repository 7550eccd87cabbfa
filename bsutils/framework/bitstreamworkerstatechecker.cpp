// The call-order checker: the check of every call against the call orders, and its forwarding.

#include <bsutils/bitstreamworkerstatechecker.h>
#include <bsutils/pwfexception.h>

#include "framework/callorders.h"

using namespace bsutils::internal;

namespace {
// The parse states in which a parser's callbacks go to the tree machine.
constexpr bool isParsing(std::int32_t state) { return state >= 10 && state <= 15; }
constexpr bool isCallback(EBitstreamWorkerCall call) {
  return call >= eStartElementById && call <= eProjectDependencies;
}
// The write states; every other state, an invalid one included, belongs to the parse side.
constexpr bool isWriting(std::int32_t state) { return state >= 2 && state <= 6; }

}  // namespace

BitstreamWorkerStateChecker::BitstreamWorkerStateChecker(BitstreamWorker* worker)
    : worker_(worker) {}

BitstreamWorkerStateChecker::~BitstreamWorkerStateChecker() {
  // A checker given up without release() still owes its worker a release.
  if (worker_ != nullptr) worker_->release();
}

void BitstreamWorkerStateChecker::_validateAndTransitionState(EBitstreamWorkerCall call) const {
  if (isParsing(workerState_) && isCallback(call)) {
    _performTreeStateTransition(call);
    return;
  }
  const std::int32_t next = nextWorkerState(workerState_, call);
  if (next == kRefusedCall) {
    if (isWriting(workerState_)) throw FIWriteException();
    throw FIParseException();
  }
  workerState_ = next;
}

void BitstreamWorkerStateChecker::_performTreeStateTransition(EBitstreamWorkerCall call) const {
  const std::int32_t next = nextTreeState(treeState_, call);
  if (next == kRefusedCall) throw FIHandlerException();
  treeState_ = next;
}

BitstreamWorker& BitstreamWorkerStateChecker::worker() const {
  if (worker_ == nullptr) throw FIParseException();
  return *worker_;
}

FIHandler& BitstreamWorkerStateChecker::handler() const {
  if (handler_ == nullptr) throw FIHandlerException();
  return *handler_;
}

FIMessageTree& BitstreamWorkerStateChecker::tree() const {
  if (tree_ == nullptr) throw FIMessageTreeException();
  // The runtime hands its tree over as const, but the tree's worker-information queries are not.
  return const_cast<FIMessageTree&>(*tree_);
}

// --- the parser ---

void BitstreamWorkerStateChecker::initializeParse(std::int32_t options, MessageInfo* info) {
  _validateAndTransitionState(eInitializeParse);
  worker().initializeParse(options, info);
}

void BitstreamWorkerStateChecker::setFIHandler(FIHandler* handler) {
  _validateAndTransitionState(eSetFIHandler);
  handler_ = handler;
  worker().setFIHandler(this);
}

FIHandler* BitstreamWorkerStateChecker::getFIHandler() const {
  _validateAndTransitionState(eGetFIHandler);
  return handler_;
}

std::int32_t BitstreamWorkerStateChecker::parse(const BitstreamBuffer* buffer,
                                                std::int32_t* bytesParsed) {
  _validateAndTransitionState(eParse);
  return worker().parse(buffer, bytesParsed);
}

std::int32_t BitstreamWorkerStateChecker::parseFirst(const BitstreamBuffer* buffer,
                                                     std::int32_t* bytesParsed, bool partial) {
  _validateAndTransitionState(eParseFirst);
  return worker().parseFirst(buffer, bytesParsed, partial);
}

std::int32_t BitstreamWorkerStateChecker::parseNext() {
  _validateAndTransitionState(eParseNext);
  return worker().parseNext();
}

bool BitstreamWorkerStateChecker::hasNext() const {
  _validateAndTransitionState(eHasNext);
  return worker().hasNext();
}

std::int32_t BitstreamWorkerStateChecker::getNumBytesParsed() const {
  _validateAndTransitionState(eGetNumBytesParsed);
  return worker().getNumBytesParsed();
}

// --- the worker ---

const DictionaryInfo* BitstreamWorkerStateChecker::getWireFormatDescriptor() const {
  _validateAndTransitionState(eGetWireFormatDescriptor);
  return worker().getWireFormatDescriptor();
}

void BitstreamWorkerStateChecker::setWireFormatDescriptor(const DictionaryInfo* descriptor) {
  _validateAndTransitionState(eSetWireFormatDescriptor);
  worker().setWireFormatDescriptor(descriptor);
}

void BitstreamWorkerStateChecker::release() {
  worker().release();
  worker_ = nullptr;
  delete this;
}

// --- the writer ---

void BitstreamWorkerStateChecker::initializeWrite(MessageInfo* info, bool* complete) {
  _validateAndTransitionState(eInitializeWrite);
  worker().initializeWrite(info, complete);
}

void BitstreamWorkerStateChecker::setFIMessageTree(const FIMessageTree* tree) {
  _validateAndTransitionState(eSetFIMessageTree);
  tree_ = tree;
  worker().setFIMessageTree(this);
}

const FIMessageTree* BitstreamWorkerStateChecker::getFIMessageTree() const {
  _validateAndTransitionState(eGetFIMessageTree);
  return tree_;
}

std::int32_t BitstreamWorkerStateChecker::write(WritableBitstreamBuffer* buffer) {
  _validateAndTransitionState(eWrite);
  return worker().write(buffer);
}

// --- the worker's callbacks ---

void BitstreamWorkerStateChecker::startMessage(WorkerInfoPtr start, WorkerInfoPtr end) {
  _validateAndTransitionState(eStartMessage);
  handler().startMessage(start, end);
}

void BitstreamWorkerStateChecker::endMessage(WorkerInfoPtr info) { handler().endMessage(info); }

bool BitstreamWorkerStateChecker::startMessageContent(const char16_t* name, std::uint16_t category,
                                                      WorkerInfoPtr info) {
  _validateAndTransitionState(eStartMessageContent);
  return handler().startMessageContent(name, category, info);
}

bool BitstreamWorkerStateChecker::startMessageContent(std::int32_t& memberId,
                                                      std::uint16_t category, WorkerInfoPtr info,
                                                      std::int32_t flags) {
  _validateAndTransitionState(eStartMessageContent);
  return handler().startMessageContent(memberId, category, info, flags);
}

bool BitstreamWorkerStateChecker::startMessageContent(std::int32_t& memberId,
                                                      std::uint16_t category, WorkerInfoPtr info) {
  _validateAndTransitionState(eStartMessageContent);
  return handler().startMessageContent(memberId, category, info, 0);
}

void BitstreamWorkerStateChecker::endMessageContent(const char16_t* name, WorkerInfoPtr info) {
  _validateAndTransitionState(eEndMessageContent);
  handler().endMessageContent(name, info);
}

void BitstreamWorkerStateChecker::endMessageContent(std::int32_t memberId, WorkerInfoPtr info) {
  _validateAndTransitionState(eEndMessageContent);
  handler().endMessageContent(memberId, info);
}

void BitstreamWorkerStateChecker::startElement(const char16_t* name, std::uint16_t category,
                                               WorkerInfoPtr info, std::int32_t repeatIndex) {
  _validateAndTransitionState(eStartElementByName);
  handler().startElement(name, category, info, repeatIndex);
}

void BitstreamWorkerStateChecker::startElement(std::int32_t memberId, std::uint16_t category,
                                               WorkerInfoPtr info, std::int32_t repeatIndex,
                                               std::int32_t tagId) {
  _validateAndTransitionState(eStartElementById);
  handler().startElement(memberId, category, info, repeatIndex, tagId);
}

void BitstreamWorkerStateChecker::endElement(const char16_t* name, WorkerInfoPtr info) {
  _validateAndTransitionState(eEndElementByName);
  handler().endElement(name, info);
}

void BitstreamWorkerStateChecker::endElement(std::int32_t memberId, WorkerInfoPtr info) {
  _validateAndTransitionState(eEndElementById);
  handler().endElement(memberId, info);
}

void BitstreamWorkerStateChecker::data(const PWFData& value, WorkerInfoPtr info) {
  _validateAndTransitionState(eData);
  handler().data(value, info);
}

void BitstreamWorkerStateChecker::projectId(const char16_t* id) {
  _validateAndTransitionState(eProjectId);
  handler().projectId(id);
}

void BitstreamWorkerStateChecker::projectDependencies(std::vector<ZanStringBase> dependencies) {
  // Reported as the dependency query, not as its own code: the runtime's checker always did.
  _validateAndTransitionState(eGetProjDependency);
  handler().projectDependencies(std::move(dependencies));
}

// --- the worker's queries ---

const char16_t* BitstreamWorkerStateChecker::getProjectId() const {
  _validateAndTransitionState(eGetProjectId);
  return tree().getProjectId();
}

std::int32_t BitstreamWorkerStateChecker::getNumProjDependencies() const {
  _validateAndTransitionState(eGetProjDependency);
  return tree().getNumProjDependencies();
}

const char16_t* BitstreamWorkerStateChecker::getProjDependency(std::int32_t index) const {
  _validateAndTransitionState(eGetProjDependency);
  return tree().getProjDependency(index);
}

WorkerInfoPtr BitstreamWorkerStateChecker::getMsgStartWorkerInfo() {
  _validateAndTransitionState(eGetMsgStartWorkerInfo);
  return tree().getMsgStartWorkerInfo();
}

WorkerInfoPtr BitstreamWorkerStateChecker::getMsgEndWorkerInfo() {
  _validateAndTransitionState(eGetMsgEndWorkerInfo);
  return tree().getMsgEndWorkerInfo();
}

FITreeIterator BitstreamWorkerStateChecker::getMsgHeaderIterator() const {
  _validateAndTransitionState(eGetMsgHeaderIterator);
  return tree().getMsgHeaderIterator();
}

FITreeIterator BitstreamWorkerStateChecker::getMsgContentIterator() const {
  _validateAndTransitionState(eGetMsgContentIterator);
  return tree().getMsgContentIterator();
}

FITreeIterator BitstreamWorkerStateChecker::getMsgFooterIterator() const {
  _validateAndTransitionState(eGetMsgFooterIterator);
  return tree().getMsgFooterIterator();
}
