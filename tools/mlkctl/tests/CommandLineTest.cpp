#include "tools/mlkctl/CommandLine.h"

#include <CLI/CLI.hpp>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include <csignal>
#include <sstream>

#include "tools/mlkctl/tests/Harness.h"

namespace mlk::ctl {

namespace {

using testing::ContainsRegex;
using testing::HasSubstr;
using testing::StartsWith;
using Words = std::vector<std::string>;

void expectUsage(const Words& words, const std::string& message) {
    Script script;
    const Outcome outcome = runMlkctl(words, script);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "mlkctl: " + message + '\n');
    EXPECT_EQ(outcome.status, 2);
}

TEST(CommandLineTest, NamesWhatWouldBeRight) {
    expectUsage({}, "which command? mlkctl --help lists them");
    expectUsage({"lsit"}, R"(there is no command "lsit"; did you mean list?)");
    expectUsage({"dance"},
                R"(there is no command "dance"; there are list, wait, call, describe, get, )"
                "batch, dump, show, watch, prop, completion");
    expectUsage({""}, R"(there is no command ""; there are list, wait, call, describe, get, )"
                      "batch, dump, show, watch, prop, completion");
    expectUsage({"--jason"}, R"(there is no option "--jason"; there are --help, --version)");
    expectUsage({"list", "--jsn"},
                R"(there is no option "--jsn"; did you mean --json? (see mlkctl list --help))");
    expectUsage(
            {"dump", "--all"},
            R"(there is no option "--all"; there are --help, --timeout (see mlkctl dump --help))");
    expectUsage({"show", "panel"},
                R"(it takes no argument "panel"; its options are --help, --json, --timeout )"
                "(see mlkctl show --help)");
}

TEST(CommandLineTest, ShowsTheGeneralHelp) {
    Script script;
    for (const char* option : {"--help", "-h"}) {
        const Outcome outcome = runMlkctl({option}, script);
        EXPECT_EQ(outcome.status, 0);
        EXPECT_EQ(outcome.err, "");
        for (const auto& verb : makeVerbs()) {
            EXPECT_THAT(outcome.out, ContainsRegex("\n  " + std::string(verb->name()) + " +[a-z]"));
        }
    }
    EXPECT_THAT(runMlkctl({"--version"}, script).out, StartsWith("mlkctl "));
}

TEST(CommandLineTest, EveryCommandHasAManualPage) {
    Script script;
    for (const auto& verb : makeVerbs()) {
        const std::string name(verb->name());
        for (const char* option : {"--help", "-h"}) {
            const Outcome outcome = runMlkctl({name, option}, script);
            EXPECT_EQ(outcome.status, 0);
            EXPECT_EQ(outcome.err, "");
            EXPECT_THAT(outcome.out, StartsWith("mlkctl " + name + " - "));
            for (const char* heading : {"\nUsage: mlkctl ", "\nOptions:\n", "\nOutput:\n",
                                        "\nExit status:\n", "\nExample"}) {
                EXPECT_THAT(outcome.out, HasSubstr(heading)) << name;
            }
        }
        // The page has every option, and no line is too wide for a terminal.
        CLI::App app;
        verb->addOptions(app);
        const std::string page = verb->help();
        for (const CLI::Option* option : app.get_options()) {
            EXPECT_THAT(page, HasSubstr("--" + option->get_lnames().at(0))) << name;
            if (const std::string value = option->get_default_str(); !value.empty()) {
                EXPECT_THAT(page, ContainsRegex("default " + value + "[.\n]")) << name;
            }
        }
        std::istringstream lines(page);
        for (std::string line; std::getline(lines, line);) {
            EXPECT_LE(line.size(), 100U) << line;
        }
    }
}

TEST(CommandLineTest, TheManualHasAllPages) {
    Script script;
    std::string expected = runMlkctl({"--help"}, script).out + '\f';
    for (const auto& verb : makeVerbs()) {
        expected += verb->help() + '\f';
    }
    EXPECT_EQ(runMlkctl({"--manual"}, script).out, expected);
}

// Runs a command line whose output goes to this descriptor.
Outcome runWritingTo(int descriptor, const Words& words) {
    Script script;
    Services services(finderOf(script));
    Output output(descriptor);
    std::ostringstream errors;
    Environment environment{-1, output, errors, services};
    const ExitStatus status = runCommandLine(words, environment);
    return {static_cast<int>(status), "", errors.str()};
}

TEST(CommandLineTest, AReaderThatHasGoneIsNotWorthAWord) {
    // main does this for the program.
    const auto former = std::signal(SIGPIPE, SIG_IGN);
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    close(ends[0]);
    const Outcome outcome = runWritingTo(ends[1], {"--help"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, "");
    close(ends[1]);
    (void)std::signal(SIGPIPE, former);
}

TEST(CommandLineTest, AFullDiskIs) {
    const int full = open("/dev/full", O_WRONLY | O_CLOEXEC);
    const Outcome outcome = runWritingTo(full, {"show"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, "mlkctl: standard output: No space left on device\n");
    close(full);
}

TEST(CommandLineTest, InputThatCannotBeReadIs) {
    const int null = open("/dev/null", O_WRONLY | O_CLOEXEC);
    const Outcome outcome = runWritingTo(null, {"batch"});  // its input is no descriptor
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, "mlkctl: standard input: Bad file descriptor\n");
    close(null);
}

}  // namespace

}  // namespace mlk::ctl
