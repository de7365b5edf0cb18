#pragma once

#include <cstdlib>
#include <string>

namespace mlk::host {

/** What names the folder of the services' sockets. */
enum class RuntimeOrigin {
    OWN,     /**< MLK_RUNTIME_DIR */
    SESSION, /**< XDG_RUNTIME_DIR, whose subfolder it is */
    DEFAULT, /**< neither of them is set: only root may create it */
};

/** The folder of the services' sockets, which may not exist. */
struct RuntimePath {
    std::string path; /**< without slashes at its end */
    RuntimeOrigin origin = RuntimeOrigin::DEFAULT;
};

/** The folder that this process's environment names. An empty variable counts as one not set. */
inline RuntimePath runtimePath() {
    const auto valueOf = [](const char* variable) {
        const char* const value = getenv(variable);
        return value == nullptr ? std::string() : std::string(value);
    };
    std::string path = valueOf("MLK_RUNTIME_DIR");
    if (!path.empty()) {
        // With a slash at its end the folder would be its own parent.
        while (path.size() > 1 && path.back() == '/') {
            path.pop_back();
        }
        return {path, RuntimeOrigin::OWN};
    }
    const std::string session = valueOf("XDG_RUNTIME_DIR");
    return session.empty() ? RuntimePath{"/run/mlkconfigs", RuntimeOrigin::DEFAULT}
                           : RuntimePath{session + "/mlkconfigs", RuntimeOrigin::SESSION};
}

}  // namespace mlk::host
