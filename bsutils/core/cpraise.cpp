#include "core/cpraise.h"

#include <zan/zanexception.h>
#include <zan/zanlog.h>
#include <zan/zanlogsource.h>

namespace bsutils::internal {

namespace {

constexpr const char* kThrowingException = "Throwing exception";

void traceThrow(const CpRaiseSite& site, const CpCodeInfo& info, const char* traceText,
                const std::vector<std::string>& inserts) {
  ZanLog::TraceItem item =
      site.logSource != nullptr
          ? ZanLog::TraceItem(*site.logSource, site.function, kThrowingException)
          : ZanLog::TraceItem(site.function, kThrowingException);
  item << site.module << site.line << info.symbol << traceText;
  for (const std::string& insert : inserts) item << insert;
  item.writeToFile();
}

template <class Exception>
[[noreturn]] void throwAs(const CpRaiseSite& site, const CpCodeInfo& info, const char* traceText,
                          const std::vector<std::string>& inserts) {
  Exception exception = site.logSource != nullptr
                            ? Exception(*site.logSource, site.module, site.line, site.function,
                                        info.messageNumber, traceText)
                            : Exception(site.module, site.line, site.function,
                                        ZanLog::iDefaultLogSource, info.messageNumber, traceText);
  for (const std::string& insert : inserts) exception << insert;
  exception.throwThis();
}

}  // namespace

void cpRaiseRendered(const CpRaiseSite& site, CpCode code, const char* traceText,
                     const std::vector<std::string>& inserts) {
  const CpCodeInfo& info = cpCodeInfo(code);
  const char* text = traceText != nullptr ? traceText : info.traceText;
  if (ZanLog::isTraceActive()) traceThrow(site, info, text, inserts);
  switch (info.exceptionClass) {
    case CpExceptionClass::parser:
      throwAs<ZanParserException>(site, info, text, inserts);
    case CpExceptionClass::fatal:
      throwAs<ZanFatalException>(site, info, text, inserts);
    case CpExceptionClass::recoverable:
      throwAs<ZanRecoverableException>(site, info, text, inserts);
    case CpExceptionClass::conversion:
    case CpExceptionClass::notThrown:  // logged-only codes are never raised; keep them visible
      break;
  }
  throwAs<ZanConversionException>(site, info, text, inserts);
}

}  // namespace bsutils::internal
