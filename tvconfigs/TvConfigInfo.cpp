#define LOG_TAG "MlkTvConfigs"

#include "tvconfigs/TvConfigInfo.h"

#include <log/log.h>

#include <string>

#include "tvconfigs/TvConfigItems.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

void TvConfigInfo::Dump() const {
    std::string text = "MlkTvConfigs:";
    const auto add = [&](const char* name, const std::string& value) {
        text += "\n\t";
        text += name;
        text += ':' + value;
    };
    for (const TvSystemRow& row : kTvSystems) {
        add(row.name, std::to_string(this->*row.field));
    }
    for (const TvFlagRow& row : kTvFlags) {
        add(row.name, this->*row.field ? "true" : "false");
    }
    ALOGD("%s\n", text.c_str());
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
