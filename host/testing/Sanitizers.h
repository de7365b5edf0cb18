// The sanitizers that a test is built with (by clang).
#pragma once

namespace mlk::testing {

#if defined(__has_feature)
#define MLK_HAS_FEATURE(name) __has_feature(name)
#else
#define MLK_HAS_FEATURE(name) 0
#endif

/** It keeps freed memory for a while. */
constexpr bool kAddressSanitizer = MLK_HAS_FEATURE(address_sanitizer);
/** It has a thread of its own in every program with more than one thread. */
constexpr bool kThreadSanitizer = MLK_HAS_FEATURE(thread_sanitizer);
/** One of them: each step of a test takes many times as long. */
constexpr bool kSanitized = kAddressSanitizer || kThreadSanitizer;

#undef MLK_HAS_FEATURE

}  // namespace mlk::testing
