#pragma once

#include <string>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/** The result of saving a file. */
enum class Saved {
    DONE,       /**< the file holds the text and nothing else */
    NOT_OPENED, /**< the file cannot be opened or created; nothing has changed; see errno */
    NOT_WRITTEN /**< the file cannot be written, see errno, and saveFile for its content */
};

/**
 * Makes `text` the whole content of a small text file and brings it to storage.
 *
 * An existing file is overwritten, never replaced: it keeps its owner, mode, label and links. Its
 * folder may be read-only, and it may be a symbolic link or a mount point. If the file system is
 * full, a text that fits into the blocks of the file can still be saved. The order of the steps
 * keeps either the old or the new text readable if the process or the power ends at any time:
 *
 * - A longer text: the file first grows by zeros, which reserves the space for the whole text and
 *   fails if the disk is full. The text is written once the new size is on storage.
 * - A shorter text: it is written at once, with a NUL byte at its end. The remainder of the old
 * text is cut off once both are on storage.
 *
 * Readers of such a file must therefore treat a NUL byte as the end of the text. A text of up to a
 * sector (512 bytes) reaches storage as a whole. Of a longer one, only the first sectors or pages
 * may be new after a power cut.
 *
 * NOT_WRITTEN for lack of space leaves the file unchanged. A device that fails during the write can
 * leave the beginning of the new text followed by the old text.
 *
 * A missing file is created, see createFile. One caller at a time for a path.
 *
 * @param path  the file; anything but a regular file is refused
 */
Saved saveFile(const std::string& path, std::string text);

/**
 * Creates a file with this text and mode 0644, regardless of the umask.
 *
 * Writes the text to a temporary file with ".new" appended to the name, brings it to storage and
 * renames it: after a power cut, either no file or the whole file exists. If the path is a dangling
 * symbolic link, the link stays and its target is created. One caller at a time for a path.
 *
 * @return NOT_OPENED with errno EEXIST if the file exists
 */
Saved createFile(const std::string& path, const std::string& text);

/** Brings changes of the folder of this path to storage if the file system supports it. */
void syncFolderOf(const std::string& path);

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
