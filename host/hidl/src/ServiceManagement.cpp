#include <dirent.h>
#include <hidl/HidlTransportSupport.h>
#include <hidl/ServiceManagement.h>
#include <hwbinder/ProcessState.h>
#include <log/log.h>
#include <sys/resource.h>

#include <android/hidl/base/1.0/BpHwBase.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "Listener.h"
#include "RemoteBinder.h"
#include "RuntimeFolder.h"
#include "ThreadPool.h"

#undef LOG_TAG
#define LOG_TAG "hidl"

namespace android::hardware {

using ::android::hidl::base::V1_0::BpHwBase;
using ::android::hidl::base::V1_0::IBase;
using ::android::hidl::manager::V1_0::IServiceManager;
using ::android::hidl::manager::V1_0::IServiceNotification;

namespace {

// The total time for the hellos of all services, and the time for each one after that.
constexpr std::chrono::milliseconds kListLimit{300};
constexpr std::chrono::milliseconds kListLeast{1};

std::set<std::string> filesOf(const std::string& folder) {
    std::set<std::string> files;
    const std::unique_ptr<DIR, int (*)(DIR*)> directory(opendir(folder.c_str()), &closedir);
    if (directory == nullptr) {
        return files;
    }
    while (const dirent* entry = readdir(directory.get())) {
        files.insert(entry->d_name);
    }
    return files;
}

// A manager without a process of its own: the names are files.
class HostServiceManager : public IServiceManager {
  public:
    Return<void> list(list_cb callback) override {
        if (callback == nullptr) {
            return Status::fromExceptionCode(Status::EX_ILLEGAL_ARGUMENT,
                                             "Null synchronous callback passed.");
        }
        const transport::RuntimeFolder folder = transport::findRuntimeFolder();
        std::vector<hidl_string> names;
        const auto end = std::chrono::steady_clock::now() + kListLimit;
        for (const std::string& file : filesOf(folder.path)) {
            std::string descriptor;
            std::string instance;
            const auto rest = std::chrono::ceil<std::chrono::milliseconds>(
                    end - std::chrono::steady_clock::now());
            if (transport::splitSocketName(file, &descriptor, &instance) &&
                transport::isServed(folder, file, std::max(rest, kListLeast))) {
                names.emplace_back(descriptor.append("/").append(instance));
            }
        }
        callback(names);
        return Void();
    }

    Return<bool> registerForNotifications(const hidl_string&, const hidl_string&,
                                          const sp<IServiceNotification>&) override {
        return false;
    }
};

// Every connection needs a descriptor, and the usual soft limit is about a thousand.
void raiseDescriptorLimit() {
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) != 0 || limit.rlim_cur == limit.rlim_max) {
        return;
    }
    limit.rlim_cur = limit.rlim_max;
    (void)setrlimit(RLIMIT_NOFILE, &limit);
}

}  // namespace

sp<IServiceManager> defaultServiceManager() {
    static const auto* manager = new sp<IServiceManager>(new HostServiceManager);
    return *manager;
}

std::vector<std::string> getAllHalInstanceNames(const std::string& descriptor) {
    std::vector<std::string> instances;
    const std::string start = descriptor + "/";
    const auto listed = defaultServiceManager()->list([&](const auto& names) {
        for (const auto& listedName : names) {
            const std::string name = listedName;
            if (name.compare(0, start.size(), start) == 0) {
                instances.push_back(name.substr(start.size()));
            }
        }
    });
    if (!listed.isOk()) {
        instances.clear();
    }
    return instances;
}

namespace details {

status_t registerAsServiceInternal(const sp<IBase>& service, const std::string& instance) {
    std::string descriptor;
    const auto asked = service->interfaceDescriptor(
            [&](const hidl_string& name) { descriptor = std::string(name); });
    const std::string name = transport::socketName(descriptor, instance);
    const sp<IBinder> stub = getOrCreateCachedBinder(service.get());
    if (!asked.isOk() || stub == nullptr || stub->localBinder() == nullptr || name.empty()) {
        ALOGE("%s/%s cannot be registered: there is no such name or no stub for it",
              descriptor.c_str(), instance.c_str());
        return BAD_VALUE;
    }
    raiseDescriptorLimit();
    const transport::RuntimeFolder folder = transport::makeRuntimeFolder();
    if (!folder.descriptor.ok()) {
        return PERMISSION_DENIED;
    }
    transport::unique_fd socket;
    const status_t status = transport::listenOn(folder, name, &socket);
    if (status != OK) {
        ALOGE("%s/%s: cannot listen: %s", folder.path.c_str(), name.c_str(), strerror(-status));
        return status;
    }
    auto& pool = transport::ThreadPool::instance();
    auto listener = std::make_shared<transport::Listener>(
            std::move(socket), folder.path + "/" + name, stub->localBinder());
    if (pool.add(std::move(listener), true) == 0) {
        return NO_MEMORY;
    }
    ProcessState::self()->startThreadPool();
    return OK;
}

sp<IBase> getRawServiceInternal(const std::string& descriptor, const std::string& instance,
                                bool /* retry */, bool getStub) {
    const std::string name = transport::socketName(descriptor, instance);
    if (getStub || name.empty()) {
        return nullptr;
    }
    const sp<transport::RemoteBinder> remote = transport::RemoteBinder::connect(name);
    if (remote == nullptr) {
        return nullptr;
    }
    return new BpHwBase(remote);
}

}  // namespace details
}  // namespace android::hardware
