#pragma once

#include <poll.h>

#include <chrono>

namespace mlk::testing {

/// Whether the condition comes true within half a minute. For what another process does in its own
/// time and tells nobody: that it noticed a closed connection.
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
