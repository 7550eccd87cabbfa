#ifndef BSCONV_COMMON_H
#define BSCONV_COMMON_H

// What the subcommands of bsconv share: their registration, the exit statuses, hexadecimal
// arguments and output, the standard text of values, and the one line a failure prints.

#include <bsutils/dataconv.h>
#include <zan/zanexception.h>

#include <CLI/CLI.hpp>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

// Exit statuses: 0 success, 1 a conversion failure, 2 a usage error.
inline constexpr int kExitConversionFailure = 1;
inline constexpr int kExitUsage = 2;

// A usage error found after the options were parsed (a bad hexadecimal argument, an option the
// form does not take): printed as "bsconv: <what>" with exit status 2.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// A command that cannot finish for a reason that is not a library failure (the demo's records
// differ from their JSON, standard output cannot be written): "bsconv: <what>", exit status 1.
class CommandFailure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Each adds its subcommands to `app`; their callbacks run the command and throw UsageError or the
// library's ZanException.
void addFieldCommands(CLI::App& app);    // decode, encode
void addConvertCommands(CLI::App& app);  // convert, codepages
void addDemoCommand(CLI::App& app);      // demo

// "0x" optional, either case, an even count of digits; throws UsageError otherwise.
std::vector<unsigned char> bytesFromHex(std::string_view hex);
// Upper-case, two digits a byte, no prefix.
std::string hexFromBytes(const unsigned char* bytes, std::size_t count);
// The standard text form of a value (DataCnv::StandardStrFromData), in UTF-8.
std::string standardText(DataCnv& cnv, const PWFData& value);
// The line a conversion failure prints on standard error, without the newline:
//   bsconv: 0xC0001581 CPI Converter Input Data Invalid [packed decimal] [0x12345A]
std::string failureLine(const ZanException& failure);

#endif  // BSCONV_COMMON_H
