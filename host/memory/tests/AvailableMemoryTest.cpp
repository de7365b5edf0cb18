#include "host/memory/AvailableMemory.h"

#include <gtest/gtest.h>

#include <limits>

#include "host/testing/TempDir.h"

namespace mlk::host {
namespace {

using ::mlk::testing::TempDir;

constexpr uint64_t kUnknown = std::numeric_limits<uint64_t>::max();

TEST(AvailableMemory, IsWhatTheKernelsTableSays) {
    const TempDir dir;
    const std::string table = dir.write("meminfo",
                                        "MemTotal:       24684096 kB\n"
                                        "HugePages_Total:       0\n"
                                        "MemAvailable:       1234 kB\n"
                                        "Buffers:            6596 kB\n");
    EXPECT_EQ(availableMemory(table), 1234U * 1024);
}

TEST(AvailableMemory, IsUnlimitedWhereTheTableDoesNotTell) {
    const TempDir dir;
    EXPECT_EQ(availableMemory(dir.path("missing")), kUnknown);
    EXPECT_EQ(availableMemory(dir.write("other", "MemTotal: 24684096 kB\n")), kUnknown);
    EXPECT_EQ(availableMemory(dir.write("word", "MemTotal: many kB\nMemAvailable: 1 kB\n")),
              kUnknown);
    EXPECT_EQ(availableMemory(dir.write("huge", "MemAvailable: 18446744073709551615 kB\n")),
              kUnknown);
}

TEST(AvailableMemory, OfThisSystemIsSomething) {
    EXPECT_GT(availableMemory(), uint64_t{1024} * 1024);
    EXPECT_LT(availableMemory(), kUnknown);
}

}  // namespace
}  // namespace mlk::host
