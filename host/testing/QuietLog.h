#pragma once

#include <android/log.h>

namespace mlk::testing {

/**
 * Discards everything this process logs while the object lives, even for a LogCapture. For tests in
 * which threads meet: the log takes a lock for each line, which would order the threads and hide a
 * missing lock from the thread sanitizer.
 */
class QuietLog {
  public:
    QuietLog() : mFormer(__android_log_set_minimum_priority(ANDROID_LOG_SILENT)) {}
    ~QuietLog() { __android_log_set_minimum_priority(mFormer); }
    QuietLog(const QuietLog&) = delete;
    QuietLog& operator=(const QuietLog&) = delete;

  private:
    const int mFormer;
};

}  // namespace mlk::testing
