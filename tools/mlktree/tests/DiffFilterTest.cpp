// The options that say which sets mean the same sets of a tree, of a snapshot of all of it, and of
// a snapshot that was taken of these sets.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "host/testing/QuietLog.h"
#include "host/testing/TempDir.h"
#include "tools/mlktree/tests/Harness.h"

namespace mlk::tree {

namespace {

using ::testing::HasSubstr;
using Words = std::vector<std::string>;

const std::string kA = "tvconfigs/customer.ini";
const std::string kB = "tvconfigs/customer_b.ini";

/** Two customers, whose models and boards name different countries. */
class DiffFilterTest : public ::testing::Test {
  protected:
    DiffFilterTest() {
        mDir.write(kA, "CUSTOMER_ID=1\nSYS_INI=/tvconfigs/s.ini\n");
        mDir.write("tvconfigs/s.ini",
                   "Model_1=/tvconfigs/model/1.ini\nModel_2=/tvconfigs/model/2.ini\n");
        mDir.write(kB, "CUSTOMER_ID=2\nSYS_INI=/tvconfigs/sb.ini\n");
        mDir.write("tvconfigs/sb.ini", "Model_2=/tvconfigs/model/b2.ini\n");
        writeNaming("tvconfigs/model/1.ini", "one", "GERMANY\nFRANCE\n");
        writeNaming("tvconfigs/model/2.ini", "two", "SWEDEN\n");
        writeNaming("tvconfigs/model/b2.ini", "b", "ITALY\nSWEDEN\n");
        writeNaming("tvconfigs/board/x.ini", "x", "SPAIN\n");
        mDir.write("tvconfigs/board/y.ini", "[Y]\ny=1\n");
        mDir.write("tvconfigs/other/z.ini", "[Z]\nz=1\n");
    }

    // A model or board and the list of countries that it names.
    void writeNaming(const std::string& path, const std::string& name,
                     const std::string& countries) const {
        mDir.write(path, "[COUNTRY]\nCOUNTRY_PATH=/tvconfigs/" + name +
                                 ".txt\n[PANEL]\nname=" + name + "\n");
        mDir.write("tvconfigs/" + name + ".txt", countries);
    }

    std::string snapshot(const std::string& name, Words options) const {
        const std::string path = mOut.path(name + ".json");
        options.insert(options.begin(), {"snapshot", mDir.path(), "-o", path});
        const Outcome outcome = runMlktree(options);
        EXPECT_EQ(outcome.status, 0) << outcome.err;
        return path;
    }
    static Outcome diff(const std::string& a, const std::string& b, Words options) {
        options.insert(options.begin(), {"diff", a, b});
        return runMlktree(options);
    }

