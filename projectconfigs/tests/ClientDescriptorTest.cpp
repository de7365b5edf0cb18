#include "projectconfigs/ClientDescriptor.h"

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

// What becomes of a text; its writer may be waiting for it still.
std::future<Written> writing(int descriptor, const std::string& text) {
    const auto outcome = std::make_shared<std::promise<Written>>();
    std::thread([outcome, descriptor = dup(descriptor), text] {
        const unique_fd own(descriptor);
        writeToClient(own.get(), text,
                      [outcome](const Written& written) { outcome->set_value(written); });
    }).detach();
    return outcome->get_future();
}

// A text that is done, or given up, before the caller is let go.
Written written(int descriptor, const std::string& text) {
    const auto outcome = std::make_shared<std::promise<Written>>();
    writeToClient(descriptor, text, [outcome](const Written& given) { outcome->set_value(given); });
    return outcome->get_future().get();
}

bool isDone(const std::future<Written>& result) {
    return result.wait_for(milliseconds(0)) == std::future_status::ready;
}

// What becomes of it within half a minute; afterwards it counts as failed.
Written outcomeOf(std::future<Written>& result) {
    if (result.wait_for(std::chrono::seconds(30)) != std::future_status::ready) {
        ADD_FAILURE() << "it has not ended";
        return {WriteOutcome::FAILED, 0};
    }
    return result.get();
}

