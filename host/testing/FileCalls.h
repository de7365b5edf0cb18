#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <mutex>
#include <vector>

namespace mlk::testing {

/// The calls by which this process changes files. They pass by here in a test program that is
/// linked with host_file_calls.
enum class FileCall { FALLOCATE, FCHMOD, FSYNC, FTRUNCATE, PWRITE, RENAME, UNLINK };

/// What becomes of a call.
struct FileCallFate {
    int error = 0;           ///< an errno: it fails with that
    size_t most = SIZE_MAX;  ///< of a write: as many bytes are written
};

/// While it lives, it is asked about each call, with the number of calls before, and records them.
/// One at a time; the calls may come from any thread.
class FileCalls {
  public:
    using Judge = std::function<FileCallFate(FileCall call, size_t number)>;

    explicit FileCalls(Judge judge = {});
    ~FileCalls();
    FileCalls(const FileCalls&) = delete;
    FileCalls& operator=(const FileCalls&) = delete;

    const std::vector<FileCall>& calls() const { return mCalls; }

    /// For the functions that the calls pass by.
    static FileCallFate ask(FileCall call);

  private:
    Judge mJudge;
    std::mutex mMutex;  ///< for mCalls while calls are made
    std::vector<FileCall> mCalls;
};

/// Has every call of one kind fail with this errno.
FileCalls::Judge failing(FileCall call, int error);

/// No call waits for a disk: the tests have many files, and no power cut.
FileCalls::Judge withoutWaiting();

/// Runs the function in a child process that is killed (SIGKILL) before its call of that number,
/// from 0 on. Gives true when it was killed, false when it made fewer calls and so came to its end.
bool isKilledAt(size_t number, const std::function<void()>& function);

}  // namespace mlk::testing
