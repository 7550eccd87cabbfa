// The call-order checker: every checked call in every state of its two state machines, against the
// tables below (the orders a worker and its runtime must keep, written down here rather than taken
// from the checker), and what reaches the worker, the handler and the tree. Then the framework
// exceptions and the default bodies of the worker interfaces.

#include <bsutils/bitstreamworkerstatechecker.h>
#include <bsutils/bytebuffer.h>
#include <bsutils/messageinfo.h>
#include <bsutils/pwfexception.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <ostream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "framework/framework_doubles.h"

namespace {

using framework_test::CountedInfo;
using framework_test::Cursor;
using framework_test::Node;

// ---- The call orders ----

constexpr int kStay = -1;  // the state does not change
constexpr int kTree = -2;  // the tree machine takes the call; the worker state does not change

struct Transition {
  int from;
  std::vector<int> codes;
  int to;
};

const std::vector<int> kCallbacks = {15, 16, 17, 18, 19, 20, 21, 22, 23, 24, 25};

// clang-format off
const std::vector<Transition> kWorkerMachine = {
    {0, {0}, 1}, {0, {8}, 2},
    {1, {0}, kStay}, {1, {1}, 8}, {1, {13}, 7},
    {7, {1}, 9},
    {8, {3}, 10}, {8, {4}, 12}, {8, {13}, 9},
    {9, {3}, 11}, {9, {4}, 13},
    {10, {2, 3, 6, 7, 12}, kStay}, {10, {4}, 12}, {10, {13}, 11}, {10, kCallbacks, kTree},
    {11, {2, 3, 7, 13}, kStay}, {11, {4}, 13}, {11, kCallbacks, kTree},
    {12, {2, 4, 6, 7, 12}, kStay}, {12, {3}, 10}, {12, {5}, 14}, {12, {13}, 13},
    {12, kCallbacks, kTree},
    {13, {2, 4, 6, 7, 12, 13}, kStay}, {13, {3}, 11}, {13, {5}, 15}, {13, kCallbacks, kTree},
    {14, {2, 5, 6, 7, 13}, kStay}, {14, {3}, 10}, {14, {4}, 12}, {14, kCallbacks, kTree},
    {15, {2, 5, 6, 7, 13}, kStay}, {15, {3}, 11}, {15, {4}, 13}, {15, kCallbacks, kTree},
    {2, {9}, 3}, {2, {13}, 4},
    {3, {11}, 6}, {3, {13}, 5},
    {4, {9}, 5},
    {5, {11}, 6},
    {6, {10, 12, 26, 27, 28, 29, 30, 31, 32}, kStay},
};

const std::vector<Transition> kTreeMachine = {
    {0, {19}, 1},
    {1, {16, 17}, 5}, {1, {20}, 2}, {1, {21}, 8}, {1, {25}, 4},
    {2, {19}, 1},
    {3, {16, 17}, 5}, {3, {21}, 8},
    {4, {24}, 3},
    {5, {15, 16}, kStay}, {5, {17, 18}, 7}, {5, {23}, 6},
    {6, {15, 16}, 5}, {6, {17, 18}, 7},
    {7, {15, 16}, 5}, {7, {17, 18}, kStay}, {7, {23}, 6},
    {8, {15, 16}, 9}, {8, {22}, 12},
    {9, {15, 16}, kStay}, {9, {17, 18}, 11}, {9, {23}, 10},
    {10, {15, 16}, 9}, {10, {17, 18}, 11},
    {11, {15, 16}, 9}, {11, {17, 18}, kStay}, {11, {23}, 10},
    {12, {20}, 2},
};
// clang-format on

enum class Outcome { accepted, parseRefused, writeRefused, handlerRefused, noTree, other };

std::ostream& operator<<(std::ostream& out, Outcome outcome) {
  const char* names[] = {"accepted",           "FIParseException",       "FIWriteException",
                         "FIHandlerException", "FIMessageTreeException", "another exception"};
  return out << names[static_cast<int>(outcome)];
}

// What a worker state refuses with: the write states 2 to 6 FIWriteException, the parse states
// (all others) FIParseException.
Outcome refusalOf(int workerState) {
  return workerState >= 2 && workerState <= 6 ? Outcome::writeRefused : Outcome::parseRefused;
}

const Transition* find(const std::vector<Transition>& machine, int from, int code) {
  for (const Transition& t : machine) {
    if (t.from == from && std::ranges::find(t.codes, code) != t.codes.end()) return &t;
  }
  return nullptr;
}

// The shortest run of accepted codes from state 0 to each state of `machine`, breadth first.
std::map<int, std::vector<int>> shortestPaths(const std::vector<Transition>& machine) {
  std::map<int, std::vector<int>> paths = {{0, {}}};
  for (std::deque<int> queue = {0}; !queue.empty(); queue.pop_front()) {
    for (const Transition& t : machine) {
      if (t.from != queue.front() || t.to < 0 || paths.contains(t.to)) continue;
      paths[t.to] = paths[t.from];
      paths[t.to].push_back(t.codes.front());
      queue.push_back(t.to);
    }
  }
  return paths;
}

struct Expected {
  Outcome outcome;
  int worker, tree;
};

// What `code` does in worker state `worker` and tree state `tree`, by the tables alone.
Expected expectedOf(int worker, int tree, int code) {
  const Transition* w = find(kWorkerMachine, worker, code);
  if (w == nullptr) return {refusalOf(worker), worker, tree};
  if (w->to != kTree) return {Outcome::accepted, w->to == kStay ? worker : w->to, tree};
  const Transition* t = find(kTreeMachine, tree, code);
  if (t == nullptr) return {Outcome::handlerRefused, worker, tree};
  return {Outcome::accepted, worker, t->to == kStay ? tree : t->to};
}

Outcome outcomeOf(const std::function<void()>& call) {
  try {
    call();
    return Outcome::accepted;
  } catch (const FIParseException&) {
    return Outcome::parseRefused;
  } catch (const FIWriteException&) {
    return Outcome::writeRefused;
  } catch (const FIHandlerException&) {
    return Outcome::handlerRefused;
  } catch (const FIMessageTreeException&) {
    return Outcome::noTree;
  } catch (...) {
    return Outcome::other;
  }
}

// ---- Recording doubles ----

// One call that reached a double: its name and its arguments (pointers as their addresses).
struct Call {
  std::string name;
  std::vector<std::intptr_t> args{};
  bool operator==(const Call&) const = default;
};
void PrintTo(const Call& call, std::ostream* out) {
  *out << call.name << '(';
  for (std::intptr_t arg : call.args) *out << arg << ' ';
  *out << ')';
}
using Log = std::vector<Call>;

std::intptr_t P(const void* pointer) { return reinterpret_cast<std::intptr_t>(pointer); }
std::intptr_t P(const WorkerInfoPtr& info) { return info.isNull() ? 0 : P(&*info); }

const int descriptorTag = 0;
const auto* const kDescriptor = reinterpret_cast<const DictionaryInfo*>(&descriptorTag);
constexpr char16_t kName[] = u"element";
constexpr char16_t kProject[] = u"project";
constexpr char16_t kDependency[] = u"dependency";

// Records a call, then throws for it when the test has asked the doubles to fail.
struct Recorder {
  Log* log;
  const bool* failing;
  void record(const char* name, std::vector<std::intptr_t> args = {}) const {
    log->push_back({name, std::move(args)});
    if (*failing) throw std::runtime_error("the double failed");
  }
};

class RecordingWorker final : public BitstreamWorker, Recorder {
 public:
  RecordingWorker(Log& log, const bool& failing) : Recorder{&log, &failing} {}
  int pending = 1000;  // how many more times hasNext answers true

