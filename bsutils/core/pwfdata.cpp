// The typed value. Its debug text is the standard text form of values, which the text conversions
// write: see text/pwfdata_debugstring.cpp.

#include <bsutils/cpalloc.h>
#include <bsutils/pwfdata.h>
#include <zan/zanlog.h>

#include <cstdlib>
#include <cstring>
#include <limits>
#include <utility>

#include "core/canonicaltext.h"
#include "core/cpdebugtrace.h"
#include "core/cpraise.h"

using namespace bsutils::internal;

namespace {

constexpr const char* kModule = "pwfdata";
constexpr const char* kInit = "PWFData::init";

// The byte length of `units` UTF-16 units, or -2 (refused by the general rule) when it has none.
std::int32_t unitsToBytes(std::int32_t units) {
  constexpr std::int32_t kRefused = -2;
  return units < 0 || units > std::numeric_limits<std::int32_t>::max() / 2 ? kRefused : units * 2;
}

// Decimals compare by value as far as their texts show it, through their one normal form: "1.50"
// equals "01.5" and "-0" equals "0".
bool decimalsEqual(const ZanStringBase& left, const ZanStringBase& right) {
  return normalDecimalText(left) == normalDecimalText(right);
}

}  // namespace

PWFData::PWFData(ELogicalType type) : type_(type) {
  CpDebugTrace trace("PWFData::PWFData", static_cast<std::int32_t>(type));
  if (type >= 1) {
    null_ = true;
    if (type == eInteger) value_.integer.length = 8;
  }
}

PWFData::PWFData(void* data, std::int32_t length, ELogicalType type, EOwnership ownership) {
  CpDebugTrace trace("PWFData::PWFData", static_cast<const void*>(data), length,
                     static_cast<std::int32_t>(type), static_cast<std::int32_t>(ownership));
  init(data, length, type, ownership);
}

PWFData::PWFData(const void* data, std::int32_t length, ELogicalType type, EOwnership ownership) {
  CpDebugTrace trace("PWFData::PWFData", data, length, static_cast<std::int32_t>(type),
                     static_cast<std::int32_t>(ownership));
  if (ownership == eAdopt) {
    CP_RAISE(CP_INTERNAL_PWFDATA_INVALID_OPERATION, kModule, "PWFData::PWFData", nullptr, nullptr,
             "Can't adopt given a const's pointer");
  }
  init(data, length, type, ownership);
}

PWFData::PWFData(std::nullptr_t, std::int32_t length, ELogicalType type, EOwnership ownership)
    : PWFData(static_cast<void*>(nullptr), length, type, ownership) {}

PWFData::PWFData(const char16_t* text, std::int32_t length)
    : PWFData(static_cast<const void*>(text), unitsToBytes(length), eString, eCopy) {}

PWFData::PWFData(const char16_t* text, ELogicalType type)
    : PWFData(static_cast<const void*>(text), -1, type, eCopy) {}

PWFData::PWFData(const ZanStringBase& text) : type_(eString), text_(text) {
  CpDebugTrace trace("PWFData::PWFData", text);
}

PWFData::PWFData(std::int32_t value, bool isNull) : type_(eInteger), null_(isNull) {
  CpDebugTrace trace("PWFData::PWFData", value, isNull);
  value_.integer.length = 4;
  if (!isNull) value_.integer.value32 = value;
}

PWFData::PWFData(std::int64_t value, bool isNull) : type_(eInteger), null_(isNull) {
  CpDebugTrace trace("PWFData::PWFData", value, isNull);
  value_.integer.length = 8;
  if (!isNull) value_.integer.value64 = value;
}

PWFData::PWFData(std::int32_t value, ELogicalType type) : type_(type) {
  CpDebugTrace trace("PWFData::PWFData", value, static_cast<std::int32_t>(type));
  if (type == eInteger) {
    value_.integer.length = 4;
    value_.integer.value32 = value;
  } else if (type == eBoolean) {
    value_.boolean = value;
  } else {
    CP_RAISE(CP_INTERNAL_PWFDATA_INVALID_OPERATION, kModule, "PWFData::PWFData", nullptr, nullptr,
             "Logical type for this contructor must be either Boolean or Integer");
  }
}

PWFData::PWFData(bool value) : type_(eBoolean) {
  CpDebugTrace trace("PWFData::PWFData", value);
  value_.boolean = value ? 1 : 0;
}

PWFData::PWFData(double value) : type_(eFloat) {
  CpDebugTrace trace("PWFData::PWFData", value);
  value_.real = value;
}

PWFData::PWFData(const PWFInterval& value) : type_(eInterval) {
  CpDebugTrace trace("PWFData::PWFData");
  value_.interval = value;
  traceLogicalType("PWFData::PWFData");
}

