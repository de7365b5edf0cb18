#pragma once

#include <string>
#include <string_view>

namespace mlk::testing {

/// A folder of its own for one test, under $TMPDIR or /tmp; it goes, with all that is in it, when
/// the object does. Not for use from two threads at once on the same file.
class TempDir {
  public:
    /// Creates the folder; throws std::system_error when that fails.
    TempDir();
    ~TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    /// Full path of the folder, without a slash at its end.
    const std::string& path() const { return mPath; }

    /// Full path of an entry of the folder, whether it exists or not.
    std::string path(std::string_view relative) const;

    /// Writes `text`, byte for byte, to the file `relative`, whose folders are created as needed
    /// and whose former content is lost. Gives the file's full path; throws std::runtime_error on
    /// failure.
    std::string write(std::string_view relative, std::string_view text) const;

    /// The whole file `relative`, byte for byte; throws std::runtime_error when it cannot be read.
    std::string read(std::string_view relative) const;

    /// Creates the folder `relative` and those above it; gives its full path.
    std::string mkdir(std::string_view relative) const;

  private:
    std::string mPath;
};

}  // namespace mlk::testing
