#ifndef BSUTILS_TESTS_OUTCOME_H
#define BSUTILS_TESTS_OUTCOME_H

// What a call gave, its value or its failure as a caller sees it, so that two ways of reading the
// same field can be held to the same answer; and a switch that sends the conversions down their
// general path, which they take whenever debug trace is on.

#include <bsutils/pwfdata.h>
#include <zan/zanexception.h>
#include <zan/zanlog.h>

#include <cstdint>
#include <string>
#include <type_traits>
#include <vector>

// The step through an exhaustive domain of fields. Under the address sanitizer every raised failure
// scans the fake stack, which makes millions of them take most of an hour; there the domains are
// sampled, since what that build looks for is memory faults, and the plain build covers them whole.
#if defined(__SANITIZE_ADDRESS__)
inline constexpr std::uint32_t kExhaustiveStep = 61;
#else
inline constexpr std::uint32_t kExhaustiveStep = 1;
#endif

// What a call gave: its value as text, or its failure as the caller sees it.
struct Outcome {
  bool failed = false;
  std::string value;
  std::int32_t messageNumber = 0;
  std::string traceText;
  std::vector<std::string> inserts;
  bool operator==(const Outcome&) const = default;
};

inline std::string outcomeText(const PWFData& value) {
  return std::to_string(value.getDataLogicalType()) + ":" + value.getDecimalText().toUtf8();
}
inline std::string outcomeText(const std::vector<unsigned char>& bytes) {
  static constexpr char kHex[] = "0123456789ABCDEF";
  std::string text;
  for (const unsigned char byte : bytes) {
    text += kHex[byte >> 4];
    text += kHex[byte & 0x0F];
  }
  return text;
}
template <class Number>
requires std::is_arithmetic_v<Number> std::string outcomeText(Number value) {
  return std::to_string(value);
}

template <class Call>
Outcome outcomeOf(const Call& call) {
  Outcome outcome;
  try {
    outcome.value = outcomeText(call());
  } catch (const ZanException& failure) {
    outcome.failed = true;
    outcome.messageNumber = failure.messageNumber();
    outcome.traceText = failure.traceText();
    outcome.inserts = failure.inserts();
  }
  return outcome;
}

// Debug trace on, its records dropped: while one lives, the conversions take their general path.
// (Dropped rather than captured: the exhaustive differential tests write millions of them.)
class GeneralPathOnly {
 public:
  GeneralPathOnly() : filter_(ZanLog::iEffectiveLogFilter.load()) {
    sink_ = ZanLog::setSink([](const ZanLog::Record&) {});
    ZanLog::iEffectiveLogFilter = ZanLog::kDebugLevel;
  }
  ~GeneralPathOnly() {
    ZanLog::iEffectiveLogFilter = filter_;
    ZanLog::setSink(sink_);
  }
  GeneralPathOnly(const GeneralPathOnly&) = delete;
  GeneralPathOnly& operator=(const GeneralPathOnly&) = delete;

 private:
  int filter_;
  ZanLog::Sink sink_;
};

#endif  // BSUTILS_TESTS_OUTCOME_H
