#ifndef BSUTILS_TESTS_EXPECT_FAILURE_H
#define BSUTILS_TESTS_EXPECT_FAILURE_H

// Checks the whole contract of a raised failure: the exception class, message number, trace text,
// source module, function and inserts, and the "Throwing exception" trace record written before it
// (module, line, symbolic code, trace text, then the same inserts).

#include <gtest/gtest.h>
#include <zan/zanexception.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "capturing_sink.h"

struct ExpectedFailure {
  std::string symbol;  // the symbolic code the trace record names
  std::int32_t messageNumber;
  std::string traceText;
  std::string module;
  std::string function;
  std::vector<std::string> inserts;
};

template <class Exception>
void expectFailure(const std::function<void()>& operation, const ExpectedFailure& expected) {
  CapturingSink sink(3);
  try {
    operation();
    ADD_FAILURE() << "no exception; expected " << expected.symbol;
    return;
  } catch (const Exception& failure) {
    EXPECT_EQ(typeid(failure), typeid(Exception)) << failure.what();
    EXPECT_EQ(failure.messageNumber(), expected.messageNumber) << failure.what();
    EXPECT_EQ(failure.traceText(), expected.traceText);
    EXPECT_EQ(failure.sourceModule(), expected.module);
    EXPECT_EQ(failure.function(), expected.function);
    EXPECT_EQ(failure.inserts(), expected.inserts);

    const auto traces = sink.ofKind(ZanLog::Kind::trace);
    ASSERT_EQ(traces.size(), 1u) << "one \"Throwing exception\" record before the throw";
    const ZanLog::Record& record = traces.front();
    EXPECT_EQ(record.text, "Throwing exception");
    EXPECT_EQ(record.function, expected.function);
    std::vector<std::string> recordInserts = {expected.module, std::to_string(failure.line()),
                                              expected.symbol, expected.traceText};
    recordInserts.insert(recordInserts.end(), expected.inserts.begin(), expected.inserts.end());
    EXPECT_EQ(record.inserts, recordInserts);
  } catch (const ZanException& other) {
    ADD_FAILURE() << "wrong class: " << other.what();
  }
}

#endif  // BSUTILS_TESTS_EXPECT_FAILURE_H
