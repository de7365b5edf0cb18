#include "host/log/ClientLimits.h"

#include <algorithm>

namespace mlk::host {

void ClientLimits::pay(Account& account, Time now) {
    using std::chrono::milliseconds;
    // Counts whole milliseconds, so that many small steps lose nothing.
    const auto passed = std::chrono::floor<milliseconds>(now - account.paid);
    if (passed <= milliseconds(0)) {
        return;
    }
    constexpr milliseconds kFull(1000 * kBurst / kEachSecond);
    const int64_t bytes = std::min(passed, kFull).count() * kEachSecond / 1000;
    account.bytes = std::min(account.bytes + bytes, kBurst);
    account.paid += passed;
}

ClientLimits::Account& ClientLimits::accountOf(int client, Time now) {
    const auto found = mAccounts.find(client);
    if (found != mAccounts.end()) {
        pay(found->second, now);
        return found->second;
    }
    if (mAccounts.size() >= kMost) {
        for (auto& each : mAccounts) {
            pay(each.second, now);
        }
        const auto richest = std::max_element(
                mAccounts.begin(), mAccounts.end(),
                [](const auto& a, const auto& b) { return a.second.bytes < b.second.bytes; });
        mUnheard -= richest->second.leftOut != 0 ? 1 : 0;
        mAccounts.erase(richest);
    }
    Account& account = mAccounts[client];
    account.paid = now;
    return account;
}

bool ClientLimits::take(int client, size_t bytes, uint64_t lines, Time now) {
    const std::lock_guard<std::mutex> lock(mMutex);
    Account& account = accountOf(client, now);
    if (account.leftOut == 0 && static_cast<int64_t>(bytes) <= account.bytes) {
        account.bytes -= static_cast<int64_t>(bytes);
        return true;
    }
    mUnheard += account.leftOut == 0 ? 1 : 0;
    account.leftOut += std::max<uint64_t>(lines, 1);
    return false;
}

std::optional<ClientLimits::LeftOut> ClientLimits::leftOut(Time now) {
    const std::lock_guard<std::mutex> lock(mMutex);
    if (mUnheard == 0) {
        return {};
    }
    for (auto& [client, account] : mAccounts) {
        if (account.leftOut == 0) {
            continue;
        }
        pay(account, now);
        if (account.bytes < kHeardAgain) {
            continue;
        }
        const LeftOut result{client, account.leftOut};
        account.leftOut = 0;
        --mUnheard;
        return result;
    }
    return {};
}

}  // namespace mlk::host
