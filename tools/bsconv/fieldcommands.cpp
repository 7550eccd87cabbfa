// bsconv decode FORM [options] [HEX...] and bsconv encode FORM [options] VALUE...: one CLI11
// subcommand a form under each, so that a form's --help lists exactly the options it takes and an
// option it does not take is a usage error.

#include <algorithm>
#include <cstdio>
#include <iostream>
#include <limits>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <set>
#include <string>
#include <vector>

#include "common.h"
#include "fieldforms.h"

namespace {

struct DecodeCommand {
  FieldSettings settings;
  std::vector<std::string> fields;
  std::int32_t length = 0;  // 0: the fields are arguments
  bool json = false;
  std::string neverFilled;
};

struct EncodeCommand {
  FieldSettings settings;
  std::vector<std::string> values;
  bool raw = false;
  std::string neverFilled;
};

// Sizes, lengths and CCSIDs: a 32-bit count from 1.
const CLI::Validator kPositive =
    CLI::Range(1, std::numeric_limits<std::int32_t>::max()).description("");

void addSizeOption(CLI::App& command, const FieldForm& form, FieldSettings& settings,
                   bool encoding) {
  std::string help = "The field size in bytes";
  if (!encoding) {
    help += "; every field must have it";
  } else if (form.encodeSizeNote != nullptr) {
    help += std::string("; ") + form.encodeSizeNote;
  }
  CLI::Option* size = command.add_option("--size", settings.size, help)->type_name("N");
  if (form.sizes.empty()) {
    size->check(kPositive);
  } else {
    size->check(CLI::IsMember(std::vector<int>(form.sizes.begin(), form.sizes.end())));
  }
  if (encoding && form.fixedSize) size->required();
}

const std::map<std::string, EEndian> kByteOrders{{"big", BigEndian}, {"little", LittleEndian}};
const std::map<std::string, EFloatFmt> kFloatFormats{{"ieee", IEEEFloat}, {"hfp", HFPFloat}};
const std::map<std::string, DataCnv::ESign> kZonedSigns{
    {"none", DataCnv::eNoSign},
    {"leading", DataCnv::eLeadingEmbeddedSign},
    {"trailing", DataCnv::eTrailingEmbeddedSign},
    {"leading-separate", DataCnv::eLeadingSeparateSign},
    {"trailing-separate", DataCnv::eTrailingSeparateSign}};

// An option that takes one of the words of `choices` and sets `target` to its value.
template <class Value>
void addChoice(CLI::App& command, const std::string& name, Value& target,
               const std::map<std::string, Value>& choices, const std::string& defaultWord,
               const std::string& help) {
  std::vector<std::string> words;
  for (const auto& choice : choices) words.push_back(choice.first);
  command
      .add_option_function<std::string>(
          name, [&target, &choices](const std::string& word) { target = choices.at(word); }, help)
      ->type_name(CLI::detail::join(words, "|"))
      ->check(CLI::IsMember(words).description(""))
      ->default_str(defaultWord);
}

// The library takes the date-time form's texts in UTF-16.
std::u16string utf16Text(const std::string& text) {
  const ZanStringBase units = ZanStringBase::fromUtf8(text);
  return {units.data(), static_cast<std::size_t>(units.length())};
}

// The date-time form's options that say how its field holds the value (one of them is required,
// which the form's check sees to), and the epoch of the two that count.
void addDateTimeLayoutOptions(CLI::App& command, FieldSettings& settings) {
  auto pattern = [&command, &settings](const std::string& name, DateTimeLayout layout,
                                       const std::string& help) {
    command
        .add_option_function<std::string>(
            name,
            [&settings, layout](const std::string& text) {
              settings.dateTimeLayout = layout;
              settings.dateTimePattern = utf16Text(text);
            },
            help)
        ->type_name("P");
  };
  auto count = [&command, &settings](const std::string& name, DateTimeLayout layout,
                                     const std::string& help) {
    command.add_flag_callback(
        name, [&settings, layout] { settings.dateTimeLayout = layout; }, help);
  };
  pattern("--pattern", DateTimeLayout::text,
          "Text of the CCSID by the ICU pattern P (yyyyMMdd, 'dd.MM.yy HH:mm'; I: ISO 8601)");
  count("--seconds", DateTimeLayout::seconds, "A binary integer: seconds since --epoch");
  count("--milliseconds", DateTimeLayout::milliseconds,
        "A binary integer: milliseconds since --epoch");
  pattern("--binary-pattern", DateTimeLayout::binary,
          "A record of little-endian binary fields by P, of the letters yMdHmsSX (y+1900Md)");
  pattern("--packed-pattern", DateTimeLayout::packed,
          "A packed decimal, sign F, whose digits are text of the ICU pattern P (yyyyMMdd)");
  command
      .add_option_function<std::string>(
          "--epoch", [&settings](const std::string& text) { settings.epoch = utf16Text(text); },
          "What --seconds and --milliseconds count from: yyyy-MM-ddTHH:mm and a UTC offset")
      ->type_name("TEXT")
      ->default_str("1970-01-01T00:00+00:00");
}

// The converter's date-time formatter settings. Two-digit years are only read.
void addDateTimeFormatterOptions(CLI::App& command, FieldSettings& settings, bool encoding) {
  command
      .add_option_function<std::string>(
          "--timezone",
          [&settings](const std::string& text) { settings.timeZone = utf16Text(text); },
          "Zone of the values that have none: an ICU zone id (Europe/Paris, GMT+05:30)")
      ->type_name("ID")
      ->default_str("UTC");
  if (!encoding) {
    command
        .add_option("--century-window", settings.centuryWindowStart,
                    "Two-digit years at or above N are 19yy, below it 20yy")
        ->type_name("N")
        ->default_str("53");
  }
  command.add_flag("--lenient", settings.lenient,
                   encoding ? "Roll fields out of range over (Feb 30 is Mar 2) (default: strict)"
                            : "Roll fields out of range over (Feb 30 is Mar 2) and ignore text "
                              "after the pattern (default: strict)");
  command
      .add_option_function<std::string>(
          "--locale", [&settings](const std::string& text) { settings.locale = utf16Text(text); },
          "Locale of month and day names and of am/pm (fr_FR, de_DE)")
      ->type_name("ID")
      ->default_str("en_US_POSIX");
}

// The options of the form, on its decode or encode subcommand.
void addFormOptions(CLI::App& command, const FieldForm& form, FieldSettings& settings,
                    bool encoding) {
  if (form.options & kDateTimeOptions) addDateTimeLayoutOptions(command, settings);
  if (form.options & kSizeOption) addSizeOption(command, form, settings, encoding);
  if (form.options & kUnsignedOption) {
    command.add_flag("--unsigned", settings.isUnsigned, "Unsigned field (default: signed)");
  }
  if (form.options & kByteOrderOption) {
    addChoice(command, "--byte-order", settings.endian, kByteOrders, "big", "Byte order");
  }
  if (form.options & kScaleOption) {
    command.add_option("--scale", settings.scale, "Implied decimal places")
        ->type_name("N")
        ->default_str("0");
  }
  if (form.options & kCcsidOption) {
    command.add_option("--ccsid", settings.ccsid, "Code page (CCSID) of the characters")
        ->type_name("N")
        ->check(kPositive)
        ->default_str("37");
  }
  if (form.options & kSignOption) {
    addChoice(command, "--sign", settings.zonedSign, kZonedSigns, "trailing",
              "Where the sign is: overpunched on the first (leading) or last (trailing) digit, "
              "or a separate + or - before or after the digits");
  }
  if (form.options & kOverpunchOption) {
    command.add_flag("--ebcdic-overpunch", settings.ebcdicOverpunch,
                     "In an ASCII-based CCSID, overpunch as EBCDIC does: { A-I positive, } J-R "
                     "negative (default: p-y negative)");
  }
  if (form.options & kFloatFormatOption) {
    addChoice(command, "--format", settings.floatFormat, kFloatFormats, "ieee", "Float format");
  }
  if (form.options & kRuntimeHfpOption) {
    command.add_flag("--runtime-hfp", settings.runtimeHfp,
                     "HFP through the runtime's conversions, which truncate (default: exact, "
                     "rounded to nearest)");
  }
  if (form.options & kDateTimeOptions) addDateTimeFormatterOptions(command, settings, encoding);
}

// The options given on the command line, by their long names.
std::set<std::string> givenOptions(const CLI::App& command) {
  std::set<std::string> names;
  for (const CLI::Option* option : command.get_options()) {
    if (option->count() > 0 && !option->get_lnames().empty()) {
      names.insert("--" + option->get_lnames().front());
    }
  }
  return names;
}

// The form's check of its options together, once each has passed its own.
void checkFormOptions(const CLI::App& command, const FieldForm& form, FieldSettings& settings,
                      bool encoding) {
  settings.given = givenOptions(command);
  if (form.check != nullptr) form.check(settings, encoding);
}

// The converter of one command. It keeps pointers to the date-time texts of `settings`, which
// outlive it.
DataCnv converterFor(FieldSettings& settings) {
  return DataCnv(settings.ccsid, settings.endian, settings.floatFormat, settings.centuryWindowStart,
                 settings.timeZone.data(),
                 settings.locale.empty() ? nullptr : settings.locale.data(), 0, !settings.lenient);
}

std::string formNames() {
  std::string names;
  for (const FieldForm& form : fieldForms()) {
    names += (names.empty() ? "" : ", ") + std::string(form.name);
  }
  return names;
}

// What CLI11 left over for `command` to judge, without the "--" that ends its options.
std::vector<std::string> leftovers(const CLI::App& command) {
  std::vector<std::string> words = command.remaining();
  std::erase(words, "--");
  return words;
}

// CLI11 leaves over options before the form and options the form does not take; both are refused
// before the command does anything.
void refuseLeftovers(const CLI::App& command) {
  const CLI::App& direction = *command.get_parent();
  const std::vector<std::string> early = leftovers(direction);
  if (!early.empty()) {
    throw UsageError(early.front() + ": the options go after the form (bsconv " +
                     direction.get_name() + " FORM [options])");
  }
  const std::vector<std::string> unknown = leftovers(command);
  if (!unknown.empty()) {
    throw UsageError(direction.get_name() + " " + command.get_name() + " does not take " +
                     unknown.front() + " (bsconv " + direction.get_name() + " " +
                     command.get_name() + " --help lists its options)");
  }
}

// CLI11 shows a hidden positional as "[]" in the usage line, and its unnamed group as one more
// blank line after the options: both left out.
class HiddenPositionalFormatter : public CLI::Formatter {
 public:
  std::string make_usage(const CLI::App* app, std::string name) const override {
    std::string usage = CLI::Formatter::make_usage(app, std::move(name));
    if (const std::size_t at = usage.find(" []"); at != std::string::npos) usage.erase(at, 3);
    return usage;
  }
  std::string make_help(const CLI::App* app, std::string name,
                        CLI::AppFormatMode mode) const override {
    std::string help = CLI::Formatter::make_help(app, std::move(name), mode);
    if (const std::size_t at = help.find("\n\n\n"); at != std::string::npos) help.erase(at, 1);
    return help;
  }
};

// CLI11 hands a "--" to the parent command once the positionals are satisfied, which a list of
// them is from its first word on, and what follows would be lost to the form. A hidden positional
// behind the list never fills (the list takes every word), so the form keeps them.
void keepWordsAfterDoubleDash(CLI::App& command, std::string& neverFilled) {
  command.add_option("never-filled", neverFilled)->group("");
  command.formatter(std::make_shared<HiddenPositionalFormatter>());
}

// The direction's own callback, which runs after its form's: only without a form is there work.
void refuseMissingForm(const CLI::App& direction) {
  if (!direction.get_subcommands().empty()) return;
  const std::vector<std::string> words = leftovers(direction);
  if (words.empty()) throw UsageError(direction.get_name() + " needs a form: " + formNames());
  throw UsageError("unknown form " + words.front() + ": the forms are " + formNames());
}

// A form's examples, one a line, and its notes.
std::string formFooter(const char* examples, const char* notes) {
  const std::string lines = examples;
  std::string footer = lines.find('\n') == std::string::npos ? "Example:" : "Examples:";
  std::size_t start = 0;
  while (start <= lines.size()) {
    const std::size_t end = std::min(lines.find('\n', start), lines.size());
    footer += "\n  " + lines.substr(start, end - start);
    start = end + 1;
  }
  if (notes != nullptr) footer += std::string("\n\n") + notes;
  return footer;
}

// --- decode ---

const unsigned char* fieldData(const FieldBytes& field) {
  // An empty field still has an address, so that the library reports its size, not a null.
  static constexpr unsigned char kNoBytes[1] = {};
  return field.empty() ? kNoBytes : field.data();
}

// Reads the next field of `length` bytes; false at the end of the input. Memory grows with the
// bytes that arrive, not with the length asked for.
bool readField(std::FILE* input, std::int32_t length, FieldBytes& field) {
  constexpr std::size_t kChunk = 64 * 1024;
  const auto wanted = static_cast<std::size_t>(length);
  field.clear();
  while (field.size() < wanted) {
    const std::size_t offset = field.size();
    field.resize(offset + std::min(kChunk, wanted - offset));
    const std::size_t got = std::fread(field.data() + offset, 1, field.size() - offset, input);
    field.resize(offset + got);
    if (got == 0) break;
  }
  if (field.empty()) return false;
  if (field.size() < wanted) {
    throw UsageError("standard input ends " + std::to_string(field.size()) + " bytes into a " +
                     std::to_string(length) + "-byte field");
  }
  return true;
}

class DecodeOutput {
 public:
  explicit DecodeOutput(bool json) : json_(json) {}

