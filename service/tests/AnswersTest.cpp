// The answers of the real process to its clients.

#include <gmock/gmock.h>
#include <signal.h>

#include <future>
#include <string>

#include "frameworkconfigs/testing/GetterRows.h"
#include "host/testing/Ask.h"
#include "host/testing/HostSet.h"
#include "service/tests/InterfaceMethods.h"
#include "service/tests/ServiceProcess.h"

namespace vendor::morlak::mlkconfigs::V1_0 {
namespace {

using ::android::sp;
using ::android::wp;
using ::android::hardware::hidl_death_recipient;
using ::mlk::testing::ask;
using ::mlk::testing::HostSet;
namespace framework = implementation;

class AnswersTest : public ::testing::Test {
  protected:
    HostSet mSet;
    ServiceProcess mService = start(mSet);

    static ServiceProcess start(const HostSet& set) {
        writeProject(set);
        return {};
    }

    void SetUp() override {
        ASSERT_TRUE(mService.waitUntilRegistered()) << mService.process().err();
    }
    void restart() {
        mService.restart();
        ASSERT_TRUE(mService.waitUntilRegistered()) << mService.process().err();
    }
};

OptionalString getConfig(IMlkProjectConfigs& service, const ProjectConfigKey& key) {
    return ask(service, &IMlkProjectConfigs::getConfig, key)
            .value_or(OptionalString{false, "no answer"});
}

TEST_F(AnswersTest, ComeFromTheProjectsFiles) {
    const auto service = IMlkProjectConfigs::getService();
    EXPECT_EQ(getConfig(*service, {"[LiveTV]", "TvConfig"}),
              (OptionalString{true, mSet.tvconfigs() + "/one/tv.config"}));
    EXPECT_EQ(getConfig(*service, {"LiveTV", "TvConfig"}), (OptionalString{true, ""}));
    EXPECT_EQ(ask(*service, &IMlkProjectConfigs::getPanelName),
              (OptionalString{true, "PANEL_ONE"}));
}

TEST_F(AnswersTest, ASelectorOutOfRangeFailsThatCallOnly) {
    const auto service = IMlkProjectConfigs::getService();
    bool answered = false;
    const auto status = service->getEQPath(2, [&](const OptionalString&) { answered = true; });
    EXPECT_FALSE(status.isOk());
    EXPECT_FALSE(status.isDeadObject());
    EXPECT_FALSE(answered);
    EXPECT_TRUE(service->ping().isOk());
    EXPECT_TRUE(mService.process().running());
}

template <typename Interface>
void expectOneAnswerEach() {
    const auto service = Interface::getService();
    for (const auto& row : methodRows<Interface>()) {
        int answers = 0;
        EXPECT_TRUE(row.call(*service, &answers)) << row.name;
        EXPECT_EQ(answers, 1) << row.name;
    }
}

TEST_F(AnswersTest, ComeOnceFromEveryMethodOfTheTvAndTheFrameworkService) {
    expectOneAnswerEach<IMlkTvConfigs>();
    expectOneAnswerEach<IMlkFrameworkConfigs>();
    EXPECT_TRUE(mService.process().running());
}

TEST_F(AnswersTest, OfTheFrameworkServiceAreTheDefaultsWithoutProperties) {
    const auto service = IMlkFrameworkConfigs::getService();
    for (const auto& row : framework::getterRows()) {
        EXPECT_EQ(row.get(*service), row.defaultValue) << row.name;
    }
}

TEST_F(AnswersTest, OfTheFrameworkServiceChangeWithAPropertyOnlyAfterARestart) {
    auto service = IMlkFrameworkConfigs::getService();
    for (const auto& row : framework::getterRows()) {
        if (row.property != nullptr) {
            mSet.setProperty(row.property, row.stored);
        }
        EXPECT_EQ(row.get(*service), row.defaultValue) << row.name;
    }
    restart();
    service = IMlkFrameworkConfigs::getService();
    for (const auto& row : framework::getterRows()) {
        EXPECT_EQ(row.get(*service), row.value) << row.name;
    }
}

TEST_F(AnswersTest, OfTheFrameworkServicesSettersAreStored) {
    auto service = IMlkFrameworkConfigs::getService();
    EXPECT_EQ(framework::setForceStr(*service, false), "false");
    EXPECT_EQ(mSet.dir().read("data/property/persist.vendor.mlk.forcestr"), "1");
    EXPECT_EQ(framework::setWow(*service, true), "true");
    EXPECT_EQ(mSet.dir().read("data/property/persist.vendor.mlk.enable_wow"), "true");
    restart();
    service = IMlkFrameworkConfigs::getService();
    EXPECT_EQ(framework::ask<OptionalBool>(*service, &IMlkFrameworkConfigs::getForceStrEnabled),
              "false");
    EXPECT_EQ(framework::ask<OptionalBool>(*service, &IMlkFrameworkConfigs::getWowEnabled), "true");
}

class Mourner : public hidl_death_recipient {
  public:
    void serviceDied(uint64_t cookie,
                     const wp<::android::hidl::base::V1_0::IBase>& /* who */) override {
        mCookie.set_value(cookie);
    }
    std::promise<uint64_t> mCookie;
};

TEST_F(AnswersTest, EndWithTheProcessAndClientsHearOfIt) {
    const auto service = IMlkTvConfigs::getService();
    const sp<Mourner> mourner = new Mourner;
    ASSERT_TRUE(service->linkToDeath(mourner, 17));
    mService.process().kill(SIGKILL);
    auto cookie = mourner->mCookie.get_future();
    ASSERT_EQ(cookie.wait_for(std::chrono::seconds(30)), std::future_status::ready);
    EXPECT_EQ(cookie.get(), 17U);
    EXPECT_TRUE(service->ping().isDeadObject());
    EXPECT_EQ(IMlkTvConfigs::tryGetService(), nullptr);
    restart();
    EXPECT_TRUE(IMlkTvConfigs::getService()->ping().isOk());
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0
