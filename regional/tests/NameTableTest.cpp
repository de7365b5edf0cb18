#include "regional/NameTable.h"

#include <android/log.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <map>
#include <random>
#include <string>

#include "host/testing/LogCapture.h"
#include "host/testing/Threads.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

using mlk::testing::LogCapture;
using ::testing::ElementsAre;

constexpr auto kRows = sortedByName(
        std::array<NamedValue, 4>{{{"PEAR", 0}, {"APPLE", 7}, {"QUINCE", -1}, {"FIG", 7}}});

std::string firstNameOf(const NameTable& table, int32_t value) {
    std::string name = "untouched";
    return table.firstNameOf(value, name) ? name : "-" + name;
}

TEST(NameTableTest, SortsItsRows) {
    EXPECT_EQ(kRows[0].name, "APPLE");
    EXPECT_EQ(kRows[1].name, "FIG");
    EXPECT_EQ(kRows[2].name, "PEAR");
    EXPECT_EQ(kRows[3].name, "QUINCE");
    EXPECT_EQ(kRows[3].value, -1);
}

TEST(NameTableTest, KnowsItsRows) {
    NameTable table(kRows);
    EXPECT_EQ(table.valueOf("APPLE"), 7);
    EXPECT_EQ(table.valueOf("QUINCE"), -1);
    EXPECT_EQ(table.find("PEAR"), 0);
    EXPECT_EQ(table.find("apple"), std::nullopt);
    EXPECT_EQ(table.find(""), std::nullopt);
    EXPECT_EQ(firstNameOf(table, 7), "APPLE");
    EXPECT_EQ(firstNameOf(table, -1), "QUINCE");
    EXPECT_EQ(firstNameOf(table, 5), "-untouched");
}

TEST(NameTableTest, AnUnknownNameBecomesOneOfTheValueZero) {
    NameTable table(kRows);
    EXPECT_EQ(table.valueOf("plum"), 0);
    EXPECT_EQ(table.find("plum"), 0);
    EXPECT_EQ(firstNameOf(table, 0), "PEAR") << "capitals sort first";
    EXPECT_EQ(table.valueOf("LIME"), 0);
    EXPECT_EQ(firstNameOf(table, 0), "LIME");
    EXPECT_EQ(table.valueOf(""), 0);
    EXPECT_EQ(firstNameOf(table, 0), "");
    EXPECT_EQ(firstNameOf(table, 7), "APPLE");
}

TEST(NameTableTest, AnotherTableDoesNotSeeWhatIsAdded) {
    NameTable table(kRows);
    const NameTable other(kRows);
    table.valueOf("plum");
    EXPECT_EQ(other.find("plum"), std::nullopt);
}

// Compares with a plain map with insertion, which defines the order of names.
TEST(NameTableTest, BehavesLikeAMapThatInsertsZero) {
    NameTable table(kRows);
    std::map<std::string, int32_t> model;
    for (const NamedValue& row : kRows) {
        model.emplace(row.name, row.value);
    }
    std::mt19937 random(20240611);  // NOLINT: the same names in every run
    for (int step = 0; step < 3000; ++step) {
        std::string name(random() % 3, ' ');
        for (char& symbol : name) {
            symbol = static_cast<char>(random());
        }
        if (random() % 4 == 0) {
            name = kRows[random() % kRows.size()].name;
        }
        if (random() % 2 == 0) {
            EXPECT_EQ(table.valueOf(name), model[name]);
        }
        const auto known = model.find(name);
        EXPECT_EQ(table.find(name),
                  known != model.end() ? std::optional(known->second) : std::nullopt);
        const auto zero = std::find_if(model.begin(), model.end(),
                                       [](const auto& entry) { return entry.second == 0; });
        EXPECT_EQ(firstNameOf(table, 0), zero->first);
    }
}

TEST(NameTableTest, StopsGrowingAndSaysSoOnce) {
    LogCapture log;
    NameTable table(kRows);
    for (size_t number = 0; number < NameTable::kMostAdded + 100; ++number) {
        EXPECT_EQ(table.valueOf("n" + std::to_string(number)), 0);
        EXPECT_EQ(table.valueOf("n0"), 0) << "a name that is there is not added again";
    }
    EXPECT_EQ(table.find("n4095"), 0);
    EXPECT_EQ(table.find("n4096"), std::nullopt);
    EXPECT_THAT(log.texts(ANDROID_LOG_ERROR, "MlkProjectConfigs"),
                ElementsAre("4096 unknown names are kept, the last is n4095; further ones are "
                            "not"));
}

TEST(NameTableTest, ThreadsAddAndLookUpAtOnce) {
    NameTable table(kRows);
    std::atomic<int> wrong = 0;
    mlk::testing::inThreads(8, [&](int id) {
        for (int number = 0; number < 300; ++number) {
            const std::string name = "n" + std::to_string((number + id) % 300);
            wrong += table.valueOf(name) != 0 ? 1 : 0;
            wrong += table.find(name) != 0 ? 1 : 0;
            wrong += table.valueOf("FIG") != 7 ? 1 : 0;
            wrong += firstNameOf(table, 0) != "PEAR" ? 1 : 0;
        }
    });
    EXPECT_EQ(wrong, 0);
}

// Half of the threads only look up: the lock alone protects them from what the others add.
TEST(NameTableTest, SomeThreadsAddWhileOthersLookUp) {
    NameTable table(kRows);
    std::atomic<int> wrong = 0;
    mlk::testing::inThreads(4, [&](int id) {
        for (int number = 0; number < 1000; ++number) {
            const std::string name = "n" + std::to_string(number) + (id < 2 ? "a" : "b");
            if (id % 2 == 0) {
                wrong += table.valueOf(name) != 0 ? 1 : 0;
            } else {
                wrong += table.find(name).value_or(0) != 0 ? 1 : 0;
            }
        }
    });
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(table.find("n999a"), 0);
    EXPECT_EQ(table.find("n999b"), 0);
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
