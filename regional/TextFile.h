#pragma once

#include <string>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/** How reading a file ended. */
enum class ReadResult {
    DONE,
    MISSING,     // nothing has that path
    UNREADABLE,  // not a regular file, no permission, more than kMostListBytes, an error on the way
};

/**
 * Reads a whole file, of at most kMostListBytes. Only a regular one is opened, so that no FIFO or
 * device under a configured path can hold the caller up. The log says why a file is unreadable.
 * From any thread.
 *
 * @param text  set to the content; untouched unless it is all there
 */
ReadResult readTextFile(const std::string& path, std::string& text);

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
