#pragma once

#include <vendor/morlak/mlkconfigs/1.0/IMlkFrameworkConfigs.h>
#include <vendor/morlak/mlkconfigs/1.0/IMlkProjectConfigs.h>
#include <vendor/morlak/mlkconfigs/1.0/IMlkTvConfigs.h>

#include <functional>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/** Makes the three services: main gives the product's classes, tests give their own. */
struct ServiceMakers {
    std::function<::android::sp<IMlkProjectConfigs>()> project;
    /**
     * Takes the path of the TV feature file; empty if the project configuration names no
     * file.
     */
    std::function<::android::sp<IMlkTvConfigs>(const char* tvConfigPath)> tv;
    std::function<::android::sp<IMlkFrameworkConfigs>()> framework;
};

/**
 * The three services of the process; they live as long as this object. Only the main thread uses
 * it. The threads of the RPC pool call each service from its registration on.
 */
class Services {
  public:
    /**
     * Makes and registers the project, the TV and the framework service, in that order. Each is
     * registered as instance "default" before the next is made, so that a client that waits for
     * the last one finds all of them. The TV service gets the path that the project service
     * answers; it may be empty or wrong. If a service cannot be registered, logs the interface and
     * aborts the process; init starts it again.
     */
    explicit Services(const ServiceMakers& makers);
    Services(const Services&) = delete;
    Services& operator=(const Services&) = delete;

  private:
    // In the order of their making, so that they are released in the opposite order.
    ::android::sp<IMlkProjectConfigs> mProjectConfigs;
    ::android::sp<IMlkTvConfigs> mTvConfigs;
    ::android::sp<IMlkFrameworkConfigs> mFrameworkConfigs;
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
