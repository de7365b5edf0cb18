#include "ConnectionShares.h"

#include <log/log.h>

#include <algorithm>

#undef LOG_TAG
#define LOG_TAG "hidl"

namespace android::hardware::transport {

namespace {

// How many descriptors connections leave for messages and files; a quarter of all, if that is less.
constexpr size_t kLeftFree = 512;

}  // namespace

ConnectionShares& ConnectionShares::instance() {
    static auto* shares = new ConnectionShares;  // outlives the last connection
    return *shares;
}

std::optional<ConnectionShares::Place> ConnectionShares::take(pid_t client, int descriptor,
                                                              size_t limit) {
    const std::lock_guard<std::mutex> lock(mMutex);
    const size_t most = limit - std::min(kLeftFree, limit / 4);
    const size_t used = std::max(mConnections, static_cast<size_t>(std::max(descriptor, 0)));
    const size_t free = most > used ? most - used : 0;
    const auto known = mClients.find(client);
    if (known == mClients.end() && free == 0) {
        if (!std::exchange(mIsFull, true)) {
            ALOGE("no connection is left for process %d; %s", static_cast<int>(client),
                  largestLocked().c_str());
        }
        return {};
    }
    Client& place = known != mClients.end() ? known->second : mClients[client];
    if (place.connections >= free) {
        if (!std::exchange(place.isRefused, true)) {
            ALOGE("process %d has %zu connections, and %zu are left for all others: it gets no "
                  "more",
                  static_cast<int>(client), place.connections, free);
        }
        return {};
    }
    ++place.connections;
    ++mConnections;
    return std::make_optional<Place>(*this, client);
}

std::string ConnectionShares::largest() {
    const std::lock_guard<std::mutex> lock(mMutex);
    return largestLocked();
}

std::string ConnectionShares::largestLocked() const {
    const auto most = std::max_element(mClients.begin(), mClients.end(),
                                       [](const auto& one, const auto& other) {
                                           return one.second.connections < other.second.connections;
                                       });
    if (most == mClients.end()) {
        return "no client has a connection";
    }
    return "process " + std::to_string(most->first) +
           " has the most: " + std::to_string(most->second.connections) + " of " +
           std::to_string(mConnections);
}

void ConnectionShares::leave(pid_t client) {
    const std::lock_guard<std::mutex> lock(mMutex);
    --mConnections;
    mIsFull = false;
    const auto known = mClients.find(client);
    known->second.isRefused = false;
    if (--known->second.connections == 0) {
        mClients.erase(known);
    }
}

}  // namespace android::hardware::transport
