// The field readers that records cross most, each beside a floor: a minimal hand-written decoder of
// the same field that validates it as strictly, written here and checked against the library on
// every field of the set before timing, so that the ratio of the two is read from one run. The
// fields vary (a few hundred values from a fixed seed) so that branch prediction flatters neither
// side; each iteration reads the whole set, and the counters give the time a field.

#include <benchmark/benchmark.h>
#include <bsutils/dataconv.h>

#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr std::size_t kFields = 512;

template <std::size_t Size>
using Fields = std::vector<std::array<unsigned char, Size>>;

[[noreturn]] void disagree(const char* what, std::size_t index) {
  std::fprintf(stderr, "%s: the floor and the library disagree on field %zu\n", what, index);
  std::abort();
}

template <class Read>
void timeOverSet(benchmark::State& state, std::size_t count, Read read) {
  for (auto _ : state) {
    for (std::size_t i = 0; i < count; ++i) benchmark::DoNotOptimize(read(i));
  }
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * count));
}

// A value with two implied places as the decimal readers give it ("-0.05", "12.30"), written with
// std::to_chars; the floors of the decimal readers end here.
std::string floorDecimalText(std::int64_t value) {
  char text[24];
  const std::int64_t magnitude = value < 0 ? -value : value;
  char* end = text;
  if (value < 0) *end++ = '-';
  end = std::to_chars(end, text + sizeof text, magnitude / 100).ptr;
  *end++ = '.';
  *end++ = static_cast<char>('0' + magnitude / 10 % 10);
  *end++ = static_cast<char>('0' + magnitude % 10);
  return std::string(text, end);
}

// --- 4-byte big-endian binary integers ---

Fields<4> binaryIntegers() {
  std::mt19937 random(4);
  Fields<4> fields(kFields);
  for (auto& f : fields) {
    const auto value = static_cast<std::uint32_t>(random());
    for (int i = 0; i < 4; ++i) f[i] = static_cast<unsigned char>(value >> (24 - 8 * i));
  }
  return fields;
}

std::int32_t floorBinaryInteger(const unsigned char* f) {
  return static_cast<std::int32_t>(std::uint32_t{f[0]} << 24 | std::uint32_t{f[1]} << 16 |
                                   std::uint32_t{f[2]} << 8 | f[3]);
}

void BM_FloorBinIntToInt32(benchmark::State& state) {
  const auto fields = binaryIntegers();
  timeOverSet(state, fields.size(),
              [&](std::size_t i) { return floorBinaryInteger(fields[i].data()); });
}
BENCHMARK(BM_FloorBinIntToInt32);

void BM_LibBinIntToInt32(benchmark::State& state) {
  const auto fields = binaryIntegers();
  DataCnv cnv(37, BigEndian);
  for (std::size_t i = 0; i < fields.size(); ++i) {
    if (cnv.IntToInt32(fields[i].data(), 4, DataCnv::eLeadingEmbeddedSign) !=
        floorBinaryInteger(fields[i].data())) {
      disagree("binary integer", i);
    }
  }
  timeOverSet(state, fields.size(), [&](std::size_t i) {
    return cnv.IntToInt32(fields[i].data(), 4, DataCnv::eLeadingEmbeddedSign);
  });
}
BENCHMARK(BM_LibBinIntToInt32);

// The same fields as decimal text with two places: the floor also writes the text.
void BM_FloorBinIntToDec(benchmark::State& state) {
  const auto fields = binaryIntegers();
  timeOverSet(state, fields.size(), [&](std::size_t i) {
    return floorDecimalText(floorBinaryInteger(fields[i].data()));
  });
}
BENCHMARK(BM_FloorBinIntToDec);

