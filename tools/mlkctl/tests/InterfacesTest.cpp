// Compares the tables with the interfaces' definition, and every row with the call that it makes.

#include <gmock/gmock.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <regex>

#include "tools/mlkctl/CountryNames.h"
#include "tools/mlkctl/tests/Harness.h"

namespace mlk::ctl {

namespace {

using testing::ElementsAreArray;

std::string definition(const std::string& file) {
    const char* tree = getenv("MLK_SOURCE_DIR");
    std::ifstream stream((tree == nullptr ? "." : tree) +
                         std::string("/service/interfaces/mlkconfigs/1.0/") + file + ".hal");
    EXPECT_TRUE(stream) << file;
    const std::string text{std::istreambuf_iterator<char>(stream), {}};
    static const std::regex comment(R"(/\*([^*]|\*[^/])*\*/)");
    return std::regex_replace(text, comment, "");
}

// The enumerators of a type, in declared order, as "NAME=VALUE".
std::vector<std::string> enumerators(const std::string& type) {
    const std::string types = definition("types");
    std::smatch body;
    EXPECT_TRUE(
            std::regex_search(types, body, std::regex("enum " + type + R"( *:[^{]*\{([^}]*)\})")))
            << type;
    std::vector<std::string> names;
    static const std::regex row(R"((\w+) *= *(\d+))");
    const std::string text = body[1];
    for (std::sregex_iterator it(text.begin(), text.end(), row), end; it != end; ++it) {
        names.push_back((*it)[1].str() + '=' + (*it)[2].str());
    }
    return names;
}

// Adds the words of a parameter, "int32_t cableType", in the form of the client's table.
void addWords(const std::string& type, const std::string& name, std::vector<std::string>* words) {
    if (type == "ProjectConfigKey") {
        words->insert(words->end(), {"text CATEGORY", "text KEY"});
        return;
    }
    std::string placeholder = std::regex_replace(name, std::regex("([a-z])([A-Z])"), "$1_$2");
    for (char& letter : placeholder) {
        letter = static_cast<char>(toupper(letter));
    }
    const std::map<std::string, std::string> kinds = {
            {"int32_t", "number "}, {"string", "text "}, {"bool", "flag "}};
    const auto kind = kinds.find(type);
    if (kind != kinds.end()) {
        words->push_back(kind->second + placeholder);
        return;
    }
    std::string all;
    for (const std::string& enumerator : enumerators(type)) {
        all += ' ' + enumerator;
    }
    words->push_back("one of" + all + " as " + placeholder);
}

std::string wordsOf(const Method& method) {
    std::vector<std::string> words;
    for (const Word& word : method.call.words) {
        std::string all;
        for (const auto& [name, number] : word.names.rows) {
            all += ' ' + name + '=' + std::to_string(number);
        }
        switch (word.kind) {
            case Word::Kind::TEXT:
                words.push_back("text " + word.name);
                break;
            case Word::Kind::NUMBER:
                words.push_back("number " + word.name);
                break;
            case Word::Kind::FLAG:
                words.push_back("flag " + word.name);
                break;
            case Word::Kind::ENUMERATOR:
                words.push_back("one of" + all + " as " + word.name);
                break;
        }
    }
    return std::string(method.name) + ": " + testing::PrintToString(words);
}

std::vector<std::string> definedMethods(const std::string& interface) {
    const std::string text = definition(interface);
    static const std::regex methodForm(R"((\w+)\(([^)]*)\)\s*generates)");
    static const std::regex argumentForm(R"((\w+)\s+(\w+))");
    std::vector<std::string> methods;
    for (std::sregex_iterator it(text.begin(), text.end(), methodForm), end; it != end; ++it) {
        std::vector<std::string> words;
        const std::string arguments = (*it)[2];
        for (std::sregex_iterator one(arguments.begin(), arguments.end(), argumentForm); one != end;
             ++one) {
            addWords((*one)[1], (*one)[2], &words);
        }
        methods.push_back((*it)[1].str() + ": " + testing::PrintToString(words));
    }
    return methods;
}

class InterfaceTest : public testing::TestWithParam<std::string> {};

TEST_P(InterfaceTest, HasTheDefinedMethodsAndNoneElse) {
    const std::string& name = GetParam();
    std::vector<std::string> rows;
    for (const Method& method : interfaceOf(name).methods) {
        rows.push_back(wordsOf(method));
    }
    EXPECT_THAT(rows, ElementsAreArray(definedMethods(name)));
    EXPECT_FALSE(rows.empty());
}

// An argument for a word, and what the method sees of it.
std::string argumentFor(const Word& word, size_t index) {
    switch (word.kind) {
        case Word::Kind::TEXT:
            return "text " + std::to_string(index);
        case Word::Kind::NUMBER:
            return std::to_string(-100 - static_cast<int>(index));
        case Word::Kind::FLAG:
            return index % 2 == 0 ? "true" : "false";
        case Word::Kind::ENUMERATOR:
            break;
    }
    return std::to_string(4'000'000'000U + index);
}

TEST_P(InterfaceTest, EveryRowCallsItsMethod) {
    const Interface& interface = interfaceOf(GetParam());
    Script script;
    Services services(finderOf(script));
    for (const Method& method : interface.methods) {
        std::vector<std::string> expected = {std::string(method.name)};
        std::vector<Argument> arguments;
        for (size_t i = 0; i < method.call.words.size(); ++i) {
            expected.push_back(argumentFor(method.call.words[i], i));
            arguments.push_back(Argument::ofCommandLine(expected.back()));
        }
        EXPECT_NE(services.call(interface, method, arguments, Form::JSON), "") << method.name;
        EXPECT_EQ(script.calls.back(), expected);
    }
    EXPECT_EQ(script.calls.size(), interface.methods.size());
}

INSTANTIATE_TEST_SUITE_P(All, InterfaceTest,
                         testing::Values("IMlkProjectConfigs", "IMlkTvConfigs",
                                         "IMlkFrameworkConfigs"),
                         [](const auto& row) { return row.param; });

TEST(InterfacesTest, ThereAreThree) {
    EXPECT_EQ(interfaces().size(), 3U);
    EXPECT_EQ(projectInterface().methods.size(), 52U);
    EXPECT_EQ(tvInterface().methods.size(), 55U);
    EXPECT_EQ(frameworkInterface().methods.size(), 25U);
}

TEST(InterfacesTest, OnlyFilesAreBytes) {
    std::vector<std::string> withBytes;
    for (const Interface* interface : interfaces()) {
        for (const Method& method : interface->methods) {
            if (method.call.hasBytes) {
                withBytes.emplace_back(method.name);
            }
        }
    }
    EXPECT_THAT(withBytes, testing::ElementsAre("getTvFile", "getVendorPartitionFile"));
}

TEST(InterfacesTest, CountriesTakeTheNamesThatThereAre) {
    for (const char* method : {"setCountryId", "getFreqTableList"}) {
        const Word& country = projectInterface().method(method).call.words[0];
        EXPECT_EQ(country.name, "COUNTRY");
        EXPECT_EQ(country.names.rows, countryNames().rows);
        EXPECT_STREQ(country.names.what, "a country's name");
    }
    EXPECT_EQ(countryNames().rows.size(), 186U);
    using Row = std::pair<std::string, int64_t>;
    EXPECT_THAT(countryNames().rows,
                testing::IsSupersetOf({Row{"DEFAULT", -1}, Row{"ANDORRA", 0}, Row{"GERMANY", 14},
                                       Row{"USA", 44}, Row{"SAMOA", 160}, Row{"MALI", 162},
                                       Row{"PAPUA_NEW_GUINEA", 185}}));
}

}  // namespace

}  // namespace mlk::ctl
