#ifndef ZAN_ZANUTILITY_H
#define ZAN_ZANUTILITY_H

#include <cstdint>

class ZanUtility {
 public:
  enum ECheckType : std::int32_t { eDecimalDigit = 1 };

  // Classifies one UTF-16 unit. Check type 1 (eDecimalDigit): any Unicode decimal digit (general
  // category Nd). An unknown check type matches nothing.
  static bool checkCharacter(char16_t unit, std::int32_t checkType);
};

#endif  // ZAN_ZANUTILITY_H
