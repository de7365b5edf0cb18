#pragma once

#include <android/log.h>

namespace mlk::testing {

/// While it lives this process logs nothing, not even to a LogCapture. For tests in which threads
/// meet: the log takes a lock for each line, which puts them in order and hides from the thread
/// sanitizer that they would meet without it.
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
