// The folder of channel plans that an item names.

#include <gtest/gtest.h>

#include <filesystem>

#include "host/testing/Process.h"
#include "host/testing/QuietLog.h"
#include "tools/mlktree/tests/Harness.h"

namespace mlk::tree {

namespace {

TEST(PlanFolderTest, ItsPathMayEndInASlash) {
    const testing::QuietLog quiet;
    const testing::TempDir dir;
    std::filesystem::copy(testing::sourceDir() + "/samples/partitions", dir.path(),
                          std::filesystem::copy_options::recursive);
    // All that the commands say of the plans, and of one that is missing.
    const auto told = [&dir] {
        std::string text;
        for (const std::vector<std::string>& words :
             {std::vector<std::string>{"plan", "GERMANY", "DTV_ANTENNA"},
              {"plan", "GERMANY", "DTV_CABLE", "HRC"},
              {"explain", "country", "GERMANY"}}) {
            std::vector<std::string> all = words;
            all.insert(all.end(), {"--model", "6"});
            const Outcome outcome = runMlktree(all, dir.path());
            text += outcome.out + outcome.err;
        }
        return text;
    };
    const std::string plain = told();
    EXPECT_NE(plain.find("named by tvconfigs/freqtables/country_freq_map.xml:8"), plain.npos);
    EXPECT_NE(plain.find("country_freq_map.xml:6 names DTV_ANTENNA"), plain.npos);
    const std::string file = "tvconfigs/model/TRQ65_C3_UK.ini";
    const std::string text = dir.read(file);
    for (const char* const end : {"/", "///"}) {
        dir.write(file,
                  text + "\n[FREQTABLE]\nFREQ_TABLE_PATH = \"/tvconfigs/freqtables" + end + "\"\n");
        EXPECT_EQ(told(), plain) << end;
    }
}

}  // namespace

}  // namespace mlk::tree
