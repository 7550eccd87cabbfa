#include <bsutils/cpalloc.h>

#include <cstdlib>

#include "core/cpraise.h"

using namespace bsutils::internal;

namespace {
constexpr const char* kModule = "cpalloc";
}

void* cpMalloc(std::uint32_t size) {
  void* block = std::malloc(size);
  if (block == nullptr) {
    CP_RAISE(CP_MEMORY_ALLOC_FAILURE, kModule, "cpMalloc", nullptr, nullptr);
  }
  return block;
}

void* cpRealloc(void* p, std::uint32_t size) {
  void* block = std::realloc(p, size);
  if (block == nullptr) {
    CP_RAISE(CP_MEMORY_ALLOC_FAILURE, kModule, "cpRealloc", nullptr, "realloc returned NULL");
  }
  return block;
}

void cpFree(void* p) { std::free(p); }