std::string readAll(const TestPipe& pipe, size_t size) {
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

TEST(ClientDescriptor, ReaderOfPipeGetsEverything) {
    const std::string text = longText();
    TestPipe pipe;
    auto result = writing(pipe.writeEnd(), text);
    EXPECT_EQ(readAll(pipe, text.size()), text);
    EXPECT_EQ(outcomeOf(result), complete(text));
    EXPECT_EQ(fcntl(pipe.writeEnd(), F_GETFL), O_WRONLY) << "the flags are the client's";
}

TEST(ClientDescriptor, PipeThatDoesNotWaitIsWaitedFor) {
    const std::string text = longText();
    TestPipe pipe;
    ASSERT_EQ(fcntl(pipe.writeEnd(), F_SETFL, O_NONBLOCK), 0);
    auto result = writing(pipe.writeEnd(), text);
    EXPECT_EQ(readAll(pipe, text.size()), text);
    EXPECT_EQ(outcomeOf(result), complete(text));
}

TEST(ClientDescriptor, SlowReaderThatGoesOnGetsEverything) {
    // A page lasts it much longer than a reader may take for a byte.
    const std::string text(TestPipe::kSize + 1000, 'x');
    TestPipe pipe;
    auto result = writing(pipe.writeEnd(), text);
    const auto begin = steady_clock::now();
    std::string got;
    while (steady_clock::now() - begin < 2 * kReaderPatience) {
        got += pipe.isReadable() ? pipe.read(100) : "";
        (void)poll(nullptr, 0, 100);
    }
    EXPECT_LT(got.size(), TestPipe::kSize);
    EXPECT_FALSE(isDone(result));
    got += readAll(pipe, text.size() - got.size());
    EXPECT_EQ(outcomeOf(result), complete(text));
    EXPECT_EQ(got, text);
}

TEST(ClientDescriptor, PipeThatNobodyReadsIsGivenUp) {
    TestPipe pipe;
    const auto begin = steady_clock::now();
    auto result = writing(pipe.writeEnd(), longText());
    EXPECT_EQ(outcomeOf(result), (Written{WriteOutcome::UNREAD, TestPipe::kSize}));
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
    (void)outcomeOf(result);
}

TEST(ClientDescriptor, PipeWithoutReaderFails) {
    TestPipe pipe;
    pipe.closeRead();
    EXPECT_EQ(written(pipe.writeEnd(), "x"), (Written{WriteOutcome::FAILED, 0}));
    sigset_t pending;
    ASSERT_EQ(sigpending(&pending), 0);
    EXPECT_EQ(sigismember(&pending, SIGPIPE), 0) << "nothing is left for later";
}

TEST(ClientDescriptor, ReaderThatLeavesEndsIt) {
    TestPipe pipe;
    auto result = writing(pipe.writeEnd(), longText());
    (void)pipe.read();
    pipe.closeRead();
    EXPECT_EQ(outcomeOf(result).outcome, WriteOutcome::FAILED);
}

TEST(ClientDescriptor, ReaderOfSocketGetsEverything) {
    const std::string text = longText();
    const Sockets sockets(SOCK_STREAM);
    auto result = writing(sockets.theirs.get(), text);
    std::string got;
    std::string more;
    while (got.size() < text.size() && !(more = sockets.read(1000)).empty()) {
        got += more;
    }
    EXPECT_EQ(outcomeOf(result), complete(text));
    EXPECT_EQ(got, text);
}

TEST(ClientDescriptor, SocketThatNobodyReadsIsGivenUp) {
    const Sockets sockets(SOCK_STREAM);
    auto result = writing(sockets.theirs.get(), longText());
    const Written outcome = outcomeOf(result);
    EXPECT_EQ(outcome.outcome, WriteOutcome::UNREAD);
    EXPECT_GT(outcome.size, 0U);
}

// What the other end sends says nothing about what it reads.
TEST(ClientDescriptor, SocketWhoseOtherEndOnlyTalksIsGivenUp) {
    const Sockets sockets(SOCK_STREAM);
    auto result = writing(sockets.theirs.get(), longText());
    const auto end = steady_clock::now() + 20 * kReaderPatience;
    while (!isDone(result) && steady_clock::now() < end) {
        (void)!send(sockets.ours.get(), "x", 1, MSG_DONTWAIT);
        (void)poll(nullptr, 0, 100);
    }
    EXPECT_TRUE(isDone(result));
    EXPECT_EQ(outcomeOf(result).outcome, WriteOutcome::UNREAD);
}

TEST(ClientDescriptor, SlowReaderOfSocketGetsEverything) {
    const std::string text = longText();
    const Sockets sockets(SOCK_STREAM);
    auto result = writing(sockets.theirs.get(), text);
    std::string got;
    const auto begin = steady_clock::now();
    while (steady_clock::now() - begin < 2 * kReaderPatience) {
        got += sockets.read(PIPE_BUF);
        (void)poll(nullptr, 0, 100);
    }
    EXPECT_FALSE(isDone(result));
    std::string more;
    while (got.size() < text.size() && !(more = sockets.read(text.size())).empty()) {
        got += more;
    }
    EXPECT_EQ(outcomeOf(result), complete(text));
    EXPECT_EQ(got, text);
}

TEST(ClientDescriptor, SocketWithoutReaderFails) {
    Sockets sockets(SOCK_STREAM);
    sockets.ours.reset();
    EXPECT_EQ(written(sockets.theirs.get(), "x"), (Written{WriteOutcome::FAILED, 0}));
}

TEST(ClientDescriptor, FileIsWrittenAtItsPosition) {
    const TempDir dir;
    const std::string text = longText();
    const std::string path = dir.write("dump", "before ");
    const unique_fd file(open(path.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC));
    EXPECT_EQ(written(file.get(), text), complete(text));
    EXPECT_EQ(dir.read("dump"), "before " + text);
}

TEST(ClientDescriptor, ManyFilesAreWrittenAtOnce) {
    const TempDir dir;
    const std::string text = longText();
    std::vector<unique_fd> files;
    std::vector<std::future<Written>> results;
    for (int i = 0; i < kWriters; ++i) {
        const std::string path = dir.write("dump" + std::to_string(i), "");
        files.emplace_back(open(path.c_str(), O_WRONLY | O_CLOEXEC));
        results.push_back(writing(files.back().get(), text));
    }
    for (auto& result : results) {
        EXPECT_EQ(outcomeOf(result), complete(text));
    }
}

// Whatever holds a writer, the caller is let go, and so is one who comes when all are held.
TEST(ClientDescriptor, CallersAreLetGo) {
    std::promise<void> release;
    const std::shared_future<void> released = release.get_future().share();
    const TempDir dir;
    const unique_fd file(open(dir.write("dump", "").c_str(), O_WRONLY | O_CLOEXEC));
    std::atomic<int> held{0};
    std::atomic<int> letGo{0};
    std::vector<std::thread> callers;
    callers.reserve(kWriters);
    for (int i = 0; i < kWriters; ++i) {
        callers.emplace_back([&] {
            writeToClient(file.get(), "x", [&held, released](const Written&) {
                ++held;
                released.wait();
            });
            ++letGo;
        });
    }
    EXPECT_TRUE(eventually([&] { return held == kWriters; }));
    EXPECT_EQ(written(file.get(), "x"), (Written{WriteOutcome::CROWDED, 0}));
    EXPECT_TRUE(eventually([&] { return letGo == kWriters; }));
    release.set_value();
    for (std::thread& caller : callers) {
        caller.join();
    }
    EXPECT_TRUE(eventually([&] { return written(file.get(), "x") == complete("x"); }));
}

// The caller leaves, its reader stays and gets the rest.
TEST(ClientDescriptor, WritingGoesOnWithoutTheCaller) {
    const std::string text(3 * TestPipe::kSize, 'x');
    TestPipe pipe;
    const auto outcome = std::make_shared<std::promise<Written>>();
    auto result = outcome->get_future();
    std::atomic<bool> stop{false};
    std::string got;
    std::thread reader([&] {
        while (!stop) {
            got += pipe.isReadable() ? pipe.read(10) : "";
            (void)poll(nullptr, 0, 50);
        }
    });
    writeToClient(pipe.writeEnd(), text,
                  [outcome](const Written& written) { outcome->set_value(written); });
    EXPECT_FALSE(isDone(result));
    stop = true;
    reader.join();
    got += readAll(pipe, text.size() - got.size());
    EXPECT_EQ(got, text);
    EXPECT_EQ(outcomeOf(result), complete(text));
}

TEST(ClientDescriptor, WhatCannotBeWrittenFails) {
    const TempDir dir;
    const unique_fd file(open(dir.write("dump", "").c_str(), O_RDONLY | O_CLOEXEC));
    EXPECT_EQ(written(file.get(), "x"), (Written{WriteOutcome::FAILED, 0}));
    EXPECT_EQ(written(-1, "x"), (Written{WriteOutcome::FAILED, 0}));
    // It may wait for ever to add one number to another.
    const unique_fd counter(eventfd(0, EFD_CLOEXEC));
    EXPECT_EQ(written(counter.get(), "12345678"), (Written{WriteOutcome::FAILED, 0}));
    const unique_fd folder(open(dir.path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    EXPECT_EQ(written(folder.get(), "x"), (Written{WriteOutcome::FAILED, 0}));
}

TEST(ClientDescriptor, NothingIsSoonWritten) {
    TestPipe pipe;
    EXPECT_EQ(written(pipe.fill().writeEnd(), ""), complete(""));
}

TEST(ClientDescriptor, PipeFailsWithoutDescriptorsForOurOwn) {
    TestPipe pipe;
    rlimit limit{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &limit), 0);
    const rlimit none{0, limit.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
    const Written outcome = written(pipe.writeEnd(), "x");
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &limit), 0);
    EXPECT_EQ(outcome, (Written{WriteOutcome::FAILED, 0}));
}

// Pipes that hold all places for readers, and what becomes of the texts that are written to them.
struct Waiting {
    std::vector<TestPipe> pipes;
    std::vector<std::future<Written>> results;

    explicit Waiting(const std::string& text) {
        do {
            pipes = std::vector<TestPipe>(kWaitForReaders);
            results.clear();
            for (TestPipe& pipe : pipes) {
                results.push_back(writing(pipe.fill().writeEnd(), text));
            }
            // The probe may have come first, and taken the place of one of them.
        } while (!eventually([&] { return anyDone() || probeIsCrowded(); }) || anyDone());
    }

  private:
    bool anyDone() const { return std::any_of(results.begin(), results.end(), isDone); }
    static bool probeIsCrowded() {
        TestPipe pipe;
        auto result = writing(pipe.fill().writeEnd(), "x");
        pipe.closeRead();
        return outcomeOf(result).outcome == WriteOutcome::CROWDED;
    }
};

TEST(ClientDescriptor, OnlyAFewWaitForReaders) {
    Waiting waiting("x");
    std::vector<TestPipe>& held = waiting.pipes;
    std::atomic<bool> stop{false};
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
    const auto begin = steady_clock::now();
    for (int i = 0; i < 20; ++i) {
        EXPECT_EQ(written(pipe.writeEnd(), "x"), (Written{WriteOutcome::CROWDED, 0}));
    }
    EXPECT_LT(steady_clock::now() - begin, 20 * kReaderPatience) << "they do not wait";
    // A reader that is there needs no place.
    TestPipe prompt;
    EXPECT_EQ(written(prompt.writeEnd(), "x"), complete("x"));
    stop = true;
    readers.join();
    for (TestPipe& one : held) {
        (void)one.read();
    }
    for (auto& result : waiting.results) {
        EXPECT_EQ(outcomeOf(result), complete("x"));
    }
    // The places are free again.
    auto result = writing(pipe.writeEnd(), "x");
    EXPECT_EQ(outcomeOf(result).outcome, WriteOutcome::UNREAD);
}

// A reader that crawls keeps its place from its first pause to its end, whoever else wants one.
TEST(ClientDescriptor, PlaceOfAReaderThatCrawlsIsNotGivenAway) {
    constexpr size_t kPages = 200;
    const std::string text(kPages * TestPipe::kSize, 'x');
    Waiting waiting(text);
    TestPipe full;
    full.fill();
    std::atomic<bool> stop{false};
    std::vector<std::thread> rivals;
    for (int i = kWaitForReaders; i < kWriters; ++i) {
        rivals.emplace_back([&] {
            while (!stop) {
                (void)written(full.writeEnd(), "x");
            }
        });
    }
    bool readable = true;
    for (size_t page = 0; readable && page < kPages + 1; ++page) {
        for (const TestPipe& pipe : waiting.pipes) {
            readable = readable && pipe.isReadable() && !pipe.read().empty();
        }
    }
    EXPECT_TRUE(readable);
    for (auto& result : waiting.results) {
        EXPECT_EQ(outcomeOf(result), complete(text));
    }
    // Nobody need wait for a pipe that is read now.
    stop = true;
    full.closeRead();
    for (std::thread& rival : rivals) {
        rival.join();
    }
}

struct Terminal {
    unique_fd master{posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)};
    unique_fd slave;
    Terminal() {
        EXPECT_EQ(grantpt(master.get()), 0);
        EXPECT_EQ(unlockpt(master.get()), 0);
        slave.reset(open(ptsname(master.get()), O_RDWR | O_NOCTTY | O_CLOEXEC));
        EXPECT_TRUE(slave.ok());
    }
};

