// Allocation that never returns null, and assertions that log and carry on.

#include <bsutils/cpalloc.h>
#include <bsutils/cpassert.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>
#include <zan/zanexception.h>

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "support/capturing_sink.h"
#include "support/expect_failure.h"

#if defined(__SANITIZE_ADDRESS__)
// Let a refused allocation come back as null, as it does without the sanitizer, instead of
// aborting the process.
extern "C" const char* __asan_default_options() { return "allocator_may_return_null=1"; }
#endif

namespace {

using Strings = std::vector<std::string>;

TEST(CpAlloc, AllocatesAndReallocatesZeroBytesIsWhateverMallocGives) {
  auto* block = static_cast<unsigned char*>(cpMalloc(4));
  block[3] = 0x5A;
  block = static_cast<unsigned char*>(cpRealloc(block, 4096));
  EXPECT_EQ(block[3], 0x5A);
  cpFree(block);
  EXPECT_NO_THROW(cpFree(cpMalloc(0)));
  cpFree(nullptr);
}

// Caps the address space a little above what the process maps now, so that a large request fails
// in malloc itself. Runs in a child process (a death-test fork) so the cap never reaches the suite.
void capAddressSpace() {
  long pages = 0;
  if (FILE* statm = std::fopen("/proc/self/statm", "r")) {
    if (std::fscanf(statm, "%ld", &pages) != 1) pages = 0;
    std::fclose(statm);
  }
  const rlim_t limit =
      static_cast<rlim_t>(pages) * static_cast<rlim_t>(sysconf(_SC_PAGESIZE)) + (64u << 20);
  const rlimit cap{limit, limit};
  setrlimit(RLIMIT_AS, &cap);
}

// One child process: a refused malloc and a refused realloc are fatal after their trace record,
// and with trace off no record is written.
TEST(CpAllocDeathTest, RefusedAllocationIsFatal) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  constexpr std::uint32_t kTooLarge = 3u << 30;
  EXPECT_EXIT(
      {
        capAddressSpace();
        expectFailure<ZanFatalException>([] { cpMalloc(kTooLarge); }, "CP_MEMORY_ALLOC_FAILURE",
                                         0xC0000806, "malloc returned NULL", "cpalloc", "cpMalloc",
                                         {});
        void* block = cpMalloc(16);
        expectFailure<ZanFatalException>([&] { cpRealloc(block, kTooLarge); },
                                         "CP_MEMORY_ALLOC_FAILURE", 0xC0000806,
                                         "realloc returned NULL", "cpalloc", "cpRealloc", {});
        cpFree(block);  // a failed realloc leaves the block as it was
        CapturingSink traceOff(2);
        EXPECT_THROW(cpMalloc(kTooLarge), ZanFatalException);
        EXPECT_TRUE(traceOff.records().empty());
        std::_Exit(::testing::Test::HasFailure() ? 1 : 0);
      },
      ::testing::ExitedWithCode(0), "");
}

TEST(CpAssert, LogsAnErrorAndReturns) {
  CapturingSink sink(0);
  cpAssert("size > 0", "reader.cpp", 12);
  ASSERT_EQ(sink.records().size(), 1u);
  const ZanLog::Record& error = sink.records().front();
  EXPECT_EQ(error.kind, ZanLog::Kind::error);
  EXPECT_EQ(error.function, "cpAssert");
  EXPECT_EQ(error.file, "cpassert");
  EXPECT_EQ(error.messageNumber, static_cast<std::int32_t>(0xC000157D));
  EXPECT_EQ(error.text, "CPAssertion failed");
  EXPECT_EQ(error.logSource, ZanLog::iDefaultLogSource.toUtf8());
  EXPECT_EQ(error.inserts, (Strings{"size > 0", "reader.cpp", "12"}));
}

TEST(CpAssert, WithTraceOnIsFramedByEntryAndExit) {
  CapturingSink sink(3);
  cpAssert("ok", "file.cpp", 7);
  const auto& records = sink.records();
  ASSERT_EQ(records.size(), 3u);
  EXPECT_EQ(records[0].kind, ZanLog::Kind::entry);
  EXPECT_EQ(records[0].inserts, (Strings{"ok", "file.cpp", "7"}));
  EXPECT_EQ(records[1].kind, ZanLog::Kind::error);
  EXPECT_EQ(records[2].kind, ZanLog::Kind::exit);
  EXPECT_EQ(records[2].function, "cpAssert");
}

}  // namespace