void BM_LibBinIntToDec(benchmark::State& state) {
  const auto fields = binaryIntegers();
  DataCnv cnv(37, BigEndian);
  const auto read = [&](std::size_t i) { return cnv.IntToDec(fields[i].data(), 4, 2); };
  for (std::size_t i = 0; i < fields.size(); ++i) {
    if (read(i).getDecimalText().toUtf8() !=
        floorDecimalText(floorBinaryInteger(fields[i].data()))) {
      disagree("binary integer text", i);
    }
  }
  timeOverSet(state, fields.size(), read);
}
BENCHMARK(BM_LibBinIntToDec);

// --- 5-byte packed decimal, 9 digits and a sign ---

Fields<5> packedDecimals() {
  std::mt19937 random(5);
  Fields<5> fields(kFields);
  for (auto& f : fields) {
    std::uint64_t digits = random() % 1000000000;
    const unsigned char sign = random() % 2 ? 0x0D : 0x0C;
    f[4] = static_cast<unsigned char>((digits % 10) << 4 | sign);
    digits /= 10;
    for (int i = 3; i >= 0; --i) {
      f[i] = static_cast<unsigned char>((digits / 10 % 10) << 4 | digits % 10);
      digits /= 100;
    }
  }
  return fields;
}

// Every digit nibble 0 to 9, the sign nibble above 9; D negative. False for anything else.
bool floorPacked(const unsigned char* f, std::int64_t& value) {
  std::int64_t magnitude = 0;
  for (int i = 0; i < 5; ++i) {
    const unsigned high = f[i] >> 4;
    const unsigned low = f[i] & 0x0F;
    if (high > 9) return false;
    magnitude = magnitude * 10 + high;
    if (i < 4) {
      if (low > 9) return false;
      magnitude = magnitude * 10 + low;
    } else if (low < 10) {
      return false;
    }
  }
  value = (f[4] & 0x0F) == 0x0D ? -magnitude : magnitude;
  return true;
}

void BM_FloorPackedToInt64(benchmark::State& state) {
  const auto fields = packedDecimals();
  std::int64_t value = 0;
  timeOverSet(state, fields.size(), [&](std::size_t i) {
    floorPacked(fields[i].data(), value);
    return value;
  });
}
BENCHMARK(BM_FloorPackedToInt64);

void BM_LibPackedToInt64(benchmark::State& state) {
  const auto fields = packedDecimals();
  DataCnv cnv(37, BigEndian);
  const auto read = [&](std::size_t i) {
    return cnv.PckdDecToPWFInt64(fields[i].data(), 5, BigEndian, 0, DataCnv::eLeadingEmbeddedSign);
  };
  for (std::size_t i = 0; i < fields.size(); ++i) {
    std::int64_t expected = 0;
    if (!floorPacked(fields[i].data(), expected) || read(i) != expected) disagree("packed", i);
  }
  timeOverSet(state, fields.size(), read);
}
BENCHMARK(BM_LibPackedToInt64);

// The packed reader keeps the field's leading zeros; the floor compares values, not forms.
std::string floorPackedText(const unsigned char* f) {
  std::int64_t value = 0;
  floorPacked(f, value);
  return floorDecimalText(value);
}

void BM_FloorPackedToDec(benchmark::State& state) {
  const auto fields = packedDecimals();
  timeOverSet(state, fields.size(),
              [&](std::size_t i) { return floorPackedText(fields[i].data()); });
}
BENCHMARK(BM_FloorPackedToDec);

void BM_LibPackedToDec(benchmark::State& state) {
  const auto fields = packedDecimals();
  DataCnv cnv(37, BigEndian);
  const auto read = [&](std::size_t i) {
    return cnv.PckdDecToDec(fields[i].data(), 5, BigEndian, 2, DataCnv::eLeadingEmbeddedSign);
  };
  for (std::size_t i = 0; i < fields.size(); ++i) {
    if (std::stod(read(i).getDecimalText().toUtf8()) !=
        std::stod(floorPackedText(fields[i].data()))) {
      disagree("packed text", i);
    }
  }
  timeOverSet(state, fields.size(), read);
}
BENCHMARK(BM_LibPackedToDec);

// --- 7-digit EBCDIC zoned decimal, the sign in the last digit's zone ---

