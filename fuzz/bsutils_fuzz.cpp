// Coverage-guided fuzz target for the field conversions.
//
// Input layout: byte 0 picks the operation, bytes 1..8 are its arguments (see Args), and the rest
// is the field: raw bytes for the binary readers, UTF-16 units for the text readers, a value or
// NUL-terminated decimal text for the writers. A ZanException is the answer the library owes bad
// input, and std::bad_alloc the one it may give an absurd size; anything else escaping, a
// sanitizer report or an abort is a fault in the library.
//
// Every pointer handed to the library comes with its true length: buffers are allocated to the
// exact size, so that a read or write one past the end reaches the sanitizer's redzone.

#include <bsutils/bytebuffer.h>
#include <bsutils/cpbase64converter.h>
#include <bsutils/cpunicodeconverter.h>
#include <bsutils/dataconv.h>
#include <bsutils/numerictextformat.h>
#include <bsutils/pwfdata.h>
#include <bsutils/textbufferreader.h>
#include <bsutils/textbufferwriter.h>
#include <zan/zanexception.h>
#include <zan/zanlog.h>
#include <zan/zanstringbase.h>

#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <memory>
#include <new>
#include <vector>

namespace {

constexpr std::int32_t kCcsids[] = {37, 500, 1208, 1200, 1201, 819, 930, 1047};
// Pad characters: spaces of both families, digits, a wide character and zero.
constexpr char16_t kPads[] = {u' ', u'0', 0x40, u'*', 0, 0xF0, 0x3000, u'x'};
// Sign styles, the last one out of range on purpose.
constexpr DataCnv::ESign kSigns[] = {DataCnv::eNoSign,
                                     DataCnv::eLeadingEmbeddedSign,
                                     DataCnv::eTrailingEmbeddedSign,
                                     DataCnv::eLeadingSeparateSign,
                                     DataCnv::eTrailingSeparateSign,
                                     DataCnv::eLeadingSeparateSign,
                                     DataCnv::eTrailingEmbeddedSign,
                                     static_cast<DataCnv::ESign>(7)};
constexpr const char16_t* kSignStrings[] = {u"-", u"+", u"DB", u""};
// Positive packed sign nibbles; B is not a valid one.
constexpr char kPackedSigns[] = {12, 12, 10, 14, 15, 11, 12, 12};
// Characters decimal text is made of, so that most texts get past the first check.
constexpr char16_t kDecimalAlphabet[] = u"0123456789012345678901234567.-+ e,9";

// The fixed argument bytes and the field that follows them.
struct Args {
  std::uint8_t h[8];
  const std::uint8_t* data;
  std::size_t size;

  std::int32_t ccsid() const { return kCcsids[h[0] & 7]; }
  EEndian endian() const { return (h[0] & 8) ? BigEndian : LittleEndian; }
  EFloatFmt floatFormat() const { return (h[0] & 16) ? HFPFloat : IEEEFloat; }
  char packedSign() const { return kPackedSigns[h[0] >> 5]; }
  DataCnv::ESign sign() const { return kSigns[h[1] & 7]; }
  DataCnv::EJustification justification() const {
    return (h[1] & 8) ? DataCnv::eRightJustified : DataCnv::eLeftJustified;
  }
  DataCnv::ETrimType trim() const { return static_cast<DataCnv::ETrimType>((h[1] >> 4) % 5); }
  // Bounded so that runs measure robustness, not how big a string memory can hold.
  std::int32_t scale() const { return static_cast<std::int8_t>(h[2]) % 41; }
  std::int32_t size8() const { return h[3] & 63; }
  // Sizes that matter to the binary forms most of the time, anything up to 63 otherwise.
  std::int32_t intSize() const {
    static constexpr std::int32_t kSizes[] = {1, 2, 4, 8, 0, 3, 4, 8};
    return (h[3] & 64) ? (h[3] & 15) : kSizes[h[3] & 7];
  }
  char16_t pad() const { return kPads[h[4] & 7]; }
  bool padIsUnicode() const { return h[4] & 8; }
  bool customSignEBCDIC() const { return h[4] & 16; }
  const char16_t* positiveTable() const {
    static constexpr const char16_t* kTables[] = {nullptr, u"{ABCDEFGHI", u"0123456789", u"ab"};
    return kTables[(h[4] >> 5) & 3];
  }
  const char16_t* negativeTable() const {
    static constexpr const char16_t* kTables[] = {nullptr, u"}JKLMNOPQR", u"pqrstuvwxy", u"cd"};
    return kTables[(h[4] >> 5) & 3];
  }
  bool doPad() const { return h[4] & 128; }
  const char16_t* minus() const { return kSignStrings[h[5] & 3]; }
  const char16_t* plus() const { return kSignStrings[(h[5] >> 2) & 3]; }
  NumericTextFormat format() const {
    NumericTextFormat f;
    f.decimalPoint = (h[5] & 16) ? u',' : u'.';
    f.form = static_cast<ENumericForm>((h[5] >> 5) & 3);
    f.decimalPlaces = h[6] == 255 ? 998 : h[6] % 25;
    f.strictChecking = h[5] & 128;
    return f;
  }
  std::uint8_t variant() const { return h[7]; }

