// What messages say of the folders of a host.

#include <gmock/gmock.h>
#include <unistd.h>

#include <filesystem>

#include "host/hidl/src/RuntimeFolder.h"
#include "host/testing/EnvironmentVariable.h"
#include "host/testing/HostSet.h"
#include "tools/mlkctl/HostFolders.h"
#include "tools/mlkctl/Services.h"
#include "tools/mlkctl/tests/Harness.h"

namespace mlk::ctl {

namespace {

using mlk::testing::EnvironmentVariable;
using mlk::testing::HostSet;
using ::testing::HasSubstr;

TEST(FoldersTest, TheFolderOfTheSocketsIsThatOfTheRuntime) {
    const HostSet set;
    for (const char* own : {"/x/run", "/x/run//", "/", "", static_cast<const char*>(nullptr)}) {
        for (const char* session : {"/session", "", static_cast<const char*>(nullptr)}) {
            const EnvironmentVariable ownVariable("MLK_RUNTIME_DIR", own);
            const EnvironmentVariable sessionVariable("XDG_RUNTIME_DIR", session);
            EXPECT_EQ(runtimeFolder(), ::android::hardware::transport::findRuntimeFolder().path);
        }
    }
}

TEST(FoldersTest, SaysWhichVariableNamesTheFolder) {
    const HostSet set;
    {
        const EnvironmentVariable session("XDG_RUNTIME_DIR", "/no/session");
        const EnvironmentVariable own("MLK_RUNTIME_DIR", nullptr);
        EXPECT_EQ(aboutSockets(),
                  "; sockets are looked for in /no/session/mlkconfigs "
                  "($XDG_RUNTIME_DIR/mlkconfigs, as MLK_RUNTIME_DIR is not set), which does not "
                  "exist");
    }
    const EnvironmentVariable session("XDG_RUNTIME_DIR", nullptr);
    const EnvironmentVariable own("MLK_RUNTIME_DIR", nullptr);
    EXPECT_THAT(aboutSockets(),
                HasSubstr("in /run/mlkconfigs (the default, as neither MLK_RUNTIME_DIR nor "
                          "XDG_RUNTIME_DIR is set), which "));
}

TEST(FoldersTest, SaysWhatIsInTheFolder) {
    const HostSet set;
    const std::string begin =
            "; sockets are looked for in " + set.runtime() + " (MLK_RUNTIME_DIR), which ";
    EXPECT_EQ(aboutSockets(), begin + "is empty");
    set.dir().write("run/.hidden", "");
    set.dir().write("run/b", "");
    set.dir().write("run/a", "");
    EXPECT_EQ(aboutSockets(), begin + "holds a, b");
    set.dir().write("run/c", "");
    set.dir().write("run/d", "");
    set.dir().write("run/e", "");
    EXPECT_EQ(aboutSockets(), begin + "holds a, b, c and 2 more");
    const std::string file = set.dir().write("file", "");
    const EnvironmentVariable own("MLK_RUNTIME_DIR", file.c_str());
    EXPECT_EQ(aboutSockets(), "; sockets are looked for in " + file +
                                      " (MLK_RUNTIME_DIR), which cannot be read: Not a directory");
}

TEST(FoldersTest, WithoutAServiceTheSocketIsNamed) {
    const HostSet set;
    Services services;  // the real ones, of which there are none
    const std::string name = "vendor.morlak.mlkconfigs@1.0::IMlkTvConfigs.default";
    const std::string where = name + " in " + set.runtime() + " (MLK_RUNTIME_DIR)";
    EXPECT_EQ(runMlkctl({"call", "tv", "atvEnabled"}, services).err,
              "mlkctl: IMlkTvConfigs: not registered: no socket " + where +
                      ": the folder is empty; is the service running?\n");
    set.dir().write("run/" + name, "");
    EXPECT_EQ(runMlkctl({"call", "tv", "atvEnabled"}, services).err,
              "mlkctl: IMlkTvConfigs: not registered: no process serves the socket " + where +
                      "; is the service running?\n");
    const Outcome wait = runMlkctl({"wait", "--timeout", "0"}, services);
    EXPECT_EQ(wait.err,
              "mlkctl: no answer within 0 s from IMlkProjectConfigs, IMlkTvConfigs, "
              "IMlkFrameworkConfigs; sockets are looked for in " +
                      set.runtime() + " (MLK_RUNTIME_DIR), which holds " + name + "\n");
}

TEST(FoldersTest, AListOfNothingSaysSo) {
    const HostSet set;
    Script script;
    const std::string none = "mlkctl: nothing is registered; sockets are looked for in " +
                             set.runtime() + " (MLK_RUNTIME_DIR), which is empty\n";
    const Outcome table = runMlkctl({"list"}, script);
    EXPECT_EQ(table.status, 1);
    EXPECT_EQ(table.out, "");
    EXPECT_EQ(table.err, none);
    const Outcome json = runMlkctl({"list", "--json"}, script);
    EXPECT_EQ(json.status, 1);
    EXPECT_EQ(json.out, "[]\n");
    EXPECT_EQ(json.err, none);
}

TEST(FoldersTest, AStoreWithoutPropertiesIsNamed) {
    const HostSet set;
    const std::string folder = set.dir().path("data/property");
    Script script;
    Outcome outcome = runMlkctl({"prop", "list"}, script);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, "");
    EXPECT_THAT(outcome.err, HasSubstr("mlkctl: there are no properties: " + folder + ' '));
    EXPECT_EQ(runMlkctl({"prop", "list", "--json"}, script).out, "{}\n");
    const EnvironmentVariable root("MLK_ROOT", "/no/such");
    outcome = runMlkctl({"prop", "list"}, script);
    EXPECT_EQ(outcome.err,
              "mlkctl: there are no properties: /no/such/data/property does not exist\n");
}

TEST(FoldersTest, APropertyThatCannotBeSetNamesItsFile) {
    const HostSet set;
    set.dir().write("blocked/data", "no folder");
    const EnvironmentVariable root("MLK_ROOT", set.dir().path("blocked").c_str());
    Script script;
    const Outcome outcome = runMlkctl({"prop", "set", "a.key", "1"}, script);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, "mlkctl: cannot set \"a.key\": " + set.dir().path("blocked") +
                                   "/data/property/a.key: Not a directory\n");
}

