#pragma once

#include <string>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

enum class Rewritten {
    DONE,        ///< the file holds the text and nothing else
    NOT_OPENED,  ///< the file is as it was
    NOT_WRITTEN  ///< the file begins with a part of the text, perhaps none; the rest is as it was
};

/// Makes `text` the whole content of a file, which is created when it is missing (mode 0666 less
/// the umask). A path that leads to anything but a regular file is not opened.
///
/// The file is overwritten, not replaced by a new one: it keeps its owner, mode and label, may be
/// a symbolic link or mounted over, and its folder may be read-only. What that costs is kept small:
/// there is one write, and no moment at which the file is empty. Where the text is shorter than
/// what it replaces, a NUL byte, at which readers of this file stop, goes out with it, and
/// the remainder is cut off only when both are on storage. The answer itself does not wait for
/// storage.
Rewritten rewriteInPlace(const std::string& path, std::string text);

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
