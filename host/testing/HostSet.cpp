#include "host/testing/HostSet.h"

#include <filesystem>
#include <stdexcept>

#include "host/properties/PropertyStore.h"

namespace mlk::testing {

namespace fs = std::filesystem;

HostSet::HostSet() : mRoot("MLK_ROOT", mDir.path()), mRuntime("MLK_RUNTIME_DIR", mDir.path("run")) {
    for (const char* folder : {"tvconfigs", "tvdata", "impdata", "data/property", "run"}) {
        mDir.mkdir(folder);
    }
    fs::permissions(runtime(), fs::perms::owner_all);
}

HostSet::~HostSet() = default;

void HostSet::setProperty(const std::string& key, const std::string& value) {
    if (!mlk::host::PropertyStore(mDir.path("data/property")).set(key, value)) {
        throw std::runtime_error("cannot set " + key);
    }
}

void HostSet::copyFrom(const std::string& partitionsRoot) {
    fs::copy(partitionsRoot, mDir.path(),
             fs::copy_options::recursive | fs::copy_options::overwrite_existing);
}

}  // namespace mlk::testing
