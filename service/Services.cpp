#define LOG_TAG "vendor.morlak.mlconfigs@1.0-service"

#include "service/Services.h"

#include <log/log.h>

#include "projectconfigs/KnownItems.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

using ::android::sp;

namespace {

template <typename Interface>
void registerOrAbort(const sp<Interface>& service, const char* name) {
    const ::android::status_t status = service->registerAsService("default");
    if (status != ::android::OK) {
        __android_log_assert("status != OK", LOG_TAG, "Could not register %s", name);
    }
}

OptionalString tvConfigOf(IMlkProjectConfigs& project) {
    OptionalString tvConfig{false, ""};
    // A failed call needs no handling: without an answer the path is empty.
    static_cast<void>(project.getConfig({kTvConfigItem.category.data(), kTvConfigItem.key.data()},
                                        [&](const OptionalString& answer) { tvConfig = answer; })
                              .isOk());
    return tvConfig;
}

}  // namespace

Services::Services(const ServiceMakers& makers) {
    mProjectConfigs = makers.project();
    registerOrAbort(mProjectConfigs, "IMlkProjectConfigs");
    const OptionalString tvConfig = tvConfigOf(*mProjectConfigs);
    mTvConfigs = makers.tv(tvConfig.value.c_str());
    registerOrAbort(mTvConfigs, "IMlkTvConfigs");
    mFrameworkConfigs = makers.framework();
    registerOrAbort(mFrameworkConfigs, "IMlkFrameworkConfigs");
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
