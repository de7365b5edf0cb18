#include "Limits.h"

#include <sys/resource.h>

#include <cerrno>
#include <climits>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "Socket.h"
#include "ThreadPool.h"

namespace android::hardware::transport {

namespace {

using std::chrono::milliseconds;

constexpr milliseconds kStallLimit{30'000};
constexpr milliseconds kCallLimitOfPool{5000};
// An unset variable, or one that is not a number or out of range.
constexpr milliseconds kUnset{0};

milliseconds limitIn(const char* variable) {
    const char* const text = getenv(variable);
    if (text == nullptr || *text == '\0') {
        return kUnset;
    }
    char* end = nullptr;
    errno = 0;
    const long number = strtol(text, &end, 10);
    const bool isLimit = errno == 0 && *end == '\0' && number > 0 && number <= INT_MAX;
    return isLimit ? milliseconds(number) : kUnset;
}

}  // namespace

milliseconds stallLimit() {
    static const milliseconds set = limitIn("MLK_STALL_LIMIT_MS");
    return set != kUnset ? set : kStallLimit;
}

milliseconds callLimit() {
    if (!ThreadPool::ownsThisThread()) {
        return kForever;
    }
    static const milliseconds set = limitIn("MLK_CALL_LIMIT_MS");
    return set != kUnset ? set : kCallLimitOfPool;
}

size_t descriptorLimit() {
    rlimit limit{};
    return getrlimit(RLIMIT_NOFILE, &limit) == 0 ? limit.rlim_cur : SIZE_MAX;
}

bool repliesAreLimitedAsOnADevice() {
    static const bool limited = [] {
        const char* const text = getenv("MLK_REPLY_LIMIT");
        return text != nullptr && strcmp(text, "device") == 0;
    }();
    return limited;
}

}  // namespace android::hardware::transport
