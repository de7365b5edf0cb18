// The table of known items against the running service: an item is read by the methods that its row
// names and by no other, and its type is what the row says.

#include <gmock/gmock.h>

#include <map>
#include <string>
#include <vector>

#include "tools/items/tests/ServicesOnSet.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

using ::testing::UnorderedElementsAreArray;

class KnownItems : public ServicesOnSet {};

TEST_F(KnownItems, DecideTheAnswersOfTheirReadersAndOfNoOther) {
    std::map<std::string, std::string> without;
    {
        const auto services = start("");
        without = answers();
    }
    for (const KnownItem& row : kKnownItems) {
        const auto services = start(lineOf(row, valueFor(row)));
        std::vector<std::string> changed;
        for (const auto& [reader, answer] : answers()) {
            if (answer != without[reader]) {
                changed.push_back(reader);
            }
        }
        std::vector<std::string> readers;
        for (const char* reader : row.readers) {
            if (reader != nullptr) {
                readers.emplace_back(reader);
            }
        }
        EXPECT_THAT(changed, UnorderedElementsAreArray(readers))
                << row.name.category << " " << row.name.key;
    }
}

TEST_F(KnownItems, NumbersAreAnsweredWithinTheirRange) {
    size_t numbers = 0;
    for (const KnownItem& row : kKnownItems) {
        if (row.type != ValueType::INTEGER) {
            continue;
        }
        ++numbers;
        for (int32_t value = row.least - 1; value <= row.most + 1; ++value) {
            const auto services = start(lineOf(row, std::to_string(value)));
            const bool isInRange = value >= row.least && value <= row.most;
            EXPECT_EQ(answerTo(row.readers[0]),
                      isInRange ? R"({"success":true,"value":)" + std::to_string(value) + "}"
                                : "no answer")
                    << value;
        }
    }
    EXPECT_EQ(numbers, 1U);
}

TEST_F(KnownItems, SwitchesAreOnForExactlyTrue) {
    size_t switches = 0;
    for (const KnownItem& row : kKnownItems) {
        if (row.type != ValueType::SWITCH) {
            continue;
        }
        ++switches;
        for (const auto& [value, answer] : std::map<std::string, std::string>{
                     {"true", "true"}, {"True", "false"}, {"1", "false"}, {"yes", "false"}}) {
            const auto services = start(lineOf(row, value));
            EXPECT_EQ(answerTo(row.readers[0]), R"({"success":true,"value":)" + answer + "}")
                    << row.name.key << "=" << value;
        }
    }
    EXPECT_EQ(switches, 2U);
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
