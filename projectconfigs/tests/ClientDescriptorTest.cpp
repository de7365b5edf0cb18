#include "projectconfigs/ClientDescriptor.h"

#include <android-base/unique_fd.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <sys/eventfd.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <future>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "host/testing/Eventually.h"
#include "host/testing/TempDir.h"
#include "host/testing/TestPipe.h"
#include "projectconfigs/Places.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/// How a failed expectation shows it.
void PrintTo(const Written& written, std::ostream* out) {
    *out << "outcome " << static_cast<int>(written.outcome) << " after " << written.size;
}

bool operator==(const Written& one, const Written& other) {
    return one.outcome == other.outcome && one.size == other.size;
}

namespace {

using ::android::base::unique_fd;
using ::mlk::testing::eventually;
using ::mlk::testing::TempDir;
using ::mlk::testing::TestPipe;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

// No multiple of a page, and more than a pipe or a socket takes.
std::string longText() {
    std::string text;
    while (text.size() < 600'000) {
        text += std::to_string(text.size()) + ' ';
    }
    return text;
}

Written complete(const std::string& text) {
    return {WriteOutcome::COMPLETE, text.size()};
}

std::future<Written> writing(int descriptor, const std::string& text) {
    return std::async(std::launch::async, writeToClient, descriptor, text);
}

bool isDone(const std::future<Written>& result) {
    return result.wait_for(milliseconds(0)) == std::future_status::ready;
}

std::string readAll(const TestPipe& pipe, size_t size) {
    std::string text;
    while (text.size() < size) {
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
    }
    std::string read(size_t size) const {
        std::string text(size, '\0');
        const ssize_t got = ::read(ours.get(), text.data(), text.size());
        text.resize(got > 0 ? static_cast<size_t>(got) : 0);
        return text;
    }
};

TEST(ClientDescriptor, ReaderOfPipeGetsEverything) {
    const std::string text = longText();
    TestPipe pipe;
    auto result = writing(pipe.writeEnd(), text);
    EXPECT_EQ(readAll(pipe, text.size()), text);
    EXPECT_EQ(result.get(), complete(text));
    EXPECT_EQ(fcntl(pipe.writeEnd(), F_GETFL), O_WRONLY) << "the flags are the client's";
}

TEST(ClientDescriptor, PipeThatDoesNotWaitIsWaitedFor) {
    const std::string text = longText();
    TestPipe pipe;
    ASSERT_EQ(fcntl(pipe.writeEnd(), F_SETFL, O_NONBLOCK), 0);
    auto result = writing(pipe.writeEnd(), text);
    EXPECT_EQ(readAll(pipe, text.size()), text);
    EXPECT_EQ(result.get(), complete(text));
}

TEST(ClientDescriptor, SlowReaderThatGoesOnGetsEverything) {
    // A page lasts it much longer than a reader may take for a byte.
    const std::string text(TestPipe::kSize + 1000, 'x');
    TestPipe pipe;
    auto result = writing(pipe.writeEnd(), text);
    const auto begin = steady_clock::now();
    std::string got;
    while (steady_clock::now() - begin < 2 * kReaderPatience) {
        got += pipe.read(100);
        (void)poll(nullptr, 0, 100);
    }
    EXPECT_LT(got.size(), TestPipe::kSize);
    EXPECT_FALSE(isDone(result));
    got += readAll(pipe, text.size() - got.size());
    EXPECT_EQ(result.get(), complete(text));
    EXPECT_EQ(got, text);
}

TEST(ClientDescriptor, PipeThatNobodyReadsIsGivenUp) {
    TestPipe pipe;
    const auto begin = steady_clock::now();
    EXPECT_EQ(writeToClient(pipe.writeEnd(), longText()),
              (Written{WriteOutcome::UNREAD, TestPipe::kSize}));
    EXPECT_GE(steady_clock::now() - begin, kReaderPatience);
}

// A client that makes room and takes it away again before it can be used.
TEST(ClientDescriptor, PipeThatItsClientFillsAsWellHoldsNobody) {
    TestPipe pipe;
    pipe.fill();
    std::atomic<bool> stop{false};
    std::thread client([&] {
        ASSERT_EQ(fcntl(pipe.writeEnd(), F_SETFL, O_NONBLOCK), 0);
        while (!stop) {
            (void)pipe.read(TestPipe::kSize);
            const std::string filler(TestPipe::kSize, 'f');
            (void)!write(pipe.writeEnd(), filler.data(), filler.size());
            ASSERT_EQ(fcntl(pipe.writeEnd(), F_SETFL, 0), 0);
            ASSERT_EQ(fcntl(pipe.writeEnd(), F_SETFL, O_NONBLOCK), 0);
        }
    });
    const std::string text(10 * TestPipe::kSize, 'x');
    auto result = writing(pipe.writeEnd(), text);
    EXPECT_TRUE(eventually([&] { return isDone(result); }));
    stop = true;
    client.join();
    pipe.closeRead();
    (void)result.get();
}

TEST(ClientDescriptor, PipeWithoutReaderFails) {
    TestPipe pipe;
    pipe.closeRead();
    EXPECT_EQ(writeToClient(pipe.writeEnd(), "x"), (Written{WriteOutcome::FAILED, 0}));
    sigset_t pending;
    ASSERT_EQ(sigpending(&pending), 0);
    EXPECT_EQ(sigismember(&pending, SIGPIPE), 0) << "nothing is left for later";
}

TEST(ClientDescriptor, ReaderThatLeavesEndsIt) {
    TestPipe pipe;
    auto result = writing(pipe.writeEnd(), longText());
    (void)pipe.read();
    pipe.closeRead();
    EXPECT_EQ(result.get().outcome, WriteOutcome::FAILED);
}

TEST(ClientDescriptor, ReaderOfSocketGetsEverything) {
    const std::string text = longText();
    const Sockets sockets(SOCK_STREAM);
    auto result = writing(sockets.theirs.get(), text);
    std::string got;
    while (got.size() < text.size()) {
        got += sockets.read(1000);
    }
    EXPECT_EQ(result.get(), complete(text));
    EXPECT_EQ(got, text);
}

TEST(ClientDescriptor, SocketThatNobodyReadsIsGivenUp) {
    const Sockets sockets(SOCK_STREAM);
    const Written written = writeToClient(sockets.theirs.get(), longText());
    EXPECT_EQ(written.outcome, WriteOutcome::UNREAD);
    EXPECT_GT(written.size, 0U);
}

TEST(ClientDescriptor, SocketWithoutReaderFails) {
    Sockets sockets(SOCK_STREAM);
    sockets.ours.reset();
    EXPECT_EQ(writeToClient(sockets.theirs.get(), "x"), (Written{WriteOutcome::FAILED, 0}));
}

TEST(ClientDescriptor, FileIsWrittenAtItsPosition) {
    const TempDir dir;
    const std::string text = longText();
    const std::string path = dir.write("dump", "before ");
    const unique_fd file(open(path.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC));
    EXPECT_EQ(writeToClient(file.get(), text), complete(text));
    EXPECT_EQ(dir.read("dump"), "before " + text);
}

TEST(ClientDescriptor, FilesTakeTurns) {
    const TempDir dir;
    const std::string text = longText();
    std::vector<unique_fd> files;
    std::vector<std::future<Written>> results;
    for (int i = 0; i < 2 * kWriters; ++i) {
        const std::string path = dir.write("dump" + std::to_string(i), "");
        files.emplace_back(open(path.c_str(), O_WRONLY | O_CLOEXEC));
        results.push_back(writing(files.back().get(), text));
    }
    for (auto& result : results) {
        EXPECT_EQ(result.get(), complete(text));
    }
}

TEST(ClientDescriptor, WhatCannotBeWrittenFails) {
    const TempDir dir;
    const unique_fd file(open(dir.write("dump", "").c_str(), O_RDONLY | O_CLOEXEC));
    EXPECT_EQ(writeToClient(file.get(), "x"), (Written{WriteOutcome::FAILED, 0}));
    EXPECT_EQ(writeToClient(-1, "x"), (Written{WriteOutcome::FAILED, 0}));
    // It may wait for ever to add one number to another.
    const unique_fd counter(eventfd(0, EFD_CLOEXEC));
    EXPECT_EQ(writeToClient(counter.get(), "12345678"), (Written{WriteOutcome::FAILED, 0}));
    const unique_fd folder(open(dir.path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    EXPECT_EQ(writeToClient(folder.get(), "x"), (Written{WriteOutcome::FAILED, 0}));
}

TEST(ClientDescriptor, NothingIsSoonWritten) {
    TestPipe pipe;
    EXPECT_EQ(writeToClient(pipe.fill().writeEnd(), ""), complete(""));
}

TEST(ClientDescriptor, PipeFailsWithoutDescriptorsForOurOwn) {
    TestPipe pipe;
    rlimit limit{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &limit), 0);
    const rlimit none{0, limit.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
    const Written written = writeToClient(pipe.writeEnd(), "x");
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &limit), 0);
    EXPECT_EQ(written, (Written{WriteOutcome::FAILED, 0}));
}

TEST(ClientDescriptor, OnlyAFewWaitForReaders) {
    std::vector<TestPipe> held(kWaitForReaders);
    std::vector<std::future<Written>> waiting;
    std::atomic<bool> stop{false};
    for (TestPipe& pipe : held) {
        pipe.fill();
        waiting.push_back(std::async(std::launch::async, [&pipe] {
            Written written{};
            do {
                written = writeToClient(pipe.writeEnd(), "x");
            } while (written.outcome == WriteOutcome::CROWDED);
            return written;
        }));
    }
    // These read on, a byte at a time: they keep their places.
    std::thread readers([&] {
        while (!stop) {
            for (const TestPipe& pipe : held) {
                (void)pipe.read(1);
            }
            (void)poll(nullptr, 0, 50);
        }
    });
    TestPipe pipe;
    pipe.fill();
    EXPECT_TRUE(eventually([&] {
        return writeToClient(pipe.writeEnd(), "x") == Written{WriteOutcome::CROWDED, 0};
    }));
    const auto begin = steady_clock::now();
    for (int i = 0; i < 20; ++i) {
        EXPECT_EQ(writeToClient(pipe.writeEnd(), "x"), (Written{WriteOutcome::CROWDED, 0}));
    }
    EXPECT_LT(steady_clock::now() - begin, kReaderPatience) << "they do not wait";
    // A reader that is there needs no place.
    TestPipe prompt;
    EXPECT_EQ(writeToClient(prompt.writeEnd(), "x"), complete("x"));
    stop = true;
    readers.join();
    for (TestPipe& one : held) {
        (void)one.read();
    }
    for (auto& result : waiting) {
        EXPECT_EQ(result.get(), complete("x"));
    }
    // The places are free again.
    EXPECT_EQ(writeToClient(pipe.writeEnd(), "x").outcome, WriteOutcome::UNREAD);
}

// A terminal that takes nothing holds all that write to it, and no more than may.
TEST(ClientDescriptor, OnlyAFewAreHeldByATerminal) {
    unique_fd master(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC));
    ASSERT_TRUE(master.ok());
    ASSERT_EQ(grantpt(master.get()), 0);
    ASSERT_EQ(unlockpt(master.get()), 0);
    const unique_fd terminal(open(ptsname(master.get()), O_WRONLY | O_NOCTTY | O_CLOEXEC));
    ASSERT_TRUE(terminal.ok());
    std::vector<std::future<Written>> held;
    held.reserve(kWriters);
    for (int i = 0; i < kWriters; ++i) {
        held.push_back(writing(terminal.get(), longText()));
    }
    EXPECT_TRUE(eventually([&] {
        TestPipe pipe;
        return writeToClient(pipe.writeEnd(), "x") == Written{WriteOutcome::CROWDED, 0};
    }));
    master.reset();
    for (auto& result : held) {
        EXPECT_EQ(result.get().outcome, WriteOutcome::FAILED);
    }
    TestPipe pipe;
    EXPECT_EQ(writeToClient(pipe.writeEnd(), "x"), complete("x")) << "the places are free again";
}

TEST(Places, AreTakenAndGivenBack) {
    Places places(1);
    auto first = std::make_unique<Places::Taken>(places, milliseconds(0));
    EXPECT_TRUE(*first);
    EXPECT_FALSE(Places::Taken(places, milliseconds(0)));
    EXPECT_FALSE(Places::Taken(places, milliseconds(1)));
    std::thread leaving([&] { first.reset(); });
    EXPECT_TRUE(Places::Taken(places, std::chrono::seconds(30)));
    leaving.join();
    EXPECT_TRUE(Places::Taken(places, milliseconds(0)));
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
