// The one raise helper, reached directly through the library's private header.

#include <gtest/gtest.h>
#include <zan/zanexception.h>
#include <zan/zanlogsource.h>

#include <cstdint>
#include <string>
#include <vector>

#include "core/cpraise.h"
#include "support/capturing_sink.h"

using namespace bsutils::internal;

namespace {

using Strings = std::vector<std::string>;

enum class Class { conversion, parser, fatal, recoverable };

struct CatalogueRow {
  CpCode code;
  const char* symbol;
  std::uint32_t messageNumber;
  Class exceptionClass;
  const char* traceText;
};

// One code of each exception class; each family's own tests check the codes it raises.
const CatalogueRow kCatalogue[] = {
    {CpCode::CP_INTERNAL_ERROR, "CP_INTERNAL_ERROR", 0xC000157E, Class::conversion,
     "CPI Internal Error"},
    {CpCode::CP_INTERNAL_ERROR_AS_PARSER, "CP_INTERNAL_ERROR", 0xC000157E, Class::parser,
     "CPI Internal Error"},
    {CpCode::CP_CONV_INVALID_PADDING_SIZE, "CP_CONV_INVALID_PADDING_SIZE", 0xC0001591,
     Class::parser, "CPI Converter An attempt to add padding to fixed length field has failed"},
    {CpCode::CP_MEMORY_ALLOC_FAILURE_AS_CONVERSION, "CP_MEMORY_ALLOC_FAILURE", 0xC0000806,
     Class::conversion, "CPI Memory allocation failure"},
    {CpCode::QZR2132, "QZR2132", 0xC0000854, Class::recoverable,
     "Invalid codepage (or missing table)"},
};

Class classOf(const ZanException& failure) {
  if (dynamic_cast<const ZanParserException*>(&failure)) return Class::parser;
  if (dynamic_cast<const ZanFatalException*>(&failure)) return Class::fatal;
  if (dynamic_cast<const ZanRecoverableException*>(&failure)) return Class::recoverable;
  return Class::conversion;
}

TEST(CpRaise, EveryCodeRaisesItsClassNumberAndTextAfterTracing) {
  for (const CatalogueRow& row : kCatalogue) {
    SCOPED_TRACE(row.symbol);
    CapturingSink sink(3);
    try {
      cpRaise(CpRaiseSite{"module", 17, "Owner::operation", nullptr}, row.code, nullptr, "first",
              std::int32_t{2});
      ADD_FAILURE() << "cpRaise returned";
    } catch (const ZanException& failure) {
      EXPECT_EQ(classOf(failure), row.exceptionClass);
      EXPECT_EQ(failure.messageNumber(), static_cast<std::int32_t>(row.messageNumber));
      EXPECT_EQ(failure.traceText(), row.traceText);
      EXPECT_EQ(failure.sourceModule(), "module");
      EXPECT_EQ(failure.line(), 17);
      EXPECT_EQ(failure.function(), "Owner::operation");
      EXPECT_EQ(failure.logSource(), ZanLog::iDefaultLogSource.toUtf8());
      EXPECT_EQ(failure.inserts(), (Strings{"first", "2"}));
    }
    ASSERT_EQ(sink.records().size(), 1u);
    const ZanLog::Record& record = sink.records().front();
    EXPECT_EQ(record.kind, ZanLog::Kind::trace);
    EXPECT_EQ(record.function, "Owner::operation");
    EXPECT_EQ(record.text, "Throwing exception");
    EXPECT_EQ(record.inserts, (Strings{"module", "17", row.symbol, row.traceText, "first", "2"}));
  }
}

TEST(CpRaise, SpecificTextAndLogSourceOverrideTheDefaults) {
  const ZanNamedLogSource source(u"type", u"converter", u"");
  CapturingSink sink(3);
  int line = 0;
  try {
    line = __LINE__ + 1;
    CP_RAISE(CP_INTERNAL_ERROR, "datacnv", "DataCnv::SwapEnds", &source, "Null input pointer");
    ADD_FAILURE() << "CP_RAISE returned";
  } catch (const ZanConversionException& failure) {
    EXPECT_EQ(failure.line(), line);
    EXPECT_EQ(failure.traceText(), "Null input pointer");
    EXPECT_EQ(failure.logSource(), "converter");
    EXPECT_TRUE(failure.inserts().empty());
  }
  ASSERT_EQ(sink.records().size(), 1u);
  EXPECT_EQ(sink.records().front().logSource, "converter");
  EXPECT_EQ(sink.records().front().inserts,
            (Strings{"datacnv", std::to_string(line), "CP_INTERNAL_ERROR", "Null input pointer"}));
}

}  // namespace
