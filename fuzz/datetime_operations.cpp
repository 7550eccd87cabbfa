// Date-times: text of random patterns, binary field records, packed date-times and numbers since
// an epoch, each read and, when that succeeds, written back, through formatters of varied settings.

#include <bsutils/dataconv.h>
#include <bsutils/pwfdata.h>

#include <string>

#include "fuzz_input.h"

namespace bsfuzz {

namespace {

// Zones of every kind (fixed, with summer time, half-hour, custom, unknown, none) and locales.
constexpr const char16_t* kZones[] = {
    u"UTC", u"Europe/Paris",     u"Asia/Kolkata",      u"GMT+05:30", u"Bogus/Zone",
    u"",    u"America/St_Johns", u"Pacific/Kiritimati"};
constexpr const char16_t* kLocales[] = {u"", u"de_DE", u"ja_JP", u"ar_EG"};
// What patterns and texts are made of, so that most of them get past the first character.
constexpr std::u16string_view kPatternAlphabet = u"yyyyMMddHHmmssSSSSaEEEGzZXx'.:-/ TI";
constexpr std::u16string_view kTextAlphabet = u"0123456789012345678901234567:-./ TZ+APMSunApr";
constexpr std::u16string_view kBinaryAlphabet = u"yMdHmsSXyyMMdd+-0123456789qz";
constexpr const char16_t* kEpochs[] = {nullptr,
                                       u"",
                                       u"1900-01-01T00:00+00:00",
                                       u"2000-01-01T00:00+0000",
                                       u"1970-01-01T00:00:00+00:00",
                                       u"9999-12-31T23:59+14:00",
                                       u"-0001-01-01T00:00+00:00x"};
constexpr const char16_t* kPackedPatterns[] = {
    u"yyyyMMdd", u"yyMMdd",  u"HHmmss",   u"yyyyMMddHHmmss",
    u"I",        u"yyyyDDD", u"ddMMyyyy", u"yyyyMMddHHmmssSSS"};

// The formatter settings come from the argument bytes, so every operation meets strict and
// lenient formatters, odd zones, century windows out of range and minimal days out of range.
DataCnv converterFor(const Args& a) {
  return DataCnv(
      1200, a.endian(), IEEEFloat, a.h[2] % 101, const_cast<char16_t*>(kZones[a.h[6] & 7]),
      const_cast<char16_t*>(kLocales[(a.h[6] >> 3) & 3]), a.h[5] % 10, (a.h[0] & 1) == 0);
}

// The field's bytes [from, to) through an alphabet, NUL-terminated.
std::u16string spelled(const Args& a, std::size_t from, std::size_t to,
                       std::u16string_view alphabet) {
  std::u16string text;
  for (std::size_t i = from; i < to && i < a.size; ++i)
    text += alphabet[a.data[i] % alphabet.size()];
  return text;
}

}  // namespace

const std::vector<Op>& datetimeOperations() {
  static const std::vector<Op> ops = {
      // Text of a random pattern, read then written back, and through the ISO pattern.
      [](DataCnv&, const Args& a) {
        DataCnv c = converterFor(a);
        const std::size_t split = a.size == 0 ? 0 : a.data[0] % (a.size + 1);
        const std::u16string pattern =
            (a.variant() & 2) ? std::u16string(u"I") : spelled(a, 1, split, kPatternAlphabet);
        const std::u16string text =
            (a.variant() & 1) ? spelled(a, split, a.size, kTextAlphabet)
                              : std::u16string(a.data + std::min(split, a.size), a.data + a.size);
        const PWFDateTime value =
            c.StrToDateTime(text.c_str(), static_cast<std::int32_t>(text.size()), pattern.c_str());
        c.StrFromDateTime(value, pattern.c_str());
        c.StrFromDateTime(value, u"I");
      },
      // A binary field record of a random pattern, read then written into a buffer of any size.
      [](DataCnv&, const Args& a) {
        DataCnv c = converterFor(a);
        const std::size_t split = a.size == 0 ? 0 : a.data[0] % (a.size + 1);
        const std::u16string pattern = spelled(a, 1, split, kBinaryAlphabet);
        const std::size_t length = a.size - std::min(split, a.size);
        std::unique_ptr<unsigned char[]> record(new unsigned char[length]);
        std::memcpy(record.get(), a.data + (a.size - length), length);
        const PWFDateTime value =
            c.BinaryToDateTime(record.get(), static_cast<std::int32_t>(length), pattern.c_str());
        const std::int32_t capacity = a.variant() % 24;
        std::unique_ptr<unsigned char[]> out(new unsigned char[capacity]);
        c.BinaryFromDateTime(value, out.get(), capacity, pattern.c_str());
      },
      // A packed date-time, read then written back at its own size.
      [](DataCnv&, const Args& a) {
        DataCnv c = converterFor(a);
        auto b = bytesOf(a);
        const char16_t* pattern = kPackedPatterns[a.variant() & 7];
        const auto endian = (a.h[3] & 1) ? BigEndian : LittleEndian;
        const PWFDateTime value = c.PckdDecToDateTime(b.get(), static_cast<std::int32_t>(a.size),
                                                      endian, a.scale() % 3, a.sign(), pattern);
        std::int32_t size = static_cast<std::int32_t>(a.size);
        std::unique_ptr<unsigned char[]> out(new unsigned char[a.size]);
        c.PckdDecFromDateTime(value, out.get(), size, pattern, endian, a.scale() % 3, a.sign());
        checkWritten("PckdDecFromDateTime", size, static_cast<std::int32_t>(a.size));
      },
      // Seconds and milliseconds since an epoch, there and back.
      [](DataCnv&, const Args& a) {
        DataCnv c = converterFor(a);
        const std::u16string randomEpoch = spelled(a, 8, a.size, kTextAlphabet);
        const char16_t* epoch = (a.variant() & 8) ? randomEpoch.c_str() : kEpochs[a.variant() % 7];
        if (a.variant() & 16) {
          const PWFDateTime value =
              c.SecondsToDateTime(static_cast<std::int32_t>(a.int64()), epoch);
          c.SecondsFromDateTime(value, epoch);
        } else {
          const PWFDateTime value = c.MilliSecondsToDateTime(a.int64(), epoch);
          c.MilliSecondsFromDateTime(value, epoch);
        }
      },
  };
  return ops;
}

}  // namespace bsfuzz
