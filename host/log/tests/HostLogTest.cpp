#include "host/log/HostLog.h"

#include <android-base/unique_fd.h>
#include <android/log.h>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <ctime>
#include <sstream>
#include <thread>

#include "host/log/ClientLimits.h"
#include "host/log/LogFormat.h"
#include "host/testing/LogCapture.h"
#include "host/testing/Process.h"
#include "host/testing/TempDir.h"

namespace mlk::host {
namespace {

using ::android::base::unique_fd;
using ::mlk::testing::LogCapture;
using ::mlk::testing::Process;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

// The standard error of a writer with these filter rules.
struct Written {
    int status;
    std::string prefix;  // of an info line with the tag "tag"
    std::string err;
};

Written runWriter(const std::string& rules, const std::vector<std::string>& arguments) {
    std::vector<std::string> argv{WRITER_PROGRAM};
    argv.insert(argv.end(), arguments.begin(), arguments.end());
    Process writer(argv, {{{"ANDROID_LOG_TAGS", rules}}});
    std::string prefix = formatBrief(ANDROID_LOG_INFO, "tag", writer.pid(), "");
    prefix.pop_back();
    const int status = writer.wait();
    return {status, prefix, writer.err()};
}

const std::string kInfo = std::to_string(ANDROID_LOG_INFO);
const std::string kDebug = std::to_string(ANDROID_LOG_DEBUG);

TEST(HostLog, GoesToStandardErrorWithoutBeingAskedFor) {
    const Written written = runWriter("", {kInfo, "tag", "hello\nworld\n"});
    EXPECT_EQ(written.status, 0);
    EXPECT_EQ(written.err, written.prefix + "hello\n" + written.prefix + "world\n");
}

TEST(HostLog, IsFiltered) {
    EXPECT_THAT(runWriter("", {kDebug, "tag", "hello"}).err, IsEmpty());
    EXPECT_THAT(runWriter("*:E", {kInfo, "tag", "hello"}).err, IsEmpty());
    EXPECT_THAT(runWriter("*:S", {"7", "tag", "hello"}).err, IsEmpty());
    EXPECT_THAT(runWriter("tag:D *:S", {kDebug, "tag", "hello"}).err, HasSubstr("hello"));
    // Another tag's rule lets debug lines into the logger; this tag's own rule still counts.
    EXPECT_THAT(runWriter("other:V tag:I", {kDebug, "tag", "hello"}).err, IsEmpty());
}

TEST(HostLog, ComplainsOnceAboutRulesThatAreNone) {
    const Written written = runWriter("tag:X tag:D :", {kInfo, "tag", "hello"});
    EXPECT_THAT(written.err,
                HasSubstr("): ANDROID_LOG_TAGS: ignored, not of the form TAG[:VDIWEFS]: \"tag:X\" "
                          "\":\"\n"));
    EXPECT_THAT(written.err, StartsWith("W/log     ("));
    EXPECT_EQ(std::count(written.err.begin(), written.err.end(), '\n'), 2);
    EXPECT_THAT(written.err, EndsWith(written.prefix + "hello\n"));
}

TEST(HostLog, AFailedAssertionIsShownAndAborts) {
    const Written written = runWriter("", {"assert", "tag", "it broke"});
    EXPECT_EQ(written.status, 128 + SIGABRT);
    std::string fatal = written.prefix;
    fatal[0] = 'F';
    EXPECT_THAT(written.err, HasSubstr(fatal + "it broke\n"));
}

TEST(HostLog, MessagesOfThreadsDoNotMix) {
    const int threads = 8;
    const int lines = 50;
    const Written written =
            runWriter("", {"threads", std::to_string(threads), std::to_string(lines)});
    std::istringstream in(written.err);
    std::string number;
    std::string first;
    std::string second;
    int messages = 0;
    while (std::getline(in, number) && std::getline(in, first) && std::getline(in, second)) {
        ++messages;
        const std::string text = first.substr(first.find("): ") + 3);
        ASSERT_EQ(text, std::string(3000, text[0]));
        ASSERT_EQ(first, second);
    }
    EXPECT_EQ(messages, threads * lines);
}

TEST(HostLog, ABrokenStandardErrorHarmsNobody) {
    Process closed({"/bin/sh", "-c", "exec \"$0\" 4 tag hello 2>&-", WRITER_PROGRAM});
    EXPECT_EQ(closed.wait(), 0);
    EXPECT_EQ(closed.out(), "logged 1 0\n");

    // A pipe whose reader is gone: the signal of the failed write neither kills the process nor
    // stays pending.
    Process broken({"/bin/bash", "-c", "exec 4> >(true); wait $!; \"$0\" 4 tag hello 2>&4; echo $?",
                    WRITER_PROGRAM});
    EXPECT_EQ(broken.wait(), 0);
    EXPECT_EQ(broken.out(), "logged 1 0\n0\n");

    Process full({"/bin/sh", "-c", "exec \"$0\" 4 tag hello 2>/dev/full", WRITER_PROGRAM});
    EXPECT_EQ(full.wait(), 0);
    EXPECT_EQ(full.out(), "logged 1 0\n");
}

TEST(HostLog, AStandardErrorThatNobodyReadsStopsNobody) {
    const ::mlk::testing::TempDir dir;
    ASSERT_EQ(mkfifo(dir.path("errors").c_str(), 0600), 0);
    // Without O_RDWR it would wait for a writer.
    const unique_fd reader(open(dir.path("errors").c_str(), O_RDWR | O_CLOEXEC));
    Process writer({"/bin/sh", "-c", "\"$0\" threads 8 100 2> \"$1\"; echo $?", WRITER_PROGRAM,
                    dir.path("errors")});
    EXPECT_TRUE(writer.waitForOut("0\n"));
}

TEST(HostLog, WhatOneClientHasWrittenIsLimited) {
    constexpr int kLines = 60'000;
    const std::string err = runWriter("", {"client", "4711", std::to_string(kLines)}).err;
    const auto lines = std::count(err.begin(), err.end(), '\n');
    EXPECT_GT(lines, ClientLimits::kBurst / 130);
    EXPECT_LT(lines, kLines);
    EXPECT_THAT(err, HasSubstr("): the last line\n")) << "that is not the client's";
}

// Replaces standard error by this descriptor while the object lives.
class ErrorsTo {
  public:
    explicit ErrorsTo(int descriptor) { dup2(descriptor, STDERR_FILENO); }
    ~ErrorsTo() { dup2(mFormer.get(), STDERR_FILENO); }
    ErrorsTo(const ErrorsTo&) = delete;
    ErrorsTo& operator=(const ErrorsTo&) = delete;

