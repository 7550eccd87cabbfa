// Coverage-guided fuzz target for the field conversions. A ZanException is the answer the library
// owes bad input, and std::bad_alloc the one it may give an absurd size; anything else escaping, a
// sanitizer report or an abort is a fault in the library.

#include <zan/zanexception.h>
#include <zan/zanlog.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <vector>

#include "fuzz_input.h"

namespace {

using bsfuzz::Args;
using bsfuzz::Op;

// Every family's operations: binary, text, then date-time.
const std::vector<Op>& operations() {
  static const std::vector<Op> ops = [] {
    std::vector<Op> all = bsfuzz::binaryOperations();
    const auto& text = bsfuzz::textOperations();
    all.insert(all.end(), text.begin(), text.end());
    const auto& datetime = bsfuzz::datetimeOperations();
    all.insert(all.end(), datetime.begin(), datetime.end());
    return all;
  }();
  return ops;
}

}  // namespace

// scripts/fuzz runs the target once per family, leaving the other families out through
// BSUTILS_FUZZ_SKIP, so it asks for each family's size: BSUTILS_FUZZ_COUNTS=1 prints them, in the
// order operations() puts the families, and exits before any input.
extern "C" int LLVMFuzzerInitialize(int*, char***) {
  const char* env = std::getenv("BSUTILS_FUZZ_COUNTS");
  if (env == nullptr || std::strcmp(env, "1") != 0) return 0;
  std::printf("binary %zu\ntext %zu\ndatetime %zu\n", bsfuzz::binaryOperations().size(),
              bsfuzz::textOperations().size(), bsfuzz::datetimeOperations().size());
  std::exit(0);
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 9) return 0;
  const auto& ops = operations();
  std::size_t index = data[0] % ops.size();
  // Operations can be left out while a known fault in them is being fixed: BSUTILS_FUZZ_SKIP
  // holds their indices, comma-separated.
  static const std::vector<bool> skipped = [&] {
    std::vector<bool> s(ops.size(), false);
    if (const char* env = std::getenv("BSUTILS_FUZZ_SKIP"))
      for (char* end = nullptr; *env; env = *end ? end + 1 : end) {
        long i = std::strtol(env, &end, 10);
        if (end == env) break;
        if (i >= 0 && std::size_t(i) < s.size()) s[i] = true;
      }
    return s;
  }();
  if (skipped[index]) return 0;
  // BSUTILS_FUZZ_TRACE=1 turns on debug trace into a sink that formats and drops every record,
  // so that the trace and dump code runs on the same inputs.
  static const bool tracing = [] {
    const char* env = std::getenv("BSUTILS_FUZZ_TRACE");
    if (env == nullptr || *env != '1') return false;
    ZanLog::setSink([](const ZanLog::Record& r) {
      volatile std::size_t n = r.text.size() + r.function.size();
      for (const auto& i : r.inserts) n = n + i.size();
      (void)n;
    });
    ZanLog::iEffectiveLogFilter = ZanLog::kDebugLevel;
    return true;
  }();
  (void)tracing;
  Args a;
  std::memcpy(a.h, data + 1, 8);
  a.data = data + 9;
  a.size = size - 9;
  try {
    DataCnv cnv(a.ccsid(), a.endian(), a.floatFormat(), 53, nullptr, nullptr, 0, true,
                a.packedSign());
    ops[index](cnv, a);
  } catch (const ZanException&) {
    // The answer bad input is owed.
  } catch (const std::bad_alloc&) {
    // Allowed only for an absurd size.
  }
  return 0;
}
