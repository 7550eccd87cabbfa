#ifndef BSUTILS_MESSAGEINFO_H
#define BSUTILS_MESSAGEINFO_H

// MessageInfo: the properties that describe a message to its parser or writer (message set, type
// and format, CCSID, encoding): an ordered dictionary from property name to property text, with an
// integer view in which the smallest 64-bit value stands for "absent".
//
// Failures: only the integer read raises, passing on the text-to-integer failures of
// DataCnv::StrToInt64 (ZanConversionException, source module "datacnv"), e.g. 0xC0001581
// (CP_CONV_INPUT_DATA_INVALID) for a text that is not an integer, 0xC0001582
// (CP_CONV_INPUT_DATA_OUT_OF_BOUNDS) for one beyond the 64-bit range.

#include <bsutils/export.h>
#include <zan/zanstringbase.h>

#include <cstdint>
#include <map>

class BSUTILS_EXPORT MessageInfo {
 public:
  // The well-known property names.
  static constexpr char16_t MESSAGE_SET[] = u"messageset";
  static constexpr char16_t MESSAGE_TYPE[] = u"messagetype";
  static constexpr char16_t MESSAGE_FORMAT[] = u"messageformat";
  static constexpr char16_t CCSID[] = u"ccsid";
  static constexpr char16_t ENCODING[] = u"encoding";
  static constexpr char16_t ENCODING_FLAGS[] = u"encoding flags";

  // The integer view's "absent".
  static constexpr std::int64_t kNoInteger = INT64_MIN;

  // In every operation a name is NUL-terminated, and a null name pointer is the empty name.

  // The text stored for `name`, NUL-terminated, or null when the property is absent. The pointer
  // is valid until the property is next set or removed, or this object is changed or destroyed.
  const char16_t* getProperty(const char16_t* name) const;
  const char16_t* getProperty(const ZanStringBase& name) const;

  // Creates the property or replaces its text. A null `value` pointer removes it instead.
  void setProperty(const char16_t* name, const char16_t* value);
  void setProperty(const char16_t* name, const ZanStringBase& value);
  void setProperty(const ZanStringBase& name, const char16_t* value);
  void setProperty(const ZanStringBase& name, const ZanStringBase& value);

  // kNoInteger when the property is absent; otherwise its text read as a 64-bit integer: white
  // space around it is trimmed, a leading "-" or "+" is accepted, the rest must be digits (an empty
  // text reads as 0). Raises the failures of DataCnv::StrToInt64 (see above).
  //   " -42 " -> -42;  "12a" -> CP_CONV_INPUT_DATA_INVALID
  std::int64_t getPropertyAsInteger(const char16_t* name) const;
  std::int64_t getPropertyAsInteger(const ZanStringBase& name) const;

  // kNoInteger removes the property; any other value is stored as its shortest decimal text, "-"
  // before a negative one (-5 -> "-5", 0 -> "0").
  void setPropertyFromInteger(const char16_t* name, std::int64_t value);
  void setPropertyFromInteger(const ZanStringBase& name, std::int64_t value);

  // Removes every property.
  void clear();

  // Copies every property of `other` in, replacing the text of names already here; properties
  // that only this object has are kept.
  void setProperties(const MessageInfo& other);

 private:
  std::map<ZanStringBase, ZanStringBase> properties_;
};

#endif  // BSUTILS_MESSAGEINFO_H
