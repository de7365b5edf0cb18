#pragma once

#include <vendor/morlak/mlkconfigs/1.0/IMlkFrameworkConfigs.h>
#include <vendor/morlak/mlkconfigs/1.0/IMlkProjectConfigs.h>
#include <vendor/morlak/mlkconfigs/1.0/IMlkTvConfigs.h>

#include <functional>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/// How the three services are made; main gives the product's classes, tests give theirs.
struct ServiceMakers {
    std::function<::android::sp<IMlkProjectConfigs>()> project;
    /// Takes the path of the TV configuration file; empty when the project configuration names
    /// none.
    std::function<::android::sp<IMlkTvConfigs>(const char* tvConfigPath)> tv;
    std::function<::android::sp<IMlkFrameworkConfigs>()> framework;
};

/// The three services of the process, kept from their registration until the object goes. For the
/// main thread; the services themselves are called by the RPC pool's threads, each from the moment
/// that it is registered.
class Services {
  public:
    /// Makes and registers the project, the TV and the framework service, in that order, each
    /// registered as instance "default" before the next is made: a client that waits for the last
    /// one finds all. The TV service gets the path that the project service has for it then;
    /// whatever that is, even nothing, is its own to judge. Aborts the process, with a log line
    /// that names the interface, when a service cannot be registered: init starts the process anew.
    explicit Services(const ServiceMakers& makers);
    Services(const Services&) = delete;
    Services& operator=(const Services&) = delete;

  private:
    // In the order in which they are made, so that they are released in the opposite one.
    ::android::sp<IMlkProjectConfigs> mProjectConfigs;
    ::android::sp<IMlkTvConfigs> mTvConfigs;
    ::android::sp<IMlkFrameworkConfigs> mFrameworkConfigs;
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
