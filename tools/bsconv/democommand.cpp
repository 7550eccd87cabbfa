// bsconv demo: a tour of the library on the sample customer records shipped with the tool. The
// layout in customers.json drives it: each field's form decodes the field's bytes in
// customers.bin, the values are checked against the records in customers.json, and the same forms
// encode those records back, which must give the file's bytes exactly.

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <optional>

#include "common.h"

namespace {

namespace fs = std::filesystem;
using json = nlohmann::ordered_json;

constexpr const char* kBinaryFile = "customers.bin";
constexpr const char* kJsonFile = "customers.json";

struct Field;

// A physical form: how its bytes become a typed value and back, and how to read them.
struct Form {
  const char* name;
  ELogicalType type;  // of its values, to read their standard text
  PWFData (*decode)(DataCnv&, const Field&, const unsigned char*);
  // Writes `size` bytes, the field's length, at `out`.
  void (*encode)(DataCnv&, const Field&, const PWFData&, unsigned char* out, std::int32_t& size);
  const char* howToRead;
};

struct Field {
  std::string name;
  std::int32_t offset = 0;
  std::int32_t length = 0;
  const Form* form = nullptr;
  std::int32_t scale = 0;                  // implied decimal places (packed, zoned)
  std::string signName;                    // zoned, as `bsconv decode zoned --sign` spells it
  DataCnv::ESign sign = DataCnv::eNoSign;  // the same as the library has it
  EEndian endian = BigEndian;              // packed decimals take the byte order as an argument
};

// Integers and packed decimals are signed. Zoned fields are filled with zero digits on the left,
// text with spaces on the right.
constexpr DataCnv::ESign kSigned = DataCnv::eLeadingEmbeddedSign;

constexpr Form kForms[] = {
    {"text", eString,
     [](DataCnv& cnv, const Field& field, const unsigned char* bytes) {
       ZanStringBase text;
       if (U_FAILURE(static_cast<UErrorCode>(cnv.toUnicodeString(text, bytes, field.length)))) {
         throw std::runtime_error("bytes that are not text of the code page");
       }
       std::u16string units(text.data(), static_cast<std::size_t>(text.length()));
       const std::int32_t kept = cnv.TrimString(
           units.data(), text.length(), u' ', DataCnv::eLeftJustified, DataCnv::eTrimPadding, true);
       return PWFData(ZanStringBase(units.data(), kept));
     },
     [](DataCnv& cnv, const Field& field, const PWFData& value, unsigned char* out,
        std::int32_t& size) {
       std::int32_t written = size;
       if (U_FAILURE(cnv.fromUnicodeString(value.getPWFStringValue(), out, written))) {
         throw std::runtime_error("longer than " + std::to_string(field.length) + " bytes");
       }
       cnv.PadData(out + written, size - written, written, DataCnv::eLeftJustified, u' ', true);
     },
     "one character a byte (EBCDIC: C1 is A, 81 is a), padded with 40, the EBCDIC space"},
    {"int", eInteger,
     [](DataCnv& cnv, const Field& field, const unsigned char* bytes) {
       return PWFData(cnv.IntToInt64(bytes, field.length, kSigned));
     },
     [](DataCnv& cnv, const Field&, const PWFData& value, unsigned char* out, std::int32_t& size) {
       cnv.IntFromInt64(value.getInt64Value(), out, size, kSigned);
     },
     "two's complement binary, most significant byte first; a first bit of 1 means negative"},
    {"packed", eDecimal,
     [](DataCnv& cnv, const Field& field, const unsigned char* bytes) {
       return cnv.PckdDecToDec(bytes, field.length, field.endian, field.scale, kSigned);
     },
     [](DataCnv& cnv, const Field& field, const PWFData& value, unsigned char* out,
        std::int32_t& size) {
       cnv.PckdDecFromDec(value.getDecimalText().terminatedData(), out, size, field.endian,
                          field.scale, kSigned);
     },
     "two digits a byte, then a sign nibble: C plus, D minus; the scale places the point"},
    {"zoned", eDecimal,
     [](DataCnv& cnv, const Field& field, const unsigned char* bytes) {
       return cnv.ExtDecToDec(bytes, field.length, field.scale, field.sign,
                              DataCnv::eRightJustified, u'0', true, false, nullptr, nullptr);
     },
     [](DataCnv& cnv, const Field& field, const PWFData& value, unsigned char* out,
        std::int32_t& size) {
       cnv.ExtDecFromDec(value.getDecimalText().terminatedData(), out, size, field.scale,
                         field.sign, DataCnv::eRightJustified, u'0', true, false, nullptr, nullptr);
     },
     "one digit a byte, F0 to F9; zone D instead of F on the sign digit means negative"},
    {"float", eFloat,
     [](DataCnv& cnv, const Field& field, const unsigned char* bytes) {
       return PWFData(cnv.FltToDbl(bytes, field.length));
     },
     [](DataCnv& cnv, const Field&, const PWFData& value, unsigned char* out, std::int32_t& size) {
       cnv.FltFromDbl(value.getDoubleValue(), out, size);
     },
     "HFP: the first byte holds the sign bit and 64 + a power of 16, the others a hex fraction"},
};

constexpr std::pair<const char*, DataCnv::ESign> kZonedSigns[] = {
    {"none", DataCnv::eNoSign},
    {"leading", DataCnv::eLeadingEmbeddedSign},
    {"trailing", DataCnv::eTrailingEmbeddedSign},
    {"leading-separate", DataCnv::eLeadingSeparateSign},
    {"trailing-separate", DataCnv::eTrailingSeparateSign},
};

// customers.json without its records: the converter's settings and the fields.
struct Layout {
  std::int32_t ccsid = 0;
  EEndian endian = BigEndian;
  EFloatFmt floatFormat = IEEEFloat;
  std::int32_t recordLength = 0;
  std::vector<Field> fields;
};

// Throws json::exception or UsageError for a layout the demo cannot follow.
Layout readLayout(const json& document) {
  Layout layout;
  layout.ccsid = document.at("ccsid").get<std::int32_t>();
  layout.endian = document.at("byteOrder") == "little" ? LittleEndian : BigEndian;
  layout.floatFormat = document.at("floatFormat") == "hfp" ? HFPFloat : IEEEFloat;
  layout.recordLength = document.at("recordLength").get<std::int32_t>();
  for (const json& entry : document.at("fields")) {
    Field& field = layout.fields.emplace_back();
    field.name = entry.at("name").get<std::string>();
    field.offset = entry.at("offset").get<std::int32_t>();
    field.length = entry.at("length").get<std::int32_t>();
    field.scale = entry.value("scale", 0);
    field.signName = entry.value("sign", "none");
    field.endian = layout.endian;
    const std::string form = entry.at("form").get<std::string>();
    const auto* formAt = std::find_if(std::begin(kForms), std::end(kForms),
                                      [&](const Form& known) { return form == known.name; });
    const auto* signAt =
        std::find_if(std::begin(kZonedSigns), std::end(kZonedSigns),
                     [&](const auto& known) { return field.signName == known.first; });
    if (formAt == std::end(kForms) || signAt == std::end(kZonedSigns) || field.offset < 0 ||
        field.length < 1 || field.length > layout.recordLength - field.offset) {
      throw UsageError("field " + field.name +
                       " needs a known form and sign and must lie within the record");
    }
    field.form = formAt;
    field.sign = signAt->second;
  }
  if (layout.fields.empty()) throw UsageError("no fields");
  return layout;
}

// Runs `step`; returns the failure it raised, or an empty text.
template <class Step>
std::string failureOf(Step&& step) {
  try {
    step();
    return {};
  } catch (const ZanException& failure) {
    return failureLine(failure).substr(std::string_view("bsconv: ").size());
  } catch (const std::exception& failure) {
    return failure.what();
  }
}

std::string fieldHex(const Field& field, const unsigned char* record) {
  return hexFromBytes(record + field.offset, static_cast<std::size_t>(field.length));
}

// One record decoded, compared with customers.json and encoded back from it.
struct RecordCheck {
  std::vector<std::optional<std::string>> values;  // standard text; none when it did not decode
  std::vector<std::string> differences;
};

RecordCheck checkRecord(DataCnv& cnv, const Layout& layout, const unsigned char* record,
                        const json& expected) {
  RecordCheck check;
  std::vector<unsigned char> encoded(static_cast<std::size_t>(layout.recordLength), 0);
  for (const Field& field : layout.fields) {
    std::optional<PWFData> decoded, wanted;
    std::optional<std::string> text;
    const std::string decodeFailure = failureOf([&] {
      const PWFData value = field.form->decode(cnv, field, record + field.offset);
      text = standardText(cnv, value);
      decoded = value;
    });
    check.values.push_back(text);
    const std::string encodeFailure = failureOf([&] {
      const auto standard = ZanStringBase::fromUtf8(expected.at(field.name).get<std::string>());
      wanted = cnv.StandardStrToData(standard.data(), standard.length(), field.form->type);
      std::int32_t size = field.length;
      field.form->encode(cnv, field, *wanted, encoded.data() + field.offset, size);
    });
    const std::string bytes = fieldHex(field, record);
    const std::string reencoded = fieldHex(field, encoded.data());
    auto& differences = check.differences;
    if (!decodeFailure.empty()) {
      differences.push_back(field.name + " does not decode: " + decodeFailure);
    }
    if (!encodeFailure.empty()) {
      differences.push_back(field.name + " in " + kJsonFile + " does not encode: " + encodeFailure);
    } else if (decoded && !(*decoded == *wanted)) {
      differences.push_back(field.name + " is " + *text + " in " + kBinaryFile + ", " +
                            expected.at(field.name).get<std::string>() + " in " + kJsonFile);
    }
    if (encodeFailure.empty() && bytes != reencoded) {
      differences.push_back(field.name + " re-encodes to " + reencoded + ", " + kBinaryFile +
                            " has " + bytes);
    }
  }
  return check;
}

// Display width of UTF-8 text: one column a code point.
std::size_t columns(const std::string& text) {
  return static_cast<std::size_t>(
      std::count_if(text.begin(), text.end(), [](char c) { return (c & 0xC0) != 0x80; }));
}

// Prints rows as aligned columns, each to the left or, where `alignRight` says, to the right.
void printTable(const std::vector<std::vector<std::string>>& rows,
                const std::vector<bool>& alignRight) {
  std::vector<std::size_t> widths(rows.front().size(), 0);
  for (const auto& row : rows) {
    for (std::size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], columns(row[i]));
  }
  for (const auto& row : rows) {
    std::string line;
    for (std::size_t i = 0; i < row.size(); ++i) {
      const std::string pad(widths[i] - columns(row[i]), ' ');
      line += "  " + (alignRight[i] ? pad + row[i] : row[i] + pad);
    }
    line.erase(line.find_last_not_of(' ') + 1);
    std::cout << line << '\n';
  }
}

