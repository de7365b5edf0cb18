#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <optional>
#include <unordered_map>

namespace mlk::host {

/**
 * Limits how much each client can make a service write to its log. Each client has an account, so
 * that a client over its limit costs no other client a line. Thread-safe.
 */
class ClientLimits {
  public:
    using Time = std::chrono::steady_clock::time_point;

    /** Bytes that an account holds at first, and at most. */
    static constexpr int64_t kBurst = int64_t{4} << 20U;
    /** Bytes that are added to an account each second. */
    static constexpr int64_t kEachSecond = 64'000;
    /**
     * A client that has used up its account is heard again when the account holds this many bytes.
     */
    static constexpr int64_t kHeardAgain = 64'000;
    /** The number of accounts. A new client beyond it replaces the one with the fullest account. */
    static constexpr size_t kMost = 64;

    /**
     * Takes bytes from the client's account. False when the account holds fewer, or the client has
     * not been heard since it ran out; then the lines are left out and counted.
     */
    bool take(int client, size_t bytes, uint64_t lines, Time now);

    /** Lines of a client that were left out and have not been reported yet. */
    struct LeftOut {
        int client;
        uint64_t lines;
    };
    /** Returns those of a client that is heard again now, if there is one. */
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