  void initializeParse(std::int32_t options, MessageInfo* info) override {
    record("initializeParse", {options, P(info)});
  }
  void setFIHandler(FIHandler* handler) override { record("setFIHandler", {P(handler)}); }
  FIHandler* getFIHandler() const override { return record("getFIHandler"), nullptr; }
  std::int32_t parse(const BitstreamBuffer* buffer, std::int32_t* bytes) override {
    return record("parse", {P(buffer), P(bytes)}), 103;
  }
  std::int32_t parseFirst(const BitstreamBuffer* buffer, std::int32_t* bytes,
                          bool partial) override {
    return record("parseFirst", {P(buffer), P(bytes), partial}), 104;
  }
  std::int32_t parseNext() override { return record("parseNext"), --pending, 105; }
  bool hasNext() const override { return record("hasNext"), pending > 0; }
  std::int32_t getNumBytesParsed() const override { return record("getNumBytesParsed"), 107; }
  void initializeWrite(MessageInfo* info, bool* complete) override {
    record("initializeWrite", {P(info), P(complete)});
  }
  void setFIMessageTree(const FIMessageTree* tree) override {
    record("setFIMessageTree", {P(tree)});
  }
  const FIMessageTree* getFIMessageTree() const override {
    return record("getFIMessageTree"), nullptr;
  }
  std::int32_t write(WritableBitstreamBuffer* buffer) override {
    return record("write", {P(buffer)}), 111;
  }
  const DictionaryInfo* getWireFormatDescriptor() const override {
    return record("getWireFormatDescriptor"), kDescriptor;
  }
  void setWireFormatDescriptor(const DictionaryInfo* d) override {
    record("setWireFormatDescriptor", {P(d)});
  }
  void release() override {
    log->push_back({"release"});
    delete this;
  }
};

class RecordingHandler final : public FIHandler, Recorder {
 public:
  RecordingHandler(Log& log, const bool& failing) : Recorder{&log, &failing} {}

