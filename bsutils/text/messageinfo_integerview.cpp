// The integer view of message properties reads a property as the converter's integer text field
// does, failures included, so it is built on that field rather than on a reader of its own.

#include <bsutils/dataconv.h>
#include <bsutils/messageinfo.h>

#include "core/cpdebugtrace.h"

using namespace bsutils::internal;

std::int64_t MessageInfo::getPropertyAsInteger(const char16_t* name) const {
  return getPropertyAsInteger(ZanStringBase(name));
}

std::int64_t MessageInfo::getPropertyAsInteger(const ZanStringBase& name) const {
  CpDebugTrace trace("MessageInfo::getPropertyAsInteger", name);
  const auto found = properties_.find(name);
  if (found == properties_.end()) return trace.result(kNoInteger);
  // Property texts are UTF-16 already, so a converter with default settings reads them whatever
  // the message's own code page.
  const ZanStringBase& text = found->second;
  const std::int64_t value =
      DataCnv().StrToInt64(text.data(), text.length(), DataCnv::eLeadingSeparateSign,
                           DataCnv::US_MINUS.terminatedData(), DataCnv::US_PLUS.terminatedData(),
                           DataCnv::eTrimWhiteSpace, DataCnv::eLeftJustified, u'0', true);
  return trace.result(value);
}
