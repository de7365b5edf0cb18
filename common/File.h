#pragma once

#include <fcntl.h>
#include <sys/types.h>

#include <cerrno>
#include <cstddef>
#include <string>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/**
 * An open regular file.
 *
 * Paths come from configuration files and from clients. A directory, FIFO or device under such a
 * path is refused, before it is opened where that can be seen: opening one could block, or set off
 * what the device does. Owns its descriptor; one thread at a time.
 */
class File {
  public:
    /**
     * Opens a file; isOpen() tells whether that worked.
     *
     * @param path   the file
     * @param flags  as for open(2)
     * @param mode   permissions of a file that O_CREAT creates
     */
    explicit File(const std::string& path, int flags = O_RDONLY, mode_t mode = 0);
    ~File();
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    bool isOpen() const { return mFd >= 0; }

    /** True when the file could not be opened because nothing has its path. */
    bool isMissing() const;

    /** Why the file could not be opened; EINVAL when it is no regular file. */
    int error() const { return mIsRegular ? mError : EINVAL; }

    /** The same in words. */
    std::string reason() const;

    /** Size in bytes when the file was opened. */
    size_t size() const { return mSize; }

    /**
     * Reads up to size bytes from the current position; an interrupted call is repeated.
     *
     * @return the number of bytes; 0 at the end of the file; -1 on an error, which is in errno
     */
    ssize_t read(char* buffer, size_t size);

    /** The open file, for calls that this class does not have; stays the property of the object. */
    int descriptor() const { return mFd; }

    /** As read(), with fewer than size bytes only at the end of the file. */
    ssize_t readUpTo(char* buffer, size_t size);

  private:
    int mFd = -1;
    int mError = 0;  // errno of the failed opening
    bool mIsRegular = true;
    size_t mSize = 0;
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