  // The field's first eight bytes, zero-filled, as a value.
  std::uint64_t bits() const {
    std::uint64_t v = 0;
    std::memcpy(&v, data, size < 8 ? size : 8);
    return v;
  }
  std::int64_t int64() const { return static_cast<std::int64_t>(bits()); }
  double dbl() const {
    double d;
    std::uint64_t v = bits();
    std::memcpy(&d, &v, sizeof d);
    return d;
  }
};

// Heap copies of exactly the field's length.
std::unique_ptr<unsigned char[]> bytesOf(const Args& a) {
  std::unique_ptr<unsigned char[]> b(new unsigned char[a.size]);
  if (a.size) std::memcpy(b.get(), a.data, a.size);
  return b;
}
struct Units {
  std::unique_ptr<char16_t[]> p;
  std::int32_t n;
};
Units unitsOf(const Args& a) {
  std::int32_t n = static_cast<std::int32_t>(a.size / 2);
  Units u{std::unique_ptr<char16_t[]>(new char16_t[n]), n};
  if (n) std::memcpy(u.p.get(), a.data, n * 2);
  return u;
}
// NUL-terminated text: the bytes through the decimal alphabet (variant bit 0 clear) or as they
// are, with any NUL moved out of the way.
std::vector<char16_t> textOf(const Args& a) {
  std::vector<char16_t> t;
  for (std::size_t i = 0; i < a.size; ++i) {
    std::uint8_t c = a.data[i];
    if (a.variant() & 1)
      t.push_back(c ? c : u'0');
    else
      t.push_back(kDecimalAlphabet[c % (sizeof kDecimalAlphabet / 2 - 1)]);
  }
  t.push_back(0);
  return t;
}

// A writer reports units written within the capacity it was given: more is a library fault.
void checkWritten(const char* what, std::int32_t written, std::int32_t capacity) {
  if (written < 0 || written > capacity) {
    std::fprintf(stderr, "%s reported %d units written into a capacity of %d\n", what, written,
                 capacity);
    std::abort();
  }
}

using Op = std::function<void(DataCnv&, const Args&)>;

// A few reads through a TextBufferReader, two argument bytes each.
void readerScript(const Args& a, TextBufferReader& r, std::int32_t len) {
  auto where = [&](std::uint8_t b) -> std::int32_t {
    if (b == 255) return INT32_MAX;
    if (b == 254) return INT32_MIN;
    return static_cast<std::int32_t>(b % (len + 4)) - 2;  // -2, kAtCursor, 0..len+1
  };
  for (int i = 2; i < 8; i += 2) {
    std::uint8_t op = a.h[i], arg = a.h[i + 1];
    bool advance = op & 16;
    PWFData s;
    char16_t ch = 0;
    int bl = 0;
    switch (op & 15) {
      case 0:
        r.getStringSection(s, arg % 20, advance, where(op >> 5 << 2));
        break;
      case 1:
        r.getStringSection(s, -1, advance, where(arg));
        break;
      case 2:
        r.getStringSection(s, arg % 40, advance);
        break;
      case 3:
        r.getString(where(arg), where(op >> 4), advance);
        break;
      case 4:
        r.getCharacter(&ch, advance, &bl, where(arg));
        break;
      case 5:
        r.getCharacterCached(&ch, &bl, where(arg));
        break;
      case 6:
        r.setOffsetChars(arg % 40);
        break;
      case 7:
        r.moveOffsetChars(arg % 40);
        break;
      case 8:
        r.setCurrentOffset(where(arg));
        break;
      case 9:
        r.moveCurrentOffset(static_cast<std::int8_t>(arg));
        break;
      case 10: {
        std::int32_t room = arg % 64;
        std::unique_ptr<char16_t[]> t(new char16_t[room]);
        int tl = room;
        r.toUnicode(t.get(), &tl, reinterpret_cast<const char*>(a.data), static_cast<int>(len));
        checkWritten("TextBufferReader::toUnicode", tl, room);
        break;
      }
      case 11: {
        std::int32_t l = arg % 20;
        std::int32_t asked = l;
        r.getData(&l, where(op >> 4), advance);
        if (l > asked) std::abort();
        break;
      }
      default:
        r.getCharacter32(reinterpret_cast<std::int32_t*>(&bl), advance, nullptr);
        break;
    }
  }
}

const std::vector<Op>& operations() {
  static const std::vector<Op> ops = {
      // --- binary integers ---
      [](DataCnv& c, const Args& a) {
        auto b = bytesOf(a);
        c.IntToInt32(b.get(), a.size, a.sign());
      },
      [](DataCnv& c, const Args& a) {
        auto b = bytesOf(a);
        c.IntToInt64(b.get(), a.size, a.sign());
      },
      [](DataCnv& c, const Args& a) {
        auto b = bytesOf(a);
        c.UIntToUInt64(b.get(), a.size);
      },
      [](DataCnv& c, const Args& a) {
        auto b = bytesOf(a);
        c.IntToDbl(b.get(), a.size, a.scale(), a.sign());
      },
      [](DataCnv& c, const Args& a) {
        auto b = bytesOf(a);
        c.IntToDec(b.get(), a.size, a.scale());
      },
      [](DataCnv& c, const Args& a) {
        std::int32_t n = a.intSize();
        std::unique_ptr<unsigned char[]> o(new unsigned char[n]);
        switch (a.variant() % 5) {
          case 0:
            c.IntFromInt32(static_cast<std::int32_t>(a.int64()), o.get(), n, a.sign());
            break;
          case 1:
            c.UIntFromUInt32(static_cast<std::uint32_t>(a.bits()), o.get(), n);
            break;
          case 2:
            c.IntFromInt64(a.int64(), o.get(), n, a.sign());
            break;
          case 3:
            c.IntFromDbl(a.dbl(), o.get(), n, a.sign(), a.scale());
            break;
          default: {
            auto t = textOf(a);
            c.IntFromDec(t.data(), o.get(), n, a.scale());
          }
        }
      },
      // --- packed decimal ---
      [](DataCnv& c, const Args& a) {
        auto b = bytesOf(a);
        auto e = (a.h[3] & 1) ? BigEndian : LittleEndian;
        switch (a.variant() % 4) {
          case 0:
            c.PckdDecToDec(b.get(), a.size, e, a.scale(), a.sign());
            break;
          case 1:
            c.PckdDecToDbl(b.get(), a.size, e, a.scale(), a.sign());
            break;
          case 2:
            c.PckdDecToInt32(b.get(), a.size, e, a.scale(), a.sign());
            break;
          default:
            c.PckdDecToPWFInt64(b.get(), a.size, e, a.scale(), a.sign());
        }
      },
      [](DataCnv& c, const Args& a) {
        std::int32_t n = a.size8() % 40;
        std::unique_ptr<unsigned char[]> o(new unsigned char[n]);
        auto e = (a.h[3] & 64) ? BigEndian : LittleEndian;
        switch ((a.variant() >> 1) % 4) {
          case 0: {
            auto t = textOf(a);
            c.PckdDecFromDec(t.data(), o.get(), n, e, a.scale(), a.sign());
            break;
          }
          case 1:
            c.PckdDecFromDbl(a.dbl(), o.get(), n, e, a.scale(), a.sign());
            break;
          case 2:
            c.PckdDecFromInt32(static_cast<std::int32_t>(a.int64()), o.get(), n, e, a.scale(),
                               a.sign());
            break;
          default:
            c.PckdDecFromPWFInt64(a.int64(), o.get(), n, e, a.scale(), a.sign());
        }
      },
      // --- TLOG packed forms ---
      [](DataCnv& c, const Args& a) {
        auto b = bytesOf(a);
        if (a.variant() & 1)
          c.TLOGPckdStrToStr(b.get(), a.size, a.endian());
        else
          c.TLOGPckdDecToDec(b.get(), a.size, a.endian());
      },
      [](DataCnv& c, const Args& a) {
        std::int32_t n = a.size8() % 40;
        std::unique_ptr<unsigned char[]> o(new unsigned char[n]);
        auto t = textOf(a);
        PWFData v;
        switch ((a.variant() >> 1) % 4) {
          case 0:
            v = PWFData(t.data(), eString);
            break;
          case 1:
            v = PWFData(t.data(), eDecimal);
            break;
          case 2:
            v = PWFData(a.int64());
            break;
          default:
            v = PWFData(a.dbl());
        }
        std::int32_t written = -7;
        if (a.variant() & 8) {
          c.TLOGPWFDataToPckdStr(v, o.get(), n, a.endian());
        } else {
          c.TLOGPWFDataToPckdDecimal(v, o.get(), n, a.endian(), a.variant() & 16, written);
          checkWritten("TLOGPWFDataToPckdDecimal", written, n);
        }
      },
      // --- zoned decimal ---
      [](DataCnv& c, const Args& a) {
        auto b = bytesOf(a);
        // Pad characters outside 0..0xFFFF are refused by contract; try one now and then.
        std::int32_t pad = (a.variant() & 64) ? -1 : a.pad();
        switch (a.variant() % 3) {
          case 0:
            c.ExtDecToInt64(b.get(), a.size, a.sign(), a.justification(), pad, a.padIsUnicode(),
                            a.customSignEBCDIC(), a.positiveTable(), a.negativeTable());
            break;
          case 1:
            c.ExtDecToDbl(b.get(), a.size, a.scale(), a.sign(), a.justification(), pad,
                          a.padIsUnicode(), a.customSignEBCDIC(), a.positiveTable(),
                          a.negativeTable());
            break;
          default:
            c.ExtDecToDec(b.get(), a.size, a.scale(), a.sign(), a.justification(), pad,
                          a.padIsUnicode(), a.customSignEBCDIC(), a.positiveTable(),
                          a.negativeTable());
        }
      },
      [](DataCnv& c, const Args& a) {
        std::int32_t n = a.size8() % 48;
        std::unique_ptr<unsigned char[]> o(new unsigned char[n]);
        switch ((a.variant() >> 1) % 3) {
          case 0:
            c.ExtDecFromInt64(a.int64(), o.get(), n, a.sign(), a.justification(), a.pad(),
                              a.padIsUnicode(), a.customSignEBCDIC(), a.positiveTable(),
                              a.negativeTable());
            break;
          case 1:
            c.ExtDecFromDbl(a.dbl(), o.get(), n, a.scale(), a.sign(), a.justification(), a.pad(),
                            a.padIsUnicode(), a.customSignEBCDIC(), a.positiveTable(),
                            a.negativeTable());
            break;
          default: {
            auto t = textOf(a);
            c.ExtDecFromDec(t.data(), o.get(), n, a.scale(), a.sign(), a.justification(), a.pad(),
                            a.padIsUnicode(), a.customSignEBCDIC(), a.positiveTable(),
                            a.negativeTable());
          }
        }
      },
      // --- floats ---
      [](DataCnv& c, const Args& a) {
        auto b = bytesOf(a);
        if (a.variant() & 1)
          c.FltToDbl(b.get(), a.size);
        else
          c.FltToDec(b.get(), a.size, a.scale());
      },
      [](DataCnv& c, const Args& a) {
        std::int32_t n = a.intSize();
        std::unique_ptr<unsigned char[]> o(new unsigned char[n]);
        if (a.variant() & 2) {
          c.FltFromDbl(a.dbl(), o.get(), n);
        } else {
          auto t = textOf(a);
          c.FltFromDec(t.data(), o.get(), n, a.scale());
        }
      },
      [](DataCnv&, const Args& a) {
        float f[2] = {0, 0};
        double d = 0;
        std::memcpy(f, a.data, a.size < 8 ? a.size : 8);
        std::memcpy(&d, f, 8);
        switch (a.variant() % 4) {
          case 0:
            DataCnv::ConvertFloatHFPtoIEEE(&f[0], &f[1]);
            break;
          case 1:
            DataCnv::ConvertFloatIEEEtoHFP(&f[0], &f[0]);
            break;
          case 2:
            DataCnv::ConvertDoubleHFPtoIEEE(&d, &d, a.endian());
            break;
          default:
            DataCnv::ConvertDoubleIEEEtoHFP(&d, &d, a.endian());
        }
      },
      // --- number text fields: readers ---
      [](DataCnv& c, const Args& a) {
        auto u = unitsOf(a);
        switch (a.variant() % 4) {
          case 0:
            c.StrToInt32(u.p.get(), u.n, a.sign(), a.minus(), a.plus(), a.trim(), a.justification(),
                         a.pad(), a.padIsUnicode());
            break;
          case 1:
            c.StrToInt64(u.p.get(), u.n, a.sign(), a.minus(), a.plus(), a.trim(), a.justification(),
                         a.pad(), a.padIsUnicode());
            break;
          case 2:
            c.StrToDbl(u.p.get(), u.n, a.sign(), a.minus(), a.plus(), a.trim(), a.justification(),
                       a.pad(), a.padIsUnicode(), a.format());
            break;
          default:
            c.StrToDec(u.p.get(), u.n, a.sign(), a.minus(), a.plus(), a.trim(), a.justification(),
                       a.pad(), a.padIsUnicode(), a.format());
        }
      },
      // The same readers over text from the decimal alphabet, which gets past the digit checks.
      [](DataCnv& c, const Args& a) {
        auto t = textOf(a);
        std::int32_t n = static_cast<std::int32_t>(t.size() - 1);
        std::unique_ptr<char16_t[]> u(new char16_t[n]);
        std::memcpy(u.get(), t.data(), n * 2);
        if (a.variant() & 2)
          c.StrToDbl(u.get(), n, a.sign(), a.minus(), a.plus(), a.trim(), a.justification(),
                     a.pad(), a.padIsUnicode(), a.format());
        else
          c.StrToDec(u.get(), n, a.sign(), a.minus(), a.plus(), a.trim(), a.justification(),
                     a.pad(), a.padIsUnicode(), a.format());
      },
      // --- number text fields: writers ---
      [](DataCnv& c, const Args& a) {
        std::int32_t cap = a.size8();
        std::unique_ptr<char16_t[]> o(new char16_t[cap]);
        std::int32_t n = cap;
        switch ((a.variant() >> 1) % 5) {
          case 0:
            c.StrFromInt32(static_cast<std::int32_t>(a.int64()), o.get(), n, a.sign(), a.minus(),
                           a.plus(), a.doPad(), a.justification(), a.pad(), a.padIsUnicode());
            break;
          case 1:
            c.StrFromInt64(a.int64(), o.get(), n, a.sign(), a.minus(), a.plus(), a.doPad(),
                           a.justification(), a.pad(), a.padIsUnicode());
            break;
          case 2: {
            ZanStringBase s;
            c.StrFromInt64(a.int64(), s, n, a.sign(), a.minus(), a.plus(), a.doPad(),
                           a.justification(), a.pad(), a.padIsUnicode());
            return;
          }
          case 3:
            c.StrFromDbl(a.dbl(), o.get(), n, a.sign(), a.minus(), a.plus(), a.doPad(),
                         a.justification(), a.pad(), a.padIsUnicode(), a.format());
            break;
          default: {
            auto t = textOf(a);
            c.StrFromDec(ZanStringBase(t.data()), o.get(), n, a.sign(), a.minus(), a.plus(),
                         a.doPad(), a.justification(), a.pad(), a.padIsUnicode(), a.format());
          }
        }
        checkWritten("StrFrom*", n, cap);
      },
      [](DataCnv& c, const Args& a) {
        auto t = textOf(a);
        ZanStringBase out;
        switch (a.variant() % 4) {
          case 0:
            c.StrFromDec(ZanStringBase(t.data()), out);
            break;
          case 1:
            c.doubleToUString(a.dbl(), out, a.variant() & 4);
            break;
          case 2:
            c.PWFStringTodouble(ZanStringBase(t.data()));
            break;
          default:
            c.StrFromInt64(a.int64());
        }
      },
      // --- intervals ---
      [](DataCnv& c, const Args& a) {
        if (a.variant() & 1) {
          auto t = textOf(a);
          c.StrToInterval(t.data(), -1);
        } else {
          auto u = unitsOf(a);
          c.StrToInterval(u.p.get(), u.n);
        }
      },
      [](DataCnv& c, const Args& a) {
        PWFInterval iv;
        std::uint8_t raw[24] = {};
        std::memcpy(raw, a.data, a.size < 24 ? a.size : 24);
        std::memcpy(&iv.years, raw, 4);
        std::memcpy(&iv.months, raw + 4, 4);
        std::memcpy(&iv.microseconds, raw + 8, 8);
        std::memcpy(&iv.negative, raw + 16, 4);
        if (a.variant() & 2) {  // mostly sane fields
          iv.years &= 0xFFFF;
          iv.months &= 0xFF;
          if (iv.microseconds < 0) iv.microseconds = -(iv.microseconds + 1);
        }
        std::int32_t cap = a.size8();
        std::int32_t n = cap;
        switch ((a.variant() >> 2) % 4) {
          case 0: {
            std::unique_ptr<char16_t[]> o(new char16_t[cap]);
            c.StrFromInterval(iv, o.get(), n, a.doPad(), a.justification(), a.pad(),
                              a.padIsUnicode());
            checkWritten("StrFromInterval", n, cap);
            break;
          }
          case 1: {
            ZanStringBase s;
            c.StrFromInterval(iv, s, n, a.doPad(), a.justification(), a.pad(), a.padIsUnicode());
            break;
          }
          case 2:
            c.StrFromInterval(iv);
            break;
          default: {
            ZanStringBase s;
            c.AppendIntervalField(iv.years, s, a.variant() & 16);
          }
        }
      },
      // --- the standard text form ---
      [](DataCnv& c, const Args& a) {
        static constexpr ELogicalType kTypes[] = {eString,  eInteger,  eFloat,    eBinary,
                                                  eBoolean, eInterval, eDateTime, eDecimal};
        auto u = unitsOf(a);
        ELogicalType type = kTypes[a.variant() & 7];
        if (a.variant() & 8) {
          auto t = textOf(a);
          c.StandardStrToData(t.data(), (a.variant() & 16) ? -1 : std::int32_t(t.size() - 1), type);
        } else {
          c.StandardStrToData(u.p.get(), u.n, type);
        }
      },
      [](DataCnv& c, const Args& a) {
        std::uint8_t raw[44] = {};
        std::memcpy(raw, a.data, a.size < 44 ? a.size : 44);
        auto t = textOf(a);
        PWFData v;
        switch (a.variant() % 9) {
          case 0:
            v = PWFData(t.data(), eString);
            break;
          case 1:
            v = PWFData(a.int64());
            break;
          case 2:
            v = PWFData(a.dbl());
            break;
          case 3:
            v = PWFData(static_cast<const void*>(a.data), std::int32_t(a.size), eBinary, eCopy);
            break;
          case 4:
            v = PWFData(static_cast<std::int32_t>(a.int64()), eBoolean);
            break;
          case 5: {
            PWFInterval iv;
            std::memcpy(&iv.years, raw, 4);
            std::memcpy(&iv.months, raw + 4, 4);
            std::memcpy(&iv.microseconds, raw + 8, 8);
            std::memcpy(&iv.negative, raw + 16, 4);
            v = PWFData(iv);
            break;
          }
          case 6: {
            PWFDateTime dt;
            std::memcpy(&dt, raw, sizeof dt);
            v = PWFData(dt);
            break;
          }
          case 7:
            v = PWFData(t.data(), eDecimal);
            break;
          default:
            v = PWFData(static_cast<std::int32_t>(a.int64()));
        }
        c.StandardStrFromData(v);
        v.getDebugString();
      },
      // --- hexadecimal ---
      [](DataCnv& c, const Args& a) {
        if (a.variant() & 1) {
          auto b = bytesOf(a);
          c.StrFromBin(b.get(), a.size);
        } else if (a.variant() & 2) {
          auto t = textOf(a);
          c.StrToBin(t.data(), std::int32_t(t.size() - 1));
        } else {
          auto u = unitsOf(a);
          c.StrToBin(u.p.get(), u.n);
        }
      },
      // --- Base64 ---
      [](DataCnv&, const Args& a) {
        if (a.variant() & 1) {
          auto b = bytesOf(a);
          ZanStringBase s(u"x");
          CPBase64Converter::binToBase64(b.get(), a.size, s);
          PWFData back = CPBase64Converter::binFromBase64(s.data() + 1, s.length() - 1);
          std::int32_t len = 0;
          const unsigned char* p = back.getBinaryValue(len);
          if (len != std::int32_t(a.size) || (len && std::memcmp(p, a.data, len) != 0)) {
            std::fprintf(stderr, "Base64 round trip changed %zu bytes\n", a.size);
            std::abort();
          }
        } else {
          auto u = unitsOf(a);
          if (a.variant() & 2)  // mostly alphabet characters
            for (std::int32_t i = 0; i < u.n; ++i)
              u.p[i] =
                  u"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/= \n="[u.p[i] %
                                                                                           68];
          CPBase64Converter::binFromBase64(u.p.get(), u.n);
        }
      },
      // --- code pages ---
      [](DataCnv& c, const Args& a) {
        auto b = bytesOf(a);
        ZanStringBase s;
        switch (a.variant() % 4) {
          case 0:
            c.toUnicodeString(s, b.get(), a.size);
            break;
          case 1: {
            CPUnicodeConverter cv(a.ccsid(), a.endian());
            UErrorCode st = U_ZERO_ERROR;
            cv.toUnicodeString(s, reinterpret_cast<const char*>(b.get()), a.size, st);
            break;
          }
          case 2: {
            auto u = unitsOf(a);
            std::int32_t cap = a.size8();
            std::unique_ptr<unsigned char[]> o(new unsigned char[cap]);
            std::int32_t n = cap;
            c.fromUnicodeString(ZanStringBase(u.p.get(), u.n), o.get(), n);
            checkWritten("DataCnv::fromUnicodeString", n, cap);
            break;
          }
          default: {
            auto u = unitsOf(a);
            CPUnicodeConverter cv(a.ccsid(), a.endian());
            std::int32_t cap = a.size8();
            std::unique_ptr<char[]> o(new char[cap]);
            std::int32_t n = cap;
            UErrorCode st = U_ZERO_ERROR;
            cv.fromUnicodeString(o.get(), n, ZanStringBase(u.p.get(), u.n), st);
            checkWritten("CPUnicodeConverter::fromUnicodeString", n, cap);
          }
        }
      },
      // --- trimming and padding ---
      [](DataCnv& c, const Args& a) {
        auto u = unitsOf(a);
        switch (a.variant() % 3) {
          case 0: {
            std::int32_t n = c.TrimString(u.p.get(), u.n, a.pad(), a.justification(), a.trim(),
                                          a.padIsUnicode());
            checkWritten("TrimString", n, u.n);
            break;
          }
          case 1: {
            ZanStringBase s(u.p.get(), u.n);
            c.PadString(s, a.size8(), a.h[2] % 40, a.pad(), a.justification(), a.padIsUnicode());
            break;
          }
          default: {
            // `dataBytes` of data then `padBytes` of room, the pointer between them.
            std::int32_t data = std::int32_t(a.size), padBytes = a.size8();
            std::unique_ptr<unsigned char[]> b(new unsigned char[data + padBytes]);
            if (data) std::memcpy(b.get(), a.data, data);
            c.PadData(b.get() + data, padBytes, data, a.justification(), a.pad(), a.padIsUnicode());
          }
        }
      },
      // --- text buffer reader ---
      [](DataCnv&, const Args& a) {
        auto b = bytesOf(a);
        ReadOnlyByteBuffer buf(b.get(), std::int32_t(a.size));
        TextBufferReader r(&buf, a.ccsid(), a.endian());
        readerScript(a, r, std::int32_t(a.size));
      },
      // --- text buffer writer ---
      [](DataCnv&, const Args& a) {
        auto u = unitsOf(a);
        ReadWriteByteBuffer out;
        TextBufferWriter w(&out, a.ccsid(), a.endian());
        std::int32_t half = u.n / 2;
        for (int i = 2; i < 8; ++i) {
          std::uint8_t op = a.h[i];
          switch (op & 7) {
            case 0:
              w.appendStr(u.p.get(), u.n);
              break;
            case 1:
              w.appendStrCache(u.p.get(), half);
              break;
            case 2:
              w.flush();
              break;
            case 3:
              w.writeStr(u.p.get(), half, (op >> 3) % 16);
              break;
            case 4: {
              // A reader over the same bytes in another code page, or the writer's own buffer.
              auto rb = bytesOf(a);
              ReadOnlyByteBuffer rbuf(rb.get(), std::int32_t(a.size));
              std::int32_t len = std::int32_t(a.size);
              TextBufferReader r(&rbuf, kCcsids[(op >> 3) & 7],
                                 (op & 128) ? BigEndian : LittleEndian);
              std::int32_t s = a.h[1] % (len + 2), e = a.h[7] % (len + 2);
              w.appendBuf(&r, s, e);
              break;
            }
            case 5: {
              std::int32_t len = w.getLength();
              if (len > 0) {
                TextBufferReader r(&out, kCcsids[(op >> 3) & 7], a.endian());
                w.appendBuf(&r, (op >> 3) % (len + 1), len);
              }
              break;
            }
            case 6: {
              std::int32_t cap = (op >> 3) % 32;
              std::unique_ptr<char[]> t(new char[cap]);
              int n = cap;
              w.fromUnicode(t.get(), &n, u.p.get(), u.n);
              checkWritten("TextBufferWriter::fromUnicode", n, cap);
              break;
            }
            default:
              w.truncate((op >> 3) % 8);
              break;
          }
        }
        w.flush();
      },
  };
  return ops;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 9) return 0;
  const auto& ops = operations();
  std::size_t index = data[0] % ops.size();
  // Operations can be left out while a known fault in them is being fixed: BSUTILS_FUZZ_SKIP
  // holds their indices, comma-separated.
  static const std::vector<bool> skipped = [&] {
    std::vector<bool> s(ops.size(), false);
    if (const char* env = std::getenv("BSUTILS_FUZZ_SKIP"))
      for (char* end = nullptr; *env; env = *end ? end + 1 : end) {
        long i = std::strtol(env, &end, 10);
        if (end == env) break;
        if (i >= 0 && std::size_t(i) < s.size()) s[i] = true;
      }
    return s;
  }();
  if (skipped[index]) return 0;
  // BSUTILS_FUZZ_TRACE=1 turns on debug trace into a sink that formats and drops every record,
  // so that the trace and dump code runs on the same inputs.
  static const bool tracing = [] {
    const char* env = std::getenv("BSUTILS_FUZZ_TRACE");
    if (env == nullptr || *env != '1') return false;
    ZanLog::setSink([](const ZanLog::Record& r) {
      volatile std::size_t n = r.text.size() + r.function.size();
      for (const auto& i : r.inserts) n = n + i.size();
      (void)n;
    });
    ZanLog::iEffectiveLogFilter = ZanLog::kDebugLevel;
    return true;
  }();
  (void)tracing;
  Args a;
  std::memcpy(a.h, data + 1, 8);
  a.data = data + 9;
  a.size = size - 9;
  try {
    DataCnv cnv(a.ccsid(), a.endian(), a.floatFormat(), 53, nullptr, nullptr, 0, true,
                a.packedSign());
    ops[index](cnv, a);
  } catch (const ZanException&) {
    // The answer bad input is owed.
  } catch (const std::bad_alloc&) {
    // Allowed only for an absurd size.
  }
  return 0;
}
