#include "service/Services.h"

#include <android/log.h>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

using ::android::sp;

namespace {

constexpr const char* kTag = "vendor.morlak.mlconfigs@1.0-service";

template <typename Interface>
void registerOrAbort(const sp<Interface>& service, const char* name) {
    const ::android::status_t status = service->registerAsService("default");
    if (status != ::android::OK) {
        __android_log_assert("status != OK", kTag, "Could not register %s", name);
    }
}

OptionalString tvConfigOf(IMlkProjectConfigs& project) {
    OptionalString tvConfig{false, ""};
    // Whether the call went through makes no difference: without an answer the path is empty.
    static_cast<void>(project.getConfig({"[LiveTV]", "TvConfig"},
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
