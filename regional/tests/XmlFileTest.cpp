#include "regional/XmlFile.h"

#include <android/log.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "common/FileLimits.h"
#include "host/testing/LogCapture.h"
#include "host/testing/ReadHook.h"
#include "host/testing/TempDir.h"
#include "regional/TextFile.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

using mlk::testing::LogCapture;
using mlk::testing::ReadHook;
using mlk::testing::TempDir;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StrEq;

class XmlFileTest : public ::testing::Test {
  protected:
    std::string errorOf(const std::string& text) const {
        return errorIn(mDir.write("file.xml", text));
    }
    static std::string errorIn(const std::string& path) {
        const char* const error = XmlFile(path).error();
        return error != nullptr ? error : "none";
    }
    std::vector<std::string> errors() const {
        return mLog.texts(ANDROID_LOG_ERROR, "MlkProjectConfigs");
    }
    static std::string repeat(size_t count, const std::string& text) {
        std::string all;
        for (size_t round = 0; round < count; ++round) {
            all += text;
        }
        return all;
    }

    TempDir mDir;
    LogCapture mLog;
};

TEST_F(XmlFileTest, TextsKeepTheirBlanksAndEntitiesAreResolved) {
    const XmlFile file(mDir.write("file.xml",
                                  "<?xml version=\"1.0\"?><!-- <A/> -->\n<A><B> x&lt;&#65;\n </B>"
                                  "<C/><D><E/></D><F><![CDATA[<&>]]></F><G><!-- r -->g</G></A>"));
    EXPECT_EQ(file.error(), nullptr);
    const auto* const a = file.first("A");
    ASSERT_NE(a, nullptr);
    EXPECT_THAT(textOfChild(*a, "B"), StrEq(" x<A\n "));
    EXPECT_EQ(textOfChild(*a, "C"), nullptr);
    EXPECT_EQ(textOfChild(*a, "D"), nullptr);
    EXPECT_THAT(textOfChild(*a, "F"), StrEq("<&>"));
    EXPECT_THAT(textOfChild(*a, "G"), StrEq("g"));
    EXPECT_EQ(textOfChild(*a, "missing"), nullptr);
    EXPECT_EQ(file.first("B"), nullptr);
    EXPECT_THAT(mLog.lines(), IsEmpty());
}

TEST_F(XmlFileTest, NamesItsErrors) {
    EXPECT_EQ(errorIn(mDir.path("missing.xml")), "XML_ERROR_FILE_NOT_FOUND");
    EXPECT_EQ(errorIn(""), "XML_ERROR_FILE_NOT_FOUND");
    EXPECT_EQ(errorOf(""), "XML_ERROR_EMPTY_DOCUMENT");
    EXPECT_EQ(errorOf("  \n"), "XML_ERROR_EMPTY_DOCUMENT");
    mLog.clear();
    EXPECT_EQ(errorOf("<A>\n<B></A>"), "XML_ERROR_MISMATCHED_ELEMENT");
    EXPECT_THAT(errors(), ElementsAre(mDir.path("file.xml") +
                                      ":2: no well-formed XML: an element that begins here is not "
                                      "closed by a tag of its own name"));
}

TEST_F(XmlFileTest, OpensOnlyRegularFiles) {
    const std::string fifo = mDir.path("fifo");
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    for (const std::string& path : {fifo, mDir.path(), std::string("/dev/zero")}) {
        EXPECT_EQ(errorIn(path), "XML_ERROR_FILE_COULD_NOT_BE_OPENED") << path;
    }
    EXPECT_THAT(errors(), ElementsAre(fifo + ": cannot be read: not a regular file",
                                      mDir.path() + ": cannot be read: not a regular file",
                                      "/dev/zero: cannot be read: not a regular file"));
}

