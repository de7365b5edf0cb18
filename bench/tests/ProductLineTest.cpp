#include "bench/ProductLine.h"

#include <android/log.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/testing/LogCapture.h"
#include "projectconfigs/MlkProjectConfigs.h"

namespace mlk::bench {

namespace {

using android::sp;
using vendor::morlak::mlkconfigs::V1_0::OptionalInt32;
using vendor::morlak::mlkconfigs::V1_0::OptionalString;
using vendor::morlak::mlkconfigs::V1_0::implementation::MlkProjectConfigs;

std::string panelName(MlkProjectConfigs& service) {
    std::string name;
    EXPECT_TRUE(service.getPanelName([&](const OptionalString& answer) { name = answer.value; })
                        .isOk());
    return name;
}

TEST(ProductLineTest, LastModelIsSelected) {
    testing::HostSet set;
    writeProductLine(set, {500, 20, 30});
    const sp<MlkProjectConfigs> service = new MlkProjectConfigs;
    int32_t project = 0;
    EXPECT_TRUE(service->getProjectId([&](const OptionalInt32& answer) { project = answer.value; })
                        .isOk());
    EXPECT_EQ(project, 20);
    EXPECT_EQ(panelName(*service), kPanelName);
}

// Every file that a start reads is there: a start on an incomplete set would be too cheap.
TEST(ProductLineTest, StartFindsAllItsFiles) {
    testing::HostSet set;
    writeProductLine(set, {500, 10, 200});
    const testing::LogCapture log;
    const sp<MlkProjectConfigs> service = new MlkProjectConfigs;
    for (const char* complaint : {"don't exist", "Can't get", "cannot be", "fail", "is empty"}) {
        EXPECT_THAT(log.texts(), ::testing::Each(::testing::Not(::testing::HasSubstr(complaint))));
    }
    EXPECT_THAT(log.texts(ANDROID_LOG_ERROR, "MlkProjectConfigs"), ::testing::IsEmpty());
}

}  // namespace

}  // namespace mlk::bench
