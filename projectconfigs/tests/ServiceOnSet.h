#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include "host/testing/Ask.h"
#include "host/testing/HostSet.h"
#include "host/testing/LogCapture.h"
#include "projectconfigs/MlkProjectConfigs.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

using ::mlk::testing::ask;

/** A text without a pointer. No client can send it. */
inline ::android::hardware::hidl_string absentText() {
    ::android::hardware::hidl_string text;
    const char* const null = nullptr;
    std::memcpy(reinterpret_cast<char*>(&text) + ::android::hardware::hidl_string::kOffsetOfBuffer,
                &null, sizeof null);
    return text;
}

/** A set with two models, and a service on it with its log and its answers. */
class ServiceOnSet : public ::testing::Test {
  protected:
    ServiceOnSet() {
        write("tvconfigs/customer.ini", "CUSTOMER_ID=42\nSYS_INI=/tvconfigs/sys.ini\n");
        write("tvconfigs/sys.ini",
              "Model_1=/tvconfigs/model/A.ini\nModel_2=\"/tvconfigs/model/B.ini\"\n");
        write("tvconfigs/model/A.ini", "[PANEL]\nm_pPanelName=panel A\n");
        write("tvconfigs/model/B.ini", "[PANEL]\nm_pPanelName=panel B\n");
        write("tvconfigs/board.ini", "[BOARD]\nname=board\n");
        write("impdata/project_id.bin", "PROJECT_ID=1\n");
        write("impdata/board_id.bin", "BOARD_ID=/tvconfigs/board.ini\n");
    }
    void write(const std::string& name, const std::string& text) const {
        mSet.dir().write(name, text);
    }
    /** Writes the first model's file. */
    void project(const std::string& text) const { write("tvconfigs/model/A.ini", text); }
    MlkProjectConfigs& start() {
        mService = new MlkProjectConfigs;
        return *mService;
    }
    template <typename Method, typename... Arguments>
    auto asked(Method method, const Arguments&... arguments) {
        return ask(*mService, method, arguments...);
    }
    /** The value of an answer with success true; else "no answer" or "no success". */
    static std::string text(const std::optional<OptionalString>& answer) {
        return !answer ? "no answer" : !answer->success ? "no success" : answer->value.c_str();
    }
    static std::string number(const std::optional<OptionalInt32>& answer) {
        return !answer            ? "no answer"
               : !answer->success ? "no success"
                                  : std::to_string(answer->value);
    }
    static std::string flag(const std::optional<OptionalBool>& answer) {
        return !answer            ? "no answer"
               : !answer->success ? "no success"
               : answer->value    ? "true"
                                  : "false";
    }
    std::string panel() { return text(asked(&IMlkProjectConfigs::getPanelName)); }
    std::string boardName() {
        return text(asked(&IMlkProjectConfigs::getConfig, ProjectConfigKey{"[BOARD]", "name"}));
    }
    std::vector<std::string> logged(int priority) const {
        return mLog.texts(priority, "MlkProjectConfigs");
    }

    mlk::testing::HostSet mSet;
    mlk::testing::LogCapture mLog;
    ::android::sp<MlkProjectConfigs> mService;
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
