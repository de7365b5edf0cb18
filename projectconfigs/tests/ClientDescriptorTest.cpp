#include <algorithm>
#include <filesystem>
#include <functional>
#include <optional>
#include <system_error>

#include "host/testing/Pace.h"
#include "host/testing/Sanitizers.h"
#include "projectconfigs/tests/ClientWriting.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

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

// Writes to a client that reads piece after piece, in all for longer than the service waits for a
// single one, and then the rest. Gives nothing if a busy machine kept the reader away for long.
std::optional<Written> writtenToSlowReader(int descriptor, const std::string& text,
                                           const std::function<std::string()>& readPiece,
                                           const std::function<std::string()>& readRest) {
    mlk::testing::Pace pace(kReaderPatience / 2);
    auto result = writing(descriptor, text);
    const auto begin = steady_clock::now();
    std::string got;
    while (steady_clock::now() - begin < 2 * kReaderPatience) {
        got += readPiece();
        pace.step();
        (void)poll(nullptr, 0, 100);
    }
    EXPECT_LT(got.size(), text.size());
    while (!pace.wasLate() && !isDone(result) && got.size() < text.size()) {
        got += readRest();
        pace.step();
    }
    const Written written = outcomeOf(result);
    if (pace.wasLate()) {
        return std::nullopt;
    }
    while (got.size() < text.size() && written == complete(text)) {
        got += readRest();
    }
    EXPECT_EQ(got, text);
    return written;
}

TEST(ClientDescriptor, SlowReaderThatGoesOnGetsEverything) {
    const std::string text(TestPipe::kSize + 1000, 'x');
    const auto written = mlk::testing::onTime([&] {
        TestPipe pipe;
        return writtenToSlowReader(
                pipe.writeEnd(), text, [&] { return pipe.isReadable() ? pipe.read(100) : ""; },
                [&] { return pipe.isReadable() ? pipe.read() : ""; });
    });
    EXPECT_EQ(written, complete(text));
}

TEST(ClientDescriptor, PipeThatNobodyReadsIsGivenUp) {
    TestPipe pipe;
    const auto begin = steady_clock::now();
    auto result = writing(pipe.writeEnd(), longText());
    EXPECT_EQ(outcomeOf(result), (Written{WriteOutcome::UNREAD, TestPipe::kSize}));
    EXPECT_GE(steady_clock::now() - begin, kReaderPatience);
}

// A client that reads from its pipe and fills it again before the writer can use the space.
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

// Bytes that the other end sends must not count as bytes that it reads.
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
    const auto written = mlk::testing::onTime([&] {
        const Sockets sockets(SOCK_STREAM);
        return writtenToSlowReader(
                sockets.theirs.get(), text, [&] { return sockets.read(PIPE_BUF); },
                [&] { return sockets.read(text.size()); });
    });
    EXPECT_EQ(written, complete(text));
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

// How many descriptors of this process are of the file.
size_t descriptorsOfFile(const std::string& path) {
    const std::filesystem::directory_iterator all("/proc/self/fd");
    return static_cast<size_t>(std::count_if(begin(all), end(all), [&](const auto& entry) {
        std::error_code gone;
        return std::filesystem::read_symlink(entry.path(), gone) == path;
    }));
}

// The client may look for the end of a pipe as soon as it hears that the dump has ended.
TEST(ClientDescriptor, CopyIsClosedBeforeTheEndIsTold) {
    const TempDir dir;
    const std::string path = dir.write("dump", "");
    const unique_fd file(open(path.c_str(), O_WRONLY | O_CLOEXEC));
    const auto count = std::make_shared<std::promise<size_t>>();
    writeToClient(file.get(), "x",
                  [count, path](const Written&) { count->set_value(descriptorsOfFile(path)); });
    EXPECT_EQ(count->get_future().get(), 1U);
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

TEST(ClientDescriptor, WhatCannotBeWrittenFails) {
    const TempDir dir;
    const unique_fd file(open(dir.write("dump", "").c_str(), O_RDONLY | O_CLOEXEC));
    EXPECT_EQ(written(file.get(), "x"), (Written{WriteOutcome::FAILED, 0}));
    EXPECT_EQ(written(-1, "x"), (Written{WriteOutcome::FAILED, 0}));
    // A write to an eventfd's counter may wait for ever.
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
    if (mlk::testing::kAddressSanitizer) {
        GTEST_SKIP() << "its check of virtual calls needs descriptors, too";
    }
    TestPipe pipe;
    rlimit limit{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &limit), 0);
    const rlimit none{0, limit.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
    const Written outcome = written(pipe.writeEnd(), "x");
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &limit), 0);
    EXPECT_EQ(outcome, (Written{WriteOutcome::FAILED, 0}));
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
