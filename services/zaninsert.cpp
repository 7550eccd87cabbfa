#include <zan/zaninsert.h>

#include <charconv>
#include <cstdint>
#include <system_error>

namespace {

constexpr const char* kNullText = "(null)";

template <class Number>
std::string numberText(Number value) {
  char buffer[32];
  const auto [end, error] = std::to_chars(buffer, buffer + sizeof buffer, value);
  return error == std::errc() ? std::string(buffer, end) : std::string();
}

}  // namespace

std::string zanInsertText(const char* text) { return text == nullptr ? kNullText : text; }
std::string zanInsertText(std::string_view text) { return std::string(text); }
std::string zanInsertText(const std::string& text) { return text; }
std::string zanInsertText(std::int32_t value) { return numberText(value); }
std::string zanInsertText(std::uint32_t value) { return numberText(value); }
std::string zanInsertText(std::int64_t value) { return numberText(value); }
std::string zanInsertText(std::uint64_t value) { return numberText(value); }
std::string zanInsertText(bool value) { return value ? "true" : "false"; }
std::string zanInsertText(double value) { return numberText(value); }

std::string zanInsertText(char16_t unit) { return ZanStringBase(&unit, 1).toUtf8(); }

std::string zanInsertText(const char16_t* text) {
  return text == nullptr ? kNullText : ZanStringBase(text).toUtf8();
}

std::string zanInsertText(const ZanStringBase& text) { return text.toUtf8(); }

std::string zanInsertText(const void* address) {
  char buffer[2 + 2 * sizeof(void*)] = {'0', 'x'};
  const auto [end, error] = std::to_chars(buffer + 2, buffer + sizeof buffer,
                                          reinterpret_cast<std::uintptr_t>(address), 16);
  return std::string(buffer, error == std::errc() ? end : buffer + 2);
}
