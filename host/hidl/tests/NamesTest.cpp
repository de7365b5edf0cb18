// Names of services: who owns them, and who has lost them.
#include <android/hidl/manager/1.0/IServiceManager.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <hidl/ServiceManagement.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <climits>
#include <cstring>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "RawClient.h"
#include "Server.h"
#include "host/hidl/src/RuntimeFolder.h"
#include "host/testing/HostSet.h"

namespace mlk::test {
namespace {

namespace transport = ::android::hardware::transport;
using ::android::hardware::defaultServiceManager;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

pid_t pidOf(const sp<IEverything>& service) {
    pid_t pid = -1;
    (void)service->getDebugInfo([&](const auto& info) { pid = info.pid; }).isOk();
    return pid;
}

std::vector<std::string> listed() {
    std::vector<std::string> names{"no answer"};
    EXPECT_TRUE(defaultServiceManager()
                        ->list([&](const hidl_vec<hidl_string>& all) {
                            names.assign(all.begin(), all.end());
                        })
                        .isOk());
    return names;
}

class NamesTest : public ::testing::Test {
  protected:
    testing::HostSet mSet;
};

TEST_F(NamesTest, UnknownNameGivesNullAtOnce) {
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(IEverything::getService(), nullptr);
    EXPECT_EQ(IEverything::tryGetService("nobody"), nullptr);
    EXPECT_EQ(IEverything::getService("no/name"), nullptr);
    EXPECT_EQ(IEverything::getService(""), nullptr);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(4));
}

TEST_F(NamesTest, ThereAreNoPassthroughImplementations) {
    const Server server;
    EXPECT_EQ(IEverything::getService("default", true), nullptr);
}

TEST_F(NamesTest, InstancesAreApart) {
    const Server one({"one", "4", ""});
    const Server other({"other", "4", ""});
    EXPECT_EQ(pidOf(IEverything::getService("one")), one.pid());
    EXPECT_EQ(pidOf(IEverything::getService("other")), other.pid());
    EXPECT_EQ(IEverything::getService("default"), nullptr);
}

TEST_F(NamesTest, NameOfTheDeadIsTakenWithoutALine) {
    Server first;
    first.kill();
    const Server later;
    EXPECT_EQ(pidOf(IEverything::getService()), later.pid());
    EXPECT_EQ(later.err(), "");
}

TEST_F(NamesTest, LaterServerTakesTheName) {
    const Server first;
    const sp<IEverything> toFirst = first.service();
    std::optional<Server> later(std::in_place);
    EXPECT_EQ(pidOf(IEverything::getService()), later->pid());
    EXPECT_EQ(pidOf(toFirst), first.pid());
    // Both processes log it.
    EXPECT_TRUE(later->says("this process takes the name from process " +
                            std::to_string(first.pid()) + ", which still has it\n"));
    EXPECT_TRUE(first.says("process " + std::to_string(later->pid()) +
                           " has taken the name over; new clients do not reach this process\n"));
    EXPECT_THAT(first.err(), ::testing::HasSubstr(" E "));
    // The name is free when its last owner dies; the former owner does not get it back.
    later->kill();
    EXPECT_EQ(IEverything::getService(), nullptr);
    EXPECT_EQ(pidOf(toFirst), first.pid());
}

TEST_F(NamesTest, WhoHasTakenTheNameIsToldEvenIfAnotherClientComesFirst) {
    Server first;
    ASSERT_EQ(kill(first.pid(), SIGSTOP), 0);
    const RawClient innocent(mSet.runtime());
    const Server later;
    ASSERT_EQ(kill(first.pid(), SIGCONT), 0);
    EXPECT_TRUE(first.says("process " + std::to_string(later.pid()) + " has taken the name over"))
            << first.err();
}

TEST_F(NamesTest, NameIsTakenFromAProcessThatTakesNoClients) {
    Server first;
    ASSERT_EQ(kill(first.pid(), SIGSTOP), 0);
    const std::string name = mSet.runtime() + "/" + IEverything::descriptor + ".default";
    std::vector<unique_fd> waiting;
    sockaddr_un address{AF_UNIX, {}};
    ASSERT_LT(name.size(), sizeof address.sun_path);
    (void)name.copy(address.sun_path, name.size());
    do {
        waiting.emplace_back(socket(AF_UNIX, SOCK_SEQPACKET | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    } while (connect(waiting.back().get(), reinterpret_cast<const sockaddr*>(&address),
                     sizeof address) == 0);
    ASSERT_EQ(errno, EAGAIN);
    const Server later;
    EXPECT_TRUE(later.says("takes the name from a process that takes no clients, which still"))
            << later.err();
    ASSERT_EQ(kill(first.pid(), SIGCONT), 0);
}

TEST_F(NamesTest, LossOfTheNameIsToldOnce) {
    Server first;
    // Another way to the first server, which stays.
    const std::string name = mSet.runtime() + "/" + IEverything::descriptor + ".default";
    ASSERT_EQ(link(name.c_str(), (mSet.runtime() + "/way.default").c_str()), 0);
    const Server later;
    const std::string line = "has taken the name over";
    ASSERT_TRUE(first.says(line));
    for (int i = 0; i < 3; ++i) {
        RawClient client(mSet.runtime(), "way");
        EXPECT_TRUE(client.hello());
    }
    first.kill();
    const std::string err = first.err();
    EXPECT_EQ(err.find(line, err.find(line) + 1), std::string::npos) << err;
}

TEST_F(NamesTest, ProxyOfTheFirstNeverCallsTheLater) {
    const Server first;
    const sp<IEverything> toFirst = first.service();
    const Server later;
    // A second concurrent call would need a second connection, but the name belongs to another
    // server now: the call takes its turn.
    HeldCalls held({toFirst, toFirst});
    ASSERT_TRUE(held.arrived(1));
    EXPECT_FALSE(held.moreArrive());
    EXPECT_EQ(held.release(), 2U);
}

TEST_F(NamesTest, FileOfADeadServerIsNoHindrance) {
    std::optional<Server> server(std::in_place);
    server->kill();
    EXPECT_TRUE(std::filesystem::exists(mSet.runtime() +
                                        "/mlk.test.everything@1.0::IEverything.default"));
    EXPECT_EQ(IEverything::getService(), nullptr);
    server.emplace();
    EXPECT_EQ(pidOf(IEverything::getService()), server->pid());
}

TEST_F(NamesTest, InstancesOfAnInterfaceAreListedByTheirNames) {
    EXPECT_THAT(::android::hardware::getAllHalInstanceNames(IEverything::descriptor), IsEmpty());
    const Server b({"b", "4", ""});
    const Server a({"a", "4", ""});
    EXPECT_THAT(::android::hardware::getAllHalInstanceNames(IEverything::descriptor),
                ElementsAre("a", "b"));
    EXPECT_THAT(::android::hardware::getAllHalInstanceNames("mlk.test.everything@1.0::IEvery"),
                IsEmpty());
}

TEST_F(NamesTest, ListIsSortedAndWithoutTheDead) {
    EXPECT_THAT(listed(), IsEmpty());
    const Server b({"b", "4", ""});
    const Server a({"a", "4", ""});
    const Server c({"with.dot", "4", ""});
    Server dead({"abandoned", "4", ""});
    dead.kill();
    (void)mSet.dir().write("run/nonsense", "");
    (void)mSet.dir().write("run/some@1.0::IFile.default", "no socket");
    EXPECT_THAT(listed(), ElementsAre("mlk.test.everything@1.0::IEverything/a",
                                      "mlk.test.everything@1.0::IEverything/b",
                                      "mlk.test.everything@1.0::IEverything/with.dot"));
    const auto withoutCallback = defaultServiceManager()->list(nullptr);
    EXPECT_THAT(withoutCallback.description(),
                ::testing::StartsWith("Status(EX_ILLEGAL_ARGUMENT)"));
}

TEST_F(NamesTest, NobodyTellsOfRegistrations) {
    EXPECT_FALSE(IEverything::registerForNotifications("default", nullptr));
}

TEST_F(NamesTest, GoodInstances) {
    const std::string longest(NAME_MAX - strlen("mlk.test.everything@1.0::IEverything."), 'n');
    const std::string rows[] = {"default", "x y", ".", "..", "a.b", "\xff", longest};
    const sp<IEverything> service = new Everything;
    for (const std::string& instance : rows) {
        EXPECT_EQ(service->registerAsService(instance), ::android::OK) << instance;
        const sp<IEverything> found = IEverything::getService(instance);
        ASSERT_NE(found, nullptr) << instance;
        EXPECT_TRUE(found->ping().isOk()) << instance;
    }
    EXPECT_THAT(listed(), ::testing::SizeIs(std::size(rows)));
}

// Each connection needs a descriptor.
TEST_F(NamesTest, ServiceMayHaveAsManyDescriptorsAsItsUserAllows) {
    rlimit limit{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &limit), 0);
    limit.rlim_cur = 200;
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &limit), 0);
    const sp<IEverything> service = new Everything;
    EXPECT_EQ(service->registerAsService("default"), ::android::OK);
    rlimit now{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &now), 0);
    EXPECT_EQ(now.rlim_cur, limit.rlim_max);
}