  void startMessage(WorkerInfoPtr start, WorkerInfoPtr end) override {
    record("startMessage", {P(start), P(end)});
  }
  void endMessage(WorkerInfoPtr info) override { record("endMessage", {P(info)}); }
  bool startMessageContent(const char16_t* name, std::uint16_t category,
                           WorkerInfoPtr info) override {
    return record("startMessageContent(name)", {P(name), category, P(info)}), true;
  }
  // Takes the content and changes the member id, which the caller must see.
  bool startMessageContent(std::int32_t& memberId, std::uint16_t category, WorkerInfoPtr info,
                           std::int32_t flags) override {
    record("startMessageContent(id)", {memberId, category, P(info), flags});
    memberId = 77;
    return true;
  }
  void endMessageContent(const char16_t* name, WorkerInfoPtr info) override {
    record("endMessageContent(name)", {P(name), P(info)});
  }
  void endMessageContent(std::int32_t memberId, WorkerInfoPtr info) override {
    record("endMessageContent(id)", {memberId, P(info)});
  }
  void startElement(const char16_t* name, std::uint16_t category, WorkerInfoPtr info,
                    std::int32_t repeat) override {
    record("startElement(name)", {P(name), category, P(info), repeat});
  }
  void startElement(std::int32_t memberId, std::uint16_t category, WorkerInfoPtr info,
                    std::int32_t repeat, std::int32_t tagId) override {
    record("startElement(id)", {memberId, category, P(info), repeat, tagId});
  }
  void endElement(const char16_t* name, WorkerInfoPtr info) override {
    record("endElement(name)", {P(name), P(info)});
  }
  void endElement(std::int32_t memberId, WorkerInfoPtr info) override {
    record("endElement(id)", {memberId, P(info)});
  }
  void data(const PWFData& value, WorkerInfoPtr info) override {
    record("data", {P(&value), P(info)});
  }
  void projectId(const char16_t* id) override { record("projectId", {P(id)}); }
  void projectDependencies(std::vector<ZanStringBase> dependencies) override {
    record("projectDependencies", {static_cast<std::intptr_t>(dependencies.size())});
  }
};

class RecordingTree final : public FIMessageTree, Recorder {
 public:
  RecordingTree(Log& log, const bool& failing, int& startGone, int& endGone)
      : Recorder{&log, &failing},
        start(new CountedInfo(startGone)),
        end(new CountedInfo(endGone)) {}
  WorkerInfoPtr start, end;
  std::vector<Node> headerNodes{{.tagId = 30}}, contentNodes{{.tagId = 31}},
      footerNodes{{.tagId = 32}};
  Cursor header{headerNodes}, content{contentNodes}, footer{footerNodes};

  const char16_t* getProjectId() const override { return record("getProjectId"), kProject; }
  std::int32_t getNumProjDependencies() const override {
    return record("getNumProjDependencies"), 3;
  }
  const char16_t* getProjDependency(std::int32_t index) const override {
    return record("getProjDependency", {index}), kDependency;
  }
  WorkerInfoPtr getMsgStartWorkerInfo() override { return record("getMsgStartWorkerInfo"), start; }
  WorkerInfoPtr getMsgEndWorkerInfo() override { return record("getMsgEndWorkerInfo"), end; }
  FITreeIterator getMsgHeaderIterator() const override {
    return record("getMsgHeaderIterator"), FITreeIterator(&header);
  }
  FITreeIterator getMsgContentIterator() const override {
    return record("getMsgContentIterator"), FITreeIterator(&content);
  }
  FITreeIterator getMsgFooterIterator() const override {
    return record("getMsgFooterIterator"), FITreeIterator(&footer);
  }
};

// Everything a checker is driven with; it outlives the checker, which logs the worker's release.
struct Env {
  Log log;
  bool failing = false;
  int probeGone = 0, otherGone = 0, startGone = 0, endGone = 0;
  WorkerInfoPtr probe{new CountedInfo(probeGone)}, other{new CountedInfo(otherGone)};
  RecordingHandler handler{log, failing};
  RecordingTree tree{log, failing, startGone, endGone};
  MessageInfo info;
  ReadOnlyByteBuffer in;
  ReadWriteByteBuffer out;
  std::int32_t bytes = 0, memberId = 0;
  bool complete = false;
  PWFData value{std::int32_t{42}};

