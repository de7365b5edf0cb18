#include "host/testing/HostSet.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>

#include <filesystem>

namespace mlk::testing {
namespace {

namespace fs = std::filesystem;

TEST(HostSet, NamesItselfInTheEnvironmentWhileItLives) {
    setenv("MLK_ROOT", "former", 1);
    unsetenv("MLK_RUNTIME_DIR");
    {
        const HostSet set;
        EXPECT_EQ(getenv("MLK_ROOT"), set.dir().path());
        EXPECT_EQ(getenv("MLK_RUNTIME_DIR"), set.runtime());
        EXPECT_EQ(set.tvconfigs(), set.dir().path() + "/tvconfigs");
        for (const std::string& folder : {set.tvconfigs(), set.tvdata(), set.impdata(),
                                          set.runtime(), set.dir().path("data/property")}) {
            EXPECT_TRUE(fs::is_directory(folder)) << folder;
        }
        EXPECT_EQ(fs::status(set.runtime()).permissions(), fs::perms::owner_all);
    }
    EXPECT_STREQ(getenv("MLK_ROOT"), "former");
    EXPECT_EQ(getenv("MLK_RUNTIME_DIR"), nullptr);
}

TEST(HostSet, SetsProperties) {
    HostSet set;
    set.setProperty("a.key", "value");
    EXPECT_EQ(set.dir().read("data/property/a.key"), "value");
    EXPECT_THROW(set.setProperty("no key", "value"), std::runtime_error);
}

TEST(HostSet, TakesACopyOfPartitions) {
    const TempDir source;
    source.write("tvconfigs/customer.ini", "new");
    source.write("tvdata/deep/file", "data");
    HostSet set;
    set.dir().write("tvconfigs/customer.ini", "old");
    set.dir().write("tvconfigs/other.ini", "stays");
    set.copyFrom(source.path());
    EXPECT_EQ(set.dir().read("tvconfigs/customer.ini"), "new");
    EXPECT_EQ(set.dir().read("tvconfigs/other.ini"), "stays");
    EXPECT_EQ(set.dir().read("tvdata/deep/file"), "data");
}

}  // namespace
}  // namespace mlk::testing
