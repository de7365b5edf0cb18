#include "host/log/LogOutput.h"

#include <android-base/unique_fd.h>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <optional>
#include <string>
#include <thread>
#include <utility>

#include "host/testing/Pace.h"
#include "host/testing/TempDir.h"
#include "host/testing/Threads.h"

namespace mlk::host {
namespace {

using ::android::base::unique_fd;
using ::mlk::testing::TempDir;
using std::chrono::steady_clock;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::StartsWith;

constexpr int kLines = 5000;

std::string line(int number) {
    return "line " + std::to_string(number) + ' ' + std::string(100, 'x') + '\n';
}

// Reads everything that arrives within a moment.
std::string readNow(int descriptor) {
    std::string all;
    pollfd input{descriptor, POLLIN, 0};
    while (poll(&input, 1, 0) == 1) {
        std::string piece(65536, '\0');
        const ssize_t got = read(descriptor, piece.data(), piece.size());
        if (got <= 0) {
            break;
        }
        all.append(piece, 0, static_cast<size_t>(got));
    }
    return all;
}

// Writes many more lines than fit, within a bounded time, and then reads: the first lines arrive
// whole, and a line reports the number of the others.
void expectLinesAreDropped(int written, int read) {
    LogOutput output(written);
    const auto begin = steady_clock::now();
    for (int i = 0; i < kLines; ++i) {
        output.write(line(i));
    }
    // A hundred lines would take this long if each waited.
    EXPECT_LT(steady_clock::now() - begin, 30 * LogOutput::kPatience);
    std::string got = readNow(read);
    output.write("after\n");
    got += readNow(read);
    got.erase(std::remove(got.begin(), got.end(), '\r'), got.end());
    int known = 0;
    std::string all;
    while (got.compare(all.size(), line(known).size(), line(known)) == 0) {
        all += line(known++);
    }
    EXPECT_GT(known, 10);
    EXPECT_LT(known, kLines);
    got.erase(0, all.size());
    EXPECT_THAT(got, StartsWith("W/log     ("));
    EXPECT_THAT(got, EndsWith("): " + std::to_string(kLines - known) +
                              " lines dropped: nobody read standard error in time\nafter\n"));
    EXPECT_EQ(fcntl(written, F_GETFL) & O_NONBLOCK, 0) << "the flags are others' as well";
}

struct Ends {
    unique_fd read;
    unique_fd write;
};

Ends pipeEnds() {
    Ends ends;
    EXPECT_TRUE(::android::base::Pipe(&ends.read, &ends.write));
    return ends;
}

Ends terminalEnds() {
    Ends ends;
    ends.read.reset(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC));
    EXPECT_EQ(grantpt(ends.read.get()), 0);
    EXPECT_EQ(unlockpt(ends.read.get()), 0);
    ends.write.reset(open(ptsname(ends.read.get()), O_RDWR | O_NOCTTY | O_CLOEXEC));
    return ends;
}

TEST(LogOutput, APipeThatNobodyReadsCostsLinesNotTime) {
    const Ends ends = pipeEnds();
    expectLinesAreDropped(ends.write.get(), ends.read.get());
}

TEST(LogOutput, ASocketThatNobodyReadsCostsLinesNotTime) {
    Ends ends;
    ASSERT_TRUE(::android::base::Socketpair(AF_UNIX, SOCK_STREAM, 0, &ends.read, &ends.write));
    expectLinesAreDropped(ends.write.get(), ends.read.get());
}

TEST(LogOutput, ATerminalThatNobodyReadsCostsLinesNotTime) {
    const Ends ends = terminalEnds();
    expectLinesAreDropped(ends.write.get(), ends.read.get());
}

TEST(LogOutput, AStoppedTerminalStopsNobody) {
    const Ends ends = terminalEnds();
    ASSERT_EQ(tcflow(ends.write.get(), TCOOFF), 0);
    LogOutput output(ends.write.get());
    const auto begin = steady_clock::now();
    for (int i = 0; i < kLines; ++i) {
        output.write(line(i));
    }
    EXPECT_LT(steady_clock::now() - begin, 30 * LogOutput::kPatience);
    ASSERT_EQ(tcflow(ends.write.get(), TCOON), 0);
    output.write("after\n");
    EXPECT_THAT(readNow(ends.read.get()), HasSubstr(std::to_string(kLines) + " lines dropped"));
}

// When the pipe cannot be opened again, poll(2) tells whether it has space.
TEST(LogOutput, APipeThatCannotBeOpenedAgainStopsNobodyEither) {
    // A sanitizer needs descriptors for what it meets for the first time.
    const Ends before = pipeEnds();
    expectLinesAreDropped(before.write.get(), before.read.get());
    const Ends ends = pipeEnds();
    rlimit limit{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &limit), 0);
    const rlimit none{1, limit.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
    expectLinesAreDropped(ends.write.get(), ends.read.get());
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &limit), 0);
}