  // Every record is alive while the test holds it and goes when the test lets go: no one kept a
  // reference, nor dropped one that was not theirs.
  void expectReferencesBalanced() {
    EXPECT_EQ(probeGone + otherGone + startGone + endGone, 0);
    probe = other = tree.start = tree.end = WorkerInfoPtr();
    EXPECT_EQ(probeGone + otherGone + startGone + endGone, 4);
  }
};

enum class Target { none, worker, handler, tree };
constexpr int kUnchecked = -1;  // the code of endMessage, which is not checked

// One operation on the checker: its code, the object an accepted call goes to and what it gets
// there (no name: nothing is forwarded), and what the caller gets back.
struct Op {
  const char* name;
  int code;
  Target target;
  Call forwarded;
  std::intptr_t result;
  std::function<std::intptr_t()> call;
};

std::vector<Op> operationsOn(Env& e, BitstreamWorkerStateChecker& c) {
  using T = Target;
  const auto asHandler = P(static_cast<FIHandler*>(&c));
  const auto asTree = P(static_cast<const FIMessageTree*>(&c));
  const auto& probe = e.probe;
  // clang-format off
  return {
      {"initializeParse", 0, T::worker, {"initializeParse", {9, P(&e.info)}}, 0,
       [&] { return c.initializeParse(9, &e.info), 0; }},
      {"setFIHandler", 1, T::worker, {"setFIHandler", {asHandler}}, 0,
       [&] { return c.setFIHandler(&e.handler), 0; }},
      {"getFIHandler", 2, T::none, {}, P(&e.handler), [&] { return P(c.getFIHandler()); }},
      {"parse", 3, T::worker, {"parse", {P(&e.in), P(&e.bytes)}}, 103,
       [&] { return c.parse(&e.in, &e.bytes); }},
      {"parseFirst", 4, T::worker, {"parseFirst", {P(&e.in), P(&e.bytes), 1}}, 104,
       [&] { return c.parseFirst(&e.in, &e.bytes, true); }},
      {"parseNext", 5, T::worker, {"parseNext"}, 105, [&] { return c.parseNext(); }},
      {"hasNext", 6, T::worker, {"hasNext"}, 1, [&] { return std::intptr_t{c.hasNext()}; }},
      {"getNumBytesParsed", 7, T::worker, {"getNumBytesParsed"}, 107,
       [&] { return c.getNumBytesParsed(); }},
      {"initializeWrite", 8, T::worker, {"initializeWrite", {P(&e.info), P(&e.complete)}}, 0,
       [&] { return c.initializeWrite(&e.info, &e.complete), 0; }},
      {"setFIMessageTree", 9, T::worker, {"setFIMessageTree", {asTree}}, 0,
       [&] { return c.setFIMessageTree(&e.tree), 0; }},
      {"getFIMessageTree", 10, T::none, {}, P(static_cast<const FIMessageTree*>(&e.tree)),
       [&] { return P(c.getFIMessageTree()); }},
      {"write", 11, T::worker, {"write", {P(&e.out)}}, 111, [&] { return c.write(&e.out); }},
      {"getWireFormatDescriptor", 12, T::worker, {"getWireFormatDescriptor"}, P(kDescriptor),
       [&] { return P(c.getWireFormatDescriptor()); }},
      {"setWireFormatDescriptor", 13, T::worker, {"setWireFormatDescriptor", {P(kDescriptor)}}, 0,
       [&] { return c.setWireFormatDescriptor(kDescriptor), 0; }},
      {"startElement(id)", 15, T::handler, {"startElement(id)", {7, 2, P(probe), 3, 9}}, 0,
       [&] { return c.startElement(7, 2, probe, 3, 9), 0; }},
      {"startElement(name)", 16, T::handler, {"startElement(name)", {P(kName), 2, P(probe), 3}}, 0,
       [&] { return c.startElement(kName, 2, probe, 3), 0; }},
      {"endElement(id)", 17, T::handler, {"endElement(id)", {7, P(probe)}}, 0,
       [&] { return c.endElement(7, probe), 0; }},
      {"endElement(name)", 18, T::handler, {"endElement(name)", {P(kName), P(probe)}}, 0,
       [&] { return c.endElement(kName, probe), 0; }},
      {"startMessage", 19, T::handler, {"startMessage", {P(probe), P(e.other)}}, 0,
       [&] { return c.startMessage(probe, e.other), 0; }},
      // endMessage is not checked, so code 20 is only ever the state machine's own.
      {"check 20", 20, T::none, {}, 0,
       [&] { return c._validateAndTransitionState(eEndMessage), 0; }},
      {"endMessage", kUnchecked, T::handler, {"endMessage", {P(probe)}}, 0,
       [&] { return c.endMessage(probe), 0; }},
      {"startMessageContent(name)", 21, T::handler,
       {"startMessageContent(name)", {P(kName), 2, P(probe)}}, 1,
       [&] { return std::intptr_t{c.startMessageContent(kName, 2, probe)}; }},
      // The handler takes the content and changes the member id: the caller sees 77.
      {"startMessageContent(id, flags)", 21, T::handler,
       {"startMessageContent(id)", {5, 2, P(probe), 4}}, 77,
       [&] { e.memberId = 5;
             return c.startMessageContent(e.memberId, 2, probe, 4) ? e.memberId : 0; }},
      {"startMessageContent(id)", 21, T::handler,
       {"startMessageContent(id)", {5, 2, P(probe), 0}}, 77,
       [&] { e.memberId = 5;
             return c.startMessageContent(e.memberId, 2, probe) ? e.memberId : 0; }},
      {"endMessageContent(name)", 22, T::handler,
       {"endMessageContent(name)", {P(kName), P(probe)}}, 0,
       [&] { return c.endMessageContent(kName, probe), 0; }},
      {"endMessageContent(id)", 22, T::handler, {"endMessageContent(id)", {7, P(probe)}}, 0,
       [&] { return c.endMessageContent(7, probe), 0; }},
      {"data", 23, T::handler, {"data", {P(&e.value), P(probe)}}, 0,
       [&] { return c.data(e.value, probe), 0; }},
      {"projectId", 24, T::handler, {"projectId", {P(kProject)}}, 0,
       [&] { return c.projectId(kProject), 0; }},
      // projectDependencies reports 27, so no call reports 25.
      {"check 25", 25, T::none, {}, 0,
       [&] { return c._validateAndTransitionState(eProjectDependencies), 0; }},
      {"getProjectId", 26, T::tree, {"getProjectId"}, P(kProject),
       [&] { return P(c.getProjectId()); }},
      {"getNumProjDependencies", 27, T::tree, {"getNumProjDependencies"}, 3,
       [&] { return c.getNumProjDependencies(); }},
      {"getProjDependency", 27, T::tree, {"getProjDependency", {1}}, P(kDependency),
       [&] { return P(c.getProjDependency(1)); }},
      {"projectDependencies", 27, T::handler, {"projectDependencies", {2}}, 0,
       [&] { return c.projectDependencies({u"a", u"b"}), 0; }},
      {"getMsgStartWorkerInfo", 28, T::tree, {"getMsgStartWorkerInfo"}, P(e.tree.start),
       [&] { return P(c.getMsgStartWorkerInfo()); }},
      {"getMsgEndWorkerInfo", 29, T::tree, {"getMsgEndWorkerInfo"}, P(e.tree.end),
       [&] { return P(c.getMsgEndWorkerInfo()); }},
      {"getMsgHeaderIterator", 30, T::tree, {"getMsgHeaderIterator"}, 1,
       [&] { return std::intptr_t{c.getMsgHeaderIterator() == FITreeIterator(&e.tree.header)}; }},
      {"getMsgContentIterator", 31, T::tree, {"getMsgContentIterator"}, 1,
       [&] { return std::intptr_t{c.getMsgContentIterator() == FITreeIterator(&e.tree.content)}; }},
      {"getMsgFooterIterator", 32, T::tree, {"getMsgFooterIterator"}, 1,
       [&] { return std::intptr_t{c.getMsgFooterIterator() == FITreeIterator(&e.tree.footer)}; }},
  };
  // clang-format on
}

// Counts its destruction, to show that release() deletes the checker.
class CountedChecker : public BitstreamWorkerStateChecker {
 public:
  CountedChecker(BitstreamWorker* worker, int& destroyed)
      : BitstreamWorkerStateChecker(worker), destroyed_(&destroyed) {}
  ~CountedChecker() override { ++*destroyed_; }

