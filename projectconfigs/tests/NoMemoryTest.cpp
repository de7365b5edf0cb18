// A change for which there is no memory leaves the set as it was.

#include "host/testing/NoMemory.h"

#include <gtest/gtest.h>

#include <optional>
#include <sstream>
#include <string>

#include "common/testing/FixedProperties.h"
#include "host/testing/QuietLog.h"
#include "host/testing/TempDir.h"
#include "projectconfigs/ProjectSet.h"
#include "projectconfigs/SetChanges.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

using mlk::testing::failAtEachAllocation;
using mlk::testing::NoMemory;

constexpr _tv_country kGermany{14};
constexpr _tv_country kUsa{44};

// Texts are long, because short ones need no memory.
const std::string kLong(300, 'l');

std::string tvSystem(const std::string& name, const std::string& values) {
    return "<TvSystem type=\"" + name + "\"><Item category=\"[TV]\" key=\"a\" value=\"" + values +
           "\"/><Item category=\"[TV]\" key=\"b\" value=\"" + values + "\"/></TvSystem>";
}

std::string country(const std::string& name) {
    return "<COUNTRY_TVCONFIG_MAP><COUNTRY_NAME>" + name + "</COUNTRY_NAME><TV_SYSTEM>" + name +
           "</TV_SYSTEM><TV_CONFIG>/tvconfigs/" + name + "</TV_CONFIG></COUNTRY_TVCONFIG_MAP>";
}

/** A set of two models and two countries whose log is quiet: a line needs memory, too. */
class NoMemoryTest : public ::testing::Test {
  protected:
    NoMemoryTest() {
        write("tvconfigs/customer.ini", "SYS_INI=/tvconfigs/sys.ini\n");
        write("tvconfigs/sys.ini", "Model_1=/tvconfigs/A.ini\nModel_2=/tvconfigs/B.ini\n");
        write("tvconfigs/A.ini", model("A"));
        write("tvconfigs/B.ini", model("B"));
        write("tvconfigs/systems.xml",
              "<CountryTvSysMapXML>/tvconfigs/countries.xml</CountryTvSysMapXML>"
              "<TvSystemConfigration>" +
                      tvSystem("GERMANY", "short") + tvSystem("USA", kLong) +
                      "</TvSystemConfigration>");
        write("tvconfigs/countries.xml", country("GERMANY") + country("USA"));
        write("tvconfigs/audio/AVR_v_o.ini", "[ARC]\nDELAY=3\n");
        write("tvconfigs/audio/AVR_" + kVendor + "_o.ini", "[ARC]\nDELAY=50\n");
        write("tvdata/tvsysmap/country_id.bin", "COUNTRY_ID=14\n");
        write("impdata/project_id.bin", "PROJECT_ID=1\n");
        mProjectId.emplace(mPartitions.impdata, 1);
        mBoardId.emplace(mPartitions.impdata);
        mSet.emplace(mPartitions, mProperties, mData, SetIdentity{1, mBoardId->Get(), kNoCountry});
        mChanges.emplace(*mSet, *mProjectId, *mBoardId);
    }
    void SetUp() override {
        if (!NoMemory::isPossible()) {
            GTEST_SKIP() << "the sanitizer has operators of its own";
        }
    }
    static std::string model(const std::string& name) {
        return "[COUNTRY]\ntvSysMap=/tvconfigs/systems.xml\n[TV]\na=model\nb=model\n"
               "[LiveTV]\nTvConfig=model\n[PANEL]\nm_pPanelName=" +
               name + "\n[AUDIO]\nAUDIO_CONFIG_AVR_PATH=/tvconfigs/audio/default.ini\n";
    }
    std::string write(const std::string& name, const std::string& text) const {
        return mDir.write(name, text);
    }
    std::string items() const {
        std::ostringstream out;
        mSet->items().dump(out);
        return out.str();
    }
    int32_t delay() const { return mSet->sounds().delay(ConfigKey("[ARC]", "DELAY"), true); }
    std::string countryFile() const { return mDir.read("tvdata/tvsysmap/country_id.bin"); }

    // Two of these names do not fit into 128 bytes.
    const std::string kVendor = std::string(60, 'v');