PWFData::PWFData(const PWFDateTime& value) : type_(eDateTime) {
  CpDebugTrace trace("PWFData::PWFData");
  value_.dateTime = value;
  traceLogicalType("PWFData::PWFData");
}

PWFData::PWFData(const PWFData& other)
    : type_(other.type_), null_(other.null_), text_(other.text_), value_(copiedValue(other)) {}

PWFData& PWFData::operator=(const PWFData& other) {
  if (this != &other) {
    // Copy first, so that a failed allocation leaves this value as it was.
    const Value value = copiedValue(other);
    releaseBinary();
    type_ = other.type_;
    null_ = other.null_;
    text_ = other.text_;
    value_ = value;
  }
  return *this;
}

PWFData::PWFData(PWFData&& other) noexcept
    : type_(other.type_), null_(other.null_), text_(std::move(other.text_)), value_(other.value_) {
  other.becomeNothing();
}

PWFData& PWFData::operator=(PWFData&& other) noexcept {
  if (this != &other) {
    releaseBinary();
    type_ = other.type_;
    null_ = other.null_;
    text_ = std::move(other.text_);
    value_ = other.value_;
    other.becomeNothing();
  }
  return *this;
}

PWFData::~PWFData() { releaseBinary(); }

// What a default-constructed value holds, and nothing to release.
void PWFData::becomeNothing() {
  type_ = eNothing;
  null_ = false;
  text_.clear();
  value_ = Value{};
}

// The general construction rule.
void PWFData::init(const void* data, std::int32_t length, ELogicalType type, EOwnership ownership) {
  type_ = type;
  null_ = false;
  if (type < 1) {
    if (data != nullptr) {
      CP_RAISE(CP_INTERNAL_ERROR_AS_PARSER, kModule, kInit, nullptr,
               "Invlaid logical type when passing in a value");
    }
    null_ = true;
    return;
  }
  if (data == nullptr) {
    null_ = true;
    if (type == eInteger) value_.integer.length = 8;
    return;
  }
  switch (type) {
    case eString:
    case eDecimal: {
      const auto* units = static_cast<const char16_t*>(data);
      if (length < -1) {
        CP_RAISE(CP_INTERNAL_PWFDATA_INVALID_OPERATION, kModule, kInit, nullptr, nullptr,
                 "Invalid length for a string");
      }
      text_.assign(units, length == -1 ? -1 : length / 2);
      break;
    }
    case eInteger:
      if (length == 8) {
        std::memcpy(&value_.integer.value64, data, sizeof(std::int64_t));
      } else if (length == 4) {
        std::memcpy(&value_.integer.value32, data, sizeof(std::int32_t));
      } else {
        CP_RAISE(CP_INTERNAL_PWFDATA_INVALID_OPERATION, kModule, kInit, nullptr, nullptr,
                 "Invalid length for an integer");
      }
      value_.integer.length = length;
      break;
    case eFloat:
      std::memcpy(&value_.real, data, sizeof value_.real);
      break;
    case eBoolean:
      std::memcpy(&value_.boolean, data, sizeof value_.boolean);
      break;
    case eInterval:
      std::memcpy(&value_.interval, data, sizeof value_.interval);
      break;
    case eDateTime:
      std::memcpy(&value_.dateTime, data, sizeof value_.dateTime);
      break;
    case eBinary:
      if (length != -1) {
        initBinary(data, length, ownership);
        return;  // a binary keeps an adopted buffer
      }
      break;
    default:
      break;  // a type with no storage: nothing is kept
  }
  // The value kept what it needed; an adopted buffer is no longer wanted. Only the non-const
  // constructor can get here with eAdopt, so the buffer was handed over as writable.
  if (ownership == eAdopt) std::free(const_cast<void*>(data));
}

void PWFData::initBinary(const void* data, std::int32_t length, EOwnership ownership) {
  if (length < 0) {
    CP_RAISE(CP_INTERNAL_PWFDATA_INVALID_OPERATION, kModule, kInit, nullptr, nullptr,
             "Invalid length for a binary");
  }
  if (ownership != eCopy && ownership != eAdopt && ownership != eBorrow) {
    CP_RAISE(CP_INTERNAL_PWFDATA_INVALID_OPERATION, kModule, kInit, nullptr, nullptr,
             "Invalid ownership for a binary", static_cast<std::int32_t>(ownership));
  }
  BinaryValue& binary = value_.binary;
  if (ownership == eCopy) {
    binary.bytes = static_cast<unsigned char*>(cpMalloc(static_cast<std::uint32_t>(length)));
    std::memcpy(binary.bytes, data, static_cast<std::size_t>(length));
  } else {
    binary.bytes = static_cast<unsigned char*>(const_cast<void*>(data));
  }
  binary.ownership = ownership;
  binary.length = length;
}

