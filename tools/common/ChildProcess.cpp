#include "tools/common/ChildProcess.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>

namespace mlk {

namespace {

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (std::string& text : texts) {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

}  // namespace

ChildProcess::ChildProcess(ChildStart start) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) {
        mError = errno;
        return;
    }
    posix_spawn_file_actions_t actions;
    mError = posix_spawn_file_actions_init(&actions);
    if (mError == 0) {
        posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, start.input.c_str(), O_RDONLY, 0);
        posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
        if (!start.errors.empty()) {
            posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, start.errors.c_str(),
                                             O_WRONLY | O_CREAT | O_TRUNC, 0600);
        }
        mError = posix_spawnp(&mPid, start.words[0].c_str(), &actions, nullptr,
                              pointersTo(start.words).data(),
                              start.environment ? pointersTo(*start.environment).data() : environ);
        posix_spawn_file_actions_destroy(&actions);
    }
    close(ends[1]);
    if (mError == 0) {
        mOutput = ends[0];
    } else {
        mPid = -1;
        close(ends[0]);
    }
}

ChildProcess::~ChildProcess() {
    if (mPid > 0) {
        kill(mPid, SIGKILL);
        (void)wait();
    }
    if (mOutput >= 0) {
        close(mOutput);
    }
}

std::optional<int> ChildProcess::wait() {
    int status = 0;
    pid_t ended = -1;
    do {
        ended = waitpid(mPid, &status, 0);
    } while (ended < 0 && errno == EINTR);
    mPid = -1;
    return ended > 0 && WIFEXITED(status) ? std::optional(WEXITSTATUS(status)) : std::nullopt;
}

}  // namespace mlk
