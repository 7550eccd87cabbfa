#include <unicode/uchar.h>
#include <zan/zanutility.h>

bool ZanUtility::checkCharacter(char16_t unit, std::int32_t checkType) {
  return checkType == eDecimalDigit && u_isdigit(unit);
}
