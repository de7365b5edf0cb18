#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace mlk::ctl {

/** What a registered service says about its process. */
enum class Answering {
    TOLD,     // its process id
    UNTOLD,   // it answers without a process id: it may not tell it, or its runtime does not know
    ABSENT,   // the name is registered, but no service is found by it
    REFUSED,  // its process closes each connection of this one; only on a host
    HANGS,    // no answer within the limit
};

/** A service that is registered. */
struct Registration {
    std::string interface;  // with its package: "vendor.morlak.mlkconfigs@1.0::IMlkTvConfigs"
    std::string instance;
    Answering answering;
    std::optional<int> pid;      // only if TOLD or REFUSED
    std::optional<int> threads;  // threads of the process now; nothing if unknown
};

/**
 * All registered names, in the service manager's order. All services are asked at the same time.
 * They and the service manager together have the limit; the services have at least half of it, even
 * if the service manager needs more of it. Throws Failure UNREACHABLE if the service manager does
 * not answer within the limit.
 */
std::vector<Registration> registrations(std::chrono::milliseconds limit);

/**
 * Whether the service manager has this instance of an interface, which is named with its package.
 * Nothing if the service manager does not answer within the limit.
 */
std::optional<bool> isRegistered(std::string_view interface, std::string_view instance,
                                 std::chrono::milliseconds limit);

/** The number of threads in a text like /proc/PID/status; nothing if the text has none. */
std::optional<int> threadsIn(const std::string& status);

}  // namespace mlk::ctl
