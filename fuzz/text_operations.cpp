// Number text, intervals, the standard text form, hexadecimal, Base64, code pages, trimming and
// padding, and the text buffer reader and writer.

#include <bsutils/bytebuffer.h>
#include <bsutils/cpbase64converter.h>
#include <bsutils/cpunicodeconverter.h>
#include <bsutils/dataconv.h>
#include <bsutils/pwfdata.h>
#include <bsutils/textbufferreader.h>
#include <bsutils/textbufferwriter.h>
#include <zan/zanstringbase.h>

#include <climits>

#include "fuzz_input.h"

namespace bsfuzz {
namespace {

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

}  // namespace

const std::vector<Op>& textOperations() {
  static const std::vector<Op> ops = {
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

}  // namespace bsfuzz
