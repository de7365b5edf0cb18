#include "tools/mlkctl/Registry.h"

#include <android/hidl/manager/1.0/IServiceManager.h>
#include <hidl/ServiceManagement.h>

#include <fstream>
#include <iterator>

#include "tools/mlkctl/Argument.h"
#include "tools/mlkctl/Failure.h"
#include "tools/mlkctl/Pending.h"

namespace mlk::ctl {

namespace {

using ::android::hardware::hidl_string;
using ::android::hardware::hidl_vec;

std::vector<Registration> registeredNames() {
    const auto manager = ::android::hardware::defaultServiceManager();
    if (manager == nullptr) throw Failure(ExitStatus::UNREACHABLE, "there is no service manager");
    std::vector<Registration> rows;
    const auto outcome = manager->list([&](const hidl_vec<hidl_string>& names) {
        for (const hidl_string& name : names) {
            const std::string text(name.c_str(), name.size());
            const size_t slash = text.find('/');
            if (slash == std::string::npos) continue;
            rows.push_back({text.substr(0, slash), text.substr(slash + 1), {}, {}});
        }
    });
    if (!outcome.isOk()) {
        throw Failure(ExitStatus::UNREACHABLE,
                      "the service manager does not answer: " + outcome.description());
    }
    return rows;
}

std::optional<int> pidOf(const std::string& interface, const std::string& instance) {
    const auto service =
            ::android::hardware::details::getRawServiceInternal(interface, instance, false, false);
    if (service == nullptr) return {};
    std::optional<int> pid;
    const auto outcome = service->getDebugInfo([&](const auto& info) { pid = info.pid; });
    // A service that must not tell says -1.
    if (!outcome.isOk() || pid.value_or(-1) <= 0) return {};
    return pid;
}

std::optional<int> threadsOf(int pid) {
    std::ifstream file("/proc/" + std::to_string(pid) + "/status");
    return threadsIn({std::istreambuf_iterator<char>(file), {}});
}

}  // namespace

std::optional<int> threadsIn(const std::string& status) {
    const std::string label = "\nThreads:";
    const size_t found = status.find(label);
    if (found == std::string::npos) return {};
    const size_t digits = status.find_first_not_of(" \t", found + label.size());
    if (digits == std::string::npos) return {};
    const auto count = numberFrom(status.substr(digits, status.find('\n', digits) - digits));
    if (!count) return {};
    return static_cast<int>(*count);
}

std::vector<Registration> registrations(std::chrono::milliseconds limit) {
    using Question = Pending<std::optional<int>>;
    const auto deadline = Question::Clock::now() + limit;
    std::vector<Registration> rows = registeredNames();
    std::vector<Question> questions;
    for (const Registration& row : rows) {
        questions.emplace_back([interface = row.interface, instance = row.instance] {
            return pidOf(interface, instance);
        });
    }
    for (size_t i = 0; i < rows.size(); ++i) {
        rows[i].pid = questions[i].waitUntil(deadline).value_or(std::nullopt);
        if (rows[i].pid) rows[i].threads = threadsOf(*rows[i].pid);
    }
    return rows;
}

}  // namespace mlk::ctl
