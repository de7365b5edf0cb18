#pragma once

#include <cstddef>
#include <string>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/*
 * Limits of file sizes, in bytes. A configured path can lead to an endless file of the kernel or to
 * a sparse one of many gigabytes. Each limit is far above the size of real files, yet reading that
 * much takes only a moment. A larger file is not used at all; the log names the file and the limit.
 */

/** Project id, board id and saved country, each a line of text. */
constexpr size_t kMostIdentityBytes = size_t{64} << 10;

/** Customer, system, project and board files. */
constexpr size_t kMostProjectBytes = size_t{64} << 20;

/** Lists, channel plans, maps and auxiliary files; some are held in memory completely. */
constexpr size_t kMostListBytes = size_t{16} << 20;

/** The reason to log for a file that exceeds its limit. */
inline std::string largerThan(size_t limit) {
    return "larger than " + std::to_string(limit) + " bytes";
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
