#pragma once

#include <gtest/gtest.h>
#include <hidl/HidlSupport.h>
#include <hidl/ServiceManagement.h>
#include <vendor/morlak/mlkconfigs/1.0/IMlkFrameworkConfigs.h>
#include <vendor/morlak/mlkconfigs/1.0/IMlkProjectConfigs.h>
#include <vendor/morlak/mlkconfigs/1.0/IMlkTvConfigs.h>

#include <cctype>
#include <string>

#include "tests/vts/Ask.h"
#include "tests/vts/Options.h"
#include "tests/vts/PlainSet.h"

namespace vendor::morlak::mlkconfigs::V1_0::vts {

/** A test of one registered instance of an interface against its set. */
template <typename Interface>
class HalTest : public ::testing::TestWithParam<std::string> {
  protected:
    void SetUp() override {
        service = Interface::getService(GetParam());
        ASSERT_NE(service, nullptr)
                << Interface::descriptor << "/" << GetParam() << " cannot be had";
        ASSERT_TRUE(service->isRemote());
    }
    void TearDown() override {
        if (service != nullptr) {
            EXPECT_TRUE(service->ping().isOk()) << "the service did not outlive the test";
        }
    }

    ::android::sp<Interface> service;
    PlainSet set;
};

/** The same for a test that changes the set: skipped without the option for writes. */
template <typename Interface>
class HalWriteTest : public HalTest<Interface> {
  protected:
    void SetUp() override {
        if (!options().writes) {
            GTEST_SKIP() << "changes the set: only with --writes";
        }
        HalTest<Interface>::SetUp();
    }
};

/** A name for a test, of letters and digits only. */
inline std::string instanceName(const ::testing::TestParamInfo<std::string>& info) {
    std::string name = info.param;
    for (char& c : name) {
        c = isalnum(static_cast<unsigned char>(c)) != 0 ? c : '_';
    }
    return std::to_string(info.index) + "_" + name;
}

/** Runs the suite's tests on every instance that this set has of the interface. */
#define MLK_ON_EVERY_INSTANCE(Suite, Interface)                                               \
    INSTANTIATE_TEST_SUITE_P(PerInstance, Suite,                                              \
                             ::testing::ValuesIn(::android::hardware::getAllHalInstanceNames( \
                                     Interface::descriptor)),                                 \
                             instanceName)

}  // namespace vendor::morlak::mlkconfigs::V1_0::vts
