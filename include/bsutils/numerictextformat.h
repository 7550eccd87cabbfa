#ifndef BSUTILS_NUMERICTEXTFORMAT_H
#define BSUTILS_NUMERICTEXTFORMAT_H

// How a number stands in a text field, beyond its sign and padding: the point character, the form
// and whether a reader holds the text to that form. The float and decimal text fields of DataCnv
// take one.

#include <cstdint>

// The numbers are part of the interface.
enum ENumericForm : std::int32_t {
  // "12.5", "-3", "0.001": the digits the value needs, a point only before a fraction.
  ePlainNumeric = 0,
  // Always a point and exactly `decimalPlaces` digits after it, rounded half to even:
  // 12.5 with 2 places -> "12.50"; with 0 places -> "12." (half to even; the point stays).
  eExplicitDecimalPoint = 1,
  // No point: the digits stand for the value times ten to `decimalPlaces`, rounded half to even:
  // 12.5 with 2 places -> "1250".
  eVirtualDecimalPoint = 2,
  // One digit, a fraction, "e", the exponent's sign and at least two digits: "1.25e+01". With
  // `decimalPlaces` 0 the fraction has every digit the value needs (none for "1e+02"); above 0 it
  // has exactly that many, rounded half to even.
  eExponentialNumeric = 3,
};

struct NumericTextFormat {
  // Stands for "." in the text; neither a digit, a sign nor "e". A writer uses it for the point it
  // writes, a reader takes only it as the point.
  char16_t decimalPoint = u'.';
  ENumericForm form = ePlainNumeric;
  // 0 to 998: the rounding keeps at most 999 digits, and the exponential form's first digit counts.
  std::int32_t decimalPlaces = 0;
  // A reader refuses text that does not keep to the form (the CP_NUMERIC_STRICT_ failures).
  // Otherwise it reads any number: an exponent in every form, any count of places, a point in the
  // virtual form (where the point then counts and the places do not).
  bool strictChecking = false;
};

#endif  // BSUTILS_NUMERICTEXTFORMAT_H
