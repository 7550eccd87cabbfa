#!/usr/bin/env python3
"""Writes the fuzz target's seed inputs: fuzz/corpus/<family>/NN-operation-detail.

A seed is byte 0, the operation's index in the target (families in the order binary, text,
date-time), then the eight argument bytes of fuzz_input.h's Args, then the field. The seeds are
well-formed calls, so that every run starts from inputs that get past each conversion's first
checks instead of waiting for the fuzzer to find a valid packed field or date-time by chance.

The operation lists below must follow the order of fuzz/*_operations.cpp: a seed's index is part
of its bytes. counts.txt records the family sizes these seeds were made for, in the form
`BSUTILS_FUZZ_COUNTS=1 bsutils_fuzz` prints them; scripts/fuzz refuses to run when they differ.
After adding or removing an operation, update the lists and run this script again:

    python3 fuzz/corpus/make_seeds.py
"""

import pathlib
import struct

HERE = pathlib.Path(__file__).resolve().parent

# Each family's operations, by what they call; the names only label the seed files.
FAMILIES = [
    ("binary", ["IntToInt32", "IntToInt64", "UIntToUInt64", "IntToDbl", "IntToDec", "IntFrom",
                "PckdDecTo", "PckdDecFrom", "TLOGPckdTo", "TLOGPWFDataTo", "ExtDecTo",
                "ExtDecFrom", "FltTo", "FltFrom", "HFPConvert"]),
    ("text", ["StrTo", "StrToDecimalText", "StrFrom", "DecimalStrings", "StrToInterval",
              "StrFromInterval", "StandardStrToData", "StandardStrFromData", "Hex", "Base64",
              "CodePages", "TrimPad", "TextBufferReader", "TextBufferWriter"]),
    ("datetime", ["StrDateTime", "BinaryDateTime", "PckdDecDateTime", "EpochDateTime"]),
]

# Alphabets of fuzz_input.h and datetime_operations.cpp: some operations spell their text through
# one, byte b standing for alphabet[b % len(alphabet)].
DECIMAL_ALPHABET = "0123456789012345678901234567.-+ e,9"
PATTERN_ALPHABET = "yyyyMMddHHmmssSSSSaEEEGzZXx'.:-/ TI"
TEXT_ALPHABET = "0123456789012345678901234567:-./ TZ+APMSunApr"
BINARY_ALPHABET = "yMdHmsSXyyMMdd+-0123456789qz"

# Indices into the tables of fuzz_input.h.
CCSID = {37: 0, 500: 1, 1208: 2, 1200: 3, 1201: 4, 819: 5, 930: 6, 1047: 7}
NO_SIGN, LEADING_EMBEDDED, TRAILING_EMBEDDED, LEADING_SEPARATE, TRAILING_SEPARATE = range(5)


def spell(text, alphabet):
    return bytes(alphabet.index(ch) for ch in text)


def u16(text):
    return text.encode("utf-16-le")


def args(ccsid=37, big=False, hfp=False, packed_sign=0, sign=NO_SIGN, right=False, trim=0,
         h2=0, h3=0, h4=0, h5=0, h6=0, variant=0):
    """The eight argument bytes; h2..h6 are raw (scale, sizes, pad, sign strings, format...)."""
    h0 = CCSID[ccsid] | (8 if big else 0) | (16 if hfp else 0) | (packed_sign << 5)
    h1 = sign | (8 if right else 0) | (trim << 4)
    return bytes([h0, h1, h2 & 255, h3, h4, h5, h6, variant])


def dt_args(strict=True, century=50, min_days=4, zone=0, locale=0, big=False, h3=0, sign=0,
            h2=None, variant=0):
    """Date-time operations read the formatter's settings from the argument bytes."""
    h0 = (0 if strict else 1) | (8 if big else 0)
    return bytes([h0, sign, century if h2 is None else h2, h3, 0, min_days, zone | (locale << 3),
                  variant])