// Several threads write lines to one reader. Gives the bytes that it got, and those that were
// written; nothing if a busy machine kept the reader away for long.
std::optional<std::pair<size_t, size_t>> readAtOnce() {
    Ends ends = pipeEnds();
    constexpr int kThreads = 4;
    ::mlk::testing::Pace pace(LogOutput::kPatience / 2);
    size_t got = 0;
    std::thread reader([&] {
        // What is read at once gives the log a second of patience.
        std::string piece(65536, '\0');
        ssize_t size = 0;
        while ((size = read(ends.read.get(), piece.data(), piece.size())) > 0) {
            got += static_cast<size_t>(size);
            pace.step();
        }
    });
    LogOutput output(ends.write.get());
    ::mlk::testing::inThreads(kThreads, [&](int) {
        for (int i = 0; i < kLines; ++i) {
            output.write(line(i));
        }
    });
    ends.write.reset();
    reader.join();
    size_t size = 0;
    for (int i = 0; i < kLines; ++i) {
        size += kThreads * line(i).size();
    }
    return pace.wasLate() ? std::nullopt : std::optional(std::pair(got, size));
}

TEST(LogOutput, AReaderThatReadsGetsEverything) {
    const auto [got, written] = ::mlk::testing::onTime(readAtOnce);
    EXPECT_EQ(got, written);
}

