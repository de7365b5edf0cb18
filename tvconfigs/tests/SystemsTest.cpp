#include <gmock/gmock.h>

#include <limits>

#include "tvconfigs/tests/Asking.h"
#include "tvconfigs/tests/TvSet.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

class SystemsTest : public ::testing::Test {
  protected:
    TvSet mSet;

    static std::string file(const std::string& atv, const std::string& dtv) {
        return "persist.vendor.mlk.tv.atv_system=" + atv +
               "\npersist.vendor.mlk.tv.dtv_system=" + dtv + '\n';
    }
};

TEST_F(SystemsTest, ASetterChangesValuePropertyAndFile) {
    const TvSystem& atv = tvSystems()[0];
    const TvSystem& dtv = tvSystems()[1];
    const auto service = mSet.start(file("0", "1"));
    EXPECT_EQ(atv.set(*service, 1), "1");
    EXPECT_EQ(atv.get(*service), "1");
    EXPECT_EQ(dtv.get(*service), "1");
    EXPECT_EQ(mSet.property(atv.key), "1");
    EXPECT_EQ(mSet.file(), file("1", "1"));
    EXPECT_EQ(dtv.set(*service, 4), "4");
    EXPECT_EQ(dtv.get(*service), "4");
    EXPECT_EQ(atv.get(*service), "1");
    EXPECT_EQ(mSet.property(dtv.key), "4");
    EXPECT_EQ(mSet.file(), file("1", "4"));
}

TEST_F(SystemsTest, AcceptTheirRange) {
    for (const TvSystem& system : tvSystems()) {
        const auto service = mSet.start(file("7", "7"));
        for (int32_t value = system.least; value <= system.most; ++value) {
            EXPECT_EQ(system.set(*service, value), std::to_string(value)) << system.name;
            EXPECT_EQ(mSet.property(system.key), std::to_string(value)) << system.name;
        }
    }
}

TEST_F(SystemsTest, RefuseWhatIsOutsideOfIt) {
    for (const TvSystem& system : tvSystems()) {
        const auto service = mSet.start(file("1", "1"));
        mSet.removeProperty(system.key);
        for (const int32_t value :
             {system.least - 1, system.most + 1, -1, 100, std::numeric_limits<int32_t>::min(),
              std::numeric_limits<int32_t>::max()}) {
            EXPECT_EQ(system.set(*service, value), "refused " + std::to_string(value))
                    << system.name;
        }
        EXPECT_EQ(system.get(*service), "1");
        EXPECT_EQ(mSet.property(system.key), std::nullopt);
        EXPECT_EQ(mSet.file(), file("1", "1"));
    }
}

TEST_F(SystemsTest, ASetterThatChangesNothingWritesNothing) {
    for (const TvSystem& system : tvSystems()) {
        const auto service = mSet.start(file("1", "1"));
        mSet.removeProperty(system.key);
        mSet.dir().write("tvconfigs/tv.config", "somebody else's");
        EXPECT_EQ(system.set(*service, 1), "1");
        EXPECT_EQ(mSet.property(system.key), std::nullopt);
        EXPECT_EQ(mSet.file(), "somebody else's");
    }
}

TEST_F(SystemsTest, WhatIsStoredIsServedWhateverItIs) {
    const auto service = mSet.start(file("7", "-1"));
    EXPECT_EQ(tvSystems()[0].get(*service), "7");
    EXPECT_EQ(tvSystems()[1].get(*service), "-1");
    EXPECT_EQ(tvSystems()[0].set(*service, 7), "refused 7");
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