    const mlk::testing::QuietLog mQuiet;
    mlk::testing::TempDir mDir;
    const Partitions mPartitions{mDir.path("tvconfigs"), mDir.path("tvdata"), mDir.path("impdata")};
    FixedProperties mProperties;
    RegionalData mData{[this] { return mPartitions; }};
    std::optional<ProjectID> mProjectId;
    std::optional<BoardID> mBoardId;
    std::optional<ProjectSet> mSet;
    std::optional<SetChanges> mChanges;
};

TEST_F(NoMemoryTest, TheAvrStays) {
    SoundDelays& sounds = mSet->sounds();
    ASSERT_TRUE(sounds.trySetAvrOSDName("o"));
    ASSERT_TRUE(sounds.trySetAvrVendorId("v"));
    ASSERT_EQ(delay(), 3);
    const long failures = failAtEachAllocation([&] { return sounds.trySetAvrVendorId(kVendor); },
                                               [&] { EXPECT_EQ(delay(), 3); });
    EXPECT_GT(failures, 5);
    EXPECT_EQ(delay(), 50);
}

// If the vendor of a change that failed stayed, the next name would be asked for with it.
TEST_F(NoMemoryTest, TheVendorOfTheAvrStays) {
    SoundDelays& sounds = mSet->sounds();
    ASSERT_TRUE(sounds.trySetAvrOSDName("o"));
    ASSERT_TRUE(sounds.trySetAvrVendorId("v"));
    failAtEachAllocation([&] { return sounds.trySetAvrVendorId(kVendor); },
                         [&] {
                             EXPECT_TRUE(sounds.trySetAvrOSDName("o"));
                             EXPECT_EQ(delay(), 3);
                         });
    EXPECT_EQ(delay(), 50);
}

TEST_F(NoMemoryTest, ACountrysItemsAreAllSetOrNone) {
    const std::string german = items();
    ASSERT_NE(german.find("[TV]:b=short"), std::string::npos) << german;
    bool hasThrown = false;
    const auto set = [&] {
        hasThrown = true;
        const bool isSaved = mChanges->setCountry(kUsa);
        hasThrown = false;
        return isSaved;
    };
    long unsaved = 0;
    const auto expectAllOrNone = [&] {
        EXPECT_EQ(countryFile(), "COUNTRY_ID=14\n");
        const std::string now = items();
        if (now == german) {
            return;
        }
        // As if the country could not be saved for another reason.
        ++unsaved;
        EXPECT_FALSE(hasThrown);
        EXPECT_NE(now.find("[TV]:a=" + kLong), std::string::npos);
        EXPECT_NE(now.find("[TV]:b=" + kLong), std::string::npos);
        mSet->region().apply(kGermany);
    };
    EXPECT_GT(failAtEachAllocation(set, expectAllOrNone), 20);
    EXPECT_GT(unsaved, 0);
    EXPECT_EQ(countryFile(), "COUNTRY_ID=44\n");
}

TEST_F(NoMemoryTest, AModelIsSelectedWholeOrNotAtAll) {
    const std::string former = items();
    const long failures = failAtEachAllocation([&] { return mChanges->setProject(2); },
                                               [&] {
                                                   EXPECT_EQ(items(), former);
                                                   EXPECT_EQ(mProjectId->Get(), 1U);
                                               });
    EXPECT_GT(failures, 10);
    EXPECT_EQ(mProjectId->Get(), 2U);
    EXPECT_NE(items().find("m_pPanelName=B"), std::string::npos);
}

TEST_F(NoMemoryTest, AnIndexThatIsNotWrittenIsTriedAgain) {
    constexpr unsigned int kIndex = 2'000'000'000;  // whose line is a long text
    long attempts = 0;
    const auto set = [&] {
        ++attempts;
        bool isWritten = false;
        EXPECT_NO_THROW(isWritten = mProjectId->Set(kIndex));
        return isWritten;
    };
    const auto expectIndexInUse = [&] { EXPECT_EQ(mProjectId->Get(), kIndex); };
    const long failures = failAtEachAllocation(set, expectIndexInUse);
    EXPECT_GT(failures, 0);
    EXPECT_EQ(attempts, failures + 1);
    EXPECT_EQ(mDir.read("impdata/project_id.bin"), "PROJECT_ID=2000000000\n");
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