 private:
  int* destroyed_;
};

// A checker over a recording worker, and the operations on it.
struct Rig {
  Env env;
  int checkerGone = 0;
  std::unique_ptr<BitstreamWorkerStateChecker> checker{
      new CountedChecker(new RecordingWorker(env.log, env.failing), checkerGone)};
  std::vector<Op> ops = operationsOn(env, *checker);

  const Op& op(const std::string& name) const {
    return *std::ranges::find_if(ops, [&](const Op& o) { return name == o.name; });
  }
  const Op& op(int code) const {
    return *std::ranges::find_if(ops, [&](const Op& o) { return o.code == code; });
  }
  // Makes calls that must all be accepted.
  template <class Key>
  bool replay(const std::vector<Key>& keys) const {
    return std::ranges::all_of(keys, [&](const Key& key) {
      return outcomeOf([&] { op(key).call(); }) == Outcome::accepted;
    });
  }

  // Makes the call, and checks its outcome, the states after it, and what was forwarded: one call,
  // unchanged, when it is accepted (its result coming back unchanged), nothing otherwise.
  void expectCall(const Op& o, const Expected& want) {
    const std::size_t before = env.log.size();
    std::intptr_t result = 0;
    EXPECT_EQ(outcomeOf([&] { result = o.call(); }), want.outcome);
    EXPECT_EQ(checker->workerState(), want.worker);
    EXPECT_EQ(checker->treeState(), want.tree);
    const bool forwards = want.outcome == Outcome::accepted && !o.forwarded.name.empty();
    ASSERT_EQ(env.log.size(), before + (forwards ? 1 : 0));
    if (forwards) {
      EXPECT_EQ(env.log.back(), o.forwarded);
    }
    if (want.outcome == Outcome::accepted) {
      EXPECT_EQ(result, o.result);
    }
  }
};

bool contains(const std::vector<int>& codes, int code) {
  return std::ranges::find(codes, code) != codes.end();
}

// An accepted call for a handler or tree the checker was never given throws, after the check.
Expected withTargets(Expected want, const Op& o, bool hasHandler, bool hasTree) {
  if (want.outcome != Outcome::accepted) return want;
  if (o.target == Target::handler && !hasHandler) want.outcome = Outcome::handlerRefused;
  if (o.target == Target::tree && !hasTree) want.outcome = Outcome::noTree;
  return want;
}

TEST(StateCheckerWorkerMachine, EveryCallInEveryWorkerState) {
  const auto paths = shortestPaths(kWorkerMachine);
  ASSERT_EQ(paths.size(), 16u);
  const std::size_t count = Rig().ops.size();
  for (const auto& [state, path] : paths) {
    for (std::size_t i = 0; i < count; ++i) {
      Rig rig;
      const Op& o = rig.ops[i];
      if (o.code == eEndMessage || o.code == kUnchecked) continue;
      SCOPED_TRACE("worker state " + std::to_string(state) + ", " + o.name);
      ASSERT_TRUE(rig.replay(path));
      ASSERT_EQ(rig.checker->workerState(), state);
      rig.expectCall(o, withTargets(expectedOf(state, 0, o.code), o, contains(path, eSetFIHandler),
                                    contains(path, eSetFIMessageTree)));
      rig.env.expectReferencesBalanced();
    }
  }
}

TEST(StateCheckerTreeMachine, EveryCallbackInEveryTreeState) {
  const auto paths = shortestPaths(kTreeMachine);
  ASSERT_EQ(paths.size(), 13u);
  const std::size_t count = Rig().ops.size();
  for (const auto& [state, path] : paths) {
    for (std::size_t i = 0; i < count; ++i) {
      Rig rig;
      const Op& o = rig.ops[i];
      if (!contains(kCallbacks, o.code)) continue;
      SCOPED_TRACE("tree state " + std::to_string(state) + ", " + o.name);
      ASSERT_TRUE(rig.replay(std::vector<int>{eInitializeParse, eSetFIHandler, eParse}));
      ASSERT_TRUE(rig.replay(path));
      ASSERT_EQ(rig.checker->treeState(), state);
      rig.expectCall(o, expectedOf(10, state, o.code));
      rig.env.expectReferencesBalanced();
    }
  }
}

TEST(StateCheckerScenarios, RunsOfCalls) {
  struct Step {
    const char* op;
    Outcome outcome;
    int worker, tree = 0;
  };
  constexpr Outcome ok = Outcome::accepted, parse = Outcome::parseRefused;
  const auto parsing = [](std::vector<Step> more) {
    const Step first[] = {{"initializeParse", ok, 1}, {"setFIHandler", ok, 8}, {"parse", ok, 10}};
    more.insert(more.begin(), std::begin(first), std::end(first));
    return more;
  };
  const std::pair<const char*, std::vector<Step>> scenarios[] = {
      {"parse on a new checker", {{"parse", parse, 0}}},
      {"write on a new checker", {{"write", parse, 0}}},
      {"a second write",
       {{"initializeWrite", ok, 2},
        {"setFIMessageTree", ok, 3},
        {"write", ok, 6},
        {"write", Outcome::writeRefused, 6}}},
      {"the descriptor after parseNext",
       {{"initializeParse", ok, 1},
        {"setFIHandler", ok, 8},
        {"parseFirst", ok, 12},
        {"parseNext", ok, 14},
        {"parseNext", ok, 14},
        {"getWireFormatDescriptor", parse, 14}}},
      {"an element by id first", parsing({{"startMessage", ok, 10, 1},
                                          {"startElement(id)", Outcome::handlerRefused, 10, 1}})},
      {"an element by name first",
       parsing({{"startMessage", ok, 10, 1}, {"startElement(name)", ok, 10, 5}})},
      {"a callback before parsing",
       {{"initializeParse", ok, 1}, {"setFIHandler", ok, 8}, {"startMessage", parse, 8}}},
      {"project dependencies while parsing", parsing({{"projectDependencies", parse, 10}})},
      // Content once it holds an element is not ended: only an empty content is.
      {"a message with content",
       parsing({{"startMessage", ok, 10, 1},
                {"startMessageContent(id)", ok, 10, 8},
                {"startElement(name)", ok, 10, 9},
                {"data", ok, 10, 10},
                {"endElement(id)", ok, 10, 11},
                {"startElement(id)", ok, 10, 9},
                {"endMessageContent(name)", Outcome::handlerRefused, 10, 9}})},
      {"an empty content, then the next message", parsing({{"startMessage", ok, 10, 1},
                                                           {"startMessageContent(name)", ok, 10, 8},
                                                           {"endMessageContent(id)", ok, 10, 12},
                                                           {"check 20", ok, 10, 2},
                                                           {"startMessage", ok, 10, 1}})},
      // endMessage is forwarded whatever the states, and changes neither.
      {"endMessage with no handler", {{"endMessage", Outcome::handlerRefused, 0}}},
      {"endMessage before parsing",
       {{"initializeParse", ok, 1}, {"setFIHandler", ok, 8}, {"endMessage", ok, 8}}},
      {"endMessage in an element", parsing({{"startMessage", ok, 10, 1},
                                            {"startElement(name)", ok, 10, 5},
                                            {"endMessage", ok, 10, 5}})},
  };
  for (const auto& [name, steps] : scenarios) {
    Rig rig;
    for (const Step& step : steps) {
      SCOPED_TRACE(std::string(name) + ": " + step.op);
      rig.expectCall(rig.op(step.op), {step.outcome, step.worker, step.tree});
    }
    rig.env.expectReferencesBalanced();
  }
}

TEST(StateCheckerScenarios, AForwardedCallThatThrowsLeavesTheNewState) {
  struct Row {
    std::vector<std::string> before;
    std::string failing;
    int worker, tree;
  };
  const Row rows[] = {
      {{"initializeParse", "setFIHandler"}, "parse", 10, 0},
      {{"initializeParse", "setFIHandler"}, "parseFirst", 12, 0},
      {{"initializeParse"}, "setWireFormatDescriptor", 7, 0},
      {{"initializeParse", "setFIHandler", "parse"}, "startMessage", 10, 1},
      {{"initializeWrite", "setFIMessageTree"}, "write", 6, 0},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.failing);
    Rig rig;
    ASSERT_TRUE(rig.replay(row.before));
    rig.env.failing = true;
    const std::size_t before = rig.env.log.size();
    EXPECT_EQ(outcomeOf([&] { rig.op(row.failing).call(); }), Outcome::other);
    EXPECT_EQ(rig.env.log.size(), before + 1);
    EXPECT_EQ(rig.checker->workerState(), row.worker);
    EXPECT_EQ(rig.checker->treeState(), row.tree);
  }
}