  void add(const FieldForm& form, const FieldBytes& field, const std::string& value) {
    if (!json_) {
      std::cout << value << '\n';
      return;
    }
    nlohmann::json entry{{"hex", hexFromBytes(field.data(), field.size())}, {"value", value}};
    if (form.fieldIsText) entry["text"] = std::string(field.begin(), field.end());
    entries_.push_back(std::move(entry));
  }

  void finish() {
    // Bytes of a text field that are not UTF-8 are replaced rather than refused.
    if (json_) {
      std::cout << entries_.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) << '\n';
    }
    std::cout.flush();
  }

 private:
  bool json_;
  nlohmann::json entries_ = nlohmann::json::array();
};

void runDecode(const FieldForm& form, DecodeCommand& command) {
  if (command.length > 0 && !command.fields.empty()) {
    throw UsageError("--length reads the fields from standard input: give none as arguments");
  }
  if (command.length == 0 && command.fields.empty()) {
    throw UsageError(
        "no fields: give them as arguments, or --length N to read N-byte fields "
        "from standard input");
  }
  const FieldSettings& settings = command.settings;
  DataCnv cnv = converterFor(command.settings);
  DecodeOutput output(command.json);
  auto decodeOne = [&](const FieldBytes& field) {
    const auto size = static_cast<std::int32_t>(field.size());
    if (settings.size > 0 && size != settings.size) {
      throw UsageError("field " + hexFromBytes(field.data(), field.size()) + " has " +
                       std::to_string(size) + " bytes, not the " + std::to_string(settings.size) +
                       " of --size");
    }
    output.add(form, field, standardText(cnv, form.decode(settings, cnv, fieldData(field), size)));
  };
  if (command.length > 0) {
    FieldBytes field;
    while (readField(stdin, command.length, field)) decodeOne(field);
  } else {
    for (const std::string& argument : command.fields) {
      decodeOne(form.fieldIsText ? FieldBytes(argument.begin(), argument.end())
                                 : bytesFromHex(argument));
    }
  }
  output.finish();
}

