#pragma once

#include <cstddef>
#include <string>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/** More than any regional file needs, and little enough to hold in memory several times over. */
constexpr size_t kMostFileBytes = size_t{16} << 20;

/** How reading a file ended. */
enum class ReadResult {
    DONE,
    MISSING,     // nothing has that path
    UNREADABLE,  // not a regular file, no permission, more than kMostFileBytes, an error on the way
};

/**
 * Reads a whole file. Only a regular one is opened, so that no FIFO or device under a configured
 * path can hold the caller up. The log says why a file is unreadable. From any thread.
 *
 * @param text  set to the content; untouched unless it is all there
 */
ReadResult readTextFile(const std::string& path, std::string& text);

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