def binary_seeds():
    q = lambda v: struct.pack("<q", v)
    d = lambda v: struct.pack("<d", v)
    return {
        "IntToInt32": [("le4-signed", args(sign=LEADING_EMBEDDED), struct.pack("<i", -123456)),
                       ("be4-signed", args(big=True, sign=LEADING_EMBEDDED), b"\x80\0\0\0"),
                       ("2-unsigned", args(), b"\xff\xff"),
                       ("1-byte", args(sign=LEADING_EMBEDDED), b"\x85")],
        "IntToInt64": [("le8", args(sign=LEADING_EMBEDDED), q(-(2**62))),
                       ("be8-unsigned", args(big=True), b"\x7f" + b"\xff" * 7),
                       ("3-bytes", args(sign=LEADING_EMBEDDED), b"\x01\x02\x03")],
        "UIntToUInt64": [("le8-max", args(), b"\xff" * 8), ("be4", args(big=True), b"\0\0\1\0")],
        "IntToDbl": [("scale2", args(sign=LEADING_EMBEDDED, h2=2), struct.pack("<i", 12345)),
                     ("scale-3", args(h2=-3), struct.pack("<q", 7))],
        "IntToDec": [("scale4", args(sign=LEADING_EMBEDDED, h2=4), struct.pack("<i", -98765)),
                     ("be8-scale0", args(big=True), b"\0\0\0\0\0\0\1\0")],
        "IntFrom": [("int32-size4", args(sign=LEADING_EMBEDDED, h3=2, variant=0), q(-42)),
                    ("uint32-size2", args(h3=1, variant=1), q(65535)),
                    ("int64-size8", args(big=True, sign=LEADING_EMBEDDED, h3=3, variant=2),
                     q(-(2**40))),
                    ("dbl-size4-scale2", args(sign=LEADING_EMBEDDED, h2=2, h3=2, variant=3),
                     d(-123.45)),
                    ("dec-size8", args(sign=LEADING_EMBEDDED, h2=1, h3=3, variant=9), b"-1234.5"),
                    ("dec-spelled-size2", args(h3=1, variant=4), spell("300", DECIMAL_ALPHABET))],
        "PckdDecTo": [("dec-signed", args(sign=LEADING_EMBEDDED, h2=2, variant=0), b"\x12\x34\x5d"),
                      ("dbl", args(sign=LEADING_EMBEDDED, h2=1, variant=1), b"\x01\x23\x4c"),
                      ("int32", args(sign=LEADING_EMBEDDED, variant=2), b"\x99\x99\x9c"),
                      ("pwfint64-big", args(sign=LEADING_EMBEDDED, h3=1, variant=3),
                       b"\x00\x00\x12\x3f"),
                      ("dec-unsigned", args(variant=0), b"\x12\x34\x56")],
        "PckdDecFrom": [("dec-size4", args(sign=LEADING_EMBEDDED, h2=2, h3=4, variant=1),
                         b"-123.45"),
                        ("dbl-size6", args(sign=LEADING_EMBEDDED, h2=3, h3=6, variant=2),
                         d(3.14159)),
                        ("int32-size3", args(sign=LEADING_EMBEDDED, h3=3, variant=4), q(-99999)),
                        ("pwfint64-size10-big", args(sign=LEADING_EMBEDDED, h3=64 | 10, variant=6),
                         q(10**15))],
        "TLOGPckdTo": [("dec", args(variant=0), b"\x12\x34\x5c"),
                       ("str", args(variant=1), b"\x01\x23\x45\x6f"),
                       ("dec-big", args(big=True, variant=0), b"\x98\x76\x5d")],
        "TLOGPWFDataTo": [("decimal-from-string", args(h3=8, variant=1), b"12345"),
                          ("decimal-from-decimal", args(h3=8, variant=3), b"-123.45"),
                          ("decimal-from-int64", args(h3=10, variant=4 | 16), q(-987654321)),
                          ("decimal-from-dbl", args(h3=12, variant=6), d(2.5)),
                          ("pckdstr-from-string", args(h3=6, variant=9), b"0123456789")],
        "ExtDecTo": [("int64-ebcdic-trailing", args(sign=TRAILING_EMBEDDED, variant=0),
                      b"\xf1\xf2\xf3\xd4"),
                     ("dbl-ascii-leading-sep", args(ccsid=819, sign=LEADING_SEPARATE, h2=2,
                                                    variant=1), b"-12345"),
                     ("dec-ebcdic-right-padded", args(sign=TRAILING_SEPARATE, right=True, h2=1,
                                                      h4=2, variant=2), b"\x40\x40\xf4\xf2\x60"),
                     ("int64-custom-table", args(ccsid=819, sign=TRAILING_EMBEDDED, h4=1 << 5,
                                                 variant=0), b"12C"),
                     ("int64-unicode-pad", args(ccsid=1200, right=True, h4=8, variant=0),
                      u16("  42"))],
        "ExtDecFrom": [("int64-ebcdic-size8", args(sign=TRAILING_EMBEDDED, h3=8, variant=0),
                        q(-1234)),
                       ("dbl-ascii-size10", args(ccsid=819, sign=LEADING_SEPARATE, h2=2, h3=10,
                                                 variant=2), d(-12.5)),
                       ("dec-padded-size12", args(ccsid=819, sign=TRAILING_SEPARATE, right=True,
                                                  h3=12, h4=128, variant=5), b"987.65"),
                       ("int64-utf16-size16", args(ccsid=1200, h3=16, variant=0), q(31415))],
        "FltTo": [("ieee4-dbl", args(variant=1), struct.pack("<f", 1.5)),
                  ("ieee8-dec", args(h2=3, variant=0), d(-0.125)),
                  ("hfp8-dbl-big", args(big=True, hfp=True, variant=1),
                   b"\x41\x10\x00\x00\x00\x00\x00\x00"),
                  ("hfp4-dec", args(hfp=True, variant=0), b"\x00\x00\x10\x41")],
        "FltFrom": [("dbl-size8", args(h3=3, variant=2), d(6.02e23)),
                    ("dbl-size4-hfp", args(hfp=True, h3=2, variant=2), d(-1.0)),
                    ("dec-size8", args(h3=3, variant=1), b"1.25e-3")],
        "HFPConvert": [("float-hfp-to-ieee", args(variant=0), b"\x00\x00\x10\x41\0\0\0\0"),
                       ("float-ieee-to-hfp", args(variant=1), struct.pack("<f", 100.0)),
                       ("double-hfp-to-ieee", args(big=True, variant=2),
                        b"\x41\x10\x00\x00\x00\x00\x00\x00"),
                       ("double-ieee-to-hfp", args(variant=3), d(0.1))],
    }


