#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "host/testing/LogCapture.h"
#include "host/testing/TempDir.h"
#include "tvconfigs/FileConfigEditor.h"
#include "tvconfigs/tests/EditorTexts.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

using ::mlk::testing::LogCapture;
using ::mlk::testing::TempDir;

class FileConfigEditorWriteTest : public ::testing::Test {
  protected:
    const LogCapture mLog;
    const TempDir mDir;

    std::string write(const std::string& content) const { return mDir.write("tv.config", content); }
    std::string file() const { return mDir.read("tv.config"); }
};

TEST_F(FileConfigEditorWriteTest, SetWritesNothingButTheEntries) {
    FileConfigEditor editor(write("# head\n\na=1\r\nno entry\n b = 2\nlast=3").c_str());
    EXPECT_TRUE(editor.Set("a", "x"));
    EXPECT_EQ(file(), "a=x\n b = 2\n");
    EXPECT_EQ(valueOf(editor, "a"), "x");
}

TEST_F(FileConfigEditorWriteTest, SetChangesTheFirstOfEqualKeys) {
    FileConfigEditor editor(write("a=1\nb=2\na=3\n").c_str());
    EXPECT_TRUE(editor.Set("a", "x"));
    EXPECT_EQ(file(), "a=x\nb=2\na=3\n");
}

TEST_F(FileConfigEditorWriteTest, SetNeverAdds) {
    const std::string content = "# kept\na=1\n";
    FileConfigEditor editor(write(content).c_str());
    for (const char* key : {"b", "A", "a ", " a", "", "a=", "# kept\na"}) {
        EXPECT_FALSE(editor.Set(key, "x")) << key;
    }
    EXPECT_EQ(file(), content);
}

TEST_F(FileConfigEditorWriteTest, KeysMayHoldEqualsAndBeEmpty) {
    FileConfigEditor editor(write("a=b=1\n=2\n").c_str());
    EXPECT_TRUE(editor.Set("a=b", ""));
    EXPECT_TRUE(editor.Set("", "3"));
    EXPECT_EQ(file(), "a=b=\n=3\n");
}

TEST_F(FileConfigEditorWriteTest, RefusesNull) {
    const std::string content = "# kept\na=1\n";
    FileConfigEditor editor(write(content).c_str());
    char value[ConfigEditor::kValueSize] = "untouched";
    EXPECT_FALSE(editor.Set(nullptr, "x"));
    EXPECT_FALSE(editor.Set("a", nullptr));
    EXPECT_FALSE(editor.UpdateValue(nullptr, "x"));
    EXPECT_FALSE(editor.UpdateValue("a", nullptr));
    EXPECT_FALSE(editor.Get(nullptr, value));
    EXPECT_FALSE(editor.Get("a", nullptr));
    EXPECT_FALSE(editor.Save(nullptr));
    EXPECT_STREQ(value, "untouched");
    EXPECT_EQ(file(), content);
}

TEST_F(FileConfigEditorWriteTest, UpdateValueDoesNotWrite) {
    FileConfigEditor editor(write("a=1\n").c_str());
    EXPECT_TRUE(editor.UpdateValue("a", "2"));
    EXPECT_FALSE(editor.UpdateValue("b", "2"));
    EXPECT_EQ(valueOf(editor, "a"), "2");
    EXPECT_EQ(file(), "a=1\n");
}

TEST_F(FileConfigEditorWriteTest, GetGivesAtMost91Characters) {
    std::string value;
    while (value.size() < 100) {
        value += std::to_string(value.size()) + ',';
    }
    FileConfigEditor editor(write("a=" + value.substr(0, 91) + "\nb=" + value + '\n').c_str());
    EXPECT_EQ(valueOf(editor, "a"), value.substr(0, 91));
    EXPECT_EQ(valueOf(editor, "b"), value.substr(0, 91));
    // Only Get() shortens the value.
    EXPECT_TRUE(editor.Set("a", "1"));
    EXPECT_EQ(file(), "a=1\nb=" + value + '\n');
}

TEST_F(FileConfigEditorWriteTest, AWrittenLineHas1023CharactersWithItsLineFeed) {
    FileConfigEditor editor(write("a=1\nb=2\n").c_str());
    const std::string most(1020, 'x');
    EXPECT_TRUE(editor.Set("a", most.c_str()));
    EXPECT_EQ(file(), "a=" + most + "\nb=2\n");
}

TEST_F(FileConfigEditorWriteTest, ALongerLineIsCutAndHidesWhatFollows) {
    FileConfigEditor editor(write("a=1\nb=2\nc=3\n").c_str());
    for (const size_t size : {1021U, 1022U, 3000U}) {
        EXPECT_TRUE(editor.Set("b", std::string(size, 'x').c_str()));
        EXPECT_EQ(file(), "a=1\nb=" + std::string(1021, 'x') + '\0' + "c=3\n") << size;
        FileConfigEditor next(mDir.path("tv.config").c_str());
        EXPECT_EQ(entriesOf(next), "a=1\n");
    }
    // The editor that wrote the file still has all entries.
    EXPECT_TRUE(editor.Set("b", "2"));
    EXPECT_EQ(file(), "a=1\nb=2\nc=3\n");
}