// The options of `bsconv decode` that read the field as the demo reads it.
std::string decodeOptions(const Field& field, const Layout& layout) {
  const std::string form = field.form->name;
  std::string options;
  if (field.scale != 0) options += " --scale " + std::to_string(field.scale);
  if (form == "zoned" && field.sign != DataCnv::eNoSign) options += " --sign " + field.signName;
  if (form == "float" && layout.floatFormat == HFPFloat) options += " --format hfp";
  if ((form == "text" || form == "zoned") && layout.ccsid != 37) {
    options += " --ccsid " + std::to_string(layout.ccsid);
  }
  return options;
}

// The layout, then a table of values and one of bytes, a row a record.
void printTables(const Layout& layout, const std::vector<unsigned char>& bytes,
                 const std::vector<RecordCheck>& checks) {
  std::vector<std::vector<std::string>> layoutRows{{"field", "offset", "bytes", "form", "options"}};
  std::vector<std::vector<std::string>> valueRows{{"#"}}, hexRows{{"#"}};
  std::vector<bool> valueAlignment{true};
  for (const Field& field : layout.fields) {
    std::string options = decodeOptions(field, layout);
    layoutRows.push_back({field.name, std::to_string(field.offset), std::to_string(field.length),
                          field.form->name, options.empty() ? "" : options.substr(1)});
    valueRows.front().push_back(field.name);
    valueAlignment.push_back(field.form->type != eString);
  }
  hexRows.front() = valueRows.front();
  for (std::size_t r = 0; r < checks.size(); ++r) {
    valueRows.push_back({std::to_string(r + 1)});
    hexRows.push_back({std::to_string(r + 1)});
    for (std::size_t f = 0; f < layout.fields.size(); ++f) {
      valueRows.back().push_back(checks[r].values[f].value_or("(invalid)"));
      hexRows.back().push_back(fieldHex(layout.fields[f], bytes.data() + r * layout.recordLength));
    }
  }
  std::cout << "\nLayout\n";
  printTable(layoutRows, {false, true, true, false, false});
  std::cout << "\nDecoded values, in the library's standard text form\n";
  printTable(valueRows, valueAlignment);
  std::cout << "\nThe same fields as bytes, in hexadecimal\n";
  printTable(hexRows, std::vector<bool>(valueAlignment.size(), false));
}

