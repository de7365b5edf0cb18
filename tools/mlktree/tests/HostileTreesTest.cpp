// Trees that nobody wrote to be useful: huge, in circles, without permission, full of control
// bytes. The inputs are so large that a rule whose time grows with the square of its input takes
// minutes; then the test ends by its time limit. No test looks at a clock.
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <tinyxml2.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <nlohmann/json.hpp>
#include <string>

#include "host/testing/OtherUser.h"
#include "host/testing/Process.h"
#include "host/testing/Sanitizers.h"
#include "host/testing/TempDir.h"
#include "tools/mlktree/Examination.h"
#include "tools/mlktree/Fixes.h"
#include "tools/mlktree/FolderFiles.h"
#include "tools/mlktree/Reporter.h"
#include "tools/mlktree/Texts.h"
#include "tools/mlktree/tests/Harness.h"

namespace mlk::tree {

namespace {

namespace fs = std::filesystem;

// With a sanitizer a line takes many times as long, and fewer lines show the same faults.
constexpr size_t kMany = mlk::testing::kSanitized ? 5'000 : 100'000;
constexpr size_t kMoreFilesThanAreSearched = 100'001;

// Lines that differ in a number: "Model_1 = a\nModel_2 = a\n"...
std::string manyLines(const std::string& before, const std::string& after, size_t count = kMany) {
    std::string text;
    for (size_t i = 1; i <= count; ++i) {
        text += before + std::to_string(i) + after + "\n";
    }
    return text;
}

class HostileTreesTest : public ::testing::Test {
  protected:
    HostileTreesTest() { copySoundTree(mDir); }

    Outcome check(const std::string& format = "text") const {
        return runMlktree({"check", "--format", format, mDir.path()});
    }
    // "file:line: rule" of each finding.
    std::vector<std::string> findings() const {
        std::vector<std::string> all;
        const auto json = nlohmann::json::parse(check("json").out);
        for (const auto& finding : json["findings"]) {
            all.push_back(finding["file"].get<std::string>() + ":" +
                          std::to_string(finding["line"].get<size_t>()) + ": " +
                          finding["rule"].get<std::string>());
        }
        return all;
    }
    size_t count(const std::string& rule) const {
        const std::vector<std::string> all = findings();
        return static_cast<size_t>(
                std::count_if(all.begin(), all.end(), [&](const std::string& finding) {
                    return finding.substr(finding.rfind(' ') + 1) == rule;
                }));
    }
    void append(const std::string& path, const std::string& text) const {
        mDir.write(path, mDir.read(path) + text);
    }
    void replaceBySpecial(const std::string& path, const std::function<int(const char*)>& make) {
        fs::remove(mDir.path(path));
        ASSERT_EQ(make(mDir.path(path).c_str()), 0) << path;
    }

