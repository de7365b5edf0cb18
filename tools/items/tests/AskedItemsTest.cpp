// The items that the service asks for are those of the table. This part of the tests is left out of
// a build with link-time optimisation, which decides about the calls of the parser before the
// linker does.

#include <gtest/gtest.h>

#include <iterator>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "projectconfigs/ProjectParser.h"
#include "tools/items/tests/ServicesOnSet.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/** The names of the items that were asked for since the last clear(). */
class Asked {
  public:
    using Names = std::set<std::pair<std::string, std::string>>;

    static Asked& get() {
        static Asked asked;
        return asked;
    }
    void clear() {
        const std::lock_guard<std::mutex> lock(mMutex);
        mNames.clear();
    }
    void add(std::string_view section, std::string_view key) {
        const std::lock_guard<std::mutex> lock(mMutex);
        mNames.emplace(section, key);
    }
    Names names() {
        const std::lock_guard<std::mutex> lock(mMutex);
        return mNames;
    }

  private:
    std::mutex mMutex;
    Names mNames;
};

// The linker has every call of ProjectParser::getInfo and getInfosByCategory go to the first of
// each two, which calls the other one (--wrap in CMakeLists.txt).
#define MLK_PARSER "_ZNK6vendor6morlak10mlkconfigs4V1_014implementation13ProjectParser"
#define MLK_GET_INFO MLK_PARSER "7getInfoB5cxx11ERKNS3_9ConfigKeyE"
#define MLK_GET_INFOS \
    MLK_PARSER        \
    "18getInfosByCategoryERKNSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEE"

std::string heardInfo(const ProjectParser* parser,
                      const ConfigKey& key) asm("__wrap_" MLK_GET_INFO);
std::string realInfo(const ProjectParser* parser, const ConfigKey& key) asm("__real_" MLK_GET_INFO);
std::map<std::string, std::string> heardInfos(
        const ProjectParser* parser, const std::string& category) asm("__wrap_" MLK_GET_INFOS);
std::map<std::string, std::string> realInfos(
        const ProjectParser* parser, const std::string& category) asm("__real_" MLK_GET_INFOS);

std::string heardInfo(const ProjectParser* parser, const ConfigKey& key) {
    Asked::get().add(key.category, key.key);
    return realInfo(parser, key);
}

std::map<std::string, std::string> heardInfos(const ProjectParser* parser,
                                              const std::string& category) {
    Asked::get().add(category, "any");
    return realInfos(parser, category);
}

namespace {

using mlk::ctl::Interface;
using mlk::ctl::Method;

class AskedItems : public ServicesOnSet {};

/** Every value of a word of a call that may matter. */
std::vector<std::string> valuesOf(const mlk::ctl::Word& word) {
    switch (word.kind) {
        case mlk::ctl::Word::Kind::TEXT:
            return {kClients};
        case mlk::ctl::Word::Kind::FLAG:
            return {"true"};
        case mlk::ctl::Word::Kind::NUMBER:
            return {"0", "1", "2", "3"};
        case mlk::ctl::Word::Kind::ENUMERATOR:
            break;
    }
    std::vector<std::string> names;
    for (const auto& [name, value] : word.names.rows) {
        names.push_back(name);
    }
    return names;
}

TEST_F(AskedItems, AreThoseOfTheTable) {
    std::string lines;
    for (const KnownItem& row : kKnownItems) {
        lines += lineOf(row, valueFor(row));
    }
    Asked::get().clear();
    const auto services = start(lines);
    size_t calls = 0;
    for (const Interface* interface : mlk::ctl::interfaces()) {
        for (const Method& method : interface->methods) {
            // All combinations of the values of all arguments.
            std::vector<std::vector<std::string>> combinations(1);
            for (const mlk::ctl::Word& word : method.call.words) {
                std::vector<std::vector<std::string>> longer;
                for (const auto& combination : combinations) {
                    for (const std::string& value : valuesOf(word)) {
                        longer.push_back(combination);
                        longer.back().push_back(value);
                    }
                }
                combinations = std::move(longer);
            }
            for (const auto& combination : combinations) {
                call(*interface, method, combination);
                ++calls;
            }
        }
    }
    EXPECT_GT(calls, 132U);
    Asked::Names known;
    for (const KnownItem& row : kKnownItems) {
        known.emplace(row.name.category, row.name.key);
    }
    EXPECT_EQ(known.size(), std::size(kKnownItems));
    Asked::Names asked = Asked::get().names();
    const auto isClients = [](const auto& name) { return name.first == kClients; };
    for (auto name = asked.begin(); name != asked.end();) {
        name = isClients(*name) ? asked.erase(name) : std::next(name);
    }
    EXPECT_EQ(asked, known);
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
