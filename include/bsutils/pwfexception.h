#ifndef BSUTILS_PWFEXCEPTION_H
#define BSUTILS_PWFEXCEPTION_H

// The framework's own exceptions: what parsers, writers, handlers and message trees throw at each
// other, apart from the conversion failures of the rest of the library. Each carries a text of at
// most 1024 bytes (terminator included; a longer text is cut there) and a signed 32-bit code. The
// call-order checker throws them default-constructed: the class alone tells the fault.

#include <bsutils/export.h>

#include <cstdint>
#include <exception>

class BSUTILS_EXPORT PWFException : public std::exception {
 public:
  static constexpr std::int32_t kTextCapacity = 1024;

  explicit PWFException(const char* text = nullptr, std::int32_t code = 0);

  const char* what() const noexcept override { return text_; }
  const char* text() const noexcept { return text_; }
  std::int32_t code() const noexcept { return code_; }

 private:
  char text_[kTextCapacity];
  std::int32_t code_;
};

// A parser was called out of order (or a worker state was invalid).
class BSUTILS_EXPORT FIParseException : public PWFException {
 public:
  using PWFException::PWFException;
};

// A writer was called out of order.
class BSUTILS_EXPORT FIWriteException : public PWFException {
 public:
  using PWFException::PWFException;
};

// A handler callback came out of order, or there was no handler to take it.
class BSUTILS_EXPORT FIHandlerException : public PWFException {
 public:
  using PWFException::PWFException;
};

// A message tree was queried with no tree to answer.
class BSUTILS_EXPORT FIMessageTreeException : public PWFException {
 public:
  using PWFException::PWFException;
};

#endif  // BSUTILS_PWFEXCEPTION_H
