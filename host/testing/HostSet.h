#pragma once

#include <optional>
#include <string>

#include "host/testing/TempDir.h"

namespace mlk::testing {

/// A television set of its own for one test: a temporary folder with the partitions "tvconfigs",
/// "tvdata" and "impdata", the property store "data/property" and "run" for the services' sockets.
/// While it lives, MLK_ROOT and MLK_RUNTIME_DIR name it in this process's environment, which
/// programs started by the test inherit; they are put back when it goes. Environments are not safe
/// to change while other threads run: create it before them and let it go after them.
class HostSet {
  public:
    HostSet();
    ~HostSet();
    HostSet(const HostSet&) = delete;
    HostSet& operator=(const HostSet&) = delete;

    /// Mount points of the three partitions, full paths.
    std::string tvconfigs() const { return mDir.path("tvconfigs"); }
    std::string tvdata() const { return mDir.path("tvdata"); }
    std::string impdata() const { return mDir.path("impdata"); }

    /// Folder of the services' sockets, mode 0700, full path.
    std::string runtime() const { return mDir.path("run"); }

    /// The folder of the set: `dir().write("tvconfigs/customer.ini", "...")`.
    const TempDir& dir() const { return mDir; }

    /// Puts a property into the set's store; throws std::runtime_error when the store refuses it.
    void setProperty(const std::string& key, const std::string& value);

    /// Copies a folder that is laid out like the set's own (tvconfigs/, tvdata/, ...) over it; what
    /// the set already holds under the same names is replaced.
    void copyFrom(const std::string& partitionsRoot);

  private:
    /// Sets a variable for the life of the object.
    class Variable {
      public:
        Variable(const char* name, const std::string& value);
        ~Variable();
        Variable(const Variable&) = delete;
        Variable& operator=(const Variable&) = delete;

      private:
        const char* mName;
        std::optional<std::string> mFormer;
    };

    TempDir mDir;
    Variable mRoot;
    Variable mRuntime;
};

}  // namespace mlk::testing