PWFData::Value PWFData::copiedValue(const PWFData& source) {
  Value value = source.value_;
  const BinaryValue& binary = source.value_.binary;
  if (source.type_ == eBinary && binary.ownership != eBorrow && binary.bytes != nullptr) {
    value.binary.bytes =
        static_cast<unsigned char*>(cpMalloc(static_cast<std::uint32_t>(binary.length)));
    std::memcpy(value.binary.bytes, binary.bytes, static_cast<std::size_t>(binary.length));
    value.binary.ownership = eCopy;
  }
  return value;
}

void PWFData::releaseBinary() {
  if (type_ != eBinary) return;
  switch (value_.binary.ownership) {
    case eCopy:
      cpFree(value_.binary.bytes);
      break;
    case eAdopt:
      std::free(value_.binary.bytes);
      break;
    case eBorrow:
      break;
  }
}

// Records are not streamed into debug trace; the value's type number stands for them.
void PWFData::traceLogicalType(const char* function) const {
  if (ZanLog::isDebugTraceActive()) {
    ZanLog::FastDebugTraceItem(function, "LogicalType")
        << static_cast<std::int32_t>(type_) << ZanLog::FastItem::MagicInsert;
  }
}

void PWFData::requireType(ELogicalType type, const char* function, const char* mismatch) const {
  if (type_ == type) return;
  traceLogicalType(function);
  CP_RAISE(CP_INTERNAL_PWFDATA_INVALID_OPERATION, kModule, function, nullptr, nullptr, mismatch);
}

void PWFData::requireNotNull(const char* function, const char* insert) const {
  if (null_) {
    CP_RAISE(CP_INTERNAL_PWFDATA_INVALID_OPERATION, kModule, function, nullptr, nullptr, insert);
  }
}

const void* PWFData::getDataValue() const {
  if (null_) return nullptr;
  switch (type_) {
    case eString:
    case eDecimal:
      return text_.data();
    case eInteger:
      return value_.integer.length == 8 ? static_cast<const void*>(&value_.integer.value64)
                                        : static_cast<const void*>(&value_.integer.value32);
    case eFloat:
      return &value_.real;
    case eBoolean:
      return &value_.boolean;
    case eInterval:
      return &value_.interval;
    case eDateTime:
      return &value_.dateTime;
    case eBinary:
      return value_.binary.bytes;
    default:
      return nullptr;
  }
}

std::int32_t PWFData::getDataLength() const {
  if (null_) return 0;
  switch (type_) {
    case eString:
    case eDecimal:
      return text_.length() * 2;
    case eInteger:
      return value_.integer.length;
    case eFloat:
      return sizeof(double);
    case eBoolean:
      return sizeof(std::int32_t);
    case eInterval:
      return sizeof(PWFInterval);
    case eDateTime:
      return sizeof(PWFDateTime);
    case eBinary:
      return value_.binary.length;
    default:
      return 0;
  }
}

const ZanStringBase& PWFData::getPWFStringValue() const {
  CpDebugTrace trace("PWFData::getPWFStringValue");
  requireType(eString, "PWFData::getPWFStringValue", "Logical type not equal to string");
  return text_;
}

const char16_t* PWFData::getStringValue(std::int32_t& length) const {
  CpDebugTrace trace("PWFData::getStringValue");
  requireType(eString, "PWFData::getStringValue", "Logical type not equal to string");
  length = text_.length();
  // The units are not NUL-terminated: the exit record shows them as the text they are.
  trace.result(text_);
  return text_.data();
}

const char16_t* PWFData::getStringValue() const {
  std::int32_t length = 0;
  return getStringValue(length);
}

std::int32_t PWFData::getStringLength() const {
  CpDebugTrace trace("PWFData::getStringLength");
  requireType(eString, "PWFData::getStringLength", "Logical type not equal to string");
  return trace.result(text_.length());
}

std::int32_t PWFData::getInt32Value() const {
  constexpr const char* kFunction = "PWFData::getInt32Value";
  CpDebugTrace trace(kFunction);
  requireType(eInteger, kFunction, "Logical type not equal to integer");
  requireNotNull(kFunction, "Can't get value for null integer value");
  if (value_.integer.length != 8) return trace.result(value_.integer.value32);
  const std::int64_t value = value_.integer.value64;
  if (value < std::numeric_limits<std::int32_t>::min() ||
      value > std::numeric_limits<std::int32_t>::max()) {
    CP_RAISE(CP_CONV_INPUT_DATA_TOO_LONG, kModule, kFunction, nullptr,
             "Overflow converting a PWFInt64 to PWFInt32", "integer", "4-byte integer", value);
  }
  return trace.result(static_cast<std::int32_t>(value));
}

std::int64_t PWFData::getInt64Value() const {
  constexpr const char* kFunction = "PWFData::getInt64Value";
  CpDebugTrace trace(kFunction);
  requireType(eInteger, kFunction, "Logical type not equal to integer");
  requireNotNull(kFunction, "Can't get value for null integer value");
  return trace.result(value_.integer.length == 8
                          ? value_.integer.value64
                          : static_cast<std::int64_t>(value_.integer.value32));
}

