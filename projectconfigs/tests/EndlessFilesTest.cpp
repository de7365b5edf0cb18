// Files without an end, and sparse files of many gigabytes, in place of each file of the set.

#include <gmock/gmock.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "projectconfigs/tests/ServiceOnSet.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

class EndlessFilesTest : public ServiceOnSet, public ::testing::WithParamInterface<const char*> {
  protected:
    EndlessFilesTest() {
        project("[KARAOKE]\nKARAOKE_CONFIG_PATH=" + mSet.tvconfigs() + "/karaoke.ini\n" +
                "[COUNTRY]\nCOUNTRY_PATH=" + mSet.tvconfigs() + "/countries\n");
        write("tvconfigs/karaoke.ini", "[S]\nk=1\n");
        write("tvconfigs/countries", "GERMANY\n");
        mPath = mSet.dir().path(GetParam());
    }
    // The set starts, answers, and has logged the problem of the file once.
    void expectStart() {
        start();
        EXPECT_TRUE(asked(&IMlkProjectConfigs::getPanelName).has_value());
        if (mPath == mSet.tvconfigs() + "/countries") {
            EXPECT_EQ(asked(&IMlkProjectConfigs::getCountryList)->size(), 0U);
        }
        const std::string line = mPath + ": cannot be read: larger than ";
        size_t told = 0;
        for (const std::string& text : mLog.texts()) {
            told += text.compare(0, line.size(), line) == 0 ? 1 : 0;
        }
        EXPECT_EQ(told, 1U);
    }

    std::string mPath;
};

TEST_P(EndlessFilesTest, FileWithoutAnEndIsRefused) {
    const std::string endless = "/proc/self/pagemap";
    if (access(endless.c_str(), R_OK) != 0) {
        GTEST_SKIP() << "this kernel shows no such file";
    }
    std::filesystem::remove(mPath);
    std::filesystem::create_symlink(endless, mPath);
    expectStart();
}

TEST_P(EndlessFilesTest, SparseFileIsRefused) {
    std::ofstream(mPath, std::ios::app) << "\n";
    ASSERT_EQ(truncate(mPath.c_str(), off_t{10} << 30), 0);
    expectStart();
}

INSTANTIATE_TEST_SUITE_P(, EndlessFilesTest,
                         ::testing::Values("tvconfigs/customer.ini", "tvconfigs/sys.ini",
                                           "tvconfigs/model/A.ini", "tvconfigs/board.ini",
                                           "impdata/board_id.bin", "tvconfigs/karaoke.ini",
                                           "tvconfigs/countries"));

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
