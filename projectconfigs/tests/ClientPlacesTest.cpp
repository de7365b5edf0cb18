// The limits on how many texts are written, and how many readers are waited for, at the same time.

#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>

#include "projectconfigs/tests/ClientWriting.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

// The caller returns, whatever blocks its writer. So does a caller while all writers are blocked.
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

// The caller returns; its reader gets the rest.
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

// Pipes that take all places for readers, and the results of the texts written to them.
struct Waiting {
    std::vector<TestPipe> pipes{kWaitForReaders};
    std::vector<std::future<Written>> results{kWaitForReaders};

    explicit Waiting(const std::string& text) {
        const auto areAllTaken = [&] {
            for (size_t i = 0; i < pipes.size(); ++i) {
                // A probe that was first has taken the place of a text that has ended.
                if (!results[i].valid() || isDone(results[i])) {
                    pipes[i] = TestPipe();
                    results[i] = writing(pipes[i].fill().writeEnd(), text);
                }
            }
            return probeIsCrowded() && !anyDone();
        };
        EXPECT_TRUE(eventually(areAllTaken)) << "there are more places, or fewer";
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
    ASSERT_FALSE(::testing::Test::HasFailure());
    std::vector<TestPipe>& held = waiting.pipes;
    std::atomic<bool> stop{false};
    // The readers of these continue, a byte at a time, and keep their places.
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
    // A reader that reads at once needs no place.
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

// A slow reader keeps its place from its first pause to its end.
TEST(ClientDescriptor, PlaceOfAReaderThatCrawlsIsNotGivenAway) {
    constexpr size_t kPages = 200;
    const std::string text(kPages * TestPipe::kSize, 'x');
    Waiting waiting(text);
    ASSERT_FALSE(::testing::Test::HasFailure());
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
    // A pipe that is being read needs no wait.
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

// Terminals that take nothing block no caller, however many there are.
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

// The flags with which other descriptors of this process write to the same pipe. Asked by path: the
// thread sanitizer takes a call with a descriptor of another thread for a race.
std::vector<int> flagsOfCopies(int descriptor) {
    const std::string self = "/proc/self/";
    std::error_code ignored;
    const auto wanted = std::filesystem::read_symlink(self + "fd/" + std::to_string(descriptor));
    std::vector<int> found;
    for (int other = 0; other < 1024; ++other) {
        const std::string number = std::to_string(other);
        if (other == descriptor ||
            std::filesystem::read_symlink(self + "fd/" + number, ignored) != wanted) {
            continue;
        }
        std::ifstream info(self + "fdinfo/" + number);
        int flags = 0;
        for (std::string word; info >> word;) {
            if (word == "flags:") {
                info >> std::oct >> flags;
            }
        }
        if ((flags & O_ACCMODE) == O_WRONLY) {
            found.push_back(flags & O_CLOEXEC);
        }
    }
    return found;
}

TEST(ClientDescriptor, CopyIsNotInherited) {
    const TestPipe pipe;
    const std::string text(3 * TestPipe::kSize, 'x');
    std::thread caller([&] { writeToClient(pipe.writeEnd(), text, [](const Written&) {}); });
    std::vector<int> flags;
    EXPECT_TRUE(eventually([&] {
        // While the reader continues, the writer stays in its place.
        (void)(pipe.isReadable() ? pipe.read(1) : "");
        flags = flagsOfCopies(pipe.writeEnd());
        return !flags.empty();
    }));
    EXPECT_EQ(flags, std::vector<int>{O_CLOEXEC});
    caller.join();
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

// Two threads need the same place: one has it, the other waits.
TEST(Places, WhoWaitsIsToldOfAPlace) {
    const auto places = std::make_shared<Places>(1);
    auto first = std::make_unique<Places::Taken>(*places);
    const auto task = std::make_shared<std::promise<pid_t>>();
    const auto got = std::make_shared<std::promise<bool>>();
    auto result = got->get_future();
    // Nobody joins this thread, because without the place it would wait for an hour.
    std::thread([places, task, got] {
        task->set_value(gettid());
        const Places::Taken second(*places, std::chrono::hours(1));
        got->set_value(static_cast<bool>(second));
    }).detach();
    const std::string state =
            "/proc/self/task/" + std::to_string(task->get_future().get()) + "/stat";
    const auto sleeps = [&] {
        std::string text;
        std::getline(std::ifstream(state), text);
        return text.find(") S ") != std::string::npos;
    };
    EXPECT_TRUE(eventually(sleeps)) << "nobody waits for a place";
    first.reset();
    ASSERT_EQ(result.wait_for(std::chrono::seconds(30)), std::future_status::ready);
    EXPECT_TRUE(result.get());
}

TEST(Places, PatienceEnds) {
    Places places(1);
    const Places::Taken first(places);
    EXPECT_FALSE(Places::Taken(places, std::chrono::milliseconds(1)));
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
