#include <zan/zanlogsource.h>

int ZanLogSource::traceFilter() const { return ZanLog::iEffectiveLogFilter.load(); }
int ZanLogSource::userTraceFilter() const { return ZanLog::iEffectiveUserLogFilter.load(); }
ZanStringBase ZanLogSource::logType() const { return ZanStringBase(); }
ZanStringBase ZanLogSource::logName() const { return ZanLog::iDefaultLogSource; }
ZanStringBase ZanLogSource::logLabel() const { return ZanStringBase(); }
bool ZanLogSource::isNamed() const { return false; }

void ZanLogSource::addLogInserts(ZanLog::Item& item) const {
  item << logName();
  const ZanStringBase label = logLabel();
  if (!label.isEmpty()) item << label;
}

int ZanOwnedLogSource::traceFilter() const {
  return owner_ != nullptr ? owner_->traceFilter() : ZanLogSource::traceFilter();
}
int ZanOwnedLogSource::userTraceFilter() const {
  return owner_ != nullptr ? owner_->userTraceFilter() : ZanLogSource::userTraceFilter();
}
ZanStringBase ZanOwnedLogSource::logType() const {
  return owner_ != nullptr ? owner_->logType() : ZanLogSource::logType();
}
ZanStringBase ZanOwnedLogSource::logName() const {
  return owner_ != nullptr ? owner_->logName() : ZanLogSource::logName();
}
ZanStringBase ZanOwnedLogSource::logLabel() const {
  return owner_ != nullptr ? owner_->logLabel() : ZanLogSource::logLabel();
}
bool ZanOwnedLogSource::isNamed() const {
  return owner_ != nullptr ? owner_->isNamed() : ZanLogSource::isNamed();
}
