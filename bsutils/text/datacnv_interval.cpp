// Intervals as text: "P1Y2M", "-P3DT4H5M6.5S", "PT0S", read into a PWFInterval and written back.

#include <bsutils/dataconv.h>
#include <unicode/uchar.h>
#include <unicode/ustring.h>
#include <zan/zanlog.h>

#include <algorithm>
#include <cstdint>
#include <limits>

#include "core/cpdebugtrace.h"
#include "core/cpraise.h"
#include "datacnvprivate.h"

using namespace bsutils::internal;

namespace {

constexpr const char* kReadFunction = "DataCnv::StrToInterval";
constexpr const char* kWriteFunction = "DataCnv::StrFromInterval";

constexpr std::int64_t kMicrosPerSecond = 1'000'000;
constexpr std::int64_t kMicrosPerMinute = 60 * kMicrosPerSecond;
constexpr std::int64_t kMicrosPerHour = 60 * kMicrosPerMinute;
constexpr std::int64_t kMicrosPerDay = 24 * kMicrosPerHour;
constexpr std::int32_t kFractionDigits = 6;

// Every field must stay below 2^31, a fraction's leading 1 included; days below 100,000,000. With
// these limits no single field's microseconds overflow 64 bits, only their sum can.
constexpr std::uint64_t kFieldLimit = std::uint64_t{1} << 31;
constexpr std::uint64_t kDayLimit = 100'000'000;

// The designator last accepted. Each designator is refused once the text has gone past its place;
// only "T" may come back, and only "M" changes its meaning after it.
enum ReadState : std::int32_t {
  kStart = 0,
  kAfterYears = 1,
  kAfterMonths = 2,
  kAfterDays = 3,
  kAfterTime = 4,
  kAfterHours = 5,
  kAfterMinutes = 6,
  kAfterPoint = 8,
  kAfterSeconds = 9,
};

// One pass over the text: each field is a run of digits closed by its designator.
class IntervalReader {
 public:
  IntervalReader(const ZanLogSource& source, const char16_t* text, std::int32_t length)
      : source_(source), text_(text), end_(length) {}

  PWFInterval read() {
    if (position_ < end_ && text_[position_] == u'-') {
      interval_.negative = 1;
      ++position_;
    }
    if (position_ == end_ || text_[position_] != u'P') refuse();
    ++position_;
    while (position_ < end_) {
      // In a fraction the leading 1 keeps the count of digits, leading zeros included.
      std::uint64_t value = state_ == kAfterPoint ? 1 : 0;
      std::int32_t digits = 0;
      for (; position_ < end_ && u_isdigit(text_[position_]); ++position_, ++digits) {
        value = value * 10 + static_cast<std::uint64_t>(u_charDigitValue(text_[position_]));
        if (value >= kFieldLimit) {
          CP_RAISE(CP_DURATION_RANGE_ERROR, kDataCnvModule, kReadFunction, &source_, nullptr);
        }
      }
      if (position_ == end_) refuse();  // digits without a designator
      accept(text_[position_++], value, digits);
    }
    if ((interval_.years != 0 || interval_.months != 0) && interval_.microseconds != 0) {
      CP_RAISE(CP_DURATION_COMBINATION_ERROR, kDataCnvModule, kReadFunction, &source_, nullptr);
    }
    return interval_;
  }