void addDecodeForm(CLI::App& decode, const FieldForm& form) {
  auto command = std::make_shared<DecodeCommand>();
  CLI::App* sub = decode.add_subcommand(form.name, form.description);
  addFormOptions(*sub, form, command->settings, false);
  sub->add_option("--length", command->length,
                  "Read consecutive fields of N bytes as raw bytes from standard input")
      ->type_name("N")
      ->check(kPositive);
  sub->add_flag("--json", command->json,
                "Print one JSON array of objects: hex (the field's bytes), value" +
                    std::string(form.fieldIsText ? ", text (the field)" : ""));
  sub->add_option(form.fieldIsText ? "TEXT" : "HEX", command->fields,
                  form.fieldIsText
                      ? "Fields as text (put -- before the first when one starts with -)"
                      : "Fields in hexadecimal (0x optional)")
      ->type_name("");
  keepWordsAfterDoubleDash(*sub, command->neverFilled);
  sub->footer(formFooter(form.decodeExamples, form.notes));
  sub->allow_extras();
  sub->callback([sub, &form, command] {
    refuseLeftovers(*sub);
    checkFormOptions(*sub, form, command->settings, false);
    runDecode(form, *command);
  });
}

// --- encode ---

void runEncode(const FieldForm& form, EncodeCommand& command) {
  DataCnv cnv = converterFor(command.settings);
  for (const std::string& value : command.values) {
    const FieldBytes field = form.encode(command.settings, cnv, value);
    if (command.raw) {
      std::cout.write(reinterpret_cast<const char*>(field.data()),
                      static_cast<std::streamsize>(field.size()));
    } else if (form.fieldIsText) {
      std::cout << std::string(field.begin(), field.end()) << '\n';
    } else {
      std::cout << hexFromBytes(field.data(), field.size()) << '\n';
    }
  }
  std::cout.flush();
}

