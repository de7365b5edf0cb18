// What the process does with arguments: it never starts with any.

#include "service/CommandLine.h"

#include <gmock/gmock.h>
#include <signal.h>

#include <filesystem>
#include <string>
#include <vector>

#include "host/testing/HostSet.h"
#include "host/testing/Process.h"
#include "host/testing/TimeLimit.h"

namespace vendor::morlak::mlkconfigs::V1_0 {
namespace {

using ::mlk::testing::HostSet;
using ::mlk::testing::Process;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;
using Words = std::vector<std::string>;

constexpr const char* kName = "vendor.morlak.mlconfigs@1.0-service";

struct Ended {
    int status;
    std::string out;
    std::string err;
};

/** The service with these arguments, to its end. A service that starts is killed. */
Ended runWith(const Words& arguments) {
    Words command{::mlk::testing::binDir() + "/" + kName};
    command.insert(command.end(), arguments.begin(), arguments.end());
    Process process(command);
    const ::mlk::testing::TimeLimit limit([&] { ::kill(process.pid(), SIGKILL); });
    const int status = process.wait();
    return {status, process.out(), process.err()};
}

/** What the service has left in its set: the names of sockets. */
Words registeredIn(const HostSet& set) {
    Words names;
    for (const auto& entry : std::filesystem::directory_iterator(set.runtime())) {
        names.push_back(entry.path().filename());
    }
    return names;
}

TEST(CommandLine, HelpIsPrintedAndNothingStarts) {
    for (const Words& arguments : {Words{"--help"}, Words{"-h"}, Words{"-h", "--more"}}) {
        const HostSet set;
        const Ended ended = runWith(arguments);
        EXPECT_EQ(ended.status, 0);
        EXPECT_EQ(ended.err, "");
        EXPECT_THAT(ended.out, StartsWith(std::string(kName) + " - "));
        for (const char* text : {"\nUsage: ", "\nOptions:\n", "--help", "\nExit status:\n"}) {
            EXPECT_THAT(ended.out, HasSubstr(text));
        }
        EXPECT_THAT(registeredIn(set), IsEmpty());
    }
}

TEST(CommandLine, OtherArgumentsAreRefusedAndNothingStarts) {
    for (const Words& arguments : {Words{"--version"}, Words{"-x"}, Words{""}, Words{"help"},
                                   Words{"--", "--help"}, Words{"--helpme"}}) {
        const HostSet set;
        const Ended ended = runWith(arguments);
        EXPECT_EQ(ended.status, 2);
        EXPECT_EQ(ended.out, "");
        EXPECT_EQ(ended.err, std::string(kName) + ": it takes no argument '" + arguments[0] +
                                     "'; see --help\n");
        EXPECT_THAT(registeredIn(set), IsEmpty());
    }
}

TEST(CommandLine, HelpThatCannotBeWrittenIsAFailure) {
    Process process(
            {"sh", "-c", "exec \"$0\" --help > /dev/full", ::mlk::testing::binDir() + "/" + kName});
    EXPECT_EQ(process.wait(), 1);
}

TEST(CommandLine, WithoutArgumentsTheProcessGoesOn) {
    const char* const name[] = {kName, nullptr};
    EXPECT_EQ(implementation::answerArguments(1, name), std::nullopt);
    // Also when not even a name is given.
    EXPECT_EQ(implementation::answerArguments(0, name + 1), std::nullopt);
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0