TEST(StateCheckerRelease, ReleasesTheWorkerOnceAndDeletesItself) {
  const std::vector<std::string> runs[] = {
      {}, {"initializeParse", "setFIHandler", "parse"}, {"initializeWrite"}};
  for (const auto& run : runs) {
    SCOPED_TRACE(run.size());
    Rig rig;
    ASSERT_TRUE(rig.replay(run));
    const std::size_t before = rig.env.log.size();
    // Not checked, whatever the state.
    EXPECT_EQ(outcomeOf([&] { rig.checker.release()->release(); }), Outcome::accepted);
    EXPECT_EQ(rig.checkerGone, 1);
    ASSERT_EQ(rig.env.log.size(), before + 1);
    EXPECT_EQ(rig.env.log.back(), Call{"release"});
  }
  // A checker destroyed without release() releases its worker, once.
  Rig rig;
  rig.checker.reset();
  EXPECT_EQ(rig.env.log, Log{Call{"release"}});
}

TEST(StateCheckerRelease, WithoutAWorker) {
  Env env;
  auto checker = std::make_unique<BitstreamWorkerStateChecker>(nullptr);
  EXPECT_EQ(outcomeOf([&] { checker->release(); }), Outcome::parseRefused);
  // The check comes first: the tree is accepted in write state 2, then finds no worker.
  checker->_validateAndTransitionState(eInitializeWrite);
  EXPECT_EQ(outcomeOf([&] { checker->setFIMessageTree(&env.tree); }), Outcome::parseRefused);
  EXPECT_EQ(checker->workerState(), 3);
}

