#pragma once

#include <cstddef>
#include <string>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

// How many bytes of a file are read. A path of the configuration can lead to a file without an end
// (one of the kernel's own) or to a sparse one of many gigabytes. Each limit is far above what real
// files have, and low enough that reading up to it takes a moment. A file with more than its limit
// is not used at all, and one error line names the file and the limit.

/** Project id, board id and saved country: a line of text each. */
constexpr size_t kMostIdentityBytes = size_t{64} << 10;

/** Customer, system, project and board files. */
constexpr size_t kMostProjectBytes = size_t{64} << 20;

/** Lists, channel plans, maps and auxiliary files. Some of them are held in memory whole. */
constexpr size_t kMostListBytes = size_t{16} << 20;

/** The reason that an error line gives for a file that has more bytes than its limit. */
inline std::string largerThan(size_t limit) {
    return "larger than " + std::to_string(limit) + " bytes";
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
