#pragma once

#include <string>
#include <string_view>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/** The text after the last "/" of a path; a path without one is its own file name. */
std::string_view fileNameOf(std::string_view path);

/** True if the path exists, whatever the type of the file. */
bool pathExists(const std::string& path);

/** A file that a client or an item names. */
struct NamedFile {
    std::string path;  // without quotes around it
    bool exists;       // whatever its type
};

/**
 * Looks for the file of a name: a path, which may be in double quotes.
 *
 * A name that begins with a double quote loses that quote, its last remaining quote and everything
 * after that. Any other name stays as it is; a quote inside it is part of the path. A name that
 * begins with its only double quote is the name of no file, and stays as it is, too.
 */
NamedFile findFile(const std::string& name);

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
