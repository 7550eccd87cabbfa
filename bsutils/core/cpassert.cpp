#include <bsutils/cpassert.h>
#include <zan/zanlog.h>

#include "core/cpcodes.h"

using namespace bsutils::internal;

namespace {
constexpr const char* kModule = "cpassert";
constexpr const char* kFunction = "cpAssert";
}  // namespace

void cpAssert(const char* expression, const char* file, std::int32_t line) {
  const bool tracing = ZanLog::isTraceActive();
  if (tracing) {
    ZanLog::FastEntryItem(kFunction) << expression << file << line << ZanLog::FastItem::MagicInsert;
  }
  const CpCodeInfo& assertion = cpCodeInfo(CpCode::CP_ASSERTION);
  ZanLog::ErrorItem error(kModule, __LINE__, kFunction, ZanLog::iDefaultLogSource,
                          assertion.messageNumber, assertion.traceText);
  error << expression << file << line;
  error.write();
  if (tracing) ZanLog::writeExit(kFunction);
}
