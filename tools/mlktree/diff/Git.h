#pragma once

#include <sys/types.h>

#include <memory>
#include <string>
#include <vector>

namespace mlk::tree {

/**
 * A folder of the system's temporary folder. The destructor removes it with all it has. Should a
 * signal end the program before that, a process that only waits for this removes it.
 */
class TemporaryFolder {
  public:
    /** @throw std::system_error if it cannot be made */
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::string& path() const { return mPath; }

  private:
    void startGuard();

    std::string mPath;
    pid_t mGuard = -1;    // -1 if it cannot be started
    int mGuardPipe = -1;  // closed when this process ends, in whatever way
};

/** Where extractRevision() puts the folder, below the temporary one. */
inline constexpr const char* kExtractedTree = "/tree";

/**
 * Writes a folder of a Git repository, as a revision has it, to a temporary folder.
 *
 * Runs the program "git", which only lists and reads objects: no hook, filter or other program that
 * the repository names runs, nothing is fetched, and the repository is not written to. Submodules
 * are left out.
 *
 * @param folder    the folder as it lies in the working tree
 * @param revision  "HEAD~1", "v1.0", ...
 * @throw UsageError if there is no git, no repository, no such revision, or no such folder in it
 */
std::unique_ptr<TemporaryFolder> extractRevision(const std::string& folder,
                                                 const std::string& revision);

}  // namespace mlk::tree
