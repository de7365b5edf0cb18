#pragma once

namespace mlk::host {

/// Not the number of a process.
inline constexpr int kNoClient = -1;

/// While it lives, what this thread logs is said for the client with this process id, and counts
/// towards its limit. They nest: what a client has another client's call say counts for the last.
class LogClient {
  public:
    /// kNoClient: nobody's limit counts.
    explicit LogClient(int process);
    ~LogClient();
    LogClient(const LogClient&) = delete;
    LogClient& operator=(const LogClient&) = delete;

  private:
    const int mFormer;
};

/// The client that this thread speaks for, or kNoClient.
int logClient();

}  // namespace mlk::host
