#include "tools/mlkctl/LineInput.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <system_error>
#include <thread>
#include <vector>

#include "host/testing/Eventually.h"
#include "host/testing/ThreadState.h"

namespace mlk::ctl {

namespace {

using ::testing::ElementsAre;

// A pipe whose writing end the test holds.
class Pipe {
  public:
    Pipe() { EXPECT_EQ(pipe(mEnds), 0); }
    ~Pipe() {
        close(mEnds[0]);
        finish();
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;

    int reader() const { return mEnds[0]; }
    void write(const std::string& text) const {
        EXPECT_EQ(::write(mEnds[1], text.data(), text.size()), static_cast<ssize_t>(text.size()));
    }
    void finish() {
        if (mEnds[1] >= 0) {
            close(mEnds[1]);
        }
        mEnds[1] = -1;
    }

  private:
    int mEnds[2] = {-1, -1};
};

// All lines of a text; "<too long>" for one that is.
std::vector<std::string> linesOf(const std::string& text, size_t limit) {
    Pipe pipe;
    pipe.write(text);
    pipe.finish();
    LineInput input(pipe.reader(), limit);
    std::vector<std::string> lines;
    std::string_view line;
    while (true) {
        switch (input.next(&line)) {
            case LineInput::Next::LINE:
                lines.emplace_back(line);
                break;
            case LineInput::Next::TOO_LONG:
                lines.emplace_back("<too long>");
                break;
            case LineInput::Next::END:
                return lines;
        }
    }
}

TEST(LineInputTest, GivesLinesWithoutTheirNewline) {
    EXPECT_THAT(linesOf("", 10), ElementsAre());
    EXPECT_THAT(linesOf("\n", 10), ElementsAre(""));
    EXPECT_THAT(linesOf("a\n\nb\n", 10), ElementsAre("a", "", "b"));
    EXPECT_THAT(linesOf("a\nb", 10), ElementsAre("a", "b"));
    EXPECT_THAT(linesOf(std::string("a\0b\r\n", 5), 10), ElementsAre(std::string("a\0b\r", 4)));
}

TEST(LineInputTest, SkipsALineThatIsTooLong) {
    EXPECT_THAT(linesOf("1234567890\n12345678901\nok\n", 10),
                ElementsAre("1234567890", "<too long>", "ok"));
    EXPECT_THAT(linesOf("12345678901", 10), ElementsAre("<too long>"));
    EXPECT_THAT(linesOf("1234567890", 10), ElementsAre("1234567890"));
}

TEST(LineInputTest, KeepsNothingOfALineThatGoesOnForever) {
    Pipe pipe;
    LineInput input(pipe.reader(), 10);
    // In pieces, so that each is read on its own.
    constexpr size_t kPiece = 4096;
    const pid_t writer = fork();
    if (writer == 0) {
        const std::string piece(kPiece, 'x');
        for (int i = 0; i < 1000; ++i) {
            pipe.write(piece);
        }
        pipe.write("\nok\n");
        _exit(0);
    }
    pipe.finish();
    std::string_view line;
    EXPECT_EQ(input.next(&line), LineInput::Next::TOO_LONG);
    EXPECT_EQ(input.next(&line), LineInput::Next::LINE);
    EXPECT_EQ(line, "ok");
    EXPECT_EQ(input.next(&line), LineInput::Next::END);
    EXPECT_EQ(waitpid(writer, nullptr, 0), writer);
}

TEST(LineInputTest, TellsWhetherALineIsThere) {
    Pipe pipe;
    LineInput input(pipe.reader(), 10);
    std::string_view line;
    EXPECT_FALSE(input.hasLine());
    pipe.write("a\nb\nc");
    EXPECT_FALSE(input.hasLine());  // nothing is read before it is asked for
    EXPECT_EQ(input.next(&line), LineInput::Next::LINE);
    EXPECT_TRUE(input.hasLine());
    EXPECT_EQ(input.next(&line), LineInput::Next::LINE);
    EXPECT_EQ(line, "b");
    EXPECT_FALSE(input.hasLine());
    pipe.write("d\n");
    EXPECT_EQ(input.next(&line), LineInput::Next::LINE);
    EXPECT_EQ(line, "cd");
}

TEST(LineInputTest, WaitsAtAPipeThatDoesNot) {
    Pipe pipe;
    ASSERT_EQ(fcntl(pipe.reader(), F_SETFL, O_NONBLOCK), 0);
    std::thread writer([&pipe] { pipe.write("a\n"); });
    LineInput input(pipe.reader(), 10);
    std::string_view line;
    EXPECT_EQ(input.next(&line), LineInput::Next::LINE);
    EXPECT_EQ(line, "a");
    writer.join();
}

// A reader sleeps until there is input. One that polled the pipe in a loop would run.
TEST(LineInputTest, SleepsAtAPipeThatDoesNotWait) {
    Pipe pipe;
    ASSERT_EQ(fcntl(pipe.reader(), F_SETFL, O_NONBLOCK), 0);
    std::atomic<pid_t> thread{0};
    std::thread reader([&] {
        thread = gettid();
        LineInput input(pipe.reader(), 10);
        std::string_view line;
        EXPECT_EQ(input.next(&line), LineInput::Next::LINE);
    });
    EXPECT_TRUE(mlk::testing::eventually(
            [&] { return thread != 0 && mlk::testing::stateOf(thread) == 'S'; }));
    int asleep = 0;
    for (int i = 0; i < 100; ++i) {
        asleep += mlk::testing::stateOf(thread) == 'S' ? 1 : 0;
        (void)poll(nullptr, 0, 1);
    }
    EXPECT_GE(asleep, 90);
    pipe.write("a\n");
    reader.join();
}

TEST(LineInputTest, ThrowsWhereReadingFails) {
    const int folder = open("/", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    LineInput input(folder, 10);
    std::string_view line;
    EXPECT_THROW(input.next(&line), std::system_error);
    close(folder);
}

}  // namespace

}  // namespace mlk::ctl
