#ifndef BSUTILS_TESTS_OUTCOME_H
#define BSUTILS_TESTS_OUTCOME_H

// What a call gave, its value or its failure as a caller sees it, so that two ways of reading the
// same field can be held to the same answer.

#include <zan/zanexception.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

// What a call gave: its value, or its failure as the caller sees it.
struct Outcome {
  bool failed = false;
  std::int64_t value = 0;
  std::int32_t messageNumber = 0;
  std::string traceText;
  std::vector<std::string> inserts;
  bool operator==(const Outcome&) const = default;
};

inline Outcome outcomeOf(const std::function<std::int64_t()>& call) {
  Outcome outcome;
  try {
    outcome.value = call();
  } catch (const ZanException& failure) {
    outcome.failed = true;
    outcome.messageNumber = failure.messageNumber();
    outcome.traceText = failure.traceText();
    outcome.inserts = failure.inserts();
  }
  return outcome;
}

#endif  // BSUTILS_TESTS_OUTCOME_H
