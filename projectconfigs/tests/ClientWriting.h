#pragma once

// What the tests of writing to clients share.

#include <android-base/unique_fd.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <sys/eventfd.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <climits>
#include <future>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "host/testing/Eventually.h"
#include "host/testing/TempDir.h"
#include "host/testing/TestPipe.h"
#include "projectconfigs/ClientDescriptor.h"
#include "projectconfigs/Places.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/** The text of a failed expectation. */
inline void PrintTo(const Written& written, std::ostream* out) {
    *out << "outcome " << static_cast<int>(written.outcome) << " after " << written.size;
}

inline bool operator==(const Written& one, const Written& other) {
    return one.outcome == other.outcome && one.size == other.size;
}

using ::android::base::unique_fd;
using ::mlk::testing::eventually;
using ::mlk::testing::TempDir;
using ::mlk::testing::TestPipe;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

// Not a multiple of a page, and more than a pipe or a socket takes.
inline std::string longText() {
    std::string text;
    while (text.size() < 600'000) {
        text += std::to_string(text.size()) + ' ';
    }
    return text;
}

inline Written complete(const std::string& text) {
    return {WriteOutcome::COMPLETE, text.size()};
}

// The result of a text. Its writer may still be waiting for it.
inline std::future<Written> writing(int descriptor, const std::string& text) {
    const auto outcome = std::make_shared<std::promise<Written>>();
    std::thread([outcome, descriptor = dup(descriptor), text] {
        const unique_fd own(descriptor);
        writeToClient(own.get(), text,
                      [outcome](const Written& written) { outcome->set_value(written); });
    }).detach();
    return outcome->get_future();
}

// Writes a text that is written or given up before the caller returns.
inline Written written(int descriptor, const std::string& text) {
    const auto outcome = std::make_shared<std::promise<Written>>();
    writeToClient(descriptor, text, [outcome](const Written& given) { outcome->set_value(given); });
    return outcome->get_future().get();
}

inline bool isDone(const std::future<Written>& result) {
    return result.wait_for(milliseconds(0)) == std::future_status::ready;
}

// The result within half a minute; after that the text counts as failed.
inline Written outcomeOf(std::future<Written>& result) {
    if (result.wait_for(std::chrono::seconds(30)) != std::future_status::ready) {
        ADD_FAILURE() << "it has not ended";
        return {WriteOutcome::FAILED, 0};
    }
    return result.get();
}

inline std::string readAll(const TestPipe& pipe, size_t size) {
    std::string text;
    while (text.size() < size && pipe.isReadable()) {
        text += pipe.read();
    }
    return text;
}

// Connected sockets.
struct Sockets {
    unique_fd ours;
    unique_fd theirs;
    explicit Sockets(int type) {
        EXPECT_TRUE(::android::base::Socketpair(AF_UNIX, type, 0, &ours, &theirs));
        const timeval limit{30, 0};
        EXPECT_EQ(setsockopt(ours.get(), SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof(limit)), 0);
    }
    std::string read(size_t size) const {
        std::string text(size, '\0');
        const ssize_t got = ::read(ours.get(), text.data(), text.size());
        text.resize(got > 0 ? static_cast<size_t>(got) : 0);
        return text;
    }
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
