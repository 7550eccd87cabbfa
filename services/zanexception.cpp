#include <zan/zanexception.h>
#include <zan/zanlogsource.h>

#include <cstdio>

ZanException::ZanException(const char* sourceModule, int line, const char* function,
                           const ZanStringBase& logSourceName, std::int32_t messageNumber,
                           const char* traceText)
    : sourceModule_(zanInsertText(sourceModule)),
      line_(line),
      function_(zanInsertText(function)),
      logSource_(logSourceName.toUtf8()),
      messageNumber_(messageNumber),
      traceText_(zanInsertText(traceText)) {}

ZanException::ZanException(const ZanLogSource& logSource, const char* sourceModule, int line,
                           const char* function, std::int32_t messageNumber, const char* traceText)
    : ZanException(sourceModule, line, function, logSource.logName(), messageNumber, traceText) {}

const char* ZanException::what() const noexcept {
  if (!whatText_.empty()) return whatText_.c_str();
  try {
    char number[16];
    std::snprintf(number, sizeof number, "0x%08X", static_cast<std::uint32_t>(messageNumber_));
    std::string text = std::string(className()) + " " + number + " \"" + traceText_ + "\"";
    if (!inserts_.empty()) {
      text += " inserts [";
      for (std::size_t i = 0; i < inserts_.size(); ++i) {
        text += (i == 0 ? "\"" : ", \"") + inserts_[i] + "\"";
      }
      text += "]";
    }
    text += " in " + function_ + " (" + sourceModule_ + ":" + std::to_string(line_) +
            "), log source " + logSource_;
    whatText_ = std::move(text);
    return whatText_.c_str();
  } catch (...) {
    return traceText_.c_str();
  }
}