TEST_F(NamesTest, BadInstances) {
    const std::string tooLong(NAME_MAX - strlen("mlk.test.everything@1.0::IEverything.") + 1, 'n');
    const std::string rows[] = {"", "/", "a/b", std::string("a\0b", 3), tooLong};
    const sp<IEverything> service = new Everything;
    for (const std::string& instance : rows) {
        EXPECT_EQ(service->registerAsService(instance), ::android::BAD_VALUE) << instance;
        EXPECT_EQ(IEverything::getService(instance), nullptr) << instance;
    }
    EXPECT_THAT(listed(), IsEmpty());
}

TEST_F(NamesTest, ProxyCannotBeRegistered) {
    const Server server;
    EXPECT_EQ(server.service()->registerAsService("again"), ::android::BAD_VALUE);
}

TEST_F(NamesTest, SeveralServicesInOneProcess) {
    const sp<IEverything> everything = new Everything;
    const sp<Listener> listener = new Listener;
    ASSERT_EQ(everything->registerAsService("here"), ::android::OK);
    ASSERT_EQ(listener->registerAsService("here"), ::android::OK);
    const sp<IListener> proxy = IListener::getService("here");
    ASSERT_NE(proxy, nullptr);
    EXPECT_EQ(static_cast<int32_t>(proxy->heard("by name")), 1);
    EXPECT_THAT(listener->texts(), ElementsAre("by name"));
    EXPECT_EQ(pidOf(IEverything::getService("here")), getpid());
    EXPECT_THAT(listed(), ElementsAre("mlk.test.everything@1.0::IEverything/here",
                                      "mlk.test.everything@1.0::IListener/here"));
}