// Each field of one record with what its bytes mean and the command that decodes it alone.
void printHowToRead(const Layout& layout, const unsigned char* record, std::size_t number,
                    const RecordCheck& check) {
  std::cout << "\nHow to read the bytes of record " << number << '\n';
  for (std::size_t f = 0; f < layout.fields.size(); ++f) {
    const Field& field = layout.fields[f];
    std::cout << "  " << field.name << ": " << fieldHex(field, record) << " -> "
              << check.values[f].value_or("(invalid)") << "\n    " << field.form->name << ": "
              << field.form->howToRead << "\n    try: bsconv decode " << field.form->name
              << decodeOptions(field, layout) << ' ' << fieldHex(field, record) << '\n';
  }
}

void printChecks(const Layout& layout, const std::vector<RecordCheck>& checks) {
  std::int32_t fieldBytes = 0;
  for (const Field& field : layout.fields) fieldBytes += field.length;
  std::cout << "\nChecked against " << kJsonFile << ", then encoded back from it\n";
  for (std::size_t r = 0; r < checks.size(); ++r) {
    if (checks[r].differences.empty()) {
      std::cout << "  record " << r + 1 << ": " << layout.fields.size() << " values as in "
                << kJsonFile << "; " << fieldBytes << " bytes re-encoded, identical\n";
    }
    for (const std::string& difference : checks[r].differences) {
      std::cout << "  record " << r + 1 << ": " << difference << '\n';
    }
  }
}

