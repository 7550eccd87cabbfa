#ifndef ZAN_ZANSTRINGBASE_H
#define ZAN_ZANSTRINGBASE_H

// The runtime's UTF-16 string. Storage is icu::UnicodeString's: heap buffers are shared between
// copies under an atomic reference count and copied on first write, so passing strings by value
// costs no copy of the text. Short texts live inline and are copied outright. Storage that cannot
// grow raises std::bad_alloc.

#include <unicode/unistr.h>

#include <compare>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

class ZanStringBase {
 public:
  ZanStringBase() = default;
  // NUL-terminated text; a null pointer gives the empty string.
  ZanStringBase(const char16_t* text);  // NOLINT(google-explicit-constructor): literal text
  // `length` units of `text`; a negative length counts up to the first NUL unit.
  ZanStringBase(const char16_t* text, std::int32_t length);
  explicit ZanStringBase(const icu::UnicodeString& text) : text_(text) {}
  explicit ZanStringBase(icu::UnicodeString&& text) : text_(std::move(text)) {}

  // A string over static NUL-terminated text, which it reads in place and never copies until it is
  // changed: terminatedData() is the text itself, so constants built this way may be read from
  // any thread.
  static ZanStringBase fromLiteral(const char16_t* text);

  static ZanStringBase fromUtf8(std::string_view utf8);
  std::string toUtf8() const;

  std::int32_t length() const { return text_.length(); }
  bool isEmpty() const { return text_.isEmpty(); }
  // The units; not NUL-terminated. Valid until the string is next changed.
  const char16_t* data() const { return text_.getBuffer(); }
  // The units followed by a NUL unit. May add the terminator to the storage; valid until the string
  // is next changed. Not safe against a concurrent call on the same object.
  const char16_t* terminatedData() const { return text_.getTerminatedBuffer(); }
  char16_t operator[](std::int32_t index) const { return text_.charAt(index); }
  // True when both strings hold the very same storage (a copy that has not been written since).
  bool sharesStorageWith(const ZanStringBase& other) const;

  // Replaces the text with `length` units of `text`, as the constructor of the same arguments
  // builds it, but in the storage the string already has.
  ZanStringBase& assign(const char16_t* text, std::int32_t length);
  ZanStringBase& append(const ZanStringBase& text);
  ZanStringBase& append(char16_t unit);
  ZanStringBase& append(const char16_t* units, std::int32_t count);
  ZanStringBase& insert(std::int32_t position, const ZanStringBase& text);
  ZanStringBase& insert(std::int32_t position, char16_t unit);
  ZanStringBase& erase(std::int32_t start, std::int32_t count);
  ZanStringBase& replace(std::int32_t start, std::int32_t count, const ZanStringBase& text);
  ZanStringBase& truncate(std::int32_t length);
  // Adds copies of `unit` at the start (end) until the string is `length` units long; a string
  // already that long is left alone.
  ZanStringBase& padLeading(std::int32_t length, char16_t unit);
  ZanStringBase& padTrailing(std::int32_t length, char16_t unit);
  ZanStringBase& clear();
  void reserve(std::int32_t capacity);

  std::int32_t indexOf(char16_t unit, std::int32_t from = 0) const;
  ZanStringBase substring(std::int32_t start, std::int32_t count) const;

  bool operator==(const ZanStringBase& other) const { return text_ == other.text_; }
  // Code-unit order, as the runtime's string class orders its keys.
  std::strong_ordering operator<=>(const ZanStringBase& other) const;

  // For the library's own calls into ICU.
  const icu::UnicodeString& unicodeString() const { return text_; }
  icu::UnicodeString& unicodeString() { return text_; }

 private:
  ZanStringBase& checked();

  // Mutable only so that terminatedData() can add the terminator on a const string.
  mutable icu::UnicodeString text_;
};

#endif  // ZAN_ZANSTRINGBASE_H
