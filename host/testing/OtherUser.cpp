#include "host/testing/OtherUser.h"

#include <grp.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace mlk::testing {

namespace {

constexpr uid_t kNobody = 65534;

bool becomeNobody() {
    return geteuid() != 0 ||
           (setgroups(0, nullptr) == 0 && setgid(kNobody) == 0 && setuid(kNobody) == 0);
}

}  // namespace

bool asOtherUser(const std::string& folder, const std::function<bool()>& function) {
    chmod(folder.c_str(), 0755);
    const pid_t child = fork();
    if (child < 0) {
        throw std::system_error(errno, std::generic_category(), "fork");
    }
    if (child == 0) {
        _exit(becomeNobody() && function() ? 0 : 1);
    }
    int status = 0;
    TEMP_FAILURE_RETRY(waitpid(child, &status, 0));
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

}  // namespace mlk::testing
