#ifndef BSUTILS_TESTS_FIELD_CONVENTIONS_H
#define BSUTILS_TESTS_FIELD_CONVENTIONS_H

// Short names for the field conventions, so that a table row of a field test fits on one line.

#include <bsutils/dataconv.h>

inline constexpr auto kNoSign = DataCnv::eNoSign;
inline constexpr auto kLeading = DataCnv::eLeadingSeparateSign;
inline constexpr auto kTrailing = DataCnv::eTrailingSeparateSign;
// The one style that binary integers and packed decimals read as signed.
inline constexpr auto kSigned = DataCnv::eLeadingEmbeddedSign;
inline constexpr auto kUnsigned = DataCnv::eNoSign;
inline constexpr auto kLeft = DataCnv::eLeftJustified;
inline constexpr auto kRight = DataCnv::eRightJustified;
inline constexpr auto kNoTrim = DataCnv::eNoTrim;
inline constexpr auto kTrimSpace = DataCnv::eTrimWhiteSpace;
inline constexpr auto kTrimPad = DataCnv::eTrimPadding;

#endif  // BSUTILS_TESTS_FIELD_CONVENTIONS_H
