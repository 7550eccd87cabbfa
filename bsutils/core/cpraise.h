#ifndef BSUTILS_CPRAISE_H
#define BSUTILS_CPRAISE_H

// The one way the library raises a failure. CP_RAISE captures the line; cpRaise then
//   1. writes the trace record "Throwing exception" (module, line, symbolic code, trace text, the
//      inserts) when the effective filter is 3 or more,
//   2. builds the exception of the code's class with the module, line, function, log source,
//      message number and trace text,
//   3. streams the same inserts into it,
//   4. throws it.
// A null log source stands for the default one; a null trace text for the code's default text.

#include <zan/zaninsert.h>

#include <string>
#include <vector>

#include "core/cpcodes.h"

class ZanLogSource;

namespace bsutils::internal {

struct CpRaiseSite {
  const char* module;
  int line;
  const char* function;
  const ZanLogSource* logSource;
};

[[noreturn]] void cpRaiseRendered(const CpRaiseSite& site, CpCode code, const char* traceText,
                                  const std::vector<std::string>& inserts);

// Out of line and cold: rendering the inserts stays out of the conversions that raise, whose
// successful path keeps a small frame.
template <class... Inserts>
[[noreturn, gnu::noinline, gnu::cold]] void cpRaise(const CpRaiseSite& site, CpCode code,
                                                    const char* traceText,
                                                    const Inserts&... inserts) {
  cpRaiseRendered(site, code, traceText, {zanInsertText(inserts)...});
}

}  // namespace bsutils::internal

#define CP_RAISE(code, module, function, logSource, traceText, ...)            \
  ::bsutils::internal::cpRaise(                                                \
      ::bsutils::internal::CpRaiseSite{module, __LINE__, function, logSource}, \
      ::bsutils::internal::CpCode::code, traceText __VA_OPT__(, ) __VA_ARGS__)

#endif  // BSUTILS_CPRAISE_H
