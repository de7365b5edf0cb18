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
 * Paths come from configuration files and from clients. A path that leads to a directory, FIFO or
 * device is refused, if possible before opening: opening one could block or trigger the device.
 * Owns its descriptor; one thread at a time.
 */
class File {
  public:
    /**
     * Opens a file; isOpen() tells whether that succeeded.
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

    /** True if the file could not be opened because the path does not exist. */
    bool isMissing() const;

    /** The errno of the failed opening; EINVAL if it is not a regular file. */
    int error() const { return mIsRegular ? mError : EINVAL; }

    /** The text of that error. */
    std::string reason() const;

    /** Size in bytes when the file was opened; 0 for some files of the kernel. */
    size_t size() const { return mSize; }

    /**
     * Reads up to size bytes from the current position; an interrupted call is repeated.
     *
     * @return the number of bytes; 0 at the end of the file; -1 on an error, which is in errno
     */
    ssize_t read(char* buffer, size_t size);

    /** The descriptor, for calls that this class does not offer; the object still owns it. */
    int descriptor() const { return mFd; }

    /** As read(), but returns fewer than size bytes only at the end of the file. */
    ssize_t readUpTo(char* buffer, size_t size);

  private:
    int mFd = -1;
    int mError = 0;  // errno of the failed opening
    bool mIsRegular = true;
    size_t mSize = 0;
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
