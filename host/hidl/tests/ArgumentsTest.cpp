// Sends values of every kind to another process and back.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <tuple>
#include <vector>

#include "Server.h"
#include "host/testing/HostSet.h"

namespace mlk::test {
namespace {

using ::testing::ElementsAre;

class ArgumentsTest : public ::testing::Test {
  protected:
    std::string echoed(const hidl_string& text) {
        std::string answer = "no answer";
        const auto called = mService->text(text, [&](const hidl_string& s) { answer = s; });
        EXPECT_TRUE(called.isOk()) << called.description();
        return answer;
    }

    testing::HostSet mSet;
    Server mServer;
    sp<IEverything> mService = mServer.service();
};

using Scalars = std::tuple<bool, int8_t, uint8_t, int16_t, uint16_t, int32_t, uint32_t, int64_t,
                           uint64_t, float, double>;

template <typename T>
constexpr T kLeast = std::numeric_limits<T>::lowest();
template <typename T>
constexpr T kMost = std::numeric_limits<T>::max();

TEST_F(ArgumentsTest, ScalarsKeepTheirValue) {
    const Scalars rows[] = {
            {false, 0, 0, 0, 0, 0, 0, 0, 0, 0.0F, 0.0},
            {true, 1, 2, 3, 4, 5, 6, 7, 8, 9.5F, 10.25},
            {true, -1, 200, -2, 60000, -3, 4000000000U, -4, 1ULL << 63U, -0.5F, -1e300},
            {false, kLeast<int8_t>, kLeast<uint8_t>, kLeast<int16_t>, kLeast<uint16_t>,
             kLeast<int32_t>, kLeast<uint32_t>, kLeast<int64_t>, kLeast<uint64_t>, kLeast<float>,
             kLeast<double>},
            {true, kMost<int8_t>, kMost<uint8_t>, kMost<int16_t>, kMost<uint16_t>, kMost<int32_t>,
             kMost<uint32_t>, kMost<int64_t>, kMost<uint64_t>, kMost<float>, kMost<double>},
            {false, 0, 0, 0, 0, 0, 0, 0, 0, std::numeric_limits<float>::infinity(),
             std::numeric_limits<double>::denorm_min()},
    };
    for (const Scalars& sent : rows) {
        Scalars got;
        const auto called = std::apply(
                [&](auto... values) {
                    return mService->scalars(values...,
                                             [&](auto... results) { got = Scalars(results...); });
                },
                sent);
        ASSERT_TRUE(called.isOk()) << called.description();
        EXPECT_EQ(sent, got);
    }
}

TEST_F(ArgumentsTest, NotANumberArrivesAsSuch) {
    bool both = false;
    ASSERT_TRUE(mService->scalars(false, 0, 0, 0, 0, 0, 0, 0, 0, std::nanf(""), std::nan(""),
                                  [&](auto... results) {
                                      const Scalars got(results...);
                                      both = std::isnan(std::get<9>(got)) &&
                                             std::isnan(std::get<10>(got));
                                  })
                        .isOk());
    EXPECT_TRUE(both);
}

TEST_F(ArgumentsTest, EnumerationsTravelUnchecked) {
    for (const int value : {0, 4, 5, 26, 255}) {
        const auto sent = static_cast<Colour>(value);
        const auto bits = static_cast<hidl_bitfield<Colour>>(255 - value);
        int calls = 0;
        ASSERT_TRUE(mService->colour(sent, bits,
                                     [&](Colour c, hidl_bitfield<Colour> m) {
                                         ++calls;
                                         EXPECT_EQ(sent, c);
                                         EXPECT_EQ(bits, m);
                                     })
                            .isOk());
        EXPECT_EQ(calls, 1);
    }
}

TEST_F(ArgumentsTest, TextsKeepEveryByte) {
    const std::string rows[] = {
            "",
            "a",
            std::string("a\0b\0", 4),
            std::string(1, '\0'),
            "\xff\xfe\xc0\x80 no UTF-8",
            std::string(100 * 1024, 'x'),
            std::string(7, 'y'),
            std::string(8, 'z'),
    };
    for (const std::string& sent : rows) {
        EXPECT_EQ(echoed(sent), sent);
    }
}

TEST_F(ArgumentsTest, TextsEndInNul) {
    ASSERT_TRUE(mService->text("four", [](const hidl_string& s) { EXPECT_EQ(s.c_str()[4], '\0'); })
                        .isOk());
    ASSERT_TRUE(mService->text("",
                               [](const hidl_string& s) {
                                   ASSERT_NE(s.c_str(), nullptr);
                                   EXPECT_EQ(s.c_str()[0], '\0');
                               })
                        .isOk());
}

TEST_F(ArgumentsTest, TextOfNullPointerIsEmpty) {
    EXPECT_EQ(echoed(hidl_string(static_cast<const char*>(nullptr))), "");
}

TEST_F(ArgumentsTest, DirectResult) {
    EXPECT_EQ(static_cast<uint32_t>(mService->length("")), 0U);
    EXPECT_EQ(static_cast<uint32_t>(mService->length("seven")), 5U);
}

TEST_F(ArgumentsTest, MatrixKeepsItsPlaces) {
    hidl_array<int16_t, 2, 3> sent;
    for (size_t row = 0; row < 2; ++row) {
        for (size_t column = 0; column < 3; ++column) {
            sent[row][column] = static_cast<int16_t>(row * 1000 + column - 500);
        }
    }
    int calls = 0;
    ASSERT_TRUE(mService->matrix(sent,
                                 [&](const hidl_array<int16_t, 3, 2>& turned) {
                                     ++calls;
                                     for (size_t row = 0; row < 2; ++row) {
                                         for (size_t column = 0; column < 3; ++column) {
                                             EXPECT_EQ(turned[column][row], sent[row][column]);
                                         }
                                     }
                                 })
                        .isOk());
    EXPECT_EQ(calls, 1);
}

TEST_F(ArgumentsTest, ArrayOfTexts) {
    hidl_array<hidl_string, 2> sent;
    sent[0] = "first, and longer than the other";
    std::vector<std::string> got;
    ASSERT_TRUE(mService->names(sent,
                                [&](const hidl_array<hidl_string, 2>& turned) {
                                    got = {turned[0], turned[1]};
                                })
                        .isOk());
    EXPECT_THAT(got, ElementsAre("", "first, and longer than the other"));
}

TEST_F(ArgumentsTest, VectorsOfVectorsOfTexts) {
    const hidl_vec<hidl_vec<hidl_string>> rows[] = {
            {},
            {{}},
            {{""}},
            {{"a", "b"}, {}, {"c", std::string(5000, 'd')}},
    };
    for (const auto& sent : rows) {
        hidl_vec<hidl_vec<hidl_string>> got{{"untouched"}};
        ASSERT_TRUE(mService->nested(sent, [&](const auto& v) { got = v; }).isOk());
        EXPECT_EQ(sent, got);
    }
}

TEST_F(ArgumentsTest, ManySmallTexts) {
    hidl_vec<hidl_vec<hidl_string>> sent(20);
    for (size_t i = 0; i < sent.size(); ++i) {
        sent[i].resize(300);
        for (size_t j = 0; j < 300; ++j) {
            sent[i][j] = std::to_string(i * j);
        }
    }
    hidl_vec<hidl_vec<hidl_string>> got;
    const auto called = mService->nested(sent, [&](const auto& v) { got = v; });
    ASSERT_TRUE(called.isOk()) << called.description();
    EXPECT_EQ(sent, got);
}

TEST_F(ArgumentsTest, EveryAlternativeOfAUnion) {
    std::vector<Choice> rows(5);
    rows[0].none(true);
    rows[1].number(-7);
    rows[2].text("a text");
    rows[3].points({{1, 2}, {3, 4}});
    rows[4].points({});
    for (const Choice& sent : rows) {
        Choice got;
        got.number(99);
        ASSERT_TRUE(mService->choice(sent, [&](const Choice& c) { got = c; }).isOk());
        EXPECT_EQ(sent, got);
    }
}

Record makeRecord(const std::string& name, int number) {
    Record record;
    record.name = name;
    record.path = {{number, number + 1}, {-number, 0}};
    for (size_t i = 0; i < 4; ++i) {
        record.tag[i] = static_cast<uint8_t>(number + static_cast<int>(i));
    }
    record.notes = {"", name + " noted"};
    std::vector<unique_fd> files;
    files.push_back(fileWith(name + " in a file"));
    record.h = handleOf(std::move(files), {number});
    record.m = memoryWith(name + " in memory");
    record.grid[1][2] = static_cast<float>(number) / 4;
    record.c = Colour::BLUE;
    return record;
}

void expectRecord(const Record& got, const std::string& name, int number) {
    EXPECT_EQ(name, got.name);
    ASSERT_EQ(got.path.size(), 2U);
    EXPECT_EQ(got.path[0], (Point{number, number + 1}));
    EXPECT_EQ(got.path[1], (Point{-number, 0}));
    EXPECT_EQ(got.tag[3], static_cast<uint8_t>(number + 3));
    ASSERT_EQ(got.notes.size(), 2U);
    EXPECT_EQ(got.notes[1], name + " noted");
    ASSERT_NE(got.h.getNativeHandle(), nullptr);
    ASSERT_EQ(got.h->numFds, 1);
    ASSERT_EQ(got.h->numInts, 1);
    EXPECT_EQ(contentOf(got.h->data[0]), name + " in a file");
    EXPECT_EQ((&got.h->data[0])[1], number);
    EXPECT_EQ(got.m.name(), "ashmem");
    EXPECT_EQ(got.m.size(), name.size() + 10);
    ASSERT_NE(got.m.handle(), nullptr);
    EXPECT_EQ(contentOf(got.m.handle()->data[0]), name + " in memory");
    EXPECT_EQ(got.grid[1][2], static_cast<float>(number) / 4);
    EXPECT_EQ(got.grid[0][0], 0.0F);
    EXPECT_EQ(got.c, Colour::BLUE);
}

TEST_F(ArgumentsTest, RecordWithEverything) {
    int calls = 0;
    ASSERT_TRUE(mService->record(makeRecord("one", 1),
                                 [&](const Record& got) {
                                     ++calls;
                                     expectRecord(got, "one", 1);
                                 })
                        .isOk());
    EXPECT_EQ(calls, 1);
}

TEST_F(ArgumentsTest, RecordThatIsEmpty) {
    int calls = 0;
    ASSERT_TRUE(mService->record(Record{},
                                 [&](const Record& got) {
                                     ++calls;
                                     EXPECT_EQ(got.name, "");
                                     EXPECT_EQ(got.path.size(), 0U);
                                     EXPECT_EQ(got.h.getNativeHandle(), nullptr);
                                     EXPECT_EQ(got.m.handle(), nullptr);
                                     EXPECT_EQ(got.m.name(), "");
                                 })
                        .isOk());
    EXPECT_EQ(calls, 1);
}

TEST_F(ArgumentsTest, VectorsOfRecords) {
    hidl_vec<Record> sent(3);
    for (int i = 0; i < 3; ++i) {
        sent[static_cast<size_t>(i)] = makeRecord("record " + std::to_string(i), i);
    }
    int calls = 0;
    ASSERT_TRUE(mService->records(sent,
                                  [&](const hidl_vec<Record>& got) {
                                      ++calls;
                                      ASSERT_EQ(got.size(), 3U);
                                      for (int i = 0; i < 3; ++i) {
                                          expectRecord(got[static_cast<size_t>(2 - i)],
                                                       "record " + std::to_string(i), i);
                                      }
                                  })
                        .isOk());
    ASSERT_TRUE(mService->records({},
                                  [&](const hidl_vec<Record>& got) {
                                      ++calls;
                                      EXPECT_EQ(got.size(), 0U);
                                  })
                        .isOk());
    EXPECT_EQ(calls, 2);
}

TEST_F(ArgumentsTest, OnewayCallsKeepTheirOrderWithTheNextCall) {
    std::vector<int32_t> expected;
    for (int32_t i = 0; i < 500; ++i) {
        ASSERT_TRUE(mService->poke(i).isOk());
        expected.push_back(i);
    }
    std::vector<int32_t> got;
    ASSERT_TRUE(mService->poked([&](const hidl_vec<int32_t>& n) { got = n; }).isOk());
    EXPECT_EQ(got, expected);
}

}  // namespace
}  // namespace mlk::test