json decodedRecords(const Layout& layout, const std::vector<RecordCheck>& checks) {
  json records = json::array();
  for (const RecordCheck& check : checks) {
    json& record = records.emplace_back(json::object());
    for (std::size_t f = 0; f < layout.fields.size(); ++f) {
      record[layout.fields[f].name] = check.values[f] ? json(*check.values[f]) : json(nullptr);
    }
  }
  return json{{"records", std::move(records)}};
}

std::vector<unsigned char> readFile(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) throw UsageError("demo: cannot read " + path.string());
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

// Returns false when anything differs; the differences have been printed.
void runDemo(const fs::path& dir, bool asJson) {
  const std::vector<unsigned char> jsonBytes = readFile(dir / kJsonFile);
  json document;
  Layout layout;
  try {
    document = json::parse(jsonBytes.begin(), jsonBytes.end());
    layout = readLayout(document);
    if (!document.at("records").is_array()) throw UsageError("records is not an array");
  } catch (const std::exception& error) {
    throw UsageError("demo: " + (dir / kJsonFile).string() + ": " + error.what());
  }
  const json& expected = document["records"];
  const std::vector<unsigned char> bytes = readFile(dir / kBinaryFile);
  const auto recordLength = static_cast<std::size_t>(layout.recordLength);
  if (bytes.size() != expected.size() * recordLength) {
    throw CommandFailure("demo: " + std::string(kBinaryFile) + " holds " +
                         std::to_string(bytes.size()) + " bytes, not the " +
                         std::to_string(expected.size()) + " records of " +
                         std::to_string(recordLength) + " bytes in " + kJsonFile);
  }
  DataCnv cnv(layout.ccsid, layout.endian, layout.floatFormat);
  std::vector<RecordCheck> checks;
  for (std::size_t r = 0; r < expected.size(); ++r) {
    checks.push_back(checkRecord(cnv, layout, bytes.data() + r * recordLength, expected[r]));
  }
  if (asJson) {
    std::cout << decodedRecords(layout, checks).dump(2) << '\n';
  } else {
    // The directory differs from machine to machine; the file name is what the reader needs.
    std::cout << "Sample records: " << kBinaryFile << ", " << checks.size() << " records of "
              << recordLength << " bytes\nConverter: CCSID " << layout.ccsid << ", "
              << (layout.endian == BigEndian ? "big" : "little") << "-endian, "
              << (layout.floatFormat == HFPFloat ? "HFP" : "IEEE") << " floats\n";
    printTables(layout, bytes, checks);
    if (!checks.empty()) {
      // The second record has the negative values that show the sign conventions.
      const std::size_t shown = checks.size() > 1 ? 1 : 0;
      printHowToRead(layout, bytes.data() + shown * recordLength, shown + 1, checks[shown]);
    }
    printChecks(layout, checks);
  }
  const auto differing = std::count_if(checks.begin(), checks.end(),
                                       [](const RecordCheck& c) { return !c.differences.empty(); });
  if (differing != 0) {
    throw CommandFailure("demo: " + std::to_string(differing) + " of " +
                         std::to_string(checks.size()) + " records differ from " + kJsonFile);
  }
}