Fields<7> zonedDecimals() {
  std::mt19937 random(7);
  Fields<7> fields(kFields);
  for (auto& f : fields) {
    std::uint32_t digits = random() % 10000000;
    for (int i = 6; i >= 0; --i) {
      f[i] = static_cast<unsigned char>(0xF0 | digits % 10);
      digits /= 10;
    }
    if (random() % 2) f[6] = static_cast<unsigned char>(0xD0 | (f[6] & 0x0F));
  }
  return fields;
}

// Zone F on every digit but the last, whose zone is A to F (D negative); digits 0 to 9.
bool floorZoned(const unsigned char* f, std::int64_t& value) {
  std::int64_t magnitude = 0;
  for (int i = 0; i < 7; ++i) {
    const unsigned zone = f[i] >> 4;
    const unsigned digit = f[i] & 0x0F;
    if (digit > 9 || (i < 6 ? zone != 0x0F : zone < 0x0A)) return false;
    magnitude = magnitude * 10 + digit;
  }
  value = (f[6] >> 4) == 0x0D && magnitude != 0 ? -magnitude : magnitude;
  return true;
}

void BM_FloorZonedToInt64(benchmark::State& state) {
  const auto fields = zonedDecimals();
  std::int64_t value = 0;
  timeOverSet(state, fields.size(), [&](std::size_t i) {
    floorZoned(fields[i].data(), value);
    return value;
  });
}
BENCHMARK(BM_FloorZonedToInt64);

void BM_LibZonedToInt64(benchmark::State& state) {
  const auto fields = zonedDecimals();
  DataCnv cnv(37);
  const auto read = [&](std::size_t i) {
    return cnv.ExtDecToInt64(fields[i].data(), 7, DataCnv::eTrailingEmbeddedSign,
                             DataCnv::eRightJustified, u'0', true, false, nullptr, nullptr);
  };
  for (std::size_t i = 0; i < fields.size(); ++i) {
    std::int64_t expected = 0;
    if (!floorZoned(fields[i].data(), expected) || read(i) != expected) disagree("zoned", i);
  }
  timeOverSet(state, fields.size(), read);
}
BENCHMARK(BM_LibZonedToInt64);

// The same fields as decimal text with two places.
std::string floorZonedText(const unsigned char* f) {
  std::int64_t value = 0;
  floorZoned(f, value);
  return floorDecimalText(value);
}

void BM_FloorZonedToDec(benchmark::State& state) {
  const auto fields = zonedDecimals();
  timeOverSet(state, fields.size(),
              [&](std::size_t i) { return floorZonedText(fields[i].data()); });
}
BENCHMARK(BM_FloorZonedToDec);

void BM_LibZonedToDec(benchmark::State& state) {
  const auto fields = zonedDecimals();
  DataCnv cnv(37);
  const auto read = [&](std::size_t i) {
    return cnv.ExtDecToDec(fields[i].data(), 7, 2, DataCnv::eTrailingEmbeddedSign,
                           DataCnv::eRightJustified, u'0', true, false, nullptr, nullptr);
  };
  for (std::size_t i = 0; i < fields.size(); ++i) {
    if (read(i).getDecimalText().toUtf8() != floorZonedText(fields[i].data())) {
      disagree("zoned text", i);
    }
  }
  timeOverSet(state, fields.size(), read);
}
BENCHMARK(BM_LibZonedToDec);

// --- writers: integers into 5-byte packed decimal and 4-byte big-endian binary ---

std::vector<std::int64_t> integers() {
  std::mt19937_64 random(64);
  std::vector<std::int64_t> values(kFields);
  for (auto& value : values) {
    value = static_cast<std::int64_t>(random() % 2000000000) - 1000000000 + 1;
    value >>= random() % 24;  // magnitudes of every size, not only the largest
  }
  return values;
}

