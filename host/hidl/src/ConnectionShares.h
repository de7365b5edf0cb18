#pragma once

#include <sys/types.h>

#include <cstddef>
#include <mutex>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>

namespace android::hardware::transport {

/**
 * Shares the connections that this process can have among its client processes.
 *
 * A client gets another connection as long as it has fewer than are still free. So one client that
 * opens connections without end gets half of them, two such clients a third each, and so on; the
 * same number stays free for others. All connections together leave descriptors for messages and
 * files.
 *
 * Thread-safe.
 */
class ConnectionShares {
  public:
    /** A client's right to one connection; gives it back when it is destroyed. */
    class Place {
      public:
        Place(ConnectionShares& shares, pid_t client) : mShares(&shares), mClient(client) {}
        Place(Place&& other) noexcept
            : mShares(std::exchange(other.mShares, nullptr)), mClient(other.mClient) {}
        Place(const Place&) = delete;
        Place& operator=(const Place&) = delete;
        Place& operator=(Place&&) = delete;
        ~Place() {
            if (mShares != nullptr) {
                mShares->leave(mClient);
            }
        }

      private:
        ConnectionShares* mShares;  // null if it was moved from
        const pid_t mClient;
    };

    /** The shares of this process. */
    static ConnectionShares& instance();

    ConnectionShares() = default;
    ConnectionShares(const ConnectionShares&) = delete;
    ConnectionShares& operator=(const ConnectionShares&) = delete;

    /**
     * Takes a place for a new connection. Logs a refusal, and further ones only after a connection
     * of that client has ended.
     *
     * @param client      the process id; clients whose id is unknown share their connections
     * @param descriptor  the connection's; the kernel has given all lower numbers already
     * @param limit       how many descriptors this process may open
     * @return nothing if the client has as many connections as are free
     */
    std::optional<Place> take(pid_t client, int descriptor, size_t limit);

    /** The client with the most connections, for messages: "process 17 has the most: 40 of 48". */
    std::string largest();

  private:
    struct Client {
        size_t connections = 0;
        bool isRefused = false;
    };

    void leave(pid_t client);
    std::string largestLocked() const;

    std::mutex mMutex;  // guards the members below
    std::unordered_map<pid_t, Client> mClients;
    size_t mConnections = 0;  // of all clients
    bool mIsFull = false;     // a client was refused though it has no connection
};

}  // namespace android::hardware::transport
