// IMlkFrameworkConfigs against the properties of this set.

#include <cutils/properties.h>

#include "frameworkconfigs/testing/GetterRows.h"
#include "tests/vts/Hal.h"
#include "tests/vts/Restore.h"

namespace vendor::morlak::mlkconfigs::V1_0::vts {

namespace {

using I = IMlkFrameworkConfigs;

constexpr const char* kForceStrKey = "persist.vendor.mlk.forcestr";
constexpr const char* kWowKey = "persist.vendor.mlk.enable_wow";

// The value that a start gets from the row's property.
std::string expectedOf(const implementation::GetterRow& row) {
    const std::string withoutProperty = row.defaultValue;
    if (row.property == nullptr) {
        return withoutProperty;
    }
    if (withoutProperty == "0") {
        return std::to_string(property_get_int32(row.property, 0));
    }
    const bool value = withoutProperty == "true" ? property_get_int32(row.property, 0) == 0
                                                 : property_get_bool(row.property, 0) != 0;
    return value ? "true" : "false";
}

}  // namespace

class FrameworkAnswers : public HalTest<IMlkFrameworkConfigs> {};

TEST_P(FrameworkAnswers, AreThoseOfTheProperties) {
    Questions questions;
    for (const implementation::GetterRow& row : implementation::getterRows()) {
        questions.push_back({row.name,
                             [&] {
                                 noteCall(I::descriptor, row.name);
                                 return row.get(*service);
                             },
                             expectedOf(row)});
    }
    ASSERT_EQ(questions.size(), 23U);
    check(questions);
}

MLK_ON_EVERY_INSTANCE(FrameworkAnswers, IMlkFrameworkConfigs);

class FrameworkWrites : public HalWriteTest<IMlkFrameworkConfigs> {
  protected:
    void SetUp() override {
        HalWriteTest<IMlkFrameworkConfigs>::SetUp();
        if (service != nullptr && !IsSkipped()) {
            mForceStr = forceStr();
            mWow = wow();
        }
    }
    void TearDown() override {
        if (service != nullptr) {
            EXPECT_EQ(setForceStr(mForceStr == "true"), mForceStr) << "setForceStrEnabled";
            EXPECT_EQ(setWow(mWow == "true"), mWow) << "setWowEnabled";
        }
        HalWriteTest<IMlkFrameworkConfigs>::TearDown();
    }

    std::string forceStr() { return ask(*service, MLK_METHOD(I, getForceStrEnabled)); }
    std::string wow() { return ask(*service, MLK_METHOD(I, getWowEnabled)); }
    std::string setForceStr(bool enabled) {
        return ask(*service, MLK_METHOD(I, setForceStrEnabled), enabled);
    }
    std::string setWow(bool enabled) {
        return ask(*service, MLK_METHOD(I, setWowEnabled), enabled);
    }

  private:
    std::string mForceStr;
    std::string mWow;
    const PropertyGuard mProperties{{kForceStrKey, kWowKey}};
};

TEST_P(FrameworkWrites, AreStoredAndAnswered) {
    for (const bool enabled : {true, false, true}) {
        const std::string text = enabled ? "true" : "false";
        EXPECT_EQ(setForceStr(enabled), text) << "setForceStrEnabled";
        EXPECT_EQ(forceStr(), text) << "getForceStrEnabled after setForceStrEnabled";
        EXPECT_EQ(propertyOf(kForceStrKey), enabled ? "0" : "1") << "setForceStrEnabled";
        EXPECT_EQ(setWow(enabled), text) << "setWowEnabled";
        EXPECT_EQ(wow(), text) << "getWowEnabled after setWowEnabled";
        EXPECT_EQ(propertyOf(kWowKey), text) << "setWowEnabled";
    }
}

MLK_ON_EVERY_INSTANCE(FrameworkWrites, IMlkFrameworkConfigs);

}  // namespace vendor::morlak::mlkconfigs::V1_0::vts
