#include "host/properties/PropertyStore.h"

#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <filesystem>

#include "host/testing/TempDir.h"

namespace mlk::host {
namespace {

using ::mlk::testing::TempDir;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Optional;

namespace fs = std::filesystem;

class PropertyStoreTest : public ::testing::Test {
  protected:
    const TempDir mDir;
    const PropertyStore mStore{mDir.path("data/property")};

    std::vector<std::string> files() const {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(mDir.path("data/property"))) {
            names.push_back(entry.path().filename().string());
        }
        return names;
    }
};

TEST_F(PropertyStoreTest, IsEmptyBeforeItsFolderExists) {
    EXPECT_EQ(mStore.get("a.key"), std::nullopt);
    EXPECT_THAT(mStore.keys(), IsEmpty());
}

TEST_F(PropertyStoreTest, KeepsOneFileAKeyAndNothingElse) {
    EXPECT_TRUE(mStore.set("a.key", "one"));
    EXPECT_TRUE(mStore.set("a.key", "two"));
    EXPECT_THAT(files(), ElementsAre("a.key"));
    EXPECT_EQ(mDir.read("data/property/a.key"), "two");
    EXPECT_THAT(mStore.get("a.key"), Optional(std::string("two")));
}

TEST_F(PropertyStoreTest, CreatesOnlyItsOwnTwoFolders) {
    const PropertyStore store(mDir.path("no/such/root/data/property"));
    EXPECT_FALSE(store.set("a.key", "one"));
    EXPECT_EQ(errno, ENOENT);
    EXPECT_FALSE(fs::exists(mDir.path("no")));
}

TEST_F(PropertyStoreTest, KeepsValuesAsTheyAre) {
    for (const std::string value : {"", " a \t", "two\nlines\n", "\xff\x01", "=#"}) {
        EXPECT_TRUE(mStore.set("a.key", value));
        EXPECT_THAT(mStore.get("a.key"), Optional(value));
    }
}

TEST_F(PropertyStoreTest, RefusesValuesOfMoreThan91Bytes) {
    EXPECT_TRUE(mStore.set("a.key", std::string(91, 'x')));
    EXPECT_FALSE(mStore.set("a.key", std::string(92, 'y')));
    EXPECT_EQ(errno, EINVAL);
    EXPECT_THAT(mStore.get("a.key"), Optional(std::string(91, 'x')));
}

struct KeyRow {
    std::string key;
    bool good;
};

void PrintTo(const KeyRow& row, std::ostream* out) {
    *out << '"' << row.key << '"';
}

class PropertyKeys : public ::testing::TestWithParam<KeyRow> {};

TEST_P(PropertyKeys, AreChecked) {
    const TempDir dir;
    const PropertyStore store(dir.path("data/property"));
    const auto& [key, good] = GetParam();
    EXPECT_EQ(PropertyStore::isKey(key), good);
    EXPECT_EQ(store.set(key, "value"), good);
    EXPECT_EQ(store.get(key).has_value(), good);
}

INSTANTIATE_TEST_SUITE_P(
        All, PropertyKeys,
        ::testing::Values(KeyRow{"a", true}, KeyRow{"persist.vendor.mlk.enstr", true},
                          KeyRow{"vendor.mlk.nt.bt.a2dp.AoutID", true}, KeyRow{"a_b@c:d-e.9", true},
                          KeyRow{"-a", true}, KeyRow{std::string(255, 'k'), true},
                          KeyRow{std::string(256, 'k'), false}, KeyRow{"", false},
                          KeyRow{".", false}, KeyRow{"..", false}, KeyRow{".a", false},
                          KeyRow{"a.", false}, KeyRow{"a..b", false}, KeyRow{"a/b", false},
                          KeyRow{"../a", false}, KeyRow{"a b", false}, KeyRow{"a=b", false},
                          KeyRow{"a\n", false}, KeyRow{"\xc3\xa4", false},
                          KeyRow{std::string("a\0b", 3), false}));

TEST_F(PropertyStoreTest, RoKeysAreSetOnce) {
    EXPECT_TRUE(mStore.set("ro.hardware", "one"));
    EXPECT_FALSE(mStore.set("ro.hardware", "two"));
    EXPECT_EQ(errno, EEXIST);
    EXPECT_FALSE(mStore.set("ro.hardware", "one"));
    EXPECT_THAT(mStore.get("ro.hardware"), Optional(std::string("one")));
    EXPECT_TRUE(mStore.set("ro.empty", ""));
    EXPECT_FALSE(mStore.set("ro.empty", "two"));
    EXPECT_TRUE(mStore.set("robot", "one"));
    EXPECT_TRUE(mStore.set("robot", "two"));
    EXPECT_THAT(mStore.keys(), ElementsAre("ro.empty", "ro.hardware", "robot"));
    EXPECT_EQ(files().size(), 3U);
}

TEST_F(PropertyStoreTest, ListsKeysInOrderAndNothingThatIsNone) {
    mStore.set("b", "1");
    mStore.set("a.b", "2");
    mStore.set("B", "3");
    mDir.write("data/property/.new-1-1", "left behind");
    mDir.write("data/property/not a key", "value");
    mDir.mkdir("data/property/folder");
    ASSERT_EQ(mkfifo(mDir.path("data/property/pipe").c_str(), 0600), 0);
    EXPECT_THAT(mStore.keys(), ElementsAre("B", "a.b", "b"));
}

TEST_F(PropertyStoreTest, PassesOverTemporaryFilesThatWereLeftBehind) {
    ASSERT_TRUE(mStore.set("a.key", "one"));
    for (int number = 0; number < 1000; ++number) {
        mDir.write("data/property/.new-" + std::to_string(getpid()) + "-" + std::to_string(number),
                   "left behind");
    }
    EXPECT_TRUE(mStore.set("a.key", "two"));
    EXPECT_THAT(mStore.get("a.key"), Optional(std::string("two")));
    EXPECT_EQ(files().size(), 1001U);
}

// The system takes a part of the value and refuses the rest.
TEST_F(PropertyStoreTest, PartOfAValueIsNoValue) {
    ASSERT_TRUE(mStore.set("a.key", "one"));
    rlimit former{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &former), 0);
    const auto formerAction = signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{10, former.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
    const bool done = mStore.set("a.key", std::string(20, 'x'));
    const int error = errno;
    EXPECT_EQ(setrlimit(RLIMIT_FSIZE, &former), 0);
    (void)signal(SIGXFSZ, formerAction);
    EXPECT_FALSE(done);
    EXPECT_EQ(error, EFBIG);
    EXPECT_THAT(mStore.get("a.key"), Optional(std::string("one")));
    EXPECT_THAT(files(), ElementsAre("a.key"));
}

TEST_F(PropertyStoreTest, SpoiltFilesHarmNobody) {
    mDir.write("data/property/long", std::string(100'000, 'x'));
    EXPECT_THAT(mStore.get("long"), Optional(std::string(91, 'x')));
    mDir.write("data/property/nul", std::string("ab\0cd", 5));
    EXPECT_THAT(mStore.get("nul"), Optional(std::string("ab")));
    mDir.mkdir("data/property/folder");
    EXPECT_EQ(mStore.get("folder"), std::nullopt);
    EXPECT_FALSE(mStore.set("folder", "value"));
    ASSERT_EQ(mkfifo(mDir.path("data/property/pipe").c_str(), 0600), 0);
    EXPECT_EQ(mStore.get("pipe"), std::nullopt);
    EXPECT_TRUE(mStore.set("pipe", "value"));
    EXPECT_THAT(mStore.get("pipe"), Optional(std::string("value")));
    fs::create_symlink("/dev/zero", mDir.path("data/property/device"));
    EXPECT_EQ(mStore.get("device"), std::nullopt);
    fs::create_symlink("device2", mDir.path("data/property/device2"));
    EXPECT_EQ(mStore.get("device2"), std::nullopt);
}

}  // namespace
}  // namespace mlk::host