def text_seeds():
    q = lambda v: struct.pack("<q", v)
    d = lambda v: struct.pack("<d", v)
    # h5: minus string (bits 0-1), plus string (bits 2-3), decimal comma (bit 4), form (bits
    # 5-6), strict (bit 7); h6: decimal places.
    plus_minus = 0 | (1 << 2)
    interval = lambda y, m, us, neg: struct.pack("<iiqi", y, m, us, neg)
    return {
        "StrTo": [("int32-leading-sep", args(sign=LEADING_SEPARATE, h5=plus_minus, variant=0),
                   u16("-123")),
                  ("int64-trimmed", args(sign=LEADING_SEPARATE, trim=3, variant=1),
                   u16("  9000000000  ")),
                  ("dbl-comma", args(sign=LEADING_SEPARATE, h5=16, h6=2, variant=2), u16("3,25")),
                  ("dec-trailing-sep", args(sign=TRAILING_SEPARATE, h6=3, variant=3),
                   u16("12.500-")),
                  ("dec-strict", args(sign=LEADING_SEPARATE, h5=128, variant=3), u16("+1.0"))],
        "StrToDecimalText": [("dec", args(sign=LEADING_SEPARATE, variant=1), b"-12.50"),
                             ("dbl", args(sign=LEADING_SEPARATE, variant=3), b"1e3"),
                             ("dec-spelled", args(variant=0), spell("007.10", DECIMAL_ALPHABET))],
        "StrFrom": [("int32-cap12", args(sign=LEADING_SEPARATE, h3=12, variant=0), q(-2147483648)),
                    ("int64-padded", args(sign=TRAILING_SEPARATE, right=True, h3=24, h4=128 | 1,
                                          variant=2), q(123456789012)),
                    ("int64-string", args(sign=LEADING_SEPARATE, h3=30, variant=4), q(-5)),
                    ("dbl-cap20", args(sign=LEADING_SEPARATE, h3=20, h6=4, variant=6), d(-2.75)),
                    ("dec-cap16", args(sign=LEADING_SEPARATE, h3=16, h5=16, h6=2, variant=9),
                     b"-0.005"),
                    ("int32-cap2-too-small", args(sign=LEADING_SEPARATE, h3=2, variant=0),
                     q(12345))],
        "DecimalStrings": [("from-dec", args(variant=0), spell("-123.4500", DECIMAL_ALPHABET)),
                           ("double-to-string", args(variant=1), d(1e-7)),
                           ("double-to-string-flag", args(variant=5), d(12345.678)),
                           ("string-to-double", args(variant=2), spell("6.5e2", DECIMAL_ALPHABET)),
                           ("from-int64", args(variant=3), q(-9223372036854775807))],
        "StrToInterval": [("text-days-time", args(variant=1), b"-P3DT4H5M6.5S"),
                          ("text-years-months", args(variant=1), b"P1Y14M"),
                          ("units-hours", args(variant=0), u16("PT36H")),
                          ("units-zero", args(variant=0), u16("PT0S"))],
        "StrFromInterval": [("buffer", args(h3=32, variant=2), interval(1, 2, 0, 0)),
                            ("string-negative", args(h3=32, variant=6),
                             interval(0, 0, 93784500000, 1)),
                            ("text", args(variant=10), interval(0, 0, 1500000, 0)),
                            ("append-field", args(variant=14 | 16), interval(2147483647, 0, 0, 0)),
                            ("buffer-padded", args(h3=40, h4=128, right=True, variant=2),
                             interval(3, 0, 0, 0))],
        "StandardStrToData": [("string", args(variant=0), u16("hello")),
                              ("integer", args(variant=8 | 1), b"-42"),
                              ("float", args(variant=2), u16("1.5E2")),
                              ("binary", args(variant=8 | 3), b"0aFF"),
                              ("boolean", args(variant=4), u16("true")),
                              ("interval", args(variant=8 | 5 | 16), b"P1Y2M"),
                              ("datetime", args(variant=6), u16("2004-02-29T13:05:09.123+01:00")),
                              ("decimal", args(variant=8 | 7), b"-1.250")],
        "StandardStrFromData": [("string", args(variant=9), b"text"),
                                ("int64", args(variant=1), q(-77)),
                                ("float", args(variant=2), d(0.1)),
                                ("binary", args(variant=3), b"\x00\xab\xff"),
                                ("boolean", args(variant=4), q(1)),
                                ("interval", args(variant=5), interval(0, 0, 3600000000, 0)),
                                ("datetime", args(variant=6), bytes(44)),
                                ("decimal", args(variant=7), spell("3.14", DECIMAL_ALPHABET)),
                                ("int32", args(variant=8), q(2147483647))],
        "Hex": [("from-bin", args(variant=1), b"\x00\x01\xab\xff"),
                ("to-bin-spelled", args(variant=2), spell("0123456789", DECIMAL_ALPHABET)),
                ("to-bin-units", args(variant=0), u16("0aFf12")),
                ("to-bin-odd-units", args(variant=0), u16("abc"))],
        "Base64": [("round-trip", args(variant=1), b"Hello, world\x00\xff"),
                   ("decode", args(variant=0), u16("SGVsbG8=")),
                   ("decode-lines", args(variant=0), u16("SGVs\nbG8gd29y\nbGQ=")),
                   ("decode-mapped", args(variant=2), bytes(range(0, 68, 3)))],
        "CodePages": [("to-unicode-ebcdic", args(ccsid=37, variant=0), b"\xc8\x85\x93\x93\x96"),
                      ("to-unicode-utf8", args(ccsid=1208, variant=1), "h\u00e9llo \u20ac".encode()),
                      ("to-unicode-utf16be", args(ccsid=1201, variant=1), "abc".encode("utf-16-be")),
                      ("to-unicode-dbcs", args(ccsid=930, variant=1), b"\x0e\x44\x5a\x0f\xc1"),
                      ("from-unicode-ebcdic", args(ccsid=500, h3=8, variant=2), u16("Hello!")),
                      ("from-unicode-utf8", args(ccsid=1208, h3=12, variant=3),
                       u16("\u00e9\u20ac\u3000")),
                      ("from-unicode-too-small", args(ccsid=1208, h3=2, variant=3), u16("\u20ac"))],
        "TrimPad": [("trim-both", args(trim=3, h4=0, variant=0), u16("  abc  ")),
                    ("trim-zeros-right", args(right=True, trim=1, h4=1, variant=0), u16("00042")),
                    ("pad-string", args(h2=10, h3=4, h4=3, variant=1), u16("ab")),
                    ("pad-data-right", args(right=True, h3=6, h4=0, variant=2), b"xyz"),
                    ("pad-data-unicode", args(h3=8, h4=8 | 6, variant=2), u16("ab"))],
        # Script ops: (op, arg) pairs in h2..h7, op & 15 the call, op & 16 advance.
        "TextBufferReader": [("sections-ascii", args(ccsid=819, h2=0x10 | 0, h3=5, h4=0x10 | 4,
                                                     h5=1, h6=10, variant=32),
                              b"hello world, reader"),
                             ("utf16-cursor", args(ccsid=1200, h2=8, h3=4, h4=0x10 | 2, h5=6,
                                                   h6=5, variant=3), u16("abcdefgh")),
                             ("utf8-data", args(ccsid=1208, h2=0x10 | 11, h3=4, h4=3, h5=2,
                                                h6=12, variant=0), "d\u00e9j\u00e0 vu".encode()),
                             ("ebcdic-move", args(ccsid=37, h2=7, h3=3, h4=9, h5=255, h6=1,
                                                  variant=40), b"\xc1\xc2\xc3\xc4\xc5")],
        # Writer ops: one per byte of h2..h7, op & 7 the call.
        "TextBufferWriter": [("append-flush-ebcdic", args(ccsid=37, h2=0, h3=1, h4=2, h5=3 | 8,
                                                          h6=6 | 64, variant=7), u16("Hello writer")),
                             ("append-buffer-utf8", args(ccsid=1208, h2=4 | 16, h3=5, h4=0,
                                                         h5=2, h6=7 | 8, variant=3),
                              u16("caf\u00e9")),
                             ("utf16-truncate", args(ccsid=1200, big=True, h2=0, h3=7 | 16, h4=1,
                                                     h5=0, h6=2, variant=5), u16("abcdef"))],
    }


