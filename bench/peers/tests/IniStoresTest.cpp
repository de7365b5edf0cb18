#include "bench/peers/IniStores.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "bench/ProjectText.h"
#include "host/testing/TempDir.h"

namespace mlk::bench {

namespace {

// Most dialects keep quotes, and a comment after a value.
std::string cleaned(std::string value) {
    value = value.substr(0, value.find('#'));
    value.erase(std::remove(value.begin(), value.end(), '"'), value.end());
    value.erase(value.find_last_not_of(' ') + 1);
    return value;
}

std::string textOf(const std::string& text) {
    return text;
}
std::string textOf(const KeyFileStore::Text& text) {
    return text != nullptr ? text.get() : "nothing";
}

Question questionOf(const Item& item) {
    return {item.category, item.category.substr(1, item.category.size() - 2), item.key};
}

template <typename Store>
class IniStoresTest : public ::testing::Test {
  protected:
    const ProjectText project = projectOfItems(3000);
    const testing::TempDir dir;
    const Store store{dir.write("project.ini", project.text),
                      {"/tvdata", "/tvconfigs", "/impdata"}};
};

template <typename Store>
using AskedStoresTest = IniStoresTest<Store>;

using Readers = ::testing::Types<LiteralStore, GetlineStore, InihStore, SimpleIniStore,
                                 KeyFileStore, PropertyTreeStore, MapStore, SortedStore>;
TYPED_TEST_SUITE(IniStoresTest, Readers);

using Asked = ::testing::Types<LiteralStore, MapStore, SortedStore, KeyFileStore>;
TYPED_TEST_SUITE(AskedStoresTest, Asked);

// A store that finds fewer items in the file than ours would have less to do.
TYPED_TEST(IniStoresTest, HoldsAllItems) {
    NamedValues expected;
    for (const Item& item : this->project.items) {
        const Question question = questionOf(item);
        expected[{question.section, question.key}] = item.value;
    }
    NamedValues held = this->store.items();
    for (auto& [name, value] : held) {
        value = cleaned(value);
    }
    EXPECT_EQ(held, expected);
}

TYPED_TEST(AskedStoresTest, AnswersWithTheValue) {
    for (const Item& item : this->project.items) {
        EXPECT_EQ(cleaned(textOf(this->store.getInfo(questionOf(item)))), item.value);
    }
}

TYPED_TEST(IniStoresTest, MissingFileIsNoEmptyStore) {
    const Mounts mounts{"", "", ""};
    EXPECT_ANY_THROW(TypeParam("/nowhere/project.ini", mounts));
}

}  // namespace

}  // namespace mlk::bench
