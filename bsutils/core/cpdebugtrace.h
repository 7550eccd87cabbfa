#ifndef BSUTILS_CPDEBUGTRACE_H
#define BSUTILS_CPDEBUGTRACE_H

// The debug entry/exit guard of a public operation. With debug trace off it costs one comparison
// of the filter. With it on, construction writes the entry record (the function and its
// arguments), result() writes the exit record with the result, and destruction writes a plain exit
// record for a guard that returned no result or was left by an exception.
//
//   CpDebugTrace trace("PWFData::getInt32Value");
//   ...
//   return trace.result(value);

#include <zan/zanlog.h>

namespace bsutils::internal {

// The fast paths of the library step aside while debug trace is on: the general path then writes
// every record it always wrote, and a test holds the two paths to the same answers by turning it
// on.
inline bool fastPathsOpen() { return !ZanLog::isDebugTraceActive(); }

class CpDebugTrace {
 public:
  template <class... Arguments>
  explicit CpDebugTrace(const char* function, const Arguments&... arguments)
      : function_(ZanLog::isDebugTraceActive() ? function : nullptr) {
    if (function_ != nullptr) [[unlikely]]
      writeEntry(function_, arguments...);
  }

  CpDebugTrace(const CpDebugTrace&) = delete;
  CpDebugTrace& operator=(const CpDebugTrace&) = delete;

  ~CpDebugTrace() {
    if (function_ != nullptr) [[unlikely]]
      ZanLog::writeDebugExit(function_);
  }

  template <class Result>
  const Result& result(const Result& value) {
    if (function_ != nullptr) [[unlikely]] {
      writeExit(function_, value);
      function_ = nullptr;
    }
    return value;
  }

 private:
  // Out of line and cold, so that a conversion with trace off keeps a small frame and its fast
  // path stays in one piece.
  template <class... Arguments>
  [[gnu::noinline, gnu::cold]] static void writeEntry(const char* function,
                                                      const Arguments&... arguments) {
    if constexpr (sizeof...(Arguments) == 0) {
      ZanLog::writeDebugEntry(function);
    } else {
      ZanLog::FastDebugEntryItem entry(function);
      ((entry << arguments), ...) << ZanLog::FastItem::MagicInsert;
    }
  }

  template <class Result>
  [[gnu::noinline, gnu::cold]] static void writeExit(const char* function, const Result& value) {
    ZanLog::FastDebugExitItem(function) << value << ZanLog::FastItem::MagicInsert;
  }

  const char* function_;  // null when debug trace was off at entry, or the exit is written
};

}  // namespace bsutils::internal

#endif  // BSUTILS_CPDEBUGTRACE_H