TEST(SocketNameTest, NamesAndFiles) {
    struct Row {
        const char* file;
        const char* descriptor;  // null: not a service's file
        const char* instance;
    };
    const Row rows[] = {
            {"a.b@1.0::IC.default", "a.b@1.0::IC", "default"},
            {"a.b@1.0::IC.x.y", "a.b@1.0::IC", "x.y"},
            {"a.b@1.0::IC..", "a.b@1.0::IC", "."},
            {"a.b@1.0::IC.", nullptr, nullptr},
            {"a.b@1.0::IC", nullptr, nullptr},
            {"a.b", nullptr, nullptr},
            {".a.b@1.0::IC.default", nullptr, nullptr},
            {"", nullptr, nullptr},
    };
    for (const Row& row : rows) {
        std::string descriptor;
        std::string instance;
        const bool split = transport::splitSocketName(row.file, &descriptor, &instance);
        EXPECT_EQ(row.descriptor != nullptr, split) << row.file;
        if (!split || row.descriptor == nullptr) {
            continue;
        }
        EXPECT_EQ(row.descriptor, descriptor);
        EXPECT_EQ(row.instance, instance);
        EXPECT_EQ(transport::socketName(descriptor, instance), row.file);
    }
    EXPECT_EQ(transport::socketName("", "default"), "");
}

}  // namespace
}  // namespace mlk::test
