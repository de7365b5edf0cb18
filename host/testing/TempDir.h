#pragma once

#include <string>
#include <string_view>

namespace mlk::testing {

/**
 * A temporary folder for one test, under $TMPDIR or /tmp. The destructor removes it with its
 * contents. Two threads must not use the same file at once.
 */
class TempDir {
  public:
    /** Creates the folder; throws std::system_error when that fails. */
    TempDir();
    ~TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    /** Full path of the folder, without a slash at its end. */
    const std::string& path() const { return mPath; }

    /** Full path of an entry of the folder, whether it exists or not. */
    std::string path(std::string_view relative) const;

    /**
     * Writes `text`, byte for byte, to the file `relative`, replacing former content and creating
     * its folders as needed. Returns the file's full path; throws std::runtime_error on failure.
     */
    std::string write(std::string_view relative, std::string_view text) const;

    /**
     * Returns the whole file `relative`, byte for byte; throws std::runtime_error when it cannot be
     * read.
     */
    std::string read(std::string_view relative) const;

    /** Creates the folder `relative` and those above it; returns its full path. */
    std::string mkdir(std::string_view relative) const;

  private:
    std::string mPath;
};

}  // namespace mlk::testing
