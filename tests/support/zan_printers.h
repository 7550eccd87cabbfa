#ifndef BSUTILS_TESTS_ZAN_PRINTERS_H
#define BSUTILS_TESTS_ZAN_PRINTERS_H

// Failure messages show strings as their text rather than as the bytes of the object.

#include <zan/zanstringbase.h>

#include <ostream>

inline void PrintTo(const ZanStringBase& text, std::ostream* out) {
  *out << '"' << text.toUtf8() << '"';
}

#endif  // BSUTILS_TESTS_ZAN_PRINTERS_H