// Nine digits and a C or D sign; false when the value has more digits than the field.
bool floorPackInteger(std::int64_t value, unsigned char* f) {
  std::uint64_t magnitude = value < 0 ? 0 - static_cast<std::uint64_t>(value) : value;
  if (magnitude > 999999999) return false;
  f[4] = static_cast<unsigned char>((magnitude % 10) << 4 | (value < 0 ? 0x0D : 0x0C));
  magnitude /= 10;
  for (int i = 3; i >= 0; --i) {
    f[i] = static_cast<unsigned char>((magnitude / 10 % 10) << 4 | magnitude % 10);
    magnitude /= 100;
  }
  return true;
}

void BM_FloorPackedFromInt64(benchmark::State& state) {
  const auto values = integers();
  std::array<unsigned char, 5> field{};
  timeOverSet(state, values.size(), [&](std::size_t i) {
    floorPackInteger(values[i], field.data());
    return field[4];
  });
}
BENCHMARK(BM_FloorPackedFromInt64);

void BM_LibPackedFromInt64(benchmark::State& state) {
  const auto values = integers();
  DataCnv cnv(37, BigEndian);
  std::array<unsigned char, 5> field{};
  const auto write = [&](std::size_t i) {
    std::int32_t size = 5;
    cnv.PckdDecFromPWFInt64(values[i], field.data(), size, BigEndian, 0,
                            DataCnv::eLeadingEmbeddedSign);
    return field[4];
  };
  for (std::size_t i = 0; i < values.size(); ++i) {
    std::array<unsigned char, 5> expected{};
    if (!floorPackInteger(values[i], expected.data())) disagree("packed writer", i);
    write(i);
    if (field != expected) disagree("packed writer", i);
  }
  timeOverSet(state, values.size(), write);
}
BENCHMARK(BM_LibPackedFromInt64);

void floorStoreInt32(std::int64_t value, unsigned char* f) {
  const auto bits = static_cast<std::uint32_t>(value);
  for (int i = 0; i < 4; ++i) f[i] = static_cast<unsigned char>(bits >> (24 - 8 * i));
}

void BM_FloorBinIntFromInt32(benchmark::State& state) {
  const auto values = integers();
  std::array<unsigned char, 4> field{};
  timeOverSet(state, values.size(), [&](std::size_t i) {
    floorStoreInt32(values[i], field.data());
    return field[3];
  });
}
BENCHMARK(BM_FloorBinIntFromInt32);

void BM_LibBinIntFromInt32(benchmark::State& state) {
  const auto values = integers();
  DataCnv cnv(37, BigEndian);
  std::array<unsigned char, 4> field{};
  const auto write = [&](std::size_t i) {
    std::int32_t size = 4;
    cnv.IntFromInt32(static_cast<std::int32_t>(values[i]), field.data(), size,
                     DataCnv::eLeadingEmbeddedSign);
    return field[3];
  };
  for (std::size_t i = 0; i < values.size(); ++i) {
    std::array<unsigned char, 4> expected{};
    floorStoreInt32(values[i], expected.data());
    write(i);
    if (field != expected) disagree("binary writer", i);
  }
  timeOverSet(state, values.size(), write);
}
BENCHMARK(BM_LibBinIntFromInt32);

// --- floats: 8-byte IEEE and 4-byte HFP, big-endian ---

Fields<8> ieeeDoubles() {
  std::mt19937_64 random(8);
  std::uniform_real_distribution<double> values(-1e9, 1e9);
  Fields<8> fields(kFields);
  for (auto& f : fields) {
    const double value = values(random);
    std::uint64_t bits;
    std::memcpy(&bits, &value, 8);
    for (int i = 0; i < 8; ++i) f[i] = static_cast<unsigned char>(bits >> (56 - 8 * i));
  }
  return fields;
}

double floorIeee(const unsigned char* f) {
  std::uint64_t bits = 0;
  for (int i = 0; i < 8; ++i) bits = bits << 8 | f[i];
  double value;
  std::memcpy(&value, &bits, 8);
  return value;
}

