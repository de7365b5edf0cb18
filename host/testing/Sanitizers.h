// The sanitizers that a test is built with (by clang).
#pragma once

#include <cstddef>
#include <iterator>
#include <type_traits>
#include <vector>

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

/**
 * Each `n`-th row of a table of tests, from the first one on: a sanitizer finds what it looks for
 * in some of the rows, if all of them take the same way through the program.
 */
template <typename Rows>
auto everyNth(size_t n, const Rows& rows) {
    std::vector<std::decay_t<decltype(*std::begin(rows))>> some;
    size_t number = 0;
    for (const auto& row : rows) {
        if (number++ % n == 0) {
            some.push_back(row);
        }
    }
    return some;
}

}  // namespace mlk::testing