TEST_F(XmlFileTest, RefusesWhatNoPartitionHolds) {
    const std::string path = mDir.write("file.xml", "<A/>");
    ASSERT_EQ(truncate(path.c_str(), 1L << 40), 0);  // sparse
    EXPECT_EQ(errorIn(path), "XML_ERROR_FILE_COULD_NOT_BE_OPENED");
    EXPECT_THAT(errors(), ElementsAre(path + ": cannot be read: larger than 16777216 bytes"));
}

TEST_F(XmlFileTest, DeepNestingIsAnError) {
    EXPECT_EQ(errorOf(repeat(90, "<A>") + repeat(90, "</A>")), "none");
    EXPECT_EQ(errorOf(repeat(1000000, "<A>")), "XML_ELEMENT_DEPTH_EXCEEDED");
}

TEST_F(XmlFileTest, ManyAttributesInOneElementAreRefused) {
    const auto attributes = [](int count, const std::string& quote,
                               const std::string& value = "1") {
        std::string text;
        for (int i = 0; i < count; ++i) {
            text += " a" + std::to_string(i) + "=" + quote + value + quote;
        }
        return text;
    };
    for (const char* quote : {"'", "\""}) {
        EXPECT_EQ(errorOf("<A" + attributes(256, quote) + "/>"), "none") << quote;
        EXPECT_EQ(errorOf("<A" + attributes(257, quote) + "/>"), "XML_ERROR_PARSING") << quote;
    }
    mLog.clear();
    const std::string few = repeat(200, " a='1'");
    std::string most;
    for (int number = 0; number < 256; ++number) {
        most += " a" + std::to_string(number) + "='1'";
    }
    EXPECT_EQ(errorOf("<A" + most + "/>"), "none");
    EXPECT_THAT(errors(), IsEmpty());
    EXPECT_EQ(errorOf("<A" + most + " b='1'/>"), "XML_ERROR_PARSING");
    EXPECT_EQ(errorOf("<R><A" + most + " b='1'/><B c='1'/></R>"), "XML_ERROR_PARSING");
    mLog.clear();
    EXPECT_EQ(errorOf("<A" + most + " b='1'/>"), "XML_ERROR_PARSING");
    EXPECT_THAT(errors(), ElementsAre(mDir.path("file.xml") +
                                      ": more than 256 attributes in an element or 4096 "
                                      "character references in all"));
    mLog.clear();
    EXPECT_EQ(errorOf("<!-- <A " + few + few + " --><B>" + few + few + "</B><![CDATA[<" + few +
                      few + ">]]>"),
              "none")
            << "remarks and texts have no attributes";
    EXPECT_EQ(errorOf(repeat(1000, "<A b='>' c=\"'>\"/>")), "none");
    mLog.clear();
    // A quote that is no part of an attribute turns no value into what is between two values.
    for (const char* const quote : {"<!a \">", "<!a '>", "<?xml \"?>", "<?xml '?>"}) {
        EXPECT_EQ(errorOf(quote + ("<A" + attributes(257, "\"", ">") + "/>")), "XML_ERROR_PARSING");
        EXPECT_EQ(errorOf(quote + ("<A" + attributes(257, "'", ">") + "/>")), "XML_ERROR_PARSING");
    }
    EXPECT_THAT(errors(), Each(HasSubstr(": more than 256 attributes in an element")));
    mLog.clear();
    EXPECT_THAT(errors(), IsEmpty());
}

TEST_F(XmlFileTest, ManyCharacterReferencesAreRefused) {
    EXPECT_EQ(errorOf("<A>" + repeat(4096, "&#65;") + "</A>"), "none");
    EXPECT_EQ(errorOf("<A>" + repeat(4097, "&#65;") + "</A>"), "XML_ERROR_PARSING");
    EXPECT_EQ(errorOf("<A>" + repeat(1000000, "&#") + "</A>"), "XML_ERROR_PARSING");
}