// The samples installed beside the tool (found from the program's own path, so that an install
// can be moved), or those of the source tree when the tool runs from its build tree.
fs::path shippedSamples() {
  std::error_code error;
  const fs::path program = fs::read_symlink("/proc/self/exe", error);
  if (!error) {
    const fs::path installed = program.parent_path() / BSCONV_BIN_TO_DATA_DIR;
    if (fs::is_directory(installed, error)) return installed;
  }
  return BSCONV_SOURCE_DATA_DIR;
}

}  // namespace

void addDemoCommand(CLI::App& app) {
  CLI::App* demo = app.add_subcommand(
      "demo",
      "A tour on sample EBCDIC customer records: decodes every field (text, binary integer, "
      "packed and zoned decimal, HFP float), checks the values against the same records in "
      "JSON, and encodes them back to identical bytes. Exit status 1 if anything differs.");
  auto dataDir = std::make_shared<std::string>();
  auto asJson = std::make_shared<bool>(false);
  demo->add_option("--data", *dataDir,
                   "Directory holding customers.bin and customers.json (default: the samples "
                   "shipped with bsconv)")
      ->check(CLI::ExistingDirectory);
  demo->add_flag("--json", *asJson, "Print the decoded records as JSON instead of the tour");
  demo->footer(
      "Examples:\n"
      "  bsconv demo\n"
      "  bsconv demo --json\n"
      "  bsconv demo --data ./my-copy   (customers.bin and customers.json edited to taste)");
  demo->callback([dataDir, asJson] {
    runDemo(dataDir->empty() ? shippedSamples() : fs::path(*dataDir), *asJson);
  });
}
