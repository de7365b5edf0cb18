#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

/// The calls by which this process changes files; the test program is linked so that they pass by
/// here.
enum class FileCall { WRITE, FDATASYNC, FTRUNCATE };

/// What becomes of a call.
struct FileCallFate {
    int error = 0;           ///< an errno: it fails with that
    size_t most = SIZE_MAX;  ///< of a write: as many bytes are written
};

/// While it lives, it is asked about each call, with the number of calls before, and records them.
/// One at a time. The calls may come from any thread, but not two at once.
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
    std::vector<FileCall> mCalls;
};
