// What a test has to know of the sanitizers it may be built with (by clang).
#pragma once

namespace mlk::testing {

#if defined(__has_feature)
#define MLK_HAS_FEATURE(name) __has_feature(name)
#else
#define MLK_HAS_FEATURE(name) 0
#endif

// Keeps memory that was given back for a while.
constexpr bool kAddressSanitizer = MLK_HAS_FEATURE(address_sanitizer);
// Has a thread of its own in every program that has more than one.
constexpr bool kThreadSanitizer = MLK_HAS_FEATURE(thread_sanitizer);

#undef MLK_HAS_FEATURE

}  // namespace mlk::testing
