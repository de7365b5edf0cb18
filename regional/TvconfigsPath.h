#pragma once

#include <cstddef>
#include <string_view>

#include "common/Partitions.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/**
 * Returns a path of a TV system file or a country map from "/tvconfigs" on; empty if it does not
 * contain that. Files are copied between products with other mount points, so what stands before
 * does not count.
 */
constexpr std::string_view fromTvconfigs(std::string_view path) {
    const size_t at = path.find(partition::kTvconfigs);
    return at == std::string_view::npos ? std::string_view() : path.substr(at);
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
