// Karaoke, key and DDC/CI files.

#include <android/log.h>
#include <gmock/gmock.h>

#include "projectconfigs/tests/ServiceOnSet.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

using ::testing::AllOf;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

using Service = IMlkProjectConfigs;

struct Kind {
    const char* section;
    const char* item;
    const char* nameLabel;
    const char* missing;
};

const Kind kKinds[] = {
        {"[KARAOKE]", "KARAOKE_CONFIG_PATH", "mKarakeName:", "Can't get karaoke config path!"},
        {"[KEY]", "KEY_CONFIG_PATH", "mGlobalKeyName:", "Can't get key config path!"},
        {"[DDCCI]", "CUSTOMER_DDCCI_PATH",
         "[DDCCI] mCustomerDdcciName: ", "Can't get Customer DDCCI config path!"},
};

class CustomerFilesTest : public ServiceOnSet {
  protected:
    // Writes a project that names a file "<folder>FILE.ini" for each kind, and the files' lines.
    void startWith(const std::string& lines, const std::string& folder = "/tvconfigs/",
                   const std::string& name = "file.ini") {
        std::string items;
        for (const Kind& kind : kKinds) {
            items += std::string(kind.section) + "\n" + kind.item + "=" + folder + name + "\n";
        }
        project(items);
        write("tvconfigs/" + name, "[S]\n" + lines);
        start();
    }
    // The results of the four lookups of a key of section [S].
    std::vector<std::string> lookups(const std::string& key, const std::string& section = "[S]") {
        const ProjectConfigKey item{section, key};
        return {number(asked(&Service::getKaraokeConfig, item)),
                text(asked(&Service::getGlobalKeyConfig, item)),
                number(asked(&Service::getCustomerDdcciConfigInt, item)),
                text(asked(&Service::getCustomerDdcciConfigString, item))};
    }
};

TEST_F(CustomerFilesTest, NameEndsAtItsNul) {
    startWith("k=12\n");
    EXPECT_THAT(lookups({"k\0tail", 6}, {"[S]\0tail", 8}), ElementsAre("12", "12", "12", "12"));
}

TEST_F(CustomerFilesTest, AreLoadedInOrder) {
    startWith("k=1\n");
    std::vector<std::string> lines;
    for (const std::string& line : logged(ANDROID_LOG_DEBUG)) {
        if (line.find("Name:") != std::string::npos || line.find("[DDCCI]") == 0) {
            lines.push_back(line);
        }
    }
    EXPECT_THAT(lines,
                ElementsAre("mKarakeName:file.ini", "mGlobalKeyName:file.ini",
                            "[DDCCI] customerDdcciConfigPath = " + mSet.tvconfigs() + "/file.ini",
                            "[DDCCI] mCustomerDdcciName: file.ini"));
    const auto parser = mLog.texts(ANDROID_LOG_DEBUG, "IniProjectParser");
    EXPECT_EQ(std::count(parser.begin(), parser.end(),
                         "\tIniPath ID=" + mSet.tvconfigs() + "/file.ini"),
              3);
}

TEST_F(CustomerFilesTest, MissingItemsAreReported) {
    project("");
    start();
    for (const Kind& kind : kKinds) {
        EXPECT_THAT(logged(ANDROID_LOG_ERROR), Contains(kind.missing));
    }
    EXPECT_THAT(logged(ANDROID_LOG_DEBUG), Contains("[DDCCI] customerDdcciConfigPath = "))
            << "also when it is empty";
    EXPECT_THAT(lookups("k"), ElementsAre("0", "", "0", ""));
}

TEST_F(CustomerFilesTest, LookupsConvertWhereTheyAnswerNumbers) {
    startWith("hex=0x10\nmixed=12abc\nminus=-3\nword=on\nlarge=4294967297\n");
    EXPECT_THAT(lookups("hex"), ElementsAre("0", "0x10", "0", "0x10"));
    EXPECT_THAT(lookups("mixed"), ElementsAre("12", "12abc", "12", "12abc"));
    EXPECT_THAT(lookups("minus"), ElementsAre("-3", "-3", "-3", "-3"));
    EXPECT_THAT(lookups("word"), ElementsAre("0", "on", "0", "on"));
    EXPECT_THAT(lookups("large"), ElementsAre("1", "4294967297", "1", "4294967297"));
    EXPECT_THAT(lookups("none"), ElementsAre("0", "", "0", ""));
}

TEST_F(CustomerFilesTest, LookupsAreLogged) {
    startWith("k=12abc\n");
    mLog.clear();
    lookups("k");
    EXPECT_THAT(
            logged(ANDROID_LOG_DEBUG),
            ElementsAre("getKaraokeConfig: 12abc: 12", "getGlobalKeyConfig: [S]: k: 12abc",
                        "[DDCCI] getCustomerDdcciConfigInt: [S]: k: 12abc, 12",
                        "[DDCCI] getCustomerDdcciConfigString: [S]: k: 12abc", "[DDCCI] 12abc"));
}

TEST_F(CustomerFilesTest, EachKindHasAFileOfItsOwn) {
    project("[KARAOKE]\nKARAOKE_CONFIG_PATH=/tvconfigs/a.ini\n"
            "[KEY]\nKEY_CONFIG_PATH=/tvdata/b.ini\n[DDCCI]\nCUSTOMER_DDCCI_PATH=/impdata/c.ini\n");
    write("tvconfigs/a.ini", "[S]\nk=1\n");
    write("tvdata/b.ini", "[S]\nk=2\n");
    write("impdata/c.ini", "[S]\nk=3\n");
    start();
    EXPECT_THAT(lookups("k"), ElementsAre("1", "2", "3", "3"));
}

TEST_F(CustomerFilesTest, PathWithoutAFolderLoadsAFileThatNobodyFinds) {
    startWith("k=1\n", "");
    for (const Kind& kind : kKinds) {
        EXPECT_THAT(logged(ANDROID_LOG_DEBUG), Not(Contains(HasSubstr(kind.nameLabel))));
    }
    EXPECT_THAT(mLog.texts(ANDROID_LOG_DEBUG, "IniProjectParser"),
                Contains("\tIniPath ID=file.ini"));
    EXPECT_THAT(logged(ANDROID_LOG_ERROR), Not(Contains("Can't get karaoke config path!")));
    EXPECT_THAT(lookups("k"), ElementsAre("0", "", "0", ""));
}

TEST_F(CustomerFilesTest, FileNameHasToLeaveRoomForANul) {
    startWith("k=1\n", "/tvconfigs/", std::string(123, 'f') + ".ini");
    EXPECT_THAT(lookups("k"), ElementsAre("1", "1", "1", "1"));
    startWith("k=1\n", "/tvconfigs/", std::string(124, 'f') + ".ini");
    EXPECT_THAT(lookups("k"), ElementsAre("0", "", "0", ""));
}

TEST_F(CustomerFilesTest, FilesStayAsTheyWereAtTheStart) {
    startWith("k=1\n");
    write("tvconfigs/file.ini", "[S]\nk=2\n");
    EXPECT_EQ(flag(asked(&Service::setProjectId, 2)), "true");
    EXPECT_THAT(lookups("k"), ElementsAre("1", "1", "1", "1"));
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