void BM_FloorIeee8ToDbl(benchmark::State& state) {
  const auto fields = ieeeDoubles();
  timeOverSet(state, fields.size(), [&](std::size_t i) { return floorIeee(fields[i].data()); });
}
BENCHMARK(BM_FloorIeee8ToDbl);

void BM_LibIeee8ToDbl(benchmark::State& state) {
  const auto fields = ieeeDoubles();
  DataCnv cnv(37, BigEndian, IEEEFloat);
  for (std::size_t i = 0; i < fields.size(); ++i) {
    if (cnv.FltToDbl(fields[i].data(), 8) != floorIeee(fields[i].data())) disagree("IEEE", i);
  }
  timeOverSet(state, fields.size(),
              [&](std::size_t i) { return cnv.FltToDbl(fields[i].data(), 8); });
}
BENCHMARK(BM_LibIeee8ToDbl);

// The same fields as decimal text: the shortest digits that read back exactly, positional.
std::string floorIeeeText(const unsigned char* f) {
  char text[32];
  return std::string(
      text, std::to_chars(text, text + sizeof text, floorIeee(f), std::chars_format::fixed).ptr);
}

void BM_FloorIeee8ToDec(benchmark::State& state) {
  const auto fields = ieeeDoubles();
  timeOverSet(state, fields.size(), [&](std::size_t i) { return floorIeeeText(fields[i].data()); });
}
BENCHMARK(BM_FloorIeee8ToDec);

void BM_LibIeee8ToDec(benchmark::State& state) {
  const auto fields = ieeeDoubles();
  DataCnv cnv(37, BigEndian, IEEEFloat);
  const auto read = [&](std::size_t i) { return cnv.FltToDec(fields[i].data(), 8, 0); };
  for (std::size_t i = 0; i < fields.size(); ++i) {
    if (read(i).getDecimalText().toUtf8() != floorIeeeText(fields[i].data())) {
      disagree("IEEE text", i);
    }
  }
  timeOverSet(state, fields.size(), read);
}
BENCHMARK(BM_LibIeee8ToDec);

// Short HFP values of normal magnitude (characteristics 56 to 72) with a normalised fraction: every
// one is a float, so the runtime's conversion through a float keeps it exactly.
Fields<4> hfpShorts() {
  std::mt19937 random(4);
  Fields<4> fields(kFields);
  for (auto& f : fields) {
    const std::uint32_t fraction = 0x100000 | (random() & 0xFFFFF) | (random() % 15) << 20;
    f[0] = static_cast<unsigned char>((random() % 2) << 7 | (56 + random() % 17));
    f[1] = static_cast<unsigned char>(fraction >> 16);
    f[2] = static_cast<unsigned char>(fraction >> 8);
    f[3] = static_cast<unsigned char>(fraction);
  }
  return fields;
}

double floorHfp(const unsigned char* f) {
  const std::uint32_t fraction = std::uint32_t{f[1]} << 16 | std::uint32_t{f[2]} << 8 | f[3];
  const double magnitude = std::ldexp(static_cast<double>(fraction), 4 * ((f[0] & 0x7F) - 64) - 24);
  return (f[0] & 0x80) != 0 ? -magnitude : magnitude;
}

void BM_FloorHfp4ToDbl(benchmark::State& state) {
  const auto fields = hfpShorts();
  timeOverSet(state, fields.size(), [&](std::size_t i) { return floorHfp(fields[i].data()); });
}
BENCHMARK(BM_FloorHfp4ToDbl);

void BM_LibHfp4ToDbl(benchmark::State& state) {
  const auto fields = hfpShorts();
  DataCnv cnv(37, BigEndian, HFPFloat);
  for (std::size_t i = 0; i < fields.size(); ++i) {
    if (cnv.FltToDbl(fields[i].data(), 4) != floorHfp(fields[i].data())) disagree("HFP", i);
  }
  timeOverSet(state, fields.size(),
              [&](std::size_t i) { return cnv.FltToDbl(fields[i].data(), 4); });
}
BENCHMARK(BM_LibHfp4ToDbl);

}  // namespace
