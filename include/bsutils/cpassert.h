#ifndef BSUTILS_CPASSERT_H
#define BSUTILS_CPASSERT_H

#include <bsutils/export.h>

#include <cstdint>

// Reports a failed assertion and returns: the caller carries on. Always writes an error record
// (module "cpassert", message 0xC000157D, text "CPAssertion failed", inserts: the expression, the
// file and the line); with trace on (filter 3 or more) it is framed by entry and exit records.
BSUTILS_EXPORT void cpAssert(const char* expression, const char* file, std::int32_t line);

#endif  // BSUTILS_CPASSERT_H
