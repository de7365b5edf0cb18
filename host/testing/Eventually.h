#pragma once

#include <poll.h>

#include <chrono>

namespace mlk::testing {

/**
 * Whether the condition becomes true within half a minute. For events in another process that are
 * not signalled, such as noticing a closed connection.
 */
template <typename Condition>
bool eventually(const Condition& condition) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) {
            return false;
        }
        (void)poll(nullptr, 0, 1);
    }
    return true;
}

}  // namespace mlk::testing
