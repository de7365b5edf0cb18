// Which users may connect to which. Only root can run these tests, because only root can change the
// user.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>

#include "Everything.h"
#include "Native.h"
#include "RawClient.h"
#include "Server.h"
#include "host/hidl/src/RuntimeFolder.h"
#include "host/testing/HostSet.h"

namespace mlk::test {
namespace {

namespace transport = ::android::hardware::transport;

constexpr uid_t kNobody = 65534;
constexpr char kName[] = "mlk.test.everything@1.0::IEverything.default";

// A child process of another user, which lives until the test releases it. It is a fork of this
// process, which must not have started threads before.
class OtherUser {
  public:
    // work: runs first in the child; its result is the child's answer.
    template <typename Work>
    explicit OtherUser(const Work& work) {
        mChild = fork();
        if (mChild == 0) {
            const bool done = setgid(kNobody) == 0 && setuid(kNobody) == 0 && work();
            (void)(write(mAnswer.in.get(), done ? "y" : "n", 1) == 1);
            mEnd.in.reset();
            (void)readFrom(mEnd.out.get(), 1);
            _exit(0);
        }
        mAnswer.in.reset();
    }
    ~OtherUser() {
        mEnd.in.reset();
        (void)waitpid(mChild, nullptr, 0);
    }
    OtherUser(const OtherUser&) = delete;
    OtherUser& operator=(const OtherUser&) = delete;

    bool worked() { return readFrom(mAnswer.out.get(), 1) == "y"; }

  private:
    Pipe mAnswer;
    Pipe mEnd;
    pid_t mChild = -1;
};

class UsersTest : public ::testing::Test {
  protected:
    void SetUp() override {
        if (geteuid() != 0) {
            GTEST_SKIP() << "only root can become another user";
        }
        // Even without a protected folder on the path.
        ASSERT_EQ(chmod(mSet.dir().path().c_str(), 0777), 0);
        ASSERT_EQ(chmod(mSet.runtime().c_str(), 0777), 0);
    }

    testing::HostSet mSet;
};

TEST_F(UsersTest, ServerOfAnotherUserIsNotTrusted) {
    const transport::RuntimeFolder folder = transport::findRuntimeFolder();
    transport::unique_fd listener;
    OtherUser impostor([&] { return transport::listenOn(folder, kName, &listener) == 0; });
    ASSERT_TRUE(impostor.worked());
    EXPECT_EQ(IEverything::getService(), nullptr);
}

TEST_F(UsersTest, RootMayVisitAnotherUser) {
    ASSERT_EQ(chown(mSet.runtime().c_str(), kNobody, kNobody), 0);
    OtherUser owner([] {
        const sp<IEverything> service = new Everything;
        return service->registerAsService("default") == ::android::OK;
    });
    ASSERT_TRUE(owner.worked());
    const sp<IEverything> found = IEverything::getService();
    ASSERT_NE(found, nullptr);
    EXPECT_TRUE(found->ping().isOk());
}

TEST_F(UsersTest, AnotherUserIsRefused) {
    const mode_t former = umask(0);  // the socket is open to all users, too
    Pipe ready;
    OtherUser visitor([&] {
        ready.in.reset();
        (void)readFrom(ready.out.get(), 1);
        const transport::RuntimeFolder folder = transport::findRuntimeFolder();
        RawClient client(mSet.runtime());
        // The server refuses the client, and the client trusts root's server.
        return folder.descriptor.ok() && !client.hello() && IEverything::getService() == nullptr;
    });
    const Server server;
    umask(former);
    ready.in.reset();
    EXPECT_TRUE(visitor.worked());
    EXPECT_TRUE(server.says("refused a connection from another user"));
    EXPECT_TRUE(server.service()->ping().isOk());
}

}  // namespace
}  // namespace mlk::test