    const mlk::testing::TempDir mDir;
};

bool contains(const std::vector<std::string>& all, const std::string& text) {
    return std::any_of(all.begin(), all.end(),
                       [&](const std::string& one) { return one.find(text) != std::string::npos; });
}

TEST_F(HostileTreesTest, AFileOfAGigabyteIsNotRead) {
    constexpr off_t kGigabyte = off_t{1} << 30;
    for (const char* const path :
         {"tvconfigs/model/first.ini", "tvconfigs/country/country.txt", "tvconfigs/tv/tv_eu.config",
          "tvconfigs/audio/panel.ini", "tvconfigs/freqtables/dtv/freqtable_eu",
          "tvconfigs/tvsysmap/systems.xml", "impdata/board_id.bin"}) {
        ASSERT_EQ(truncate(mDir.path(path).c_str(), kGigabyte), 0) << path;
    }
    // The memory of a process of its own, without that of other tests.
    mlk::testing::Process process({mlk::testing::binDir() + "/mlktree", "check", mDir.path()});
    EXPECT_EQ(process.wait(), 1) << process.err();
    EXPECT_NE(process.out().find("[unusable-file]"), std::string::npos) << process.out();
    EXPECT_NE(process.out().find("[unreadable-file]"), std::string::npos) << process.out();
    rusage usage{};
    ASSERT_EQ(getrusage(RUSAGE_CHILDREN, &usage), 0);
    if (!mlk::testing::kSanitized) {
        EXPECT_LT(usage.ru_maxrss, 256 * 1024);  // in KiB
    }
}

TEST_F(HostileTreesTest, AListOfManyWrongLinesHasAFewFindings) {
    mDir.write("tvconfigs/country/country.txt", manyLines("GERMNY", ",DE", 3 * kMany));
    mDir.write("tvconfigs/language/language.txt", manyLines("Germn", ",deu", 3 * kMany));
    const size_t unknown = count("unknown-country");
    EXPECT_GT(unknown, 0U);
    EXPECT_LE(unknown, Reporter::kMostOfFile);
}

TEST_F(HostileTreesTest, AListOfManyMissingModels) {
    mDir.write("tvconfigs/system/line.ini",
               manyLines("Model_", " = /tvconfigs/model/first.ini", kMany / 2) +
                       manyLines("Model_9", " = /tvconfigs/model/nobody.ini", kMany / 2));
    EXPECT_EQ(count("missing-file"), 1U);  // all of them name one file
}

TEST_F(HostileTreesTest, AListOfOneModelManyTimes) {
    std::string text;
    for (size_t i = 0; i < kMany; ++i) {
        text += "Model_1 = /tvconfigs/model/first.ini\n";
    }
    mDir.write("tvconfigs/system/line.ini", text);
    EXPECT_EQ(count("same-index"), Reporter::kMostOfFile);
}

TEST_F(HostileTreesTest, TheLastOfManyFindingsSaysThatThereMayBeMore) {
    std::string text;
    for (size_t i = 0; i < kMany; ++i) {
        text += "m_nWidth = 3840\n";
    }
    append("tvconfigs/model/first.ini", text);
    const auto json = nlohmann::json::parse(check("json").out);
    std::vector<std::string> messages;
    for (const auto& finding : json["findings"]) {
        if (finding["rule"] == "key-twice") {
            messages.push_back(finding["message"]);
        }
    }
    ASSERT_EQ(messages.size(), Reporter::kMostOfFile);
    EXPECT_EQ(messages.front().find("there may be more"), std::string::npos);
    EXPECT_NE(messages.back().find("; there may be more such findings"), std::string::npos);
}

TEST_F(HostileTreesTest, ManyUnknownNames) {
    constexpr size_t kNames = kMany / 20;
    append("tvconfigs/model/first.ini", "[AUDIO]\n" +
                                                manyLines("AUDIO_CONFIG_PAT_", " = 1", kNames) +
                                                manyLines("[LiveT", "x]\nDPVR = 1", kNames));
    append("tvconfigs/model/second.ini",
           "[AUDIO]\n" + manyLines("AUDIO_CONFIG_PTA_", " = 1", kNames));
    append("tvconfigs/board/b1.ini", "[AUDIO]\n" + manyLines("AUDIO_CONFG_PAT_", " = 1", kNames));
    EXPECT_LE(findings().size(), 30 * Reporter::kMostOfFile);
}

TEST_F(HostileTreesTest, ManyCommentsThatNameNoRule) {
    append("tvconfigs/model/first.ini",
           manyLines("# mlktree: allow mising-file", " reason", kMany / 2));
    EXPECT_EQ(count("unknown-rule"), kMany / 2);
}

TEST_F(HostileTreesTest, ManyLinesToMend) {
    mDir.write("tvconfigs/country/country.txt", manyLines("GERMANY", "\r"));
    const Outcome outcome = runMlktree({"fix", mDir.path()});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.err.find(counted(kMany, "line", "lines")), std::string::npos) << outcome.err;
}

// A million files would take the same way: the search for unused files ends at 100,000 entries,
// with a finding, and folders that are searched for boards and plans are read once, without reading
// plans that nothing names.
TEST_F(HostileTreesTest, AFolderOfManyFiles) {
    if (mlk::testing::kSanitized) {
        GTEST_SKIP() << "the search takes as many entries with a sanitizer, and half a minute";
    }
    for (size_t i = 0; i < kMoreFilesThanAreSearched; ++i) {
        const std::string path = mDir.path("tvconfigs/audio/" + std::to_string(i));
        ASSERT_EQ(symlink("ic.ini", path.c_str()), 0) << path;
    }
    EXPECT_TRUE(contains(findings(), "tvconfigs:0: unsearched-folder"));
}

TEST_F(HostileTreesTest, AFolderOfManyBoards) {
    append("tvconfigs/board/b1.ini", "[AUDIO]\nAUDIO_CONFIG_PATH = /tvconfigs/audio/Panel.ini\n");
    mDir.write("tvconfigs/board/b2.ini", "[BOARD]\nNAME = b2\nno equals\n");
    EXPECT_EQ(count("no-equals"), 1U);
    for (size_t i = 0; i < kMostBoards; ++i) {
        fs::create_symlink("b2.ini", mDir.path("tvconfigs/board/x" + std::to_string(i) + ".ini"));
    }
    EXPECT_EQ(count("no-equals"), 0U);
    EXPECT_TRUE(contains(findings(), "tvconfigs/board:0: unsearched-folder"));
    EXPECT_TRUE(contains(findings(), "tvconfigs/board/b1.ini:4: missing-file"));
}

TEST_F(HostileTreesTest, AFolderOfManyReceivers) {
    for (size_t i = 0; i <= kMostReceivers; ++i) {
        fs::create_symlink("ic.ini",
                           mDir.path("tvconfigs/audio/AVR_1_" + std::to_string(i) + ".ini"));
    }
    EXPECT_TRUE(contains(findings(), "tvconfigs/audio:0: unsearched-folder"));
    EXPECT_EQ(runMlktree({"snapshot", mDir.path()}).status, 0);
}

TEST_F(HostileTreesTest, AFolderOfManyProperties) {
    mDir.write("data/property/ro.kernel", "1\n");
    mDir.write("data/property/persist.vendor.mlk.enstr", "1\n");
    EXPECT_EQ(count("property-line-end"), 2U);
    for (size_t i = 0; i < kMostProperties; ++i) {
        fs::create_symlink("ro.kernel", mDir.path("data/property/ro.x" + std::to_string(i)));
    }
    EXPECT_EQ(count("property-line-end"), 1U);
    EXPECT_TRUE(contains(findings(), "data/property:0: unsearched-folder"));
}

TEST_F(HostileTreesTest, AFolderOfManyPlans) {
    constexpr size_t kPlans = mlk::testing::kSanitized ? 1'200 : 5'000;
    for (size_t i = 0; i < kPlans; ++i) {
        mDir.write("tvconfigs/freqtables/dtv/table" + std::to_string(i), "");
    }
    std::string map = mDir.read("tvconfigs/freqtables/country_freq_map.xml");
    for (size_t i = 0; i < kPlans; ++i) {
        map += "<COUNTRY_FREQ_MAP><COUNTRY_NAME>FRANCE</COUNTRY_NAME><DTV_ANTENA>missing" +
               std::to_string(i) + "</DTV_ANTENA></COUNTRY_FREQ_MAP>\n";
    }
    mDir.write("tvconfigs/freqtables/country_freq_map.xml", map);
    EXPECT_EQ(count("unused-plan"), Reporter::kMostOfFile);
}

TEST_F(HostileTreesTest, LinksInACircleAreFollowedNowhere) {
    fs::create_symlink("loop", mDir.path("tvconfigs/loop"));
    fs::create_symlink("..", mDir.path("tvconfigs/up"));
    fs::create_symlink(".", mDir.path("tvconfigs/audio/here"));
    fs::remove(mDir.path("tvconfigs/model/first.ini"));
    fs::create_symlink("first.ini", mDir.path("tvconfigs/model/first.ini"));
    fs::remove(mDir.path("tvconfigs/board/b1.ini"));
    fs::create_symlink("../board/b1.ini", mDir.path("tvconfigs/board/b1.ini"));
    EXPECT_TRUE(contains(findings(), "tvconfigs/system/line.ini:2: "));
}

TEST_F(HostileTreesTest, PipesDevicesAndFoldersAreNotOpened) {
    const auto pipe = [](const char* path) { return mkfifo(path, 0644); };
    const auto folder = [](const char* path) { return mkdir(path, 0755); };
    const auto device = [](const char* path) { return symlink("/dev/zero", path); };
    replaceBySpecial("tvconfigs/model/first.ini", pipe);
    replaceBySpecial("tvconfigs/country/country.txt", device);
    replaceBySpecial("tvconfigs/tv/tv_eu.config", folder);
    replaceBySpecial("tvconfigs/tvsysmap/systems.xml", pipe);
    replaceBySpecial("tvconfigs/freqtables/dtv/freqtable_eu", device);
    replaceBySpecial("impdata/board_id.bin", pipe);
    replaceBySpecial("impdata/project_id.bin", device);
    replaceBySpecial("tvdata/tvsysmap/country_id.bin", folder);
    const std::vector<std::string> all = findings();
    EXPECT_TRUE(contains(all, "tvconfigs/system/line.ini:2: unusable-file"));
    EXPECT_TRUE(contains(all, "tvsysmap/systems.xml:0: unreadable-file"));
    EXPECT_TRUE(contains(all, "dtv/freqtable_eu:0: unreadable-file"));
}

TEST_F(HostileTreesTest, SettingsAreNoPipe) {
    ASSERT_EQ(mkfifo(mDir.path("mlktree.toml").c_str(), 0644), 0);
    const Outcome outcome = check();
    EXPECT_EQ(outcome.status, 2);
    EXPECT_NE(outcome.err.find("mlktree.toml"), std::string::npos) << outcome.err;
}

TEST_F(HostileTreesTest, WithoutPermission) {
    ASSERT_EQ(chmod(mDir.path("tvconfigs/model/first.ini").c_str(), 0), 0);
    ASSERT_EQ(chmod(mDir.path("tvconfigs/tvsysmap/systems.xml").c_str(), 0), 0);
    ASSERT_EQ(chmod(mDir.path("tvconfigs/audio").c_str(), 0), 0);
    ASSERT_EQ(chmod(mDir.path("tvconfigs/board").c_str(), 0), 0);
    const bool isFound = mlk::testing::asOtherUser(mDir.path(), [&] {
        const std::vector<std::string> all = findings();
        return contains(all, "tvconfigs/system/line.ini:2: unusable-file") &&
               contains(all, "tvsysmap/systems.xml:0: unreadable-file") &&
               contains(all, "tvconfigs/audio:0: unsearched-folder");
    });
    EXPECT_TRUE(isFound);
    for (const char* const folder : {"tvconfigs/audio", "tvconfigs/board"}) {
        ASSERT_EQ(chmod(mDir.path(folder).c_str(), 0755), 0);
    }
}

TEST_F(HostileTreesTest, NoByteOfATreeIsACommandToATerminal) {
    const std::string evil = "\033[2J\a\x9b\n::error::x\r\x7f";
    append("tvconfigs/model/first.ini",
           "[AUDIO\033]0;x\a]\nKEY\033[31m = \xff\x9b\rvalue\xc2\x9b\n\033[2J no equals\n");
    mDir.write("tvconfigs/model/" + evil + ".ini", "[PANEL]\n");
    mDir.write("tvconfigs/board/" + evil + ".ini", "no equals\n[LiveTv]\nA\t= \033[1m\n");
    mDir.write("tvconfigs/country/country.txt", "GER\033[31mMANY\xff\r\n");
    mDir.write("tvconfigs/freqtables/dtv/\xff\033[1m", "");
    for (const char* const format : {"text", "github"}) {
        const std::string out = check(format).out;
        EXPECT_TRUE(std::all_of(out.begin(), out.end(), [](unsigned char c) {
            return c == '\n' || (c >= 0x20 && c != 0x7f);
        })) << format;
        EXPECT_EQ(out.find("\xc2\x9b"), std::string::npos) << format;
        EXPECT_EQ(out.find("\n::error::x"), std::string::npos) << format;
    }
    // A byte that is no UTF-8 is a lone surrogate, which this parser refuses.
    std::string json = check("json").out;
    for (size_t at = json.find("\\udc"); at != std::string::npos; at = json.find("\\udc", at)) {
        json.replace(at, 4, "\\u00");
    }
    EXPECT_FALSE(nlohmann::json::parse(json, nullptr, false).is_discarded());
    EXPECT_FALSE(nlohmann::json::parse(check("sarif").out, nullptr, false).is_discarded());
    tinyxml2::XMLDocument xml;
    EXPECT_EQ(xml.Parse(check("junit").out.c_str()), tinyxml2::XML_SUCCESS);
}

TEST_F(HostileTreesTest, XmlInManyLevelsAndOfHugeAttributes) {
    std::string deep;
    for (size_t i = 0; i < kMany; ++i) {
        deep += "<a>";
    }
    mDir.write("tvconfigs/freqtables/country_freq_map.xml", deep);
    const std::string huge(4'000'000, 'x');
    mDir.write("tvconfigs/tvsysmap/systems.xml",
               "<CountryTvSysMapXML>/tvconfigs/tvsysmap/countries.xml</CountryTvSysMapXML>"
               "<TvSystemConfigration><TvSystem type=\"" +
                       huge + "\"><Item category=\"[" + huge + "]\" key=\"" + huge +
                       "\" value=\"v\"/></TvSystem></TvSystemConfigration>");
    const Outcome outcome = check("sarif");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_FALSE(nlohmann::json::parse(outcome.out, nullptr, false).is_discarded());
    EXPECT_TRUE(contains(findings(), "country_freq_map.xml:"));
}

TEST_F(HostileTreesTest, AMapOfManyUnknownCountries) {
    std::string map;
    for (size_t i = 0; i < 30'000; ++i) {
        const std::string number = std::to_string(i);
        map += "<COUNTRY_TVCONFIG_MAP><COUNTRY_NAME>GERMNY" + number +
               "</COUNTRY_NAME><TV_SYSTEM>DVB_CENTRA" + number +
               "</TV_SYSTEM><TV_CONFIG>/tvconfigs/tv/x</TV_CONFIG></COUNTRY_TVCONFIG_MAP>\n";
    }
    mDir.write("tvconfigs/tvsysmap/countries.xml", map);
    EXPECT_GT(count("unknown-country"), 0U);
}

TEST_F(HostileTreesTest, PathsThatClimbOutOfTheTree) {
    std::string up;
    for (size_t i = 0; i < 1000; ++i) {
        up += "../";
    }
    append("tvconfigs/model/second.ini", "[AUDIO]\nAUDIO_CONFIG_PATH = /tvconfigs/" + up + "etc\n");
    mDir.write("tvconfigs/customer.ini",
               "CUSTOMER_ID = 17\nSYS_INI = /tvconfigs/" + up.substr(0, 180) + "nothing\n");
    EXPECT_EQ(check().status, 1);
    mDir.write("impdata/board_id.bin", "BOARD_ID=/tvconfigs/" + up.substr(0, 180) + "nothing\n");
    EXPECT_EQ(check().status, 1);
}

TEST_F(HostileTreesTest, PathsOfSlashes) {
    append("tvconfigs/model/second.ini",
           "[COUNTRY]\nCOUNTRY_PATH = //\nLANGUAGE_PATH = ////\ntvSysMap = /\n");
    mDir.write("impdata/board_id.bin", "BOARD_ID=//\n");
    EXPECT_EQ(check().status, 1);
}

// Most names stand in both files, and the others are near to many of these.
TEST_F(HostileTreesTest, AudioFilesOfManyNames) {
    const std::string shared = "[SPEAKER]\n" + manyLines("HDMI_DELAY_", " = 1", kMany / 5);
    append("tvconfigs/audio/ic.ini", shared);
    append("tvconfigs/audio/panel.ini", shared + manyLines("HDMI_DEALY_", " = 1", kMany / 5));
    EXPECT_LE(count("unlike-other-files"), Reporter::kMostOfFile);
}

// The rules refer to the lines of the first reading when another one follows.
TEST_F(HostileTreesTest, OneFileInManyFormats) {
    const std::string model = "tvconfigs/model/first.ini";
    append(model,
           "[LiveTV]\ntvSysMap = /tvconfigs/model/first.ini\nTvConfig = "
           "/tvconfigs/model/first.ini\n"
           "[AUDIO]\nAUDIO_CONFIG_PATH = /tvconfigs/model/first.ini\n"
           "[COUNTRY]\nCOUNTRY_PATH = /tvconfigs/tvsysmap/systems.xml\n");
    append("tvconfigs/model/second.ini",
           "[COUNTRY]\nCOUNTRY_PATH = /tvconfigs/freqtables/country_freq_map.xml\n");
    mDir.write(
            "tvconfigs/tvsysmap/systems.xml",
            "<CountryTvSysMapXML>/tvconfigs/freqtables/country_freq_map.xml</CountryTvSysMapXML>");
    EXPECT_EQ(check().status, 1);
    EXPECT_EQ(runMlktree({"fix", mDir.path()}).err.substr(0, 8), "mlktree:");
}

}  // namespace

}  // namespace mlk::tree
