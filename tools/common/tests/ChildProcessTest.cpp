#include "tools/common/ChildProcess.h"

#include <gmock/gmock.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <string>

#include "host/testing/TempDir.h"

namespace mlk {

namespace {

using ::testing::HasSubstr;

// All that it prints.
std::string outputOf(const ChildProcess& child) {
    std::string text;
    char piece[256];
    for (ssize_t count = 1; count > 0;) {
        count = read(child.output(), piece, sizeof(piece));
        text.append(piece, count > 0 ? static_cast<size_t>(count) : 0);
    }
    return text;
}

ChildStart shell(const std::string& script) {
    return {{"sh", "-c", script}};
}

TEST(ChildProcessTest, GivesOutputAndStatus) {
    ChildProcess child(shell("echo one; printf two; exit 3"));
    ASSERT_EQ(child.error(), 0);
    EXPECT_EQ(outputOf(child), "one\ntwo");
    EXPECT_EQ(child.wait(), 3);
}

TEST(ChildProcessTest, ASignalLeavesNoStatus) {
    ChildProcess child(shell("kill -TERM $$"));
    EXPECT_EQ(child.wait(), std::nullopt);
}

TEST(ChildProcessTest, ReadsNothingUnlessThereIsAnInput) {
    ChildProcess without(shell("cat; echo end"));
    EXPECT_EQ(outputOf(without), "end\n");
    const testing::TempDir dir;
    ChildStart start = shell("cat; echo end");
    start.input = dir.write("input", "text\n");
    ChildProcess with(start);
    EXPECT_EQ(outputOf(with), "text\nend\n");
}

TEST(ChildProcessTest, HasTheErrorsAndTheEnvironmentThatItIsGiven) {
    const testing::TempDir dir;
    ChildStart start = shell("echo \"$A\" >&2; echo \"$HOME\"");
    start.environment = {"A=b", "PATH=/usr/bin:/bin"};
    start.errors = dir.write("errors", "former\n");
    ChildProcess child(start);
    EXPECT_EQ(outputOf(child), "\n");
    EXPECT_EQ(child.wait(), 0);
    EXPECT_EQ(dir.read("errors"), "b\n");
}

TEST(ChildProcessTest, AProgramThatCannotBeRunIsAnError) {
    ChildProcess child({{"/no/such/program"}});
    EXPECT_EQ(child.error(), ENOENT);
    EXPECT_EQ(child.output(), -1);
}

TEST(ChildProcessTest, IsEndedWithTheObject) {
    pid_t pid = 0;
    {
        const ChildProcess child(shell("echo $$; exec sleep 1000"));
        char text[32] = {};
        ASSERT_GT(read(child.output(), text, sizeof(text) - 1), 0);
        pid = static_cast<pid_t>(std::stol(text));
        EXPECT_EQ(kill(pid, 0), 0);
    }
    EXPECT_EQ(kill(pid, 0), -1);
    EXPECT_EQ(errno, ESRCH);
}

}  // namespace

}  // namespace mlk
