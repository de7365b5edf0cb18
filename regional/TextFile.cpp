#define LOG_TAG "MlkProjectConfigs"

#include "regional/TextFile.h"

#include <log/log.h>

#include <cerrno>
#include <system_error>
#include <utility>

#include "common/File.h"
#include "common/FileLimits.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

namespace {

constexpr size_t kChunk = size_t{64} * 1024;

ReadResult unreadable(const std::string& path, ProblemKind kind, const std::string& reason,
                      ReadObserver* observer) {
    ALOGE("%s: %s", path.c_str(), textOf(kind, reason).c_str());
    if (observer != nullptr) {
        observer->onProblem({path, 0, kind, reason});
    }
    return ReadResult::UNREADABLE;
}

}  // namespace

ReadResult readTextFile(const std::string& path, std::string& text, ReadObserver* observer) {
    File file(path);
    if (!file.isOpen()) {
        return file.isMissing()
                       ? ReadResult::MISSING
                       : unreadable(path, ProblemKind::UNREADABLE, file.reason(), observer);
    }
    if (file.size() > kMostListBytes) {
        return unreadable(path, ProblemKind::TOO_LARGE, largerThan(kMostListBytes), observer);
    }
    // Reads to the end: a file can grow, and some files of the kernel report size 0.
    std::string content;
    size_t filled = 0;
    ssize_t count = 0;
    do {
        filled += static_cast<size_t>(count);
        if (filled > kMostListBytes) {
            return unreadable(path, ProblemKind::TOO_LARGE, largerThan(kMostListBytes), observer);
        }
        if (filled == content.size()) {
            content.resize(filled == 0 && file.size() != 0 ? file.size() + 1 : filled + kChunk);
        }
        count = file.read(content.data() + filled, content.size() - filled);
    } while (count > 0);
    if (count < 0) {
        return unreadable(path, ProblemKind::UNREADABLE, std::generic_category().message(errno),
                          observer);
    }
    content.resize(filled);
    text = std::move(content);
    return ReadResult::DONE;
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
