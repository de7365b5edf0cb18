#include "tools/mlktree/Progress.h"

#include <gmock/gmock.h>

#include <mutex>
#include <ostream>
#include <streambuf>

#include "host/testing/Eventually.h"

namespace mlk::tree {

namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::StartsWith;

// Collects what one thread writes while another looks.
class SharedText : public std::streambuf {
  public:
    std::string text() const {
        const std::lock_guard<std::mutex> lock(mMutex);
        return mText;
    }

  protected:
    int_type overflow(int_type character) override {
        const std::lock_guard<std::mutex> lock(mMutex);
        mText += traits_type::to_char_type(character);
        return character;
    }

  private:
    mutable std::mutex mMutex;
    std::string mText;
};

TEST(ProgressTest, TellsWhatTakesLongAndRemovesTheLine) {
    SharedText shown;
    std::ostream stream(&shown);
    Progress progress(stream, true);
    progress.now("reading the tree");
    EXPECT_TRUE(mlk::testing::eventually([&] { return !shown.text().empty(); }));
    EXPECT_TRUE(
            mlk::testing::eventually([&] { return shown.text().find(" s") != std::string::npos; }));
    EXPECT_THAT(shown.text(), StartsWith("\r\033[Kmlktree: reading the tree, 1 s"));
    progress.now("checking the tree");
    EXPECT_TRUE(mlk::testing::eventually(
            [&] { return shown.text().find("checking the tree") != std::string::npos; }));
    progress.stop();
    EXPECT_THAT(shown.text(), EndsWith("\r\033[K"));
    progress.stop();
}

TEST(ProgressTest, IsSilentWithoutATerminal) {
    SharedText shown;
    std::ostream stream(&shown);
    {
        Progress progress(stream, false);
        progress.now("reading the tree");
    }
    EXPECT_EQ(shown.text(), "");
}

TEST(ProgressTest, EndsAtOnceIfTheWorkIsShort) {
    SharedText shown;
    std::ostream stream(&shown);
    { const Progress progress(stream, true); }
    EXPECT_THAT(shown.text(), ::testing::AnyOf("", HasSubstr("\033[K")));
}

}  // namespace

}  // namespace mlk::tree
