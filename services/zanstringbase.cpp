#include <zan/zanstringbase.h>

#include <new>

ZanStringBase::ZanStringBase(const char16_t* text) : ZanStringBase(text, -1) {}

ZanStringBase::ZanStringBase(const char16_t* text, std::int32_t length) { assign(text, length); }

ZanStringBase& ZanStringBase::assign(const char16_t* text, std::int32_t length) {
  if (text == nullptr) {
    text_.remove();
  } else {
    text_.setTo(text, length);
  }
  return checked();
}

// ICU marks a string whose storage could not grow as bogus and carries on as if it were empty; a
// text that silently lost its units would be read as a different value, so that is an allocation
// failure here.
ZanStringBase& ZanStringBase::checked() {
  if (text_.isBogus()) throw std::bad_alloc();
  return *this;
}

ZanStringBase ZanStringBase::fromLiteral(const char16_t* text) {
  return ZanStringBase(icu::UnicodeString(true, text, -1));
}

ZanStringBase ZanStringBase::fromUtf8(std::string_view utf8) {
  ZanStringBase text(icu::UnicodeString::fromUTF8(
      icu::StringPiece(utf8.data(), static_cast<std::int32_t>(utf8.size()))));
  text.checked();
  return text;
}

std::string ZanStringBase::toUtf8() const {
  std::string utf8;
  text_.toUTF8String(utf8);
  return utf8;
}

bool ZanStringBase::sharesStorageWith(const ZanStringBase& other) const {
  return !text_.isEmpty() && text_.getBuffer() == other.text_.getBuffer();
}

ZanStringBase& ZanStringBase::append(const ZanStringBase& text) {
  text_.append(text.text_);
  return checked();
}

ZanStringBase& ZanStringBase::append(char16_t unit) {
  text_.append(unit);
  return checked();
}

ZanStringBase& ZanStringBase::append(const char16_t* units, std::int32_t count) {
  text_.append(units, 0, count);
  return checked();
}

ZanStringBase& ZanStringBase::insert(std::int32_t position, const ZanStringBase& text) {
  text_.insert(position, text.text_);
  return checked();
}

ZanStringBase& ZanStringBase::insert(std::int32_t position, char16_t unit) {
  text_.insert(position, unit);
  return checked();
}

ZanStringBase& ZanStringBase::erase(std::int32_t start, std::int32_t count) {
  text_.remove(start, count);
  return checked();
}

ZanStringBase& ZanStringBase::replace(std::int32_t start, std::int32_t count,
                                      const ZanStringBase& text) {
  text_.replace(start, count, text.text_);
  return checked();
}

ZanStringBase& ZanStringBase::truncate(std::int32_t length) {
  text_.truncate(length);
  return *this;
}

ZanStringBase& ZanStringBase::padLeading(std::int32_t length, char16_t unit) {
  text_.padLeading(length, unit);
  return checked();
}

ZanStringBase& ZanStringBase::padTrailing(std::int32_t length, char16_t unit) {
  text_.padTrailing(length, unit);
  return checked();
}

ZanStringBase& ZanStringBase::clear() {
  text_.remove();
  return *this;
}

void ZanStringBase::reserve(std::int32_t capacity) {
  // getBuffer(minCapacity) is ICU's way to grow storage; releasing with the current length keeps
  // the text unchanged.
  if (capacity <= text_.getCapacity()) return;
  const std::int32_t length = text_.length();
  if (text_.getBuffer(capacity) == nullptr) throw std::bad_alloc();
  text_.releaseBuffer(length);
}

std::int32_t ZanStringBase::indexOf(char16_t unit, std::int32_t from) const {
  return text_.indexOf(unit, from);
}

ZanStringBase ZanStringBase::substring(std::int32_t start, std::int32_t count) const {
  ZanStringBase part(icu::UnicodeString(text_, start, count));
  part.checked();
  return part;
}

std::strong_ordering ZanStringBase::operator<=>(const ZanStringBase& other) const {
  const std::int8_t order = text_.compare(other.text_);
  return order < 0   ? std::strong_ordering::less
         : order > 0 ? std::strong_ordering::greater
                     : std::strong_ordering::equal;
}
