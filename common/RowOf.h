#pragma once

#include <cstddef>
#include <cstdlib>
#include <string_view>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/**
 * Number of a method's row in a table of what a service's methods answer from: kProjectItems,
 * kTvSystems, kTvFlags, kFrameworkItems. Each row has the name of its method, as the interface has
 * it, as `method`.
 *
 *     constexpr size_t kRow = rowOf(kTvFlags, "pvrEnabled");
 *
 * In a constant, as here, a method without a row does not compile; elsewhere it ends the process.
 */
template <typename Row, size_t kSize>
constexpr size_t rowOf(const Row (&rows)[kSize], std::string_view method) {
    for (size_t row = 0; row < kSize; ++row) {
        if (method == rows[row].method) {
            return row;
        }
    }
    std::abort();
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
