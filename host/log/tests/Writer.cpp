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
#include <thread>
#include <vector>

namespace {

void logFromThreads(int count, int lines) {
    std::vector<std::thread> threads;
    for (int thread = 0; thread < count; ++thread) {
        threads.emplace_back([thread, lines] {
            // Longer than a pipe takes in one piece.
            const std::string filler(3000, static_cast<char>('a' + thread));
            for (int line = 0; line < lines; ++line) {
                const std::string text = std::to_string(line) + "\n" + filler + "\n" + filler;
                __android_log_write(ANDROID_LOG_INFO, "threads", text.c_str());
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
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
    const int result = __android_log_write(std::atoi(argv[1]), argv[2], argv[3]);
    sigset_t pending;
    sigpending(&pending);
    std::printf("logged %d %d\n", result > 0, sigismember(&pending, SIGPIPE));
    return 0;
}