TEST_F(FileConfigEditorWriteTest, TheLongestLineThatIsReadIsTooLongToBeWritten) {
    const std::string line = "k=" + std::string(1021, 'x');
    FileConfigEditor editor(write("a=1\n" + line + "\nb=2\n").c_str());
    EXPECT_TRUE(editor.Set("a", "2"));
    EXPECT_EQ(file(), "a=2\n" + line + '\0' + "b=2\n");
}

TEST_F(FileConfigEditorWriteTest, AValueEndsAtItsLineFeed) {
    FileConfigEditor editor(write("a=1\nb=2\n").c_str());
    EXPECT_TRUE(editor.Set("a", "x\ny=1"));
    EXPECT_EQ(file(), "a=x\nb=2\n");
}

TEST_F(FileConfigEditorWriteTest, AnotherFileIsReadButTheFirstIsWritten) {
    FileConfigEditor editor(write("a=1\n").c_str());
    const std::string other = mDir.write("other", "# head\nb=2\n");
    EXPECT_TRUE(editor.Update(other.c_str()));
    EXPECT_EQ(file(), "a=1\n");
    EXPECT_TRUE(editor.Set("b", "3"));
    EXPECT_EQ(file(), "b=3\n");
    EXPECT_EQ(mDir.read("other"), "# head\nb=2\n");
}

TEST_F(FileConfigEditorWriteTest, UsesAtMost127CharactersOfItsPath) {
    const std::string folder = mDir.mkdir("folder") + '/';
    const std::string path = folder + std::string(127 - folder.size(), 'f');
    mDir.write(path.substr(mDir.path().size() + 1), "a=1\n");
    FileConfigEditor editor((path + "rest").c_str());
    EXPECT_EQ(valueOf(editor, "a"), "1");
    EXPECT_TRUE(editor.Set("a", "2"));
    EXPECT_EQ(mDir.read(path.substr(mDir.path().size() + 1)), "a=2\n");
    EXPECT_FALSE(std::filesystem::exists(path + "rest"));
    // Update() uses the whole path.
    mDir.write(path.substr(mDir.path().size() + 1) + "rest", "b=1\n");
    EXPECT_TRUE(editor.Update((path + "rest").c_str()));
    EXPECT_EQ(valueOf(editor, "b"), "1");
}

TEST_F(FileConfigEditorWriteTest, AFailedWriteLeavesTheEntryChanged) {
    FileConfigEditor editor(mDir.write("gone/tv.config", "a=1\n").c_str());
    std::filesystem::remove_all(mDir.path("gone"));
    const size_t lines = mLog.lines().size();
    EXPECT_FALSE(editor.Set("a", "2"));
    EXPECT_EQ(valueOf(editor, "a"), "2");
    EXPECT_EQ(mLog.lines().size(), lines);
}

TEST_F(FileConfigEditorWriteTest, OnlyRegularFilesAreWritten) {
    FileConfigEditor editor(write("a=1\n").c_str());
    const std::string fifo = mDir.path("fifo");
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    EXPECT_FALSE(editor.Save(fifo.c_str()));
    EXPECT_FALSE(editor.Save("/dev/full"));
    EXPECT_FALSE(editor.Save(mDir.path().c_str()));
}

TEST_F(FileConfigEditorWriteTest, TheFileStaysTheSame) {
    const std::string path = write("a=1\n");
    ASSERT_EQ(chmod(path.c_str(), 0640), 0);
    struct stat before {};
    ASSERT_EQ(stat(path.c_str(), &before), 0);
    const std::string link = mDir.path("link");
    ASSERT_EQ(symlink("tv.config", link.c_str()), 0);

    FileConfigEditor editor(link.c_str());
    EXPECT_TRUE(editor.Set("a", "2"));

    struct stat after {};
    ASSERT_EQ(stat(path.c_str(), &after), 0);
    EXPECT_EQ(after.st_ino, before.st_ino);
    EXPECT_EQ(after.st_mode, before.st_mode);
    EXPECT_TRUE(std::filesystem::is_symlink(link));
    EXPECT_EQ(file(), "a=2\n");
}

TEST_F(FileConfigEditorWriteTest, AFileThatWentIsWrittenAnew) {
    FileConfigEditor editor(write("a=1\n").c_str());
    std::filesystem::remove(mDir.path("tv.config"));
    EXPECT_TRUE(editor.Set("a", "2"));
    EXPECT_EQ(file(), "a=2\n");
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
