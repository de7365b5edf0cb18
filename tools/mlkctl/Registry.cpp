#include "tools/mlkctl/Registry.h"

#include <android/hidl/manager/1.0/IServiceManager.h>
#include <hidl/ServiceManagement.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <variant>

#include "tools/mlkctl/Argument.h"
#include "tools/mlkctl/Failure.h"
#include "tools/mlkctl/HostFolders.h"
#include "tools/mlkctl/Pending.h"

namespace mlk::ctl {

namespace {

using ::android::hardware::hidl_string;
using ::android::hardware::hidl_vec;

struct Name {
    std::string interface;
    std::string instance;
};

// The names, or the reason why there is no list.
using Names = std::variant<std::vector<Name>, std::string>;

Names askForNames() {
    const auto manager = ::android::hardware::defaultServiceManager();
    if (manager == nullptr) {
        return "there is no service manager";
    }
    std::vector<Name> names;
    const auto outcome = manager->list([&](const hidl_vec<hidl_string>& list) {
        for (const hidl_string& name : list) {
            const std::string text(name.c_str(), name.size());
            const size_t slash = text.find('/');
            if (slash == std::string::npos) {
                continue;
            }
            names.push_back({text.substr(0, slash), text.substr(slash + 1)});
        }
    });
    if (!outcome.isOk()) {
        return "the service manager does not answer: " + outcome.description();
    }
    return names;
}

// On a host, the service manager tries to connect to each name.
Names registeredNames(std::chrono::milliseconds limit) {
    const Pending<Names> question(askForNames);
    return question.waitUntil(Pending<Names>::Clock::now() + limit)
            .value_or("the service manager hangs");
}

struct Process {
    Answering answering;
    std::optional<int> pid;
};

Process processOf(const std::string& interface, const std::string& instance) {
    const auto service =
            ::android::hardware::details::getRawServiceInternal(interface, instance, false, false);
    if (service == nullptr) {
        const std::optional<int> refusing = processRefusing(interface + '.' + instance);
        return {refusing ? Answering::REFUSED : Answering::ABSENT, refusing};
    }
    std::optional<int> pid;
    const auto outcome = service->getDebugInfo([&](const auto& info) { pid = info.pid; });
    if (outcome.isDeadObject()) {
        return {Answering::ABSENT, {}};
    }
    // A service that must not tell its process returns -1.
    if (!outcome.isOk() || pid.value_or(-1) <= 0) {
        return {Answering::UNTOLD, {}};
    }
    return {Answering::TOLD, pid};
}

std::optional<int> threadsOf(int pid) {
    std::ifstream file("/proc/" + std::to_string(pid) + "/status");
    return threadsIn({std::istreambuf_iterator<char>(file), {}});
}

}  // namespace

std::optional<int> threadsIn(const std::string& status) {
    const std::string label = "\nThreads:";
    const size_t found = status.find(label);
    if (found == std::string::npos) {
        return {};
    }
    const size_t digits = status.find_first_not_of(" \t", found + label.size());
    if (digits == std::string::npos) {
        return {};
    }
    const auto count = numberFrom(status.substr(digits, status.find('\n', digits) - digits));
    if (!count) {
        return {};
    }
    return static_cast<int>(*count);
}

std::vector<Registration> registrations(std::chrono::milliseconds limit) {
    using Question = Pending<Process>;
    const auto start = Question::Clock::now();
    const Names names = registeredNames(limit);
    if (const auto* failure = std::get_if<std::string>(&names)) {
        throw Failure(ExitStatus::UNREACHABLE, *failure);
    }
    // Services that hang have cost the manager of a host some of the time already.
    const auto deadline = std::max(start + limit, Question::Clock::now() + limit / 2);
    std::vector<Registration> rows;
    std::vector<Question> questions;
    for (const Name& name : std::get<std::vector<Name>>(names)) {
        rows.push_back({name.interface, name.instance, Answering::HANGS, {}, {}});
        questions.emplace_back([name] { return processOf(name.interface, name.instance); });
    }
    for (size_t i = 0; i < rows.size(); ++i) {
        const auto process = questions[i].waitUntil(deadline);
        if (!process) {
            continue;
        }
        rows[i].answering = process->answering;
        rows[i].pid = process->pid;
        if (process->pid) {
            rows[i].threads = threadsOf(*process->pid);
        }
    }
    return rows;
}

std::optional<bool> isRegistered(std::string_view interface, std::string_view instance,
                                 std::chrono::milliseconds limit) {
    const Names names = registeredNames(limit);
    const auto* list = std::get_if<std::vector<Name>>(&names);
    if (list == nullptr) {
        return {};
    }
    return std::any_of(list->begin(), list->end(), [&](const Name& name) {
        return name.interface == interface && name.instance == instance;
    });
}

}  // namespace mlk::ctl
