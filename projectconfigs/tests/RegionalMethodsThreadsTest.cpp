#include <android/log.h>
#include <gtest/gtest.h>

#include <atomic>
#include <set>

#include "host/testing/QuietLog.h"
#include "host/testing/Threads.h"
#include "projectconfigs/tests/RegionalOnSet.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

constexpr int kCallers = 10;
constexpr int kRounds = 10;

class RegionalMethodsThreadsTest : public RegionalOnSet {
  protected:
    // Calls every method that reads once; gives the number of wrong answers. The project may be
    // either of the two, which name the same files.
    int readAll() {
        int wrong = 0;
        wrong += asked(&IMlkProjectConfigs::getCountryList)->size() != 3 ? 1 : 0;
        wrong += asked(&IMlkProjectConfigs::getCLTVCountryList)->size() != 1 ? 1 : 0;
        wrong += asked(&IMlkProjectConfigs::getLanguageList)->size() != 2 ? 1 : 0;
        wrong += asked(&IMlkProjectConfigs::getFreqTableList, kUsa, FreqTableType::DTV_ANTENNA,
                       AtscCableType::AUTO)
                                         ->size() != 2
                         ? 1
                         : 0;
        wrong += flag(asked(&IMlkProjectConfigs::isSupportTvSysReload)) != "true" ? 1 : 0;
        const std::set<std::string> files = {"/tv/eu.config", "/tv/na.config", "/tv/model.config"};
        wrong += files.count(tvConfig()) != 1 ? 1 : 0;
        return wrong;
    }
    int setOne(int number) {
        return setCountry(number % 2 == 0 ? kGermany : kUsa) == "true" ? 0 : 1;
    }
    // True if the items and the saved country come from the same call.
    void expectOneCountry() {
        const bool germany = countryId() == "COUNTRY_ID=14\n";
        EXPECT_TRUE(germany || countryId() == "COUNTRY_ID=44\n") << countryId();
        EXPECT_EQ(tvConfig(), germany ? "/tv/eu.config" : "/tv/na.config");
        EXPECT_EQ(config("[S]", "data"), mSet.tvdata() + (germany ? "/dvb" : "/atsc"));
        EXPECT_EQ(flag(asked(&IMlkProjectConfigs::getHBBTVEnabled)), germany ? "true" : "false");
    }
};

TEST_F(RegionalMethodsThreadsTest, EveryMethodFromManyThreadsWhileTheCountryChanges) {
    start();
    std::atomic<int> wrong = 0;
    mlk::testing::inThreads(kCallers, [&](int id) {
        for (int round = 0; round < kRounds; ++round) {
            wrong += id < 3 ? setOne(id + round) : readAll();
            mLog.clear();
        }
    });
    EXPECT_EQ(wrong, 0);
    expectOneCountry();
}

TEST_F(RegionalMethodsThreadsTest, EveryMethodWhileTheProjectChangesToo) {
    write("tvconfigs/model/B.ini", mSet.dir().read("tvconfigs/model/A.ini"));
    start();
    std::atomic<int> wrong = 0;
    mlk::testing::inThreads(kCallers, [&](int id) {
        for (int round = 0; round < kRounds; ++round) {
            if (id < 2) {
                wrong += setOne(id + round);
            } else if (id < 4) {
                const int32_t project = 1 + (id + round) % 2;
                wrong += flag(asked(&IMlkProjectConfigs::setProjectId, project)) == "true" ? 0 : 1;
            } else {
                wrong += readAll();
            }
            mLog.clear();
        }
    });
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(setCountry(kUsa), "true");
    expectOneCountry();
}

// A country with enough items that other calls could interrupt it, without the lock.
class ManyItemsThreadsTest : public RegionalOnSet {
  protected:
    ManyItemsThreadsTest() {
        std::string model = "[COUNTRY]\ntvSysMap=/tvconfigs/tvsys.xml\n[MANY]\n";
        std::string dvb;
        std::string atsc;
        for (int number = 0; number < 300; ++number) {
            const std::string key = "k" + std::to_string(number);
            model += key + "=model\n";
            dvb += item("[MANY]", key, "14");
            atsc += item("[MANY]", key, "44");
        }
        project(model);
        write("tvconfigs/tvsys.xml",
              "<CountryTvSysMapXML>/tvconfigs/countries.xml</CountryTvSysMapXML>"
              "<TvSystemConfigration><TvSystem type=\"DVB\">" +
                      dvb + "</TvSystem><TvSystem type=\"ATSC\">" + atsc +
                      "</TvSystem></TvSystemConfigration>");
        start();
    }
    // The values of the items: more than one value if they come from several calls.
    std::set<std::string> values() {
        std::set<std::string> found;
        const auto items = *asked(&IMlkProjectConfigs::getConfigsByCategory, "[MANY]");
        for (const ConfigKeyValue& each : items) {
            found.insert(each.value);
        }
        return found;
    }

    // After the start, whose log does not matter here.
    const mlk::testing::QuietLog mQuiet;
};

TEST_F(ManyItemsThreadsTest, OfTwoCountriesAtOnceOneIsInTheStoreAndTheSameIsSaved) {
    for (int round = 0; round < kRounds; ++round) {
        mlk::testing::inThreads(6, [&](int id) { setCountry(id % 2 == 0 ? kGermany : kUsa); });
        const auto found = values();
        ASSERT_EQ(found.size(), 1U);
        EXPECT_EQ(countryId(), "COUNTRY_ID=" + *found.begin() + "\n");
    }
}

TEST_F(ManyItemsThreadsTest, ACountryIsPutIntoOneProjectAsAWhole) {
    for (int round = 0; round < kRounds; ++round) {
        mlk::testing::inThreads(2, [&](int id) {
            if (id == 0) {
                setCountry(kUsa);
                return;
            }
            for (int change = 0; change < 5; ++change) {
                asked(&IMlkProjectConfigs::setProjectId, 1);
            }
        });
        EXPECT_EQ(values().size(), 1U);
    }
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
