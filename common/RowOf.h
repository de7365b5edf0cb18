#pragma once

#include <cstddef>
#include <cstdlib>
#include <string_view>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/**
 * Returns the index of a method's row in a table of a service's methods: kProjectItems, kTvSystems,
 * kTvFlags, kFrameworkItems. Each row has the name of its method in the interface as `method`.
 *
 *     constexpr size_t kRow = rowOf(kTvFlags, "pvrEnabled");
 *
 * A method without a row does not compile in a constant expression, as here; at run time it aborts
 * the process.
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