 private:
  void accept(char16_t designator, std::uint64_t value, std::int32_t digits) {
    switch (designator) {
      case u'Y':
        require(state_ < kAfterYears);
        interval_.years = static_cast<std::int32_t>(value);
        state_ = kAfterYears;
        break;
      case u'M':
        if (state_ < kAfterTime) {
          require(state_ < kAfterMonths);
          interval_.months = static_cast<std::int32_t>(value);
          state_ = kAfterMonths;
        } else {
          require(state_ < kAfterMinutes);
          add(value, kMicrosPerMinute);
          state_ = kAfterMinutes;
        }
        break;
      case u'D':
        require(state_ < kAfterDays);
        if (value >= kDayLimit) {
          CP_RAISE(CP_DURATION_TOO_MANY_DAYS, kDataCnvModule, kReadFunction, &source_, nullptr);
        }
        add(value, kMicrosPerDay);
        state_ = kAfterDays;
        break;
      case u'T':
        require(digits == 0);
        state_ = kAfterTime;
        break;
      case u'H':
        require(state_ < kAfterHours);
        add(value, kMicrosPerHour);
        state_ = kAfterHours;
        break;
      case u'.':
        require(state_ < kAfterPoint);
        add(value, kMicrosPerSecond);
        state_ = kAfterPoint;
        break;
      case u'S':
        if (state_ == kAfterPoint) {
          addFraction(value, digits);
        } else {
          require(state_ < kAfterPoint);
          add(value, kMicrosPerSecond);
        }
        state_ = kAfterSeconds;
        break;
      default:
        refuse();
    }
  }

  // `value` is the accumulator: 1 followed by the fraction's `digits` digits.
  void addFraction(std::uint64_t value, std::int32_t digits) {
    if (digits > kFractionDigits) {
      const CpCodeInfo& precision = cpCodeInfo(CpCode::CP_DURATION_SECONDS_PRECISION_WARNING);
      ZanLog::WarningItem(source_, kDataCnvModule, __LINE__, kReadFunction, precision.messageNumber,
                          precision.traceText)
          .write();
      // Cut, not rounded, to the leading 1 and six digits.
      while (value >= 10 * static_cast<std::uint64_t>(kMicrosPerSecond)) value /= 10;
    }
    for (std::int32_t i = digits; i < kFractionDigits; ++i) value *= 10;
    add(value % kMicrosPerSecond, 1);
  }

  // Fields may repeat after a second "T", so the sum is checked even though each product fits.
  void add(std::uint64_t value, std::int64_t unit) {
    const std::int64_t micros = static_cast<std::int64_t>(value) * unit;
    if (micros > std::numeric_limits<std::int64_t>::max() - interval_.microseconds) {
      CP_RAISE(CP_DURATION_TOO_MANY_DAYS, kDataCnvModule, kReadFunction, &source_, nullptr);
    }
    interval_.microseconds += micros;
  }

  void require(bool inPlace) const {
    if (!inPlace) refuse();
  }

  [[noreturn]] void refuse() const {
    CP_RAISE(CP_CONV_INPUT_DATA_INVALID, kDataCnvModule, kReadFunction, &source_, nullptr,
             "interval", ZanStringBase(text_, end_));
  }

  const ZanLogSource& source_;
  const char16_t* text_;
  std::int32_t end_;
  std::int32_t position_ = 0;
  ReadState state_ = kStart;
  PWFInterval interval_;
};

}  // namespace

PWFInterval DataCnv::StrToInterval(const char16_t* text, std::int32_t length) {
  CpDebugTrace trace(kReadFunction, static_cast<const void*>(text), length);
  requireInputPointer(this, kReadFunction, text);
  if (length < -1) {
    CP_RAISE(CP_INTERNAL_ERROR, kDataCnvModule, kReadFunction, this, nullptr,
             "Invalid input length: ", length);
  }
  // A NUL ends the text early whatever the length says.
  const std::int32_t end =
      length == -1 ? u_strlen(text)
                   : static_cast<std::int32_t>(std::find(text, text + length, u'\0') - text);
  if (ZanLog::isDebugTraceActive()) {
    ZanLog::FastDebugTraceItem(kReadFunction, "source")
        << ZanStringBase(text, end) << ZanLog::FastItem::MagicInsert;
  }
  return IntervalReader(*this, text, end).read();
}

