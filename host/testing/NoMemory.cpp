#include "host/testing/NoMemory.h"

#include <cstddef>
#include <cstdlib>

#include "host/testing/Sanitizers.h"

namespace {

constexpr long kNever = -1;

thread_local long sBefore = kNever;

}  // namespace

#if !defined(__has_feature)
#define MLK_REPLACES_OPERATORS
#elif !__has_feature(thread_sanitizer)
#define MLK_REPLACES_OPERATORS
#endif

#ifdef MLK_REPLACES_OPERATORS
void* operator new(size_t size) {
    const bool isDue = sBefore == 0;
    sBefore -= sBefore == kNever ? 0 : 1;
    void* const memory = isDue ? nullptr : malloc(size);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return memory;
}
void operator delete(void* memory) noexcept {
    free(memory);
}
void operator delete(void* memory, size_t /* size */) noexcept {
    free(memory);
}
#endif

namespace mlk::testing {

bool NoMemory::isPossible() {
    return !kThreadSanitizer;
}

NoMemory::NoMemory(long before) {
    sBefore = before;
}

NoMemory::~NoMemory() {
    sBefore = kNever;
}

}  // namespace mlk::testing
