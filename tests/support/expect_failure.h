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
#include "zan_printers.h"

// `messageNumber` as the catalogue writes it, e.g. 0xC0001592.
template <class Exception>
void expectFailure(const std::function<void()>& operation, const std::string& symbol,
                   std::uint32_t messageNumber, const std::string& traceText,
                   const std::string& module, const std::string& function,
                   const std::vector<std::string>& inserts) {
  CapturingSink sink(3);
  try {
    operation();
    ADD_FAILURE() << "no exception; expected " << symbol;
    return;
  } catch (const Exception& failure) {
    EXPECT_EQ(typeid(failure), typeid(Exception)) << failure.what();
    EXPECT_EQ(static_cast<std::uint32_t>(failure.messageNumber()), messageNumber) << failure.what();
    EXPECT_EQ(failure.traceText(), traceText);
    EXPECT_EQ(failure.sourceModule(), module);
    EXPECT_EQ(failure.function(), function);
    EXPECT_EQ(failure.inserts(), inserts);

    const auto traces = sink.ofKind(ZanLog::Kind::trace);
    ASSERT_EQ(traces.size(), 1u) << "one \"Throwing exception\" record before the throw";
    const ZanLog::Record& record = traces.front();
    EXPECT_EQ(record.text, "Throwing exception");
    EXPECT_EQ(record.function, function);
    std::vector<std::string> recordInserts = {module, std::to_string(failure.line()), symbol,
                                              traceText};
    recordInserts.insert(recordInserts.end(), inserts.begin(), inserts.end());
    EXPECT_EQ(record.inserts, recordInserts);
  } catch (const ZanException& other) {
    ADD_FAILURE() << "wrong class: " << other.what();
  }
}

// A failure code as the tests expect it, and the codes most conversions raise.
struct Code {
  const char* symbol;
  std::uint32_t messageNumber;  // as the catalogue writes it
  const char* traceText;        // the default one
};
inline const Code kInternal{"CP_INTERNAL_ERROR", 0xC000157E, "CPI Internal Error"};
inline const Code kInvalid{"CP_CONV_INPUT_DATA_INVALID", 0xC0001581,
                           "CPI Converter Input Data Invalid"};
inline const Code kBounds{"CP_CONV_INPUT_DATA_OUT_OF_BOUNDS", 0xC0001582,
                          "CPI Converter Input Data Out Of Bounds"};

// A conversion failure of `code` raised by the converter object.
inline void expectConversionFailure(const std::function<void()>& operation, const Code& code,
                                    const std::string& function,
                                    const std::vector<std::string>& inserts) {
  expectFailure<ZanConversionException>(operation, code.symbol, code.messageNumber, code.traceText,
                                        "datacnv", function, inserts);
}

#endif  // BSUTILS_TESTS_EXPECT_FAILURE_H
