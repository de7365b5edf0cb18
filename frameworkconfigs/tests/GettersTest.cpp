#include <cutils/properties.h>
#include <gmock/gmock.h>

#include "frameworkconfigs/MlkFrameworkConfigs.h"
#include "frameworkconfigs/testing/GetterRows.h"
#include "frameworkconfigs/tests/PropertyReads.h"
#include "host/testing/HostSet.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

using ::android::sp;
using ::mlk::testing::HostSet;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class GettersTest : public ::testing::Test {
  protected:
    HostSet mSet;

    static sp<IMlkFrameworkConfigs> start() { return new MlkFrameworkConfigs; }
};

TEST_F(GettersTest, HaveDefaultsWithoutProperties) {
    const auto service = start();
    ASSERT_THAT(getterRows(), SizeIs(23));
    for (const GetterRow& row : getterRows()) {
        EXPECT_EQ(row.get(*service), row.defaultValue) << row.name;
    }
}

TEST_F(GettersTest, AnswerTheirOwnPropertyAndNoOther) {
    for (const GetterRow& one : getterRows()) {
        if (one.property == nullptr) {
            continue;
        }
        HostSet set;
        set.setProperty(one.property, one.stored);
        const auto service = start();
        for (const GetterRow& row : getterRows()) {
            const char* expected = &row == &one ? row.value : row.defaultValue;
            EXPECT_EQ(row.get(*service), expected) << row.name << " with " << one.property;
        }
    }
}

TEST_F(GettersTest, AStartReadsEachPropertyOnceInItsOrder) {
    std::vector<std::string> expected;
    for (const GetterRow& row : getterRows()) {
        if (row.property != nullptr) {
            expected.emplace_back(row.property);
        }
    }
    takePropertyReads();
    const auto service = start();
    EXPECT_THAT(takePropertyReads(), ElementsAreArray(expected));
}

TEST_F(GettersTest, ReadNoPropertyAndSeeChangesOnlyAfterARestart) {
    const auto service = start();
    takePropertyReads();
    for (const GetterRow& row : getterRows()) {
        if (row.property != nullptr) {
            mSet.setProperty(row.property, row.stored);
        }
        EXPECT_EQ(row.get(*service), row.defaultValue) << row.name;
    }
    EXPECT_THAT(takePropertyReads(), IsEmpty());
    const auto restarted = start();
    for (const GetterRow& row : getterRows()) {
        EXPECT_EQ(row.get(*restarted), row.value) << row.name;
    }
}

TEST_F(GettersTest, FlagsTakeEveryWordForTrueAndFalse) {
    const std::vector<std::pair<const char*, const char*>> rows = {
            {"1", "true"},  {"true", "true"},   {"y", "true"},  {"yes", "true"}, {"on", "true"},
            {"0", "false"}, {"false", "false"}, {"n", "false"}, {"no", "false"}, {"off", "false"},
            {"2", "false"}, {"TRUE", "false"},  {"", "false"},  {" 1", "false"}};
    for (const auto& [stored, value] : rows) {
        mSet.setProperty("vendor.mlk.m.mkv.dbg", stored);
        EXPECT_EQ(ask<OptionalBool>(*start(), &IMlkFrameworkConfigs::inputMKVDebugEnabled), value)
                << '"' << stored << '"';
    }
}

TEST_F(GettersTest, NumbersAreTheDefaultUnlessTheyFit) {
    const std::vector<std::pair<const char*, const char*>> rows = {{"3", "3"},
                                                                   {"2147483647", "2147483647"},
                                                                   {"-2147483648", "-2147483648"},
                                                                   {"2147483648", "0"},
                                                                   {"verbose", "0"},
                                                                   {"7up", "7"},
                                                                   {"010", "8"},
                                                                   {"", "0"}};
    for (const auto& [stored, value] : rows) {
        mSet.setProperty("vendor.mlk.nt.dumplevel", stored);
        EXPECT_EQ(ask<OptionalInt32>(*start(), &IMlkFrameworkConfigs::getTvserviceDumpLevel), value)
                << '"' << stored << '"';
    }
}

TEST_F(GettersTest, ForceStrIsTrueExactlyForZero) {
    const std::vector<std::pair<const char*, const char*>> rows = {
            {"0", "true"},    {"1", "false"},  {"-1", "false"},
            {"2", "false"},   {"", "true"},    {"00", "true"},
            {"true", "true"}, {"abc", "true"}, {"99999999999", "true"},
            {"0x0", "true"}};
    for (const auto& [stored, value] : rows) {
        mSet.setProperty("persist.vendor.mlk.forcestr", stored);
        EXPECT_EQ(ask<OptionalBool>(*start(), &IMlkFrameworkConfigs::getForceStrEnabled), value)
                << '"' << stored << '"';
    }
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