TEST(ClientDescriptor, ReaderOfTerminalGetsEverything) {
    std::string text;
    while (text.size() < 100'000) {
        text += std::to_string(text.size()) + (text.size() % 7 == 0 ? "\n" : "\t");
    }
    const Terminal terminal;
    auto result = writing(terminal.slave.get(), text);
    std::string got;
    while (got.size() < text.size()) {
        pollfd input{terminal.master.get(), POLLIN, 0};
        ASSERT_EQ(poll(&input, 1, 30'000), 1);
        std::string piece(4096, '\0');
        const ssize_t size = read(terminal.master.get(), piece.data(), piece.size());
        ASSERT_GT(size, 0);
        for (const char byte : piece.substr(0, static_cast<size_t>(size))) {
            got += byte == '\r' ? "" : std::string(1, byte);
        }
    }
    EXPECT_EQ(outcomeOf(result), complete(text));
    EXPECT_EQ(got, text);
}

// Terminals that take nothing hold nobody, however many there are.
TEST(ClientDescriptor, TerminalsThatNobodyReadsAreGivenUp) {
    const std::vector<Terminal> terminals(kWriters);
    EXPECT_EQ(tcflow(terminals.front().slave.get(), TCOOFF), 0);
    std::vector<std::future<Written>> results;
    for (const Terminal& terminal : terminals) {
        results.push_back(writing(terminal.slave.get(), longText()));
    }
    ASSERT_TRUE(eventually([&] { return std::all_of(results.begin(), results.end(), isDone); }));
    for (auto& result : results) {
        const WriteOutcome outcome = outcomeOf(result).outcome;
        EXPECT_TRUE(outcome == WriteOutcome::UNREAD || outcome == WriteOutcome::CROWDED);
    }
    TestPipe pipe;
    EXPECT_TRUE(eventually([&] { return written(pipe.writeEnd(), "x") == complete("x"); }));
}

TEST(ClientDescriptor, TerminalThatIsClosedFails) {
    Terminal terminal;
    terminal.master.reset();
    EXPECT_EQ(written(terminal.slave.get(), "x"), (Written{WriteOutcome::FAILED, 0}));
}

TEST(Places, AreTakenAndGivenBack) {
    Places places(1);
    auto first = std::make_unique<Places::Taken>(places);
    EXPECT_TRUE(*first);
    EXPECT_FALSE(Places::Taken(places));
    first.reset();
    EXPECT_TRUE(Places::Taken(places));
    EXPECT_TRUE(Places::Taken(places)) << "each is given back once";
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
