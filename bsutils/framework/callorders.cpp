// The call orders of a bitstream worker and of a parser's callbacks, as tables of the calls each
// state accepts: the one home of both state machines, for the checker and the tree builder.

#include "framework/callorders.h"

#include <array>

namespace bsutils::internal {

namespace {

constexpr std::int32_t kStay = -1;
constexpr std::int32_t kWorkerStates = 16;
constexpr std::int32_t kTreeStates = 13;
constexpr std::int32_t kCalls = eGetMsgFooterIterator + 1;

struct Transition {
  std::int32_t state;
  std::int32_t call;
  std::int32_t next;  // a state, or kStay
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
// header states 5 to 7 have no way out; the content states 9 to 11 have none to 12, so content is
// ended by endMessage alone once it holds an element; and states 12 to 2 and 1 to 2 wait for an
// endMessage that is never checked.
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

template <std::int32_t States, std::size_t Rows>
constexpr std::array<std::array<std::int32_t, kCalls>, States> nextStates(
    const Transition (&transitions)[Rows]) {
  std::array<std::array<std::int32_t, kCalls>, States> table{};
  for (auto& row : table) row.fill(kRefusedCall);
  for (const Transition& t : transitions) table[t.state][t.call] = t.next;
  return table;
}

constexpr auto kWorkerNext = nextStates<kWorkerStates>(kWorkerTransitions);
constexpr auto kTreeNext = nextStates<kTreeStates>(kTreeTransitions);

// The next state of `state` on `call` by `table`, `state` itself for a call that stays, or
// kRefusedCall; states outside the table refuse all.
template <class Table>
std::int32_t lookUp(const Table& table, std::int32_t state, EBitstreamWorkerCall call) {
  if (state < 0 || state >= static_cast<std::int32_t>(table.size()) || call < 0 || call >= kCalls) {
    return kRefusedCall;
  }
  const std::int32_t next = table[static_cast<std::size_t>(state)][static_cast<std::size_t>(call)];
  return next == kStay ? state : next;
}

}  // namespace

std::int32_t nextWorkerState(std::int32_t state, EBitstreamWorkerCall call) {
  return lookUp(kWorkerNext, state, call);
}

std::int32_t nextTreeState(std::int32_t state, EBitstreamWorkerCall call) {
  return lookUp(kTreeNext, state, call);
}

}  // namespace bsutils::internal
