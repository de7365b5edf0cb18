#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace mlk::ctl {

/// What a registered service says about its process.
enum class Answering {
    TOLD,    ///< Its process id.
    UNTOLD,  ///< It answers, but not that: it may not, or its runtime does not know.
    ABSENT,  ///< There is a name, but no service is given for it.
    HANGS,   ///< No answer within the limit.
};

/// A service that is registered.
struct Registration {
    std::string interface;  ///< With its package: "vendor.morlak.mlkconfigs@1.0::IMlkTvConfigs".
    std::string instance;
    Answering answering;
    std::optional<int> pid;      ///< Only if it is told.
    std::optional<int> threads;  ///< How many the process has now; nothing when that is unknown.
};

/// Every name that is registered, in the service manager's order. The services are asked at once.
/// Together with the manager's answer that takes the limit, unless the manager needs more than half
/// of it: the services have half of it at least. Throws Failure UNREACHABLE when the service
/// manager does not answer.
std::vector<Registration> registrations(std::chrono::milliseconds limit);

/// Whether the service manager has the name of the interface (without its package), instance
/// "default". False when it does not answer.
bool isRegistered(std::string_view interface);

/// The number of threads in a text of the form of /proc/PID/status; nothing when it says none.
std::optional<int> threadsIn(const std::string& status);

}  // namespace mlk::ctl
