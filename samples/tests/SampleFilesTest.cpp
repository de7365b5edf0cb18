// Rules for all files of the sample, whatever reads them: limits, spelling, completeness.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <regex>
#include <set>

#include "samples/tests/SampleSet.h"

namespace mlk::samples {
namespace {

using ::testing::ContainerEq;
using ::testing::EndsWith;
using ::testing::StartsWith;

// The longest line that the reader of a folder takes; the first prefix that fits counts. Files that
// only other programs read must keep to the narrowest limit, too.
struct Limit {
    const char* prefix;
    size_t characters;
};
constexpr Limit kLimits[] = {
        {"tvconfigs/model/", 1023},
        {"tvconfigs/board/", 1023},
        {"tvconfigs/tv/", 1023},
        {"tvconfigs/tv.config", 1023},
        {"", 255},
};

constexpr size_t kMostPropertyBytes = 91;

bool endsWith(const std::string& text, const std::string& end) {
    return text.size() >= end.size() &&
           text.compare(text.size() - end.size(), end.size(), end) == 0;
}

bool isText(const std::string& file) {
    for (const char* end : {".ini", ".config", ".txt", ".list", "_id.bin"}) {
        if (endsWith(file, end)) {
            return true;
        }
    }
    return false;
}

std::vector<std::string> filesBelow(const std::string& prefix) {
    std::vector<std::string> files;
    for (const std::string& file : partitionFiles()) {
        if (file.rfind(prefix, 0) == 0) {
            files.push_back(file);
        }
    }
    EXPECT_FALSE(files.empty()) << prefix;
    return files;
}

TEST(SampleFiles, NoLineIsLongerThanItsReaderTakes) {
    size_t texts = 0;
    for (const std::string& file : partitionFiles()) {
        if (!isText(file)) {
            continue;
        }
        ++texts;
        const auto* limit =
                std::find_if(std::begin(kLimits), std::end(kLimits),
                             [&](const Limit& each) { return file.rfind(each.prefix, 0) == 0; });
        for (const std::string& line : linesOf(contentOf(file))) {
            EXPECT_LE(line.size(), limit->characters) << file << ": " << line;
            EXPECT_EQ(line.find('\0'), std::string::npos) << file;
        }
        EXPECT_THAT(contentOf(file), EndsWith("\n")) << file;
    }
    EXPECT_GT(texts, 50U);
}

// A model file that lost its carriage returns would no longer show that they do no harm.
TEST(SampleFiles, OneModelKeepsItsCarriageReturns) {
    for (const std::string& file : filesBelow("tvconfigs/model/")) {
        const bool kept = file == "tvconfigs/model/TRQ55_M2_LATAM.ini";
        for (const std::string& line : linesOf(contentOf(file))) {
            EXPECT_EQ(!line.empty() && line.back() == '\r', kept) << file << ": " << line;
        }
    }
}

TEST(SampleFiles, TheReadmeNamesEveryFileAndNothingElse) {
    std::ifstream stream(samplesFolder() / "README.md");
    const std::string readme(std::istreambuf_iterator<char>(stream), {});
    const size_t begin = readme.find("## Files\n");
    ASSERT_NE(begin, std::string::npos);
    const std::string section = readme.substr(begin, readme.find("\n## ", begin) - begin);

    std::vector<std::string> named;
    const std::regex name("`([^`]+)`");
    for (const std::string& line : linesOf(section)) {
        if (line.rfind("| `", 0) != 0) {
            continue;
        }
        const std::string cell = line.substr(1, line.find('|', 1) - 1);
        for (std::sregex_iterator each(cell.begin(), cell.end(), name), end; each != end; ++each) {
            named.push_back((*each)[1]);
        }
    }
    std::sort(named.begin(), named.end());
    EXPECT_THAT(named, ContainerEq(partitionFiles()));
}

TEST(SampleFiles, TvFeatureFilesHoldKnownKeysOnceEachWithValuesThatAreTaken) {
    const std::set<std::string> flags{
            "enable_atv",     "atv_antenna",   "atv_cable",  "enable_dtv",       "dtv_antenna",
            "dtv_cable",      "dtv_satellite", "enable_pvr", "enable_livepause", "enable_hdmi",
            "enable_vga",     "enable_av",     "enable_ypp", "enable_ci",        "enable_mheg5",
            "enable_ginga",   "enable_hbbtv",  "enable_tt",  "enable_cc",        "enable_atsc_cc",
            "enable_ntsc_cc", "enable_isdb_cc"};
    const std::string family = "persist.vendor.mlk.tv.";
    std::vector<std::string> files = filesBelow("tvconfigs/tv/");
    files.push_back("tvconfigs/tv.config");
    EXPECT_EQ(files.size(), 7U);
    for (const std::string& file : files) {
        std::set<std::string> seen;
        for (const std::string& line : linesOf(contentOf(file))) {
            if (line.empty() || line.front() == '#') {
                continue;
            }
            SCOPED_TRACE(::testing::Message() << file << ": " << line);
            const size_t equals = line.rfind('=');
            ASSERT_THAT(line, StartsWith(family));
            ASSERT_NE(equals, std::string::npos);
            const std::string key = line.substr(family.size(), equals - family.size());
            const std::string value = line.substr(equals + 1);
            EXPECT_TRUE(seen.insert(key).second);
            if (key == "atv_system") {
                EXPECT_TRUE(value == "0" || value == "1");
            } else if (key == "dtv_system") {
                EXPECT_TRUE(value.size() == 1 && value >= "1" && value <= "4");
            } else {
                EXPECT_EQ(flags.count(key), 1U);
                EXPECT_TRUE(value == "true" || value == "false");
            }
        }
        EXPECT_EQ(seen.size(), flags.size() + 2) << file;
    }
}

// The lists have no comments: every line is an entry, and an unknown name counts as a country.
TEST(SampleFiles, ListsHoldNothingButEntries) {
    const std::regex country("[A-Z_]+,[A-Z]{2}");
    const std::regex language("[a-z]{3},[A-Z][a-z]+");
    for (const std::string& file : partitionFiles()) {
        const bool countries = file.rfind("tvconfigs/country/", 0) == 0;
        if (!countries && file.rfind("tvconfigs/language/", 0) != 0) {
            continue;
        }
        std::set<std::string> seen;
        for (const std::string& line : linesOf(contentOf(file))) {
            EXPECT_TRUE(std::regex_match(line, countries ? country : language))
                    << file << ": " << line;
            EXPECT_TRUE(seen.insert(line).second) << file << ": " << line;
        }
        EXPECT_FALSE(seen.empty()) << file;
    }
}

TEST(SampleFiles, APropertyFileIsItsValue) {
    for (const std::string& file : filesBelow("data/property/")) {
        const std::string value = contentOf(file);
        EXPECT_LE(value.size(), kMostPropertyBytes) << file;
        EXPECT_EQ(value.find_first_of("\r\n"), std::string::npos) << file;
        EXPECT_FALSE(value.empty()) << file;
    }
    EXPECT_EQ(contentOf("data/property/persist.vendor.mlk.forcestr"), "0");
}

TEST(SampleFiles, EveryEdidIsOneOfItsSocket) {
    constexpr size_t kBlock = 128;
    const std::string header("\0\xff\xff\xff\xff\xff\xff\0", 8);
    const std::string hdmi("\x03\x0c\0", 3);  // registration of HDMI's data block
    for (const std::string& file : filesBelow("tvconfigs/edid/")) {
        SCOPED_TRACE(file);
        const std::string edid = contentOf(file);
        ASSERT_EQ(edid.size(), 2 * kBlock);
        EXPECT_THAT(edid, StartsWith(header));
        for (size_t block = 0; block < 2; ++block) {
            unsigned sum = 0;
            for (size_t i = 0; i < kBlock; ++i) {
                sum += static_cast<unsigned char>(edid[block * kBlock + i]);
            }
            EXPECT_EQ(sum % 256, 0U) << "block " << block;
        }
        const size_t found = edid.find(hdmi, kBlock);
        ASSERT_NE(found, std::string::npos);
        const int socket = file[file.find("_p") + 2] - '0';
        EXPECT_EQ(static_cast<unsigned char>(edid[found + hdmi.size()]), socket << 4);
    }
}

// A placeholder for a table of a real set says that it is one.
TEST(SampleFiles, PlaceholdersSaySo) {
    for (const char* prefix :
         {"tvconfigs/pq/", "tvconfigs/aq/", "tvconfigs/eq/", "tvdata/channels/", "impdata/hdcp/"}) {
        for (const std::string& file : filesBelow(prefix)) {
            EXPECT_THAT(contentOf(file), StartsWith("PLACEHOLDER ")) << file;
        }
    }
}

}  // namespace
}  // namespace mlk::samples
