#include "host/testing/ProcessUsage.h"

#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <system_error>

#include "host/testing/Sanitizers.h"

namespace mlk::testing {

namespace {

std::string fileOf(pid_t process, const char* name) {
    return "/proc/" + std::to_string(process) + "/" + name;
}

size_t entriesOf(const std::string& folder) {
    using Directory = std::filesystem::directory_iterator;
    return static_cast<size_t>(std::distance(Directory(folder), Directory()));
}

size_t statusBytes(pid_t process, const std::string& field) {
    std::ifstream status(fileOf(process, "status"));
    std::string word;
    size_t kilobytes = 0;
    while (status >> word) {
        if (word == field) {
            status >> kilobytes;
            break;
        }
    }
    return kilobytes * 1024;
}

}  // namespace

size_t descriptorsOf(pid_t process) {
    // Listing this process's own descriptors opens another one.
    return entriesOf(fileOf(process, "fd")) - (process == getpid() ? 1 : 0);
}

size_t lowestFreeDescriptorOf(pid_t process) {
    size_t number = 0;
    while (std::filesystem::is_symlink(fileOf(process, "fd/") + std::to_string(number))) {
        ++number;
    }
    return number;
}

DescriptorLimit::DescriptorLimit(pid_t process, size_t limit) : mProcess(process) {
    if (prlimit(mProcess, RLIMIT_NOFILE, nullptr, &mFormer) != 0) {
        throw std::system_error(errno, std::generic_category(), "prlimit");
    }
    const rlimit wanted{limit, mFormer.rlim_max};
    if (prlimit(mProcess, RLIMIT_NOFILE, &wanted, nullptr) != 0) {
        throw std::system_error(errno, std::generic_category(), "prlimit");
    }
}

DescriptorLimit::~DescriptorLimit() {
    (void)prlimit(mProcess, RLIMIT_NOFILE, &mFormer, nullptr);
}

size_t awaitedBy(pid_t process) {
    size_t count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(fileOf(process, "fdinfo"))) {
        // An epoll instance's file has a line for each.
        std::ifstream info(entry.path());
        std::string line;
        while (std::getline(info, line)) {
            count += line.rfind("tfd:", 0) == 0 ? 1 : 0;
        }
    }
    return count;
}

size_t threadsOf(pid_t process) {
    const size_t count = entriesOf(fileOf(process, "task"));
    return kThreadSanitizer && count > 1 ? count - 1 : count;
}

size_t residentOf(pid_t process) {
    return statusBytes(process, "VmRSS:");
}

size_t peakOf(pid_t process) {
    return statusBytes(process, "VmHWM:");
}

void forgetPeakOf(pid_t process) {
    constexpr const char* kPeak = "5";
    std::ofstream(fileOf(process, "clear_refs")) << kPeak;
}

std::chrono::milliseconds timeOf(pid_t process) {
    std::ifstream file(fileOf(process, "stat"));
    std::string text;
    (void)std::getline(file, text);
    // The numbers follow the program's name, which may contain any character; two of them are the
    // times.
    std::istringstream numbers(text.substr(text.rfind(')') + 2));
    std::string skipped;
    for (int i = 0; i < 11; ++i) {
        numbers >> skipped;
    }
    long user = 0;
    long system = 0;
    numbers >> user >> system;
    return std::chrono::milliseconds((user + system) * 1000 / sysconf(_SC_CLK_TCK));
}

}  // namespace mlk::testing
