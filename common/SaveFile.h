#pragma once

#include <string>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/** What became of a file that was to be saved. */
enum class Saved {
    DONE,        ///< the file holds the text and nothing else
    NOT_OPENED,  ///< no such file can be opened or created, nothing has changed; errno says why
    NOT_WRITTEN  ///< the file cannot be written, errno says why; see saveFile for what it holds
};

/**
 * Makes `text` the whole content of a small text file and brings it to storage.
 *
 * A file that exists is overwritten, never replaced: owner, mode, label and links stay, its folder
 * may be read-only, and it may be a symbolic link or a mount of its own. On a file system without a
 * free block a text that fits into the blocks of the file is still saved. The order of the steps
 * keeps the old text or the new one readable whenever the process or the power goes:
 *
 * - A longer text: the file grows first, by zeros. That takes the space for the whole text, and
 *   fails where there is no space. The text follows when the new size is on storage.
 * - A shorter text: it goes out in one write with a NUL byte at its end. The remainder of the old
 *   text is cut off when both are on storage.
 *
 * So a reader of such a file has to take a NUL byte as the end of the text. A text of a sector
 * (512 bytes) or less goes to storage as a whole; a longer one may be new in its first sectors or
 * pages only.
 *
 * NOT_WRITTEN leaves the file as it was when there is no space. A device that fails in the middle
 * of the write can leave a beginning of the new text, with the old text after it.
 *
 * A file that does not exist is created as createFile does. One caller at a time for a path.
 *
 * @param path  the file; anything but a regular file is not opened
 */
Saved saveFile(const std::string& path, std::string text);

/**
 * Creates a file with this text and mode 0644, whatever the umask.
 *
 * The text is brought to storage under the name with ".new" appended, which then becomes the file:
 * a cut leaves no file or the whole one. A symbolic link stays, and the file that it names is
 * created. One caller at a time for a path.
 *
 * @return NOT_OPENED with EEXIST in errno if the file exists
 */
Saved createFile(const std::string& path, const std::string& text);

/** Brings changes of the folder that holds this path to storage, if its file system can. */
void syncFolderOf(const std::string& path);

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