def datetime_seeds():
    def text(pattern, value, spelled=False, **kw):
        # Byte 0 of the field splits it: the pattern spelled before, the text after. Variant 2
        # reads ISO ("I") instead of the pattern, variant bit 0 spells the text too.
        p = spell(pattern, PATTERN_ALPHABET)
        t = spell(value, TEXT_ALPHABET) if spelled else value.encode("latin-1")
        return dt_args(**kw), bytes([1 + len(p)]) + p + t

    def record(pattern, data, capacity, **kw):
        p = spell(pattern, BINARY_ALPHABET)
        return dt_args(variant=capacity, **kw), bytes([1 + len(p)]) + p + data

    def seconds(value, variant, epoch=b""):
        # Variant bit 4 picks seconds, bit 3 the epoch spelled from the field's bytes 8 on,
        # otherwise variant % 7 one of the fixed epochs.
        return dt_args(variant=variant), struct.pack("<q", value) + epoch

    return {
        "StrDateTime": [
            ("iso-utc", *text("", "2024-02-29T12:34:56Z", variant=2)),
            ("iso-offset-paris", *text("", "2023-04-09T13:05:00.250+02:00", zone=1, variant=2)),
            ("iso-date-lenient", *text("", "2023-02-30", strict=False, variant=2)),
            ("yyyyMMdd", *text("yyyyMMdd", "20230409")),
            ("dd.MM.yy-HHmm", *text("dd.MM.yy HH:mm", "09.04.23 13:05", century=80)),
            ("time-ms-zone", *text("HH:mm:ss.SSSZ", "23:59:59.999+0530", zone=2)),
            ("weekday-locale", *text("EEE dd MM yyyy", "Sun 09 04 2023", locale=0)),
            ("am-pm-de", *text("yyyy-MM-dd HH:mm a", "2023-04-09 01:05 PM", locale=1)),
            ("quoted-T", *text("yyyy-MM-dd'T'HH:mm:ssXXX", "2023-04-09T13:05:09+01:00")),
            ("spelled-text", *text("yyyyMMdd", "20230409", spelled=True, variant=1)),
        ],
        "BinaryDateTime": [
            ("tm-style", *record("y+1900M+1d", b"\x7b\x03\x09", 3)),
            ("words", *record("yyMMddHHmmss", struct.pack("<6h", 2023, 4, 9, 13, 5, 9), 12)),
            ("ints-ms", *record("yyyyMMMMddddSS", struct.pack("<3ih", 2024, 2, 29, 999), 16)),
            ("filler", *record("yyXXMd", struct.pack("<hhbb", 2023, 0, 12, 31), 6)),
            ("short-record-lenient", *record("yyMd", b"\xe7\x07", 4, strict=False)),
            ("capacity-too-small", *record("yyMd", b"\xe7\x07\x04\x09", 2)),
        ],
        "PckdDecDateTime": [
            ("yyyyMMdd", dt_args(variant=0), b"\x02\x02\x30\x40\x9f"),
            ("yyMMdd", dt_args(variant=1), b"\x23\x04\x09\x0f"),
            ("HHmmss", dt_args(variant=2), b"\x13\x05\x09\x0f"),
            ("yyyyMMddHHmmss-big", dt_args(variant=3, h3=1), b"\x20\x23\x04\x09\x13\x05\x09\x0f"),
            ("iso-digits", dt_args(variant=4), b"\x20\x23\x04\x09\x13\x05\x0f"),
            ("yyyyDDD-signed", dt_args(variant=5, sign=LEADING_EMBEDDED), b"\x20\x23\x09\x9c"),
            ("ddMMyyyy", dt_args(variant=6), b"\x09\x04\x20\x23\x0f"),
            ("ms-scale2", dt_args(variant=7, h2=2),
             b"\x02\x02\x30\x40\x91\x30\x50\x91\x23\x00\x0f"),
        ],
        "EpochDateTime": [
            ("ms-no-epoch", *seconds(1680000000000, 0)),
            ("ms-empty-epoch", *seconds(0, 1)),
            ("ms-1900", *seconds(-2208988800000, 2)),
            ("ms-1970", *seconds(1680000000123, 4)),
            ("ms-bad-epoch", *seconds(5, 6)),
            ("seconds-1900", *seconds(2000000000, 16)),
            ("seconds-2000", *seconds(-1, 17)),
            ("seconds-9999", *seconds(-86400, 19)),
            ("ms-spelled-epoch", *seconds(86400000, 8,
                                          epoch=spell("1970-01-01T00:00:00+00:00", TEXT_ALPHABET))),
        ],
    }


def main():
    builders = {"binary": binary_seeds, "text": text_seeds, "datetime": datetime_seeds}
    index = 0
    counts = []
    for family, operations in FAMILIES:
        seeds = builders[family]()
        assert list(seeds) == operations, f"{family}: seeds for {list(seeds)}"
        folder = HERE / family
        folder.mkdir(exist_ok=True)
        for old in folder.iterdir():
            old.unlink()
        for name in operations:
            for detail, argument_bytes, field in seeds[name]:
                assert len(argument_bytes) == 8 and index < 256
                (folder / f"{index:02d}-{name}-{detail}").write_bytes(
                    bytes([index]) + argument_bytes + field)
            index += 1
        counts.append(f"{family} {len(operations)}\n")
    (HERE / "counts.txt").write_text("".join(counts))


if __name__ == "__main__":
    main()