TEST(PWFException, KeepsItsTextCutToCapacityAndItsCode) {
  const std::string longest(1023, 'a'), tooLong = std::string(1023, 'b') + "cdef";
  struct Row {
    const char* text;
    std::int32_t code;
    std::string expected;
  };
  const Row rows[] = {
      {nullptr, 0, ""},
      {"", -1, ""},
      {"out of order", 7, "out of order"},
      {longest.c_str(), INT32_MIN, longest},
      {tooLong.c_str(), INT32_MAX, std::string(1023, 'b')},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.expected.size());
    const PWFException failure(row.text, row.code);
    EXPECT_EQ(std::string(failure.text()), row.expected);
    EXPECT_STREQ(failure.what(), failure.text());
    EXPECT_EQ(failure.code(), row.code);
  }
}

TEST(PWFException, TheFrameworkExceptionsArePWFExceptions) {
  const std::pair<const char*, std::function<void()>> throwers[] = {
      {"", [] { throw FIParseException(); }},
      {"", [] { throw FIWriteException(); }},
      {"", [] { throw FIHandlerException(); }},
      {"", [] { throw FIMessageTreeException(); }},
      {"no tree", [] { throw FIMessageTreeException("no tree", 3); }},
  };
  for (const auto& [text, thrower] : throwers) {
    try {
      thrower();
      ADD_FAILURE() << "nothing thrown";
    } catch (const PWFException& failure) {
      EXPECT_STREQ(failure.text(), text);
      EXPECT_EQ(failure.code(), *text == '\0' ? 0 : 3);
    }
  }
}

