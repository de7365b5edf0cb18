#pragma once

#include <string>

#include "host/testing/EnvironmentVariable.h"
#include "host/testing/TempDir.h"

namespace mlk::testing {

/**
 * A separate television set for one test: a temporary folder with the partitions "tvconfigs",
 * "tvdata" and "impdata", the property store "data/property", and "run" for the services' sockets.
 * While the object lives, the EnvironmentVariables MLK_ROOT and MLK_RUNTIME_DIR name it, which
 * are not thread-safe: create the object before any threads and destroy it after them.
 */
class HostSet {
  public:
    HostSet();
    ~HostSet();
    HostSet(const HostSet&) = delete;
    HostSet& operator=(const HostSet&) = delete;

    /** Mount points of the three partitions, full paths. */
    std::string tvconfigs() const { return mDir.path("tvconfigs"); }
    std::string tvdata() const { return mDir.path("tvdata"); }
    std::string impdata() const { return mDir.path("impdata"); }

    /** Folder of the services' sockets, mode 0700, full path. */
    std::string runtime() const { return mDir.path("run"); }

    /** The folder of the set: `dir().write("tvconfigs/customer.ini", "...")`. */
    const TempDir& dir() const { return mDir; }

    /** Sets a property in the set's store; throws std::runtime_error when the store refuses it. */
    void setProperty(const std::string& key, const std::string& value);

    /**
     * Copies a folder with the layout of the set (tvconfigs/, tvdata/, ...) into the set, replacing
     * files of the same names.
     */
    void copyFrom(const std::string& partitionsRoot);

  private:
    TempDir mDir;
    EnvironmentVariable mRoot;
    EnvironmentVariable mRuntime;
};

}  // namespace mlk::testing
