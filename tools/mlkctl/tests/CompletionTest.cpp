// The completion script, in a real bash.

#include <gmock/gmock.h>

#include <algorithm>
#include <sstream>

#include "host/testing/HostSet.h"
#include "host/testing/Process.h"
#include "tools/mlkctl/tests/Harness.h"

namespace mlk::ctl {

namespace {

using mlk::testing::HostSet;
using mlk::testing::Process;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using Words = std::vector<std::string>;

// What bash offers for the last of the words, sorted.
Words completions(const Words& words, const std::string& folder = "") {
    // Words as bash hands them to the function that the script has declared.
    Words argv = {"bash", "-c", R"(
        . <("$0" completion bash)
        complete -p mlkctl >&2
        COMP_WORDS=("$0" "$@")
        COMP_CWORD=$(($# ))
        _mlkctl "$0" "${COMP_WORDS[COMP_CWORD]}" "${COMP_WORDS[COMP_CWORD - 1]}"
        ((${#COMPREPLY[@]})) && printf '%s\n' "${COMPREPLY[@]}"
        exit 0)",
                  mlk::testing::binDir() + "/mlkctl"};
    argv.insert(argv.end(), words.begin(), words.end());
    Process::Options options;
    options.directory = folder;
    Process bash(argv, options);
    EXPECT_EQ(bash.wait(), 0);
    EXPECT_EQ(bash.err(), "complete -F _mlkctl mlkctl\n");
    Words lines;
    std::istringstream stream(bash.out());
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    std::sort(lines.begin(), lines.end());
    return lines;
}

TEST(CompletionTest, CompletesCommandsAndOptions) {
    EXPECT_THAT(completions({"c"}), ElementsAre("call", "completion"));
    EXPECT_THAT(completions({""}),
                ElementsAre("--help", "--version", "batch", "call", "completion", "describe",
                            "dump", "get", "list", "prop", "show", "wait", "watch"));
    EXPECT_THAT(completions({"wait", ""}), ElementsAre("--help", "--timeout"));
    EXPECT_THAT(completions({"show", "--j"}), ElementsAre("--json"));
    EXPECT_THAT(completions({"completion", ""}), ElementsAre("--help", "bash"));
    EXPECT_THAT(completions({"dance", ""}), IsEmpty());
}

TEST(CompletionTest, CompletesInterfacesAndTheirMethods) {
    EXPECT_THAT(completions({"call", ""}),
                ElementsAre("--help", "--raw", "--timeout", "IMlkFrameworkConfigs",
                            "IMlkProjectConfigs", "IMlkTvConfigs"));
    EXPECT_THAT(completions({"call", "IMlkTvConfigs", "getW"}), ElementsAre("getWOWEnabled"));
    EXPECT_THAT(completions({"call", "IMlkFrameworkConfigs", "getW"}),
                ElementsAre("getWowEnabled"));
    EXPECT_THAT(completions({"call", "--raw", "IMlkProjectConfigs", "getTvF"}),
                ElementsAre("getTvFile"));
    EXPECT_THAT(completions({"call", "IMlkProjectConfigs", ""}), SizeIs(53));  // and --help
    EXPECT_THAT(completions({"call", "Nothing", "g"}), IsEmpty());
}

TEST(CompletionTest, CompletesArguments) {
    EXPECT_THAT(completions({"call", "IMlkTvConfigs", "getFlag", "HDM"}), ElementsAre("HDMI"));
    EXPECT_THAT(completions({"call", "IMlkTvConfigs", "setFlag", ""}), SizeIs(24));
    EXPECT_THAT(completions({"call", "IMlkTvConfigs", "setFlag", "HDMI", ""}),
                ElementsAre("false", "true"));
    EXPECT_THAT(completions({"call", "IMlkProjectConfigs", "getHDMIEdidPath", ""}), IsEmpty());
    EXPECT_THAT(completions({"call", "IMlkProjectConfigs", "getHDMIEdidPath", "0", ""}),
                ElementsAre("EDID_1P4", "EDID_2P0", "EDID_2P1"));
    EXPECT_THAT(
            completions({"call", "IMlkProjectConfigs", "getFreqTableList", "1", "ATV_CABLE", "H"}),
            ElementsAre("HRC"));
    EXPECT_THAT(completions({"call", "IMlkProjectConfigs", "getFreqTableList", "UNITED"}),
                ElementsAre("UNITED_ARAB_EMIRATES", "UNITED_KINGDOM"));
    EXPECT_THAT(completions({"call", "IMlkProjectConfigs", "setCountryId", ""}), SizeIs(186));
    EXPECT_THAT(completions({"call", "IMlkTvConfigs", "getFlag", "HDMI", ""}), IsEmpty());
}

TEST(CompletionTest, CompletesFilesWhereAPathIsWanted) {
    const HostSet set;
    set.dir().write("tvconfigs/customer settings.ini", "");
    EXPECT_THAT(completions({"call", "IMlkProjectConfigs", "getTvFile", "tvconfigs/cust"},
                            set.dir().path()),
                ElementsAre("tvconfigs/customer settings.ini"));
}

TEST(CompletionTest, CompletesProperties) {
    HostSet set;
    set.setProperty("persist.vendor.mlk.forcestr", "true");
    EXPECT_THAT(completions({"prop", ""}), ElementsAre("--help", "get", "list", "set"));
    EXPECT_THAT(completions({"prop", "get", "per"}), ElementsAre("persist.vendor.mlk.forcestr"));
    EXPECT_THAT(completions({"prop", "set", ""}), Contains("persist.vendor.mlk.forcestr"));
    EXPECT_THAT(completions({"prop", "list", ""}), ElementsAre("--json"));
    EXPECT_THAT(completions({"prop", "get", "a", ""}), IsEmpty());
}

TEST(CompletionTest, OtherShellsAreNotKnown) {
    Script script;
    const Outcome outcome = runMlkctl({"completion", "zsh"}, script);
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.err, "mlkctl: completion takes the name of a shell: bash, not \"zsh\"\n");
    EXPECT_EQ(runMlkctl({"completion"}, script).status, 2);
}

}  // namespace

}  // namespace mlk::ctl