TEST(WorkerDefaults, EndOfMessageOffsetParsesTheRest) {
  const std::pair<int, std::vector<std::string>> rows[] = {
      {0, {"hasNext", "getNumBytesParsed"}},
      {2, {"hasNext", "parseNext", "hasNext", "parseNext", "hasNext", "getNumBytesParsed"}},
  };
  for (const auto& [pending, expected] : rows) {
    SCOPED_TRACE(pending);
    Log log;
    const bool failing = false;
    auto* worker = new RecordingWorker(log, failing);
    worker->pending = pending;
    EXPECT_EQ(worker->getEndOfMessageOffset(), 107);
    worker->release();
    std::vector<std::string> calls;
    for (const Call& call : log) calls.push_back(call.name);
    calls.pop_back();  // the release
    EXPECT_EQ(calls, expected);
  }
}

TEST(WorkerDefaults, ContentByMemberIdIsDeclinedAndItsHandleLetGo) {
  // The interface's own body, called as such.
  Log log;
  const bool failing = false;
  RecordingHandler handler(log, failing);
  int kept = 0, given = 0;
  WorkerInfoPtr held(new CountedInfo(kept));
  std::int32_t memberId = 42;
  EXPECT_FALSE(handler.FIHandler::startMessageContent(memberId, 2, held, 1));
  EXPECT_EQ(memberId, 42);
  EXPECT_EQ(kept, 0);
  held = WorkerInfoPtr();
  EXPECT_EQ(kept, 1);
  // A handle given up to the call goes with it.
  EXPECT_FALSE(handler.FIHandler::startMessageContent(memberId, 2,
                                                      WorkerInfoPtr(new CountedInfo(given)), 0));
  EXPECT_EQ(given, 1);
  EXPECT_TRUE(log.empty());
}

}  // namespace
