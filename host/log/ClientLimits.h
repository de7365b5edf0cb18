#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <optional>
#include <unordered_map>

namespace mlk::host {

/// How much each client may have a service write to its log: an account a client, so that one that
/// is over its limit costs nobody else a line. May be called from any thread.
class ClientLimits {
  public:
    using Time = std::chrono::steady_clock::time_point;

    /// Bytes that an account holds at first, and at most.
    static constexpr int64_t kBurst = int64_t{4} << 20U;
    /// Bytes that are paid into it each second.
    static constexpr int64_t kEachSecond = 64'000;
    /// A client that has used up its account is heard again when there are that many in it.
    static constexpr int64_t kHeardAgain = 64'000;
    /// How many clients have accounts. One more takes the place of the one with the most in it.
    static constexpr size_t kMost = 64;

    /// Takes bytes from the client's account. False when they are more than is there, or the client
    /// has not been heard since they were: the lines are left out and counted.
    bool take(int client, size_t bytes, uint64_t lines, Time now);

    /// Lines of a client that were left out, and have not been told of yet.
    struct LeftOut {
        int client;
        uint64_t lines;
    };
    /// Those of a client that is heard again now; nothing when there is none.
    std::optional<LeftOut> leftOut(Time now);

  private:
    struct Account {
        int64_t bytes = kBurst;
        Time paid{};
        uint64_t leftOut = 0;  // 0: the client is heard
    };

    static void pay(Account& account, Time now);
    Account& accountOf(int client, Time now);

    std::mutex mMutex;
    std::unordered_map<int, Account> mAccounts;  // under the mutex
    size_t mUnheard = 0;                         // under the mutex: accounts with lines left out
};

}  // namespace mlk::host