double PWFData::getDoubleValue() const {
  constexpr const char* kFunction = "PWFData::getDoubleValue";
  CpDebugTrace trace(kFunction);
  requireType(eFloat, kFunction, "Logical type not equal to float");
  requireNotNull(kFunction, "Can't get value for null double value");
  return trace.result(value_.real);
}

const unsigned char* PWFData::getBinaryValue(std::int32_t& length) const {
  CpDebugTrace trace("PWFData::getBinaryValue");
  requireType(eBinary, "PWFData::getBinaryValue", "Logical type not equal to binary");
  length = value_.binary.length;
  return value_.binary.bytes;
}

const unsigned char* PWFData::getBinaryValue() const {
  std::int32_t length = 0;
  return getBinaryValue(length);
}

std::int32_t PWFData::getBooleanValue() const {
  constexpr const char* kFunction = "PWFData::getBooleanValue";
  CpDebugTrace trace(kFunction);
  requireType(eBoolean, kFunction, "Logical type not equal to boolean");
  requireNotNull(kFunction, "Can't get value for null boolean value");
  return trace.result(value_.boolean);
}

PWFInterval PWFData::getIntervalValue() const {
  CpDebugTrace trace("PWFData::getIntervalValue");
  requireType(eInterval, "PWFData::getIntervalValue", "Logical type not equal to interval");
  traceLogicalType("PWFData::getIntervalValue");
  return value_.interval;
}

PWFDateTime PWFData::getDateTimeValue() const {
  CpDebugTrace trace("PWFData::getDateTimeValue");
  requireType(eDateTime, "PWFData::getDateTimeValue", "Logical type not equal to datetime");
  traceLogicalType("PWFData::getDateTimeValue");
  return value_.dateTime;
}

const char16_t* PWFData::getDecimalValue() const {
  CpDebugTrace trace("PWFData::getDecimalValue");
  requireType(eDecimal, "PWFData::getDecimalValue", "Logical type not equal to decimal");
  trace.result(text_);
  return text_.data();
}

ZanStringBase PWFData::getDecimalText() const {
  CpDebugTrace trace("PWFData::getDecimalText");
  requireType(eDecimal, "PWFData::getDecimalText", "Logical type not equal to decimal");
  return text_;
}

std::int32_t PWFData::getDecimalLength() const {
  CpDebugTrace trace("PWFData::getDecimalLength");
  requireType(eDecimal, "PWFData::getDecimalLength", "Logical type not equal to decimal");
  return trace.result(text_.length());
}

bool PWFData::operator==(const PWFData& other) const {
  if (type_ != other.type_ || null_ != other.null_) return false;
  // The null flag is not looked at again: two null numerics reach their getters and raise there.
  switch (type_) {
    case eString:
      return text_ == other.text_;
    case eDecimal:
      return decimalsEqual(text_, other.text_);
    case eInteger:
      return getInt64Value() == other.getInt64Value();
    case eFloat:
      return getDoubleValue() == other.getDoubleValue();
    case eBinary: {
      const BinaryValue& mine = value_.binary;
      const BinaryValue& theirs = other.value_.binary;
      return mine.length == theirs.length &&
             (mine.length <= 0 || mine.bytes == theirs.bytes ||
              std::memcmp(mine.bytes, theirs.bytes, static_cast<std::size_t>(mine.length)) == 0);
    }
    case eBoolean:
      return getBooleanValue() == other.getBooleanValue();
    case eInterval:
      return intervalEquals(other);
    case eDateTime:
      return value_.dateTime == other.value_.dateTime;
    default:
      return true;
  }
}

// Intervals compare by what they carry, and the rule is deliberately uneven:
//   (a) two intervals with no years, months or microseconds at all are equal;
//   (b) otherwise their signs must agree;
//   (c) when both carry microseconds, only the microseconds are compared;
//   (d) otherwise both must carry years or months, and the total months must agree.
bool PWFData::intervalEquals(const PWFData& other) const {
  const PWFInterval& a = value_.interval;
  const PWFInterval& b = other.value_.interval;
  const auto isEmpty = [](const PWFInterval& i) {
    return i.years == 0 && i.months == 0 && i.microseconds == 0;
  };
  if (isEmpty(a) && isEmpty(b)) return true;
  if ((a.negative != 0) != (b.negative != 0)) return false;
  if (a.microseconds != 0 && b.microseconds != 0) return a.microseconds == b.microseconds;
  if ((a.years == 0 && a.months == 0) || (b.years == 0 && b.months == 0)) return false;
  return std::int64_t{a.years} * 12 + a.months == std::int64_t{b.years} * 12 + b.months;
}