  private:
    const unique_fd mFormer{dup(STDERR_FILENO)};
};

TEST(HostLog, AFullStandardErrorLosesTheMessageAndStopsNobody) {
    unique_fd read;
    unique_fd write;
    ASSERT_TRUE(::android::base::Pipe(&read, &write));
    fcntl(write.get(), F_SETFL, O_NONBLOCK);
    {
        const ErrorsTo full(write.get());
        const std::string longer(1'000'000, 'x');
        __android_log_write(ANDROID_LOG_ERROR, "tag", longer.c_str());
        __android_log_write(ANDROID_LOG_ERROR, "tag", longer.c_str());
    }
    char first = 0;
    EXPECT_EQ(::read(read.get(), &first, 1), 1);
    EXPECT_EQ(first, 'E');
}

TEST(HostLog, ASignalThatWaitedAlreadyGoesOnWaiting) {
    sigset_t brokenPipe;
    sigemptyset(&brokenPipe);
    sigaddset(&brokenPipe, SIGPIPE);
    ASSERT_EQ(pthread_sigmask(SIG_BLOCK, &brokenPipe, nullptr), 0);
    ASSERT_EQ(raise(SIGPIPE), 0);
    unique_fd read;
    unique_fd write;
    ASSERT_TRUE(::android::base::Pipe(&read, &write));
    read.reset();
    {
        const ErrorsTo nobody(write.get());
        __android_log_write(ANDROID_LOG_ERROR, "tag", "unheard");
    }
    const timespec now{};
    EXPECT_EQ(sigtimedwait(&brokenPipe, nullptr, &now), SIGPIPE);
}

TEST(HostLog, LoggingChangesNeitherErrnoNorTheSignalMask) {
    sigset_t brokenPipe;
    sigemptyset(&brokenPipe);
    sigaddset(&brokenPipe, SIGPIPE);
    ASSERT_EQ(pthread_sigmask(SIG_UNBLOCK, &brokenPipe, nullptr), 0);
    const unique_fd full(open("/dev/full", O_WRONLY | O_CLOEXEC));
    ASSERT_TRUE(full.ok());
    {
        const ErrorsTo nobody(full.get());
        errno = EXDEV;
        __android_log_write(ANDROID_LOG_ERROR, "tag", "lost");
    }
    EXPECT_EQ(errno, EXDEV);
    sigset_t now;
    ASSERT_EQ(pthread_sigmask(SIG_BLOCK, nullptr, &now), 0);
    EXPECT_EQ(sigismember(&now, SIGPIPE), 0);
}

TEST(HostLog, AnInterruptedMessageIsWhole) {
    struct sigaction action {};
    action.sa_handler = [](int) {};  // without SA_RESTART
    ASSERT_EQ(sigaction(SIGUSR1, &action, nullptr), 0);
    unique_fd read;
    unique_fd write;
    ASSERT_TRUE(::android::base::Pipe(&read, &write));
    const std::string longer(1'000'000, 'x');
    const ErrorsTo reader(write.get());
    std::thread writer([&] { __android_log_write(ANDROID_LOG_ERROR, "tag", longer.c_str()); });
    std::string got;
    while (got.empty() || got.back() != '\n') {
        pthread_kill(writer.native_handle(), SIGUSR1);
        std::string piece(1000, '\0');
        piece.resize(static_cast<size_t>(::read(read.get(), piece.data(), piece.size())));
        got += piece;
    }
    writer.join();
    EXPECT_EQ(got, formatBrief(ANDROID_LOG_ERROR, "tag", getpid(), longer));
}

TEST(HostLog, AMessageWithoutTextIsAnEmptyLine) {
    ::testing::internal::CaptureStderr();
    __android_log_write(ANDROID_LOG_ERROR, "tag", nullptr);
    EXPECT_EQ(::testing::internal::GetCapturedStderr(),
              formatBrief(ANDROID_LOG_ERROR, "tag", getpid(), ""));
}

TEST(HostLog, IsPutBackAfterACapture) {
    const int former = __android_log_get_minimum_priority();
    { const LogCapture capture; }
    EXPECT_EQ(__android_log_get_minimum_priority(), former);
    ::testing::internal::CaptureStderr();
    __android_log_write(ANDROID_LOG_ERROR, "tag", "seen again");
    EXPECT_THAT(::testing::internal::GetCapturedStderr(), HasSubstr("): seen again\n"));
}

}  // namespace
}  // namespace mlk::host
