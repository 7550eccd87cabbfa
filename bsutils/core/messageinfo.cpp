// Message properties. Their integer read is the converter's integer text field, and lives with it
// in text/messageinfo_integerview.cpp.

#include <bsutils/messageinfo.h>

#include "core/canonicaltext.h"
#include "core/cpdebugtrace.h"

using namespace bsutils::internal;

const char16_t* MessageInfo::getProperty(const char16_t* name) const {
  return getProperty(ZanStringBase(name));
}

const char16_t* MessageInfo::getProperty(const ZanStringBase& name) const {
  const auto found = properties_.find(name);
  return found == properties_.end() ? nullptr : found->second.terminatedData();
}

void MessageInfo::setProperty(const char16_t* name, const char16_t* value) {
  setProperty(ZanStringBase(name), value);
}

void MessageInfo::setProperty(const char16_t* name, const ZanStringBase& value) {
  setProperty(ZanStringBase(name), value);
}

void MessageInfo::setProperty(const ZanStringBase& name, const char16_t* value) {
  if (value == nullptr) {
    properties_.erase(name);
  } else {
    setProperty(name, ZanStringBase(value));
  }
}

void MessageInfo::setProperty(const ZanStringBase& name, const ZanStringBase& value) {
  properties_.insert_or_assign(name, value);
}

void MessageInfo::setPropertyFromInteger(const char16_t* name, std::int64_t value) {
  setPropertyFromInteger(ZanStringBase(name), value);
}

void MessageInfo::setPropertyFromInteger(const ZanStringBase& name, std::int64_t value) {
  CpDebugTrace trace("MessageInfo::setPropertyFromInteger", name, value);
  if (value == kNoInteger) {
    properties_.erase(name);
  } else {
    setProperty(name, integerText(value));
  }
}

void MessageInfo::clear() { properties_.clear(); }

void MessageInfo::setProperties(const MessageInfo& other) {
  CpDebugTrace trace("MessageInfo::setProperties");
  for (const auto& [name, value] : other.properties_) properties_.insert_or_assign(name, value);
}
