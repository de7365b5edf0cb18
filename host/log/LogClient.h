#pragma once

namespace mlk::host {

/** Not a valid process id. */
inline constexpr int kNoClient = -1;

/**
 * Attributes what this thread logs to the client with this process id and counts it towards the
 * client's limit, while the object lives. Objects nest; the innermost one counts.
 */
class LogClient {
  public:
    /** kNoClient: no limit applies. */
    explicit LogClient(int process);
    ~LogClient();
    LogClient(const LogClient&) = delete;
    LogClient& operator=(const LogClient&) = delete;

  private:
    const int mFormer;
};

/** The client that this thread logs for, or kNoClient. */
int logClient();

}  // namespace mlk::host