void addEncodeForm(CLI::App& encode, const FieldForm& form) {
  auto command = std::make_shared<EncodeCommand>();
  CLI::App* sub = encode.add_subcommand(form.name, form.description);
  addFormOptions(*sub, form, command->settings, true);
  sub->add_flag("--raw", command->raw,
                "Write the fields' bytes back to back instead of one line each");
  sub->add_option("VALUE", command->values,
                  "Values in their text form (put -- before the first when one starts with -)")
      ->type_name("")
      ->required();
  keepWordsAfterDoubleDash(*sub, command->neverFilled);
  sub->footer(formFooter(form.encodeExamples, form.notes));
  sub->allow_extras();
  sub->callback([sub, &form, command] {
    refuseLeftovers(*sub);
    checkFormOptions(*sub, form, command->settings, true);
    runEncode(form, *command);
  });
}

// The first example of each form.
std::string examples(bool encoding) {
  std::string text = "Examples:";
  for (const FieldForm& form : fieldForms()) {
    const std::string lines = encoding ? form.encodeExamples : form.decodeExamples;
    text += "\n  " + lines.substr(0, lines.find('\n'));
  }
  return text;
}

}  // namespace

void addFieldCommands(CLI::App& app) {
  CLI::App* decode = app.add_subcommand(
      "decode",
      "Decode fields given in hexadecimal (or read raw from standard input with --length) and "
      "print each value's standard text, one a line");
  CLI::App* encode = app.add_subcommand(
      "encode", "Encode values given as text and print each field in hexadecimal (raw with --raw)");
  for (CLI::App* direction : {decode, encode}) {
    direction->allow_extras();
    direction->callback([direction] { refuseMissingForm(*direction); });
  }
  for (const FieldForm& form : fieldForms()) {
    addDecodeForm(*decode, form);
    addEncodeForm(*encode, form);
  }
  decode->footer(examples(false));
  encode->footer(examples(true));
}
