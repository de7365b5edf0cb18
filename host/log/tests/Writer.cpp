// Logs as its command line says, for tests that look at a whole process:
//   Writer PRIORITY TAG TEXT     one message, then "logged" on standard output
//   Writer assert TAG TEXT       a failed assertion
//   Writer threads COUNT LINES   COUNT threads that each log LINES messages of three lines
#include <android/log.h>
#include <signal.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "host/log/LogClient.h"
#include "host/testing/Threads.h"

namespace {

using ::mlk::testing::inThreads;

void logFromThreads(int count, int lines) {
    inThreads(count, [&](int thread) {
        // Longer than one atomic write to a pipe.
        const std::string filler(3000, static_cast<char>('a' + thread));
        for (int line = 0; line < lines; ++line) {
            const std::string text =
                    std::to_string(line).append("\n").append(filler).append("\n").append(filler);
            __android_log_write(ANDROID_LOG_INFO, "threads", text.c_str());
        }
    });
}

// Logs lines of a hundred characters for a client, then one without a client.
void logForClient(int process, int lines) {
    {
        const mlk::host::LogClient client(process);
        for (int line = 0; line < lines; ++line) {
            __android_log_write(ANDROID_LOG_INFO, "client", std::string(100, 'x').c_str());
        }
    }
    __android_log_write(ANDROID_LOG_INFO, "own", "the last line");
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 4) {
        return 2;
    }
    const std::string_view command = argv[1];
    if (command == "assert") {
        __android_log_assert("never", argv[2], "%s", argv[3]);
    }
    if (command == "threads") {
        logFromThreads(std::atoi(argv[2]), std::atoi(argv[3]));
        return 0;
    }
    if (command == "client") {
        logForClient(std::atoi(argv[2]), std::atoi(argv[3]));
        return 0;
    }
    const int result = __android_log_write(std::atoi(argv[1]), argv[2], argv[3]);
    sigset_t pending;
    sigpending(&pending);
    std::printf("logged %d %d\n", result > 0, sigismember(&pending, SIGPIPE));
    return 0;
}
