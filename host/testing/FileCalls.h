#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <mutex>
#include <vector>

namespace mlk::testing {

/**
 * The calls by which this process changes files. A test program that is linked with host_file_calls
 * intercepts them.
 */
enum class FileCall { FALLOCATE, FCHMOD, FSYNC, FTRUNCATE, PWRITE, RENAME, UNLINK };

/** The fate of one call. */
struct FileCallFate {
    int error = 0;           // an errno with which the call fails
    size_t most = SIZE_MAX;  // of a write: the most bytes that are written
};

/**
 * Asks a function about the fate of each call, by its number, and records the calls, while the
 * object lives. Only one at a time. The calls may come from any thread, and the function is called
 * on that thread: it may wait there for another one.
 */
class FileCalls {
  public:
    using Judge = std::function<FileCallFate(FileCall call, size_t number)>;

    explicit FileCalls(Judge judge = {});
    ~FileCalls();
    FileCalls(const FileCalls&) = delete;
    FileCalls& operator=(const FileCalls&) = delete;

    const std::vector<FileCall>& calls() const { return mCalls; }

    /** For the intercepting functions. */
    static FileCallFate ask(FileCall call);

  private:
    Judge mJudge;
    std::mutex mMutex;  // guards mCalls
    std::vector<FileCall> mCalls;
};

/** A judge that makes every call of one kind fail with this errno. */
FileCalls::Judge failing(FileCall call, int error);

/** A judge that skips waiting for the disk: tests have many files and survive without it. */
FileCalls::Judge withoutWaiting();

/**
 * Runs the function in a child process that is killed (SIGKILL) before its call of that number,
 * counted from 0. True when it was killed; false when it made fewer calls and ended normally.
 */
bool isKilledAt(size_t number, const std::function<void()>& function);

}  // namespace mlk::testing