// A mistyped MLK_ROOT is not made a set, and is not taken for one without properties.
TEST(FoldersTest, PropertiesOfAFolderThatIsNoSetAreRefused) {
    const HostSet set;
    set.dir().mkdir("other");
    const std::string other = set.dir().path("other");
    const EnvironmentVariable root("MLK_ROOT", other.c_str());
    Script script;
    const std::string refused = "mlkctl: no product line in MLK_ROOT=" + other +
                                ": there is neither a folder " + other + "/tvconfigs nor " + other +
                                "/data/property\n";
    const Outcome get = runMlkctl({"prop", "get", "a.key"}, script);
    EXPECT_EQ(get.status, 2);
    EXPECT_EQ(get.out + get.err, refused);
    const Outcome setting = runMlkctl({"prop", "set", "a.key", "1"}, script);
    EXPECT_EQ(setting.status, 2);
    EXPECT_EQ(setting.out + setting.err, refused);
    EXPECT_TRUE(std::filesystem::is_empty(other));
    // A new set has no store yet; a service on a device without partitions has made one.
    for (const char* folder : {"other/tvconfigs", "other/data/property"}) {
        set.dir().mkdir(folder);
        EXPECT_EQ(runMlkctl({"prop", "set", "a.key", "1"}, script).err, "");
        std::filesystem::remove_all(set.dir().path("other/data"));
        std::filesystem::remove_all(set.dir().path("other/tvconfigs"));
    }
}

TEST(FoldersTest, TheMissingSetOfTheRootNamesTheVariable) {
    const HostSet set;
    const EnvironmentVariable root("MLK_ROOT", "");
    const std::string text = aboutMissingSet();
    if (!text.empty()) {  // this machine has no partitions
        EXPECT_EQ(text,
                  "no product line in / (MLK_ROOT is not set): there is neither a folder "
                  "/tvconfigs nor /data/property");
    }
}

// Only root may create the default folder, so another user is told what to set.
TEST(FoldersTest, AnotherUserIsToldToSetTheVariable) {
    const HostSet set;
    const EnvironmentVariable session("XDG_RUNTIME_DIR", nullptr);
    const EnvironmentVariable own("MLK_RUNTIME_DIR", nullptr);
    const std::string advice = "; set MLK_RUNTIME_DIR to the folder of the service";
    if (geteuid() == 0) {
        EXPECT_THAT(aboutSockets(), ::testing::Not(HasSubstr(advice)));
        ASSERT_EQ(seteuid(1), 0);
        const std::string text = aboutSockets();
        const std::string socket = aboutSocket("x");
        ASSERT_EQ(seteuid(0), 0);
        EXPECT_THAT(text, ::testing::EndsWith(advice));
        EXPECT_THAT(socket, ::testing::EndsWith(advice));
    } else {
        EXPECT_THAT(aboutSockets(), ::testing::EndsWith(advice));
    }
}

}  // namespace

}  // namespace mlk::ctl
