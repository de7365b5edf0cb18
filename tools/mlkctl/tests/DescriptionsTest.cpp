// Compares what the interfaces' definitions say about the methods with the tables that the services
// answer from.

#include <gmock/gmock.h>

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "frameworkconfigs/FrameworkItems.h"
#include "projectconfigs/ProjectItems.h"
#include "tools/mlkctl/tests/Harness.h"
#include "tvconfigs/TvConfigItems.h"

namespace mlk::ctl {

namespace {

namespace product = ::vendor::morlak::mlkconfigs::V1_0::implementation;

using testing::ElementsAre;
using testing::IsEmpty;

using Items = std::vector<std::pair<std::string, std::vector<std::string>>>;
using Texts = std::vector<std::string>;

const MethodDescription& described(const Interface& interface, std::string_view method) {
    return *interface.method(method).description;
}

Texts textsOf(const List<std::string_view>& list) {
    return {list.begin(), list.end()};
}

Items itemsOf(const MethodDescription& description) {
    Items items;
    for (const ItemDescription& item : description.items) {
        items.emplace_back(item.section, textsOf(item.keys));
    }
    return items;
}

TEST(DescriptionsTest, BelongToTheirMethods) {
    for (const Interface* interface : interfaces()) {
        uint32_t code = 0;
        for (const Method& method : interface->methods) {
            EXPECT_EQ(method.description->name, method.name);
            EXPECT_EQ(method.description->code, ++code) << method.name;
            EXPECT_NE(method.description->summary, "") << method.name;
            EXPECT_NE(method.description->resultText, "") << method.name;
        }
    }
}

TEST(DescriptionsTest, ArgumentsAreThoseThatTheCallTakes) {
    for (const Interface* interface : interfaces()) {
        for (const Method& method : interface->methods) {
            size_t words = 0;
            for (const ArgumentDescription& argument : method.description->arguments) {
                const size_t taken = argument.type == "ProjectConfigKey" ? 2 : 1;
                ASSERT_LE(words + taken, method.call.words.size()) << method.name;
                const Word& word = method.call.words[words];
                words += taken;
                if (word.kind != Word::Kind::ENUMERATOR) {
                    EXPECT_TRUE(argument.enumerators.empty()) << method.name;
                    continue;
                }
                std::vector<std::pair<std::string, int64_t>> enumerators;
                for (const Enumerator& each : argument.enumerators) {
                    enumerators.emplace_back(each.name, each.value);
                }
                EXPECT_EQ(enumerators, word.names.rows) << method.name;
            }
            EXPECT_EQ(words, method.call.words.size()) << method.name;
        }
    }
}

TEST(DescriptionsTest, NameTheItemsOfTheProjectService) {
    for (const auto& row : product::kProjectItems) {
        Items items;
        for (uint32_t section = 0; section < row.sections; ++section) {
            Texts keys;
            for (uint32_t key = 0; key < row.keys; ++key) {
                keys.emplace_back(itemOf(row, section, key)->key);
            }
            items.emplace_back(itemOf(row, section, 0)->category, keys);
        }
        EXPECT_EQ(itemsOf(described(projectInterface(), row.method)), items) << row.method;
    }
}

TEST(DescriptionsTest, SayWhichSelectorsTheProjectServiceServes) {
    for (const auto& row : product::kProjectItems) {
        const MethodDescription& description = described(projectInterface(), row.method);
        for (const ArgumentDescription& argument : description.arguments) {
            if (argument.type != "int32_t") {
                continue;
            }
            // The selector is of the sections if there are several, else of the keys.
            const size_t count = row.sections > 1 ? row.sections : row.keys;
            EXPECT_EQ(argument.low, 0) << row.method;
            EXPECT_EQ(argument.high, static_cast<int64_t>(count) - 1) << row.method;
            EXPECT_NE(description.noAnswer, "") << row.method;
        }
    }
}

TEST(DescriptionsTest, NameThePropertiesOfTheFrameworkService) {
    std::map<std::string, Texts> expected;
    for (const auto& row : product::kFrameworkItems) {
        expected[row.method] = row.property == nullptr ? Texts() : Texts{row.property};
        if (row.setter != nullptr) {
            expected[row.setter] = expected[row.method];
        }
    }
    for (const Method& method : frameworkInterface().methods) {
        EXPECT_EQ(textsOf(method.description->properties), expected[std::string(method.name)])
                << method.name;
    }
}

TEST(DescriptionsTest, NameThePropertiesOfTheTvService) {
    std::map<std::string, Texts> expected;
    for (const auto& row : product::kTvFlags) {
        expected[row.method] = expected[row.setter] = {row.key};
    }
    for (const auto& row : product::kTvSystems) {
        expected[row.method] = expected[row.setter] = {row.key};
    }
    for (const Method& method : tvInterface().methods) {
        EXPECT_EQ(textsOf(method.description->properties), expected[std::string(method.name)])
                << method.name;
    }
}

TEST(DescriptionsTest, SayWhichSystemsTheTvServiceAccepts) {
    for (const auto& row : product::kTvSystems) {
        const ArgumentDescription& system = described(tvInterface(), row.setter).arguments[0];
        EXPECT_EQ(system.low, row.least) << row.method;
        EXPECT_EQ(system.high, row.most) << row.method;
    }
}

TEST(DescriptionsTest, DescribeAMethodWhole) {
    const MethodDescription& edid = described(projectInterface(), "getHDMIEdidPath");
    EXPECT_EQ(edid.code, 19U);
    EXPECT_EQ(edid.summary, "The file of an HDMI port's EDID.");
    EXPECT_EQ(edid.details, "The port chooses the section, the version chooses the key.");
    EXPECT_EQ(edid.resultType, "OptionalString");
    EXPECT_EQ(edid.noAnswer, "the port is not 0 to 3");
    ASSERT_EQ(edid.arguments.size(), 2U);
    EXPECT_EQ(edid.arguments[0].name, "port");
    EXPECT_EQ(edid.arguments[0].type, "int32_t");
    EXPECT_EQ(edid.arguments[0].range, "0 to 3");
    EXPECT_EQ(edid.arguments[0].low, 0);
    EXPECT_EQ(edid.arguments[0].high, 3);
    EXPECT_EQ(edid.arguments[0].text, "which port");
    EXPECT_EQ(edid.arguments[1].range, "");
    EXPECT_EQ(edid.arguments[1].low, std::nullopt);
    EXPECT_EQ(edid.arguments[1].high, std::nullopt);
    EXPECT_EQ(edid.arguments[1].enumerators.size(), 3U);
    EXPECT_THAT(textsOf(edid.properties), IsEmpty());

    const MethodDescription& country = described(projectInterface(), "setCountryId");
    EXPECT_EQ(country.arguments[0].range, "a country");
    EXPECT_THAT(textsOf(country.files), ElementsAre("/tvdata/tvsysmap/country_id.bin"));
    EXPECT_EQ(described(projectInterface(), "setAvrOSDName").arguments[0].high, 128);
}

}  // namespace

}  // namespace mlk::ctl
