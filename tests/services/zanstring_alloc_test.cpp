// A string whose storage cannot grow must fail loudly, never carry on as a shorter text. ICU's
// allocator is swapped before ICU is first used, which is why this suite has its own program.

#include <gtest/gtest.h>
#include <unicode/uclean.h>
#include <zan/zanstringbase.h>

#include <cstdlib>
#include <new>

namespace {

bool allocationsFail = false;

void* U_CALLCONV allocate(const void*, std::size_t size) {
  return allocationsFail ? nullptr : std::malloc(size);
}
void* U_CALLCONV reallocate(const void*, void* block, std::size_t size) {
  return allocationsFail ? nullptr : std::realloc(block, size);
}
void U_CALLCONV release(const void*, void* block) { std::free(block); }

// Runs `change` on a string too long for inline storage while ICU can allocate nothing.
template <typename Change>
void expectAllocationFailure(Change change) {
  ZanStringBase text(u"a text well beyond the inline storage of a short string");
  allocationsFail = true;
  EXPECT_THROW(change(text), std::bad_alloc);
  allocationsFail = false;
}

TEST(ZanStringAllocation, GrowthThatCannotBeStoredThrows) {
  expectAllocationFailure([](ZanStringBase& text) { text.padTrailing(4096, u'0'); });
  expectAllocationFailure([](ZanStringBase& text) { text.append(ZanStringBase(text)); });
  expectAllocationFailure([](ZanStringBase& text) { text.reserve(4096); });
  // A shared buffer is copied before it is changed; that copy can fail too.
  expectAllocationFailure([](ZanStringBase& text) {
    const ZanStringBase sharer = text;
    text.insert(0, u'x');
  });
  expectAllocationFailure(
      [](ZanStringBase& text) { const ZanStringBase copy(text.data(), text.length()); });
}

TEST(ZanStringAllocation, TextIsKeptWhenStorageIsAvailable) {
  ZanStringBase text(u"12");
  text.padLeading(40, u'0');
  EXPECT_EQ(text.length(), 40);
  EXPECT_EQ(text[39], u'2');
}

}  // namespace

int main(int argc, char** argv) {
  UErrorCode status = U_ZERO_ERROR;
  u_setMemoryFunctions(nullptr, allocate, reallocate, release, &status);
  if (U_FAILURE(status)) return 2;
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