// Writes many lines to a reader that pauses briefly, again and again. Gives what it read; nothing
// if a busy machine made a pause too long.
std::optional<std::string> readWithRests() {
    const Ends ends = pipeEnds();
    LogOutput output(ends.write.get());
    ::mlk::testing::Pace pace(LogOutput::kPatience / 2);
    std::thread writer([&] {
        for (int i = 0; i < kLines; ++i) {
            output.write(line(i));
        }
        output.write("end\n");
    });
    std::string got;
    pollfd input{ends.read.get(), POLLIN, 0};
    while (got.find("\nend\n") == std::string::npos && poll(&input, 1, 10'000) == 1) {
        got += readNow(ends.read.get());
        pace.step();
        (void)poll(nullptr, 0, 50);
    }
    writer.join();
    return pace.wasLate() ? std::nullopt : std::optional(got);
}

TEST(LogOutput, AReaderThatRestsGetsEverything) {
    std::string all;
    for (int i = 0; i < kLines; ++i) {
        all += line(i);
    }
    const std::string got = ::mlk::testing::onTime(readWithRests);
    EXPECT_EQ(got.size(), all.size() + 4);
    EXPECT_EQ(got.substr(0, all.size()), all);
}

// What is read adds to the account, but not beyond its limit.
TEST(LogOutput, AReaderThatStopsAfterALongTimeCostsNoMoreTime) {
    const Ends ends = pipeEnds();
    LogOutput output(ends.write.get());
    const std::string longer(2'000'000, 'x');  // without a limit, half a minute
    std::thread reader([&] {
        pollfd input{ends.read.get(), POLLIN, 0};
        size_t got = 0;
        while (got < longer.size() && poll(&input, 1, 10'000) == 1) {
            got += readNow(ends.read.get()).size();
        }
    });
    output.write(longer);
    reader.join();
    const auto begin = steady_clock::now();
    output.write(longer);
    EXPECT_LT(steady_clock::now() - begin, 15 * LogOutput::kPatience);
}

TEST(LogOutput, AnotherFileHasAnAccountOfItsOwn) {
    const Ends first = pipeEnds();
    const Ends second = pipeEnds();
    const unique_fd error(dup(first.write.get()));
    LogOutput output(error.get());
    output.write(std::string(1'000'000, 'x') + '\n');
    ASSERT_EQ(fcntl(second.write.get(), F_SETFL, O_NONBLOCK), 0);
    while (write(second.write.get(), "x", 1) == 1) {
    }
    ASSERT_EQ(dup2(second.write.get(), error.get()), error.get());
    const auto begin = steady_clock::now();
    output.write("waits for a reader\n");
    EXPECT_GE(steady_clock::now() - begin, LogOutput::kPatience / 2);
}

TEST(LogOutput, AMessageThatIsBegunIsFinishedFirst) {
    const Ends ends = pipeEnds();
    LogOutput output(ends.write.get());
    const std::string longer = std::string(150'000, 'x') + '\n';
    output.write(longer);
    output.write("dropped\n");
    std::string got;
    while (got.size() < longer.size()) {
        const std::string more = readNow(ends.read.get());
        ASSERT_FALSE(more.empty());
        got += more;
        output.write("dropped\n");
    }
    got += readNow(ends.read.get());
    output.write("after\n");
    got += readNow(ends.read.get());
    EXPECT_EQ(got.substr(0, longer.size()), longer);
    EXPECT_THAT(got.substr(longer.size()), StartsWith("W/log"));
    EXPECT_THAT(got, EndsWith("after\n"));
}

TEST(LogOutput, EachLineOfADroppedMessageCounts) {
    Ends ends;
    ASSERT_TRUE(::android::base::Socketpair(AF_UNIX, SOCK_STREAM, 0, &ends.read, &ends.write));
    const std::string filling(4096, 'x');
    while (send(ends.write.get(), filling.data(), filling.size(), MSG_DONTWAIT) > 0) {
    }
    LogOutput output(ends.write.get());
    output.write("one\ntwo\nthree\n");
    output.write("four\nfive\n");
    (void)readNow(ends.read.get());
    output.write("after\n");
    EXPECT_THAT(readNow(ends.read.get()),
                EndsWith("): 5 lines dropped: nobody read standard error in time\nafter\n"));
}

TEST(LogOutput, AnotherFileGetsNothingOfTheLastOnes) {
    const TempDir dir;
    const Ends first = pipeEnds();
    const Ends second = pipeEnds();
    const unique_fd error(dup(first.write.get()));
    LogOutput output(error.get());
    output.write(std::string(1'000'000, 'x') + '\n');
    output.write("dropped\n");
    ASSERT_EQ(dup2(second.write.get(), error.get()), error.get());
    output.write("new\n");
    EXPECT_EQ(readNow(second.read.get()), "new\n");
    const unique_fd file(open(dir.write("log", "").c_str(), O_WRONLY | O_CLOEXEC));
    ASSERT_EQ(dup2(file.get(), error.get()), error.get());
    output.write("\x1b[31m\n");
    EXPECT_EQ(dir.read("log"), "\x1b[31m\n") << "a file holds it as it is";
}

TEST(LogOutput, ATerminalGetsNoCommands) {
    const Ends ends = terminalEnds();
    LogOutput output(ends.write.get());
    output.write("a\x1b[31m\tb\x9b\xc2\x9b\x7f\xc3\xa4\n");
    EXPECT_EQ(readNow(ends.read.get()), "a\\u001b[31m\tb\\x9b\\u009b\\u007f\xc3\xa4\r\n");
}

}  // namespace
}  // namespace mlk::host
