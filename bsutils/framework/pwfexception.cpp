#include <bsutils/pwfexception.h>

#include <cstring>

PWFException::PWFException(const char* text, std::int32_t code) : code_(code) {
  // The text is kept in the exception itself, so that throwing never allocates; a longer one is
  // cut.
  const std::size_t length = text == nullptr ? 0 : strnlen(text, kTextCapacity - 1);
  std::memcpy(text_, text == nullptr ? "" : text, length);
  text_[length] = '\0';
}
