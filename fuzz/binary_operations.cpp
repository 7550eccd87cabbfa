// Binary integers, packed and TLOG packed decimal, zoned decimal and floats.

#include <bsutils/dataconv.h>
#include <bsutils/pwfdata.h>

#include "fuzz_input.h"

namespace bsfuzz {

const std::vector<Op>& binaryOperations() {
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
  };
  return ops;
}

}  // namespace bsfuzz