void DataCnv::StrFromInterval(const PWFInterval& interval, ZanStringBase& out,
                              std::int32_t& outLength, bool pad, EJustification justification,
                              char16_t padChar, bool padIsUnicode) {
  CpDebugTrace trace(kWriteFunction, interval.years, interval.months, interval.microseconds,
                     interval.negative, outLength, pad, justification, padChar, padIsUnicode);
  ZanStringBase text;
  const auto appendField = [&](std::int64_t value, char16_t designator) {
    if (value == 0) return;
    // Days are at most 106,751,991 and the smaller units below their next unit: all fit.
    AppendIntervalField(static_cast<std::int32_t>(value), text, false);
    text.append(designator);
  };
  if (interval.negative != 0) text.append(u'-');
  text.append(u'P');
  appendField(interval.years, u'Y');
  appendField(interval.months, u'M');
  appendField(interval.microseconds / kMicrosPerDay, u'D');
  const std::int64_t ofDay = interval.microseconds % kMicrosPerDay;
  if (ofDay != 0) {
    text.append(u'T');
    appendField(ofDay / kMicrosPerHour, u'H');
    appendField(ofDay % kMicrosPerHour / kMicrosPerMinute, u'M');
  }
  // A negative microsecond count leaves a negative part here or above, which AppendIntervalField
  // refuses.
  const std::int64_t seconds = interval.microseconds % kMicrosPerMinute / kMicrosPerSecond;
  const std::int64_t fraction = interval.microseconds % kMicrosPerSecond;
  if (seconds != 0 || fraction != 0) {
    AppendIntervalField(static_cast<std::int32_t>(seconds), text, false);
    if (fraction != 0) {
      text.append(u'.');
      AppendIntervalField(static_cast<std::int32_t>(fraction), text, true);
    }
    text.append(u'S');
  }
  if (interval.years == 0 && interval.months == 0 && interval.microseconds == 0) {
    text.append(u"T0S");
  }

  if (pad) {
    if (!padIsUnicode) padChar = codePageCharToUnicode(kWriteFunction, padChar, 1);
    // Compared first so that a very negative outLength cannot overflow the difference.
    if (outLength > text.length()) {
      PadData(text, outLength - text.length(), justification, padChar, true);
    }
  }
  out = text;
  outLength = out.length();
  trace.result(out);
}

void DataCnv::StrFromInterval(const PWFInterval& interval, char16_t* out, std::int32_t& outLength,
                              bool pad, EJustification justification, char16_t padChar,
                              bool padIsUnicode) {
  CpDebugTrace trace(kWriteFunction, interval.years, interval.months, interval.microseconds,
                     interval.negative, outLength, pad, justification, padChar, padIsUnicode);
  requireOutputBuffer(this, kWriteFunction, out);
  ZanStringBase text;
  std::int32_t textLength = outLength;
  StrFromInterval(interval, text, textLength, pad, justification, padChar, padIsUnicode);
  if (textLength > outLength) {
    CP_RAISE(CP_CONV_INPUT_DATA_OUT_OF_BOUNDS, kDataCnvModule, kWriteFunction, this, nullptr,
             "interval", "string (", textLength, " characters)");
  }
  std::copy_n(text.data(), textLength, out);
  outLength = textLength;
}

PWFData DataCnv::StrFromInterval(const PWFInterval& interval) {
  CpDebugTrace trace(kWriteFunction, interval.years, interval.months, interval.microseconds,
                     interval.negative);
  ZanStringBase text;
  std::int32_t length = 0;
  StrFromInterval(interval, text, length, false, eLeftJustified, u' ', true);
  return PWFData(text);
}

void DataCnv::AppendIntervalField(std::int32_t value, ZanStringBase& out, bool isFraction) {
  constexpr const char* kFunction = "DataCnv::AppendIntervalField";
  CpDebugTrace trace(kFunction, value, isFraction);
  if (value < 0 || (isFraction && value >= kMicrosPerSecond)) {
    CP_RAISE(CP_CONV_INPUT_DATA_OUT_OF_BOUNDS, kDataCnvModule, kFunction, this, nullptr, "interval",
             value);
  }
  ZanStringBase digits;
  Int64ToUString(value, digits);
  if (isFraction) {
    // Six places, of which the trailing zeros say nothing; one digit stays so "0" still reads.
    digits.padLeading(kFractionDigits, u'0');
    std::int32_t kept = kFractionDigits;
    while (kept > 1 && digits[kept - 1] == u'0') --kept;
    digits.truncate(kept);
  }
  out.append(digits);
}
