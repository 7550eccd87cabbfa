#ifndef BSUTILS_ENCODING_H
#define BSUTILS_ENCODING_H

// The two properties of a binary number's representation that the runtime's encoding number
// describes. The numbers are part of the interface; operations test only for the one value that
// differs from the default (LittleEndian == 1, HFPFloat == 2), so any other number a caller passes
// means big-endian and IEEE respectively.

#include <cstdint>

enum EEndian : std::int32_t {
  LittleEndian = 1,  // least significant byte first: the processor's own order
  BigEndian = 2,     // most significant byte first: network and mainframe order
};

enum EFloatFmt : std::int32_t {
  IEEEFloat = 1,  // IEEE 754 single and double precision
  HFPFloat = 2,   // hexadecimal floating point
};

#endif  // BSUTILS_ENCODING_H
