#pragma once

#include <sys/types.h>

#include <string>
#include <string_view>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

enum class Replaced {
    DONE,         ///< the file holds the text
    NOT_CREATED,  ///< no new file can take the place; the old one is as it was; errno says why
    NOT_WRITTEN   ///< the new file could not be written; the old one is as it was; errno says why
};

/**
 * Puts a file with this text, of this mode, in the place of what has the path.
 *
 * The text is brought to storage under the path with ".new" behind it, and then takes the name: a
 * set that loses power on the way, or has no room left, has the old file or the new one. One caller
 * at a time for a path.
 */
Replaced replaceFile(const std::string& path, std::string_view text, mode_t mode);

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