// Texts that begin a construct of XML and never end it.
TEST_F(XmlFileTest, UnfinishedFilesAreErrors) {
    for (const char* const text : {"<", "<A", "<A b", "<A b=", "<A b='", "<A b='x", "<A>x", "<!--",
                                   "<!-- -", "<![CDATA[", "<![CDATA[ ]]", "<?xml", "<!DOCTYPE"}) {
        EXPECT_NE(errorOf(text), "none") << text;
    }
    EXPECT_NE(errorOf(repeat(1000000, "<!--")), "none");
    EXPECT_NE(errorOf(repeat(1000000, "<A '")), "none");
}

// TinyXML-2 ignores document types, so that no declared entity can make a text large.
TEST_F(XmlFileTest, ADeclaredEntityIsNotExpanded) {
    const XmlFile file(mDir.write("file.xml", "<!DOCTYPE A><!ENTITY x \"xxxx\"><A>&x;</A>"));
    EXPECT_EQ(file.error(), nullptr);
    ASSERT_NE(file.first("A"), nullptr);
    EXPECT_THAT(file.first("A")->GetText(), StrEq("&x;"));
}

TEST(TextFileTest, ReadsWhateverTheSize) {
    const TempDir dir;
    for (const size_t size :
         {size_t{0}, size_t{1}, size_t{65536}, size_t{200000}, kMostListBytes}) {
        std::string text(size, 'x');
        std::string read = "before";
        EXPECT_EQ(readTextFile(dir.write("file", text), read), ReadResult::DONE);
        EXPECT_TRUE(read == text) << size;
    }
    LogCapture log;
    std::string read = "before";
    EXPECT_EQ(readTextFile(dir.write("file", std::string(kMostListBytes + 1, 'x')), read),
              ReadResult::UNREADABLE);
    EXPECT_EQ(readTextFile(dir.path("missing"), read), ReadResult::MISSING);
    EXPECT_EQ(read, "before");
}

TEST(TextFileTest, PartOfAFileIsNotTheFile) {
    const TempDir dir;
    LogCapture log;
    const std::string path = dir.write("file", "channel list");
    ReadHook hook([](int descriptor, void* bytes, size_t size) {
        return ReadHook::calls() == 1 ? ReadHook::read(descriptor, bytes, std::min<size_t>(size, 7))
                                      : ReadHook::fail(EIO);
    });
    std::string text = "before";
    EXPECT_EQ(readTextFile(path, text), ReadResult::UNREADABLE);
    EXPECT_EQ(text, "before");
    EXPECT_THAT(log.texts(ANDROID_LOG_ERROR, "MlkProjectConfigs"),
                ElementsAre(path + ": cannot be read: Input/output error"));
}

TEST(TextFileTest, ShortReadIsNotTheEnd) {
    const TempDir dir;
    const std::string path = dir.write("file", "channel list");
    ReadHook hook([](int descriptor, void* bytes, size_t size) {
        return ReadHook::read(descriptor, bytes, std::min<size_t>(size, 5));
    });
    std::string text;
    EXPECT_EQ(readTextFile(path, text), ReadResult::DONE);
    EXPECT_EQ(text, "channel list");
}

TEST(TextFileTest, FileWithoutAnEndIsRefused) {
    const std::string endless = "/proc/self/pagemap";
    if (access(endless.c_str(), R_OK) != 0) {
        GTEST_SKIP() << "this kernel shows no such file";
    }
    LogCapture log;
    std::string text;
    EXPECT_EQ(readTextFile(endless, text), ReadResult::UNREADABLE);
    EXPECT_THAT(log.texts(ANDROID_LOG_ERROR, "MlkProjectConfigs"),
                ElementsAre(endless + ": cannot be read: larger than 16777216 bytes"));
}

TEST(TextFileTest, ReadsFilesThatClaimToBeEmpty) {
    std::string text;
    EXPECT_EQ(readTextFile("/proc/self/status", text), ReadResult::DONE);
    EXPECT_NE(text, "");
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
