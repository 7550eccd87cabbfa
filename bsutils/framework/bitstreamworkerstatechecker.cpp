// The call-order checker: two state machines, written as tables of the calls each state accepts,
// and the forwarding of every call that passes them.

#include <bsutils/bitstreamworkerstatechecker.h>
#include <bsutils/pwfexception.h>

#include <array>

namespace {

constexpr std::int32_t kRefused = -3;
constexpr std::int32_t kStay = -1;
constexpr std::int32_t kToTree = -2;
constexpr std::int32_t kWorkerStates = 16;
constexpr std::int32_t kTreeStates = 13;
constexpr std::int32_t kCalls = eGetMsgFooterIterator + 1;

struct Transition {
  std::int32_t state;
  std::int32_t call;
  std::int32_t next;  // a state, kStay or kToTree
};

// The worker's call orders. A parse initialises, gets its handler, then parses; a write
// initialises, gets its tree, then writes. The descriptor may be set along the way. The uneven
// spots are deliberate and kept: state 11 refuses hasNext and getWireFormatDescriptor, which 10
// accepts; 14 and 15 refuse getWireFormatDescriptor; setWireFormatDescriptor keeps 14 where it is;
// and there is no way back from writing (6).
// One line a state, as the tables are read.
// clang-format off
constexpr Transition kWorkerTransitions[] = {
    {0, eInitializeParse, 1}, {0, eInitializeWrite, 2},
    {1, eInitializeParse, kStay}, {1, eSetFIHandler, 8}, {1, eSetWireFormatDescriptor, 7},
    {7, eSetFIHandler, 9},
    {8, eParse, 10}, {8, eParseFirst, 12}, {8, eSetWireFormatDescriptor, 9},
    {9, eParse, 11}, {9, eParseFirst, 13},
    {10, eGetFIHandler, kStay}, {10, eParse, kStay}, {10, eHasNext, kStay},
    {10, eGetNumBytesParsed, kStay}, {10, eGetWireFormatDescriptor, kStay}, {10, eParseFirst, 12},
    {10, eSetWireFormatDescriptor, 11},
    {11, eGetFIHandler, kStay}, {11, eParse, kStay}, {11, eGetNumBytesParsed, kStay},
    {11, eSetWireFormatDescriptor, kStay}, {11, eParseFirst, 13},
    {12, eGetFIHandler, kStay}, {12, eParseFirst, kStay}, {12, eHasNext, kStay},
    {12, eGetNumBytesParsed, kStay}, {12, eGetWireFormatDescriptor, kStay}, {12, eParse, 10},
    {12, eParseNext, 14}, {12, eSetWireFormatDescriptor, 13},
    {13, eGetFIHandler, kStay}, {13, eParseFirst, kStay}, {13, eHasNext, kStay},
    {13, eGetNumBytesParsed, kStay}, {13, eGetWireFormatDescriptor, kStay},
    {13, eSetWireFormatDescriptor, kStay}, {13, eParse, 11}, {13, eParseNext, 15},
    {14, eGetFIHandler, kStay}, {14, eParseNext, kStay}, {14, eHasNext, kStay},
    {14, eGetNumBytesParsed, kStay}, {14, eSetWireFormatDescriptor, kStay}, {14, eParse, 10},
    {14, eParseFirst, 12},
    {15, eGetFIHandler, kStay}, {15, eParseNext, kStay}, {15, eHasNext, kStay},
    {15, eGetNumBytesParsed, kStay}, {15, eSetWireFormatDescriptor, kStay}, {15, eParse, 11},
    {15, eParseFirst, 13},
    {2, eSetFIMessageTree, 3}, {2, eSetWireFormatDescriptor, 4},
    {3, eWrite, 6}, {3, eSetWireFormatDescriptor, 5},
    {4, eSetFIMessageTree, 5},
    {5, eWrite, 6},
    {6, eGetFIMessageTree, kStay}, {6, eGetWireFormatDescriptor, kStay}, {6, eGetProjectId, kStay},
    {6, eGetProjDependency, kStay}, {6, eGetMsgStartWorkerInfo, kStay},
    {6, eGetMsgEndWorkerInfo, kStay}, {6, eGetMsgHeaderIterator, kStay},
    {6, eGetMsgContentIterator, kStay}, {6, eGetMsgFooterIterator, kStay},
};
// clang-format on

// A parser's callbacks: a message, then header elements or message content, then its end. The
// quirks are kept: in states 1 and 3 an element is opened by a start by name or an end by id; the
// header states 5 to 7 have no way out; and states 12 to 2 and 1 to 2 wait for an endMessage that
// is never checked.
// One line a state, as the tables are read.
// clang-format off
constexpr Transition kTreeTransitions[] = {
    {0, eStartMessage, 1},
    {1, eStartElementByName, 5}, {1, eEndElementById, 5}, {1, eEndMessage, 2},
    {1, eStartMessageContent, 8}, {1, eProjectDependencies, 4},
    {2, eStartMessage, 1},
    {3, eStartElementByName, 5}, {3, eEndElementById, 5}, {3, eStartMessageContent, 8},
    {4, eProjectId, 3},
    {5, eStartElementById, kStay}, {5, eStartElementByName, kStay}, {5, eEndElementById, 7},
    {5, eEndElementByName, 7}, {5, eData, 6},
    {6, eStartElementById, 5}, {6, eStartElementByName, 5}, {6, eEndElementById, 7},
    {6, eEndElementByName, 7},
    {7, eStartElementById, 5}, {7, eStartElementByName, 5}, {7, eEndElementById, kStay},
    {7, eEndElementByName, kStay}, {7, eData, 6},
    {8, eStartElementById, 9}, {8, eStartElementByName, 9}, {8, eEndMessageContent, 12},
    {9, eStartElementById, kStay}, {9, eStartElementByName, kStay}, {9, eEndElementById, 11},
    {9, eEndElementByName, 11}, {9, eData, 10},
    {10, eStartElementById, 9}, {10, eStartElementByName, 9}, {10, eEndElementById, 11},
    {10, eEndElementByName, 11},
    {11, eStartElementById, 9}, {11, eStartElementByName, 9}, {11, eEndElementById, kStay},
    {11, eEndElementByName, kStay}, {11, eData, 10},
    {12, eEndMessage, 2},
};
// clang-format on

// The parse states in which a parser's callbacks go to the tree machine.
constexpr bool isParsing(std::int32_t state) { return state >= 10 && state <= 15; }
constexpr bool isCallback(EBitstreamWorkerCall call) {
  return call >= eStartElementById && call <= eProjectDependencies;
}
// The write states; every other state, an invalid one included, belongs to the parse side.
constexpr bool isWriting(std::int32_t state) { return state >= 2 && state <= 6; }

template <std::int32_t States, std::size_t Rows>
constexpr std::array<std::array<std::int32_t, kCalls>, States> nextStates(
    const Transition (&transitions)[Rows]) {
  std::array<std::array<std::int32_t, kCalls>, States> table{};
  for (auto& row : table) row.fill(kRefused);
  for (const Transition& t : transitions) table[t.state][t.call] = t.next;
  return table;
}

constexpr auto kWorkerNext = nextStates<kWorkerStates>(kWorkerTransitions);
constexpr auto kTreeNext = nextStates<kTreeStates>(kTreeTransitions);

// The next state of `state` on `call` by `table`, or kRefused; states outside it refuse all.
template <class Table>
std::int32_t lookUp(const Table& table, std::int32_t state, EBitstreamWorkerCall call) {
  if (state < 0 || state >= static_cast<std::int32_t>(table.size()) || call < 0 || call >= kCalls) {
    return kRefused;
  }
  return table[static_cast<std::size_t>(state)][static_cast<std::size_t>(call)];
}

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
  const std::int32_t next = lookUp(kWorkerNext, workerState_, call);
  if (next == kRefused) {
    if (isWriting(workerState_)) throw FIWriteException();
    throw FIParseException();
  }
  if (next != kStay) workerState_ = next;
}

void BitstreamWorkerStateChecker::_performTreeStateTransition(EBitstreamWorkerCall call) const {
  const std::int32_t next = lookUp(kTreeNext, treeState_, call);
  if (next == kRefused) throw FIHandlerException();
  if (next != kStay) treeState_ = next;
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
