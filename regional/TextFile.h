#pragma once

#include <string>

#include "common/ReadObserver.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/** The result of reading a file. */
enum class ReadResult {
    DONE,
    MISSING,     // the path does not exist
    UNREADABLE,  // not a regular file, no permission, too large, or a read error
};

/**
 * Reads a whole file of at most kMostListBytes. Refuses anything but a regular file, so that no
 * FIFO or device can block the caller. Logs why a file is unreadable. Thread-safe.
 *
 * @param text      set to the content if the result is DONE; untouched otherwise
 * @param observer  hears why a file is unreadable; null for none
 */
ReadResult readTextFile(const std::string& path, std::string& text,
                        ReadObserver* observer = nullptr);

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
