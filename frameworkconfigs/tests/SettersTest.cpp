#include <cutils/properties.h>
#include <gmock/gmock.h>
#include <signal.h>
#include <sys/resource.h>

#include "frameworkconfigs/MlkFrameworkConfigs.h"
#include "frameworkconfigs/testing/GetterRows.h"
#include "host/testing/HostSet.h"
#include "host/testing/Threads.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

using ::android::sp;
using ::mlk::testing::HostSet;
using ::mlk::testing::inThreads;

constexpr const char* kForceStr = "persist.vendor.mlk.forcestr";
constexpr const char* kWow = "persist.vendor.mlk.enable_wow";

/** While it lives, this process can write no byte to any file: a store that is full. */
class NoSpace {
  public:
    NoSpace() : mHandler(signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &mFormer);
        const rlimit none{0, mFormer.rlim_max};
        setrlimit(RLIMIT_FSIZE, &none);
    }
    ~NoSpace() {
        setrlimit(RLIMIT_FSIZE, &mFormer);
        signal(SIGXFSZ, mHandler);
    }
    NoSpace(const NoSpace&) = delete;
    NoSpace& operator=(const NoSpace&) = delete;

  private:
    rlimit mFormer{};
    sighandler_t mHandler;
};

class SettersTest : public ::testing::Test {
  protected:
    HostSet mSet;
    sp<IMlkFrameworkConfigs> mService = new MlkFrameworkConfigs;

    std::string stored(const std::string& key) const {
        return mSet.dir().read("data/property/" + key);
    }
    std::string getForceStr() const {
        return ask<OptionalBool>(*mService, &IMlkFrameworkConfigs::getForceStrEnabled);
    }
    std::string getWow() const {
        return ask<OptionalBool>(*mService, &IMlkFrameworkConfigs::getWowEnabled);
    }
};

TEST_F(SettersTest, ForceStrIsStoredInverted) {
    EXPECT_EQ(setForceStr(*mService, false), "false");
    EXPECT_EQ(stored(kForceStr), "1");
    EXPECT_EQ(getForceStr(), "false");
    EXPECT_EQ(setForceStr(*mService, true), "true");
    EXPECT_EQ(stored(kForceStr), "0");
    EXPECT_EQ(getForceStr(), "true");
}

TEST_F(SettersTest, WowIsStoredAsAWord) {
    EXPECT_EQ(setWow(*mService, true), "true");
    EXPECT_EQ(stored(kWow), "true");
    EXPECT_EQ(getWow(), "true");
    EXPECT_EQ(setWow(*mService, false), "false");
    EXPECT_EQ(stored(kWow), "false");
    EXPECT_EQ(getWow(), "false");
}

TEST_F(SettersTest, WhatWasSetSurvivesARestart) {
    setForceStr(*mService, false);
    setWow(*mService, true);
    mService = new MlkFrameworkConfigs;
    EXPECT_EQ(getForceStr(), "false");
    EXPECT_EQ(getWow(), "true");
}

TEST_F(SettersTest, LeaveTheOtherGettersAlone) {
    setForceStr(*mService, false);
    setWow(*mService, true);
    for (const GetterRow& row : getterRows()) {
        if (row.property != nullptr && row.property != std::string_view(kForceStr) &&
            row.property != std::string_view(kWow)) {
            EXPECT_EQ(row.get(*mService), row.defaultValue) << row.name;
        }
    }
}

TEST_F(SettersTest, AnswerWhatIsStoredWhenItCannotBeWritten) {
    mSet.setProperty(kForceStr, "1");
    mSet.setProperty(kWow, "true");
    const NoSpace noSpace;
    EXPECT_EQ(setForceStr(*mService, true), "false");
    EXPECT_EQ(getForceStr(), "false");
    EXPECT_EQ(setWow(*mService, false), "true");
    EXPECT_EQ(getWow(), "true");
}

TEST_F(SettersTest, WithoutAnythingStoredWowIsAsAskedAndForceStrTrue) {
    const NoSpace noSpace;
    EXPECT_EQ(setForceStr(*mService, false), "true");
    EXPECT_EQ(getForceStr(), "true");
    EXPECT_EQ(setWow(*mService, true), "true");
    EXPECT_EQ(getWow(), "true");
    EXPECT_EQ(setWow(*mService, false), "false");
    EXPECT_EQ(getWow(), "false");
}

TEST_F(SettersTest, MayCallTheServiceFromTheirAnswer) {
    std::string inner;
    mService->setWowEnabled(true, [&](const OptionalBool&) { inner = setWow(*mService, false); });
    EXPECT_EQ(inner, "false");
    EXPECT_EQ(getWow(), "false");
}

TEST_F(SettersTest, AgreeWithTheStoreAfterManyAtOnce) {
    inThreads(4, [&](int thread) {
        for (int count = 0; count < 100; ++count) {
            const bool enabled = (count + thread) % 2 == 0;
            // Nobody comes between a setter's write and its reading back.
            EXPECT_EQ(setForceStr(*mService, enabled), enabled ? "true" : "false");
            EXPECT_EQ(setWow(*mService, enabled), enabled ? "true" : "false");
            getForceStr();
            getWow();
        }
    });
    EXPECT_EQ(getForceStr(), stored(kForceStr) == "0" ? "true" : "false");
    EXPECT_EQ(getWow(), stored(kWow));
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