    const testing::QuietLog mQuiet;
    const testing::TempDir mDir;
    const testing::TempDir mOut;
};

const std::vector<Words>& filters() {
    static const std::vector<Words> all = {
            {"--model", "1"},
            {"--model", "2"},
            {"--board", "x.ini"},
            {"--board", "tvconfigs/board/y.ini"},
            {"--board", "none"},
            {"--board", "tvconfigs/other/z.ini"},
            {"--country", "SWEDEN"},
            {"--country", "FIJI"},
            {"--customer", kA},
            {"--customer", kB},
            {"--customer", "./tvconfigs//customer_b.ini"},
            {"--customer", kA, "--customer", kB},
            {"--model", "2", "--customer", kA},
            {"--model", "2", "--customer", kB, "--board", "y.ini"},
            {"--model", "2", "--board", "none", "--country", "FIJI"},
            {"--board", "tvconfigs/other/z.ini", "--country", "GERMANY", "--customer", kB},
    };
    return all;
}

// A snapshot that was taken with options has the sets that the options choose later.
TEST_F(DiffFilterTest, TheSameTreeHasNoDifference) {
    const std::string& tree = mDir.path();
    for (const Words& filter : filters()) {
        const bool isOfA = std::find(filter.begin(), filter.end(), "--customer") == filter.end();
        const Words customers = isOfA ? Words() : Words{"--customer", kA, "--customer", kB};
        const std::string some = snapshot("some", filter);
        const std::string whole = snapshot("whole", customers);
        Words withBoth = customers;
        if (isOfA) {
            withBoth = filter;
        } else {
            for (size_t i = 0; i + 1 < filter.size(); i += 2) {
                if (filter[i] != "--customer") {
                    withBoth.insert(withBoth.end(), {filter[i], filter[i + 1]});
                }
            }
        }
        const std::string ofBoth = snapshot("both", withBoth);
        Words sides = {tree, some, ofBoth};
        // A whole snapshot knows nothing of a board or a country that its tree does not name.
        const auto has = [&](const char* word) {
            return std::find(filter.begin(), filter.end(), word) != filter.end();
        };
        const bool isUnnamed = has("none") || has("FIJI") || has("tvconfigs/other/z.ini");
        if (!isUnnamed) {
            sides.push_back(whole);
        }
        for (const std::string& a : sides) {
            for (const std::string& b : sides) {
                const Outcome outcome = diff(a, b, filter);
                EXPECT_EQ(outcome.out + outcome.err, "no difference\n")
                        << a << " " << b << " " << ::testing::PrintToString(filter);
                EXPECT_EQ(outcome.status, 0);
            }
        }
        if (isUnnamed) {
            EXPECT_THAT(diff(tree, whole, filter).err, HasSubstr(": neither side has such a set"))
                    << ::testing::PrintToString(filter);
        }
    }
}

// What changes in the sets that are compared is told, whichever form either side has.
TEST_F(DiffFilterTest, TheSameChangeIsTold) {
    const Words filter = {"--model", "2"};
    const Words before = {snapshot("some_before", filter), snapshot("whole_before", {})};
    writeNaming("tvconfigs/model/2.ini", "two", "SWEDEN\nNORWAY\n");
    mDir.write("tvconfigs/one.txt", "GERMANY\n");
    const Words after = {snapshot("some_after", filter), snapshot("whole_after", {}), mDir.path()};
    for (const std::string& a : before) {
        for (const std::string& b : after) {
            const Outcome outcome = diff(a, b, filter);
            EXPECT_EQ(outcome.status, 1);
            EXPECT_THAT(outcome.out, HasSubstr("  country NORWAY\n"));
            EXPECT_THAT(outcome.out, HasSubstr("  countries NORWAY\n"));
            // No set can be in France any more, which only the other model's list has named.
            EXPECT_THAT(outcome.out, HasSubstr("  country FRANCE\n"));
            EXPECT_THAT(outcome.out, HasSubstr("\n3 differences\n"));
        }
    }
}

// Two boards may share a name. Alone, it is that of the usual folder.
TEST_F(DiffFilterTest, ABoardKeepsItsNameInASnapshotOfIt) {
    writeNaming("impdata/x.ini", "other_x", "SPAIN\n");
    mDir.write("impdata/board_id.bin", "BOARD_ID=/impdata/x.ini\n");
    const std::string whole = snapshot("whole", {});
    for (const char* const board : {"x.ini", "tvconfigs/board/x.ini", "impdata/x.ini"}) {
        const Words filter = {"--board", board};
        const std::string some = snapshot("some", filter);
        for (const std::string& other : {whole, mDir.path()}) {
            EXPECT_EQ(diff(some, other, filter).out, "no difference\n") << board;
            EXPECT_EQ(diff(other, some, filter).out, "no difference\n") << board;
        }
    }
}

// A customer that one side lacks is one difference with its models; its countries go with it.
TEST_F(DiffFilterTest, ACustomerOfOneSideTakesItsCountriesAlong) {
    const std::string ofA = snapshot("a", {});
    const Outcome outcome = diff(ofA, mDir.path(), {"--customer", kB});
    EXPECT_THAT(outcome.out, HasSubstr("  tvconfigs/customer_b.ini\n    + 2  "));
    EXPECT_THAT(outcome.out, HasSubstr("  model 2\n    + /tvconfigs/model/b2.ini  "));
    EXPECT_THAT(outcome.out, HasSubstr("\n2 differences\n"));
}

}  // namespace

}  // namespace mlk::tree
