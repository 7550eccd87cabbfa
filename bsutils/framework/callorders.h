#ifndef BSUTILS_CALLORDERS_H
#define BSUTILS_CALLORDERS_H

// The two state machines of the call-order checker, as lookups: the worker's (states 0 to 15) and
// that of a parser's callbacks (states 0 to 12). Each answers the next state, the same state for a
// call that stays, or kRefusedCall. The checker sends a parser's callbacks (codes 15 to 25) to the
// second machine while the worker parses (states 10 to 15).

#include <bsutils/bitstreamworkerstatechecker.h>

#include <cstdint>

namespace bsutils::internal {

inline constexpr std::int32_t kRefusedCall = -3;

std::int32_t nextWorkerState(std::int32_t state, EBitstreamWorkerCall call);
std::int32_t nextTreeState(std::int32_t state, EBitstreamWorkerCall call);

}  // namespace bsutils::internal

#endif  // BSUTILS_CALLORDERS_H
