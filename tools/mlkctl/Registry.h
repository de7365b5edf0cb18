#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace mlk::ctl {

/// A service that is registered.
struct Registration {
    std::string interface;  ///< With its package: "vendor.morlak.mlkconfigs@1.0::IMlkTvConfigs".
    std::string instance;
    std::optional<int> pid;      ///< Nothing when it does not tell, or does not answer.
    std::optional<int> threads;  ///< How many the process has now; nothing when that is unknown.
};

/// Every service that answers, in the service manager's order. One that accepts a connection, but
/// does not tell its process id within the limit, is there without it.
std::vector<Registration> registrations(std::chrono::milliseconds limit);

/// The number of threads in a text of the form of /proc/PID/status; nothing when it says none.
std::optional<int> threadsIn(const std::string& status);

}  // namespace mlk::ctl
