#include "host/testing/Process.h"

#include <fcntl.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "host/testing/ProcessPump.h"

namespace mlk::testing {

using android::base::unique_fd;

namespace {

[[noreturn]] void fail(const std::string& what) {
    throw std::system_error(errno, std::generic_category(), what);
}

// Both ends of a pipe; only the intended program inherits its end.
struct PipeEnds {
    unique_fd read;
    unique_fd write;

    PipeEnds() {
        std::array<int, 2> fds{};
        if (pipe2(fds.data(), O_CLOEXEC) != 0) {
            fail("pipe");
        }
        read.reset(fds[0]);
        write.reset(fds[1]);
    }
};

std::string findProgram(const std::string& name) {
    if (name.find('/') != std::string::npos) {
        return name;
    }
    const char* variable = getenv("PATH");
    std::string_view folders = variable == nullptr ? "/usr/bin:/bin" : variable;
    while (!folders.empty()) {
        std::string file = std::string(folders.substr(0, folders.find(':'))) + "/" + name;
        if (access(file.c_str(), X_OK) == 0) {
            return file;
        }
        folders.remove_prefix(std::min(folders.size(), folders.find(':')));
        folders.remove_prefix(folders.empty() ? 0 : 1);
    }
    return name;
}

std::vector<std::string> environment(const std::map<std::string, std::string>& changes) {
    std::vector<std::string> result;
    for (char** variable = environ; *variable != nullptr; ++variable) {
        const std::string text = *variable;
        if (changes.count(text.substr(0, text.find('='))) == 0) {
            result.push_back(text);
        }
    }
    for (const auto& [name, value] : changes) {
        result.push_back(std::string(name).append("=").append(value));
    }
    return result;
}

std::vector<char*> pointers(std::vector<std::string>& texts) {
    std::vector<char*> result;
    result.reserve(texts.size() + 1);
    for (std::string& text : texts) {
        result.push_back(text.data());
    }
    result.push_back(nullptr);
    return result;
}

// Everything the child needs. The memory is allocated before the fork, because the child of a
// process with threads may call only async-signal-safe functions.
struct Child {
    const char* program;
    char** argv;
    char** env;
    const char* directory;
    pid_t parent;
    std::array<int, 3> streams;
    int error;
};

[[noreturn]] void runChild(const Child& child) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() == child.parent) {
        sigset_t none;
        sigemptyset(&none);
        sigprocmask(SIG_SETMASK, &none, nullptr);
        signal(SIGPIPE, SIG_DFL);
        bool ready = child.directory == nullptr || chdir(child.directory) == 0;
        for (int stream = 0; stream < 3; ++stream) {
            ready = ready && dup2(child.streams.at(static_cast<size_t>(stream)), stream) >= 0;
        }
        if (ready) {
            execve(child.program, child.argv, child.env);
        }
    }
    const int error = errno;
    [[maybe_unused]] const ssize_t told = write(child.error, &error, sizeof(error));
    _exit(127);
}

}  // namespace

Process::Process(std::vector<std::string> argv, Options options) {
    if (argv.empty()) {
        throw std::invalid_argument("a program needs a name");
    }
    const std::string program = findProgram(argv[0]);
    std::vector<std::string> env = environment(options.env);
    const std::vector<char*> argvPointers = pointers(argv);
    const std::vector<char*> envPointers = pointers(env);
    PipeEnds in;
    PipeEnds out;
    PipeEnds err;
    PipeEnds error;
    const Child child{program.c_str(),
                      const_cast<char**>(argvPointers.data()),
                      const_cast<char**>(envPointers.data()),
                      options.directory.empty() ? nullptr : options.directory.c_str(),
                      getpid(),
                      {in.read.get(), out.write.get(), err.write.get()},
                      error.write.get()};
    mPid = fork();
    if (mPid < 0) {
        fail("fork");
    }
    if (mPid == 0) {
        runChild(child);
    }
    for (unique_fd* fd : {&in.read, &out.write, &err.write, &error.write}) {
        fd->reset();
    }
    int reason = 0;
    if (TEMP_FAILURE_RETRY(read(error.read.get(), &reason, sizeof(reason))) == sizeof(reason)) {
        TEMP_FAILURE_RETRY(waitpid(mPid, nullptr, 0));
        errno = reason;
        fail(program);
    }
    mPump = std::make_unique<ProcessPump>(std::move(in.write), std::move(out.read),
                                          std::move(err.read), std::move(options.stdinText),
                                          options.keepInputOpen);
}

Process::~Process() {
    kill(SIGKILL);
    wait();
}

int Process::wait() {
    if (!mReaped) {
        int status = 0;
        TEMP_FAILURE_RETRY(waitpid(mPid, &status, 0));
        mReaped = true;
        mStatus = WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
        mPump->finish();
    }
    return mStatus;
}

bool Process::running() const {
    siginfo_t info{};
    return !mReaped &&
           waitid(P_PID, static_cast<id_t>(mPid), &info, WEXITED | WNOHANG | WNOWAIT) == 0 &&
           info.si_pid == 0;
}

std::string Process::out() const {
    return mPump->text(ProcessPump::OUT);
}

std::string Process::err() const {
    return mPump->text(ProcessPump::ERR);
}

bool Process::waitForErr(std::string_view text, std::chrono::seconds limit) const {
    return mPump->waitFor(ProcessPump::ERR, text, limit);
}

bool Process::waitForOut(std::string_view text, std::chrono::seconds limit) const {
    return mPump->waitFor(ProcessPump::OUT, text, limit);
}

void Process::send(std::string_view text) {
    mPump->send(text);
}

void Process::closeInput() {
    mPump->closeInput();
}

void Process::kill(int signal) {
    if (!mReaped) {
        ::kill(mPid, signal);
    }
}

namespace {

std::string folderOf(const char* variable) {
    const char* folder = getenv(variable);
    if (folder == nullptr) {
        throw std::runtime_error(std::string(variable) + " is not set");
    }
    return folder;
}

}  // namespace

std::string binDir() {
    return folderOf("MLK_BIN_DIR");
}

std::string sourceDir() {
    return folderOf("MLK_SOURCE_DIR");
}

}  // namespace mlk::testing
