#ifndef ZAN_ZANINSERT_H
#define ZAN_ZANINSERT_H

// Inserts are the values that trace records and exceptions carry besides their text. Every insert
// is rendered once, to UTF-8, by this one overload set, so a value reads the same in a trace record
// and in the exception that follows it.

#include <zan/zanstringbase.h>

#include <cstdint>
#include <string>
#include <string_view>

std::string zanInsertText(const char* text);  // a null pointer renders as "(null)"
std::string zanInsertText(std::string_view text);
std::string zanInsertText(const std::string& text);
std::string zanInsertText(std::int32_t value);
std::string zanInsertText(std::uint32_t value);
std::string zanInsertText(std::int64_t value);
std::string zanInsertText(std::uint64_t value);
std::string zanInsertText(bool value);     // "true" or "false"
std::string zanInsertText(double value);   // shortest text that reads back to the same double
std::string zanInsertText(char16_t unit);  // the character itself
std::string zanInsertText(const char16_t* text);  // NUL-terminated; null renders as "(null)"
std::string zanInsertText(const ZanStringBase& text);
std::string zanInsertText(const void* address);  // "0x" and lower-case hexadecimal

#endif  // ZAN_ZANINSERT_H
