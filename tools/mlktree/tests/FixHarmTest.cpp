// No mend may cost a set what it reads. Plants what fix mends at every place of sound lines of
// every format, and compares what the service's readers make of each line before and after.

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "host/testing/QuietLog.h"
#include "host/testing/Sanitizers.h"
#include "host/testing/TempDir.h"
#include "tools/mlktree/FileReading.h"
#include "tools/mlktree/Fixes.h"

namespace mlk::tree {

namespace {

constexpr const char* kModel = "tvconfigs/model/a.ini";
constexpr const char* kAudio = "tvconfigs/audio/a.ini";
constexpr const char* kFeatures = "tvconfigs/tv/t.config";
constexpr const char* kCountries = "tvconfigs/c.txt";
constexpr const char* kLanguages = "tvconfigs/l.txt";
constexpr const char* kPlan = "tvconfigs/freqtables/dtv/plan";
constexpr const char* kModels = "tvconfigs/s.ini";
constexpr const char* kCustomer = "tvconfigs/customer.ini";

constexpr const char* kNamesOfFiles =
        "[COUNTRY]\nCOUNTRY_PATH=/tvconfigs/c.txt\n[TV_LANGUAGE]\nLANGUAGE_PATH=/tvconfigs/l.txt\n"
        "[LiveTV]\nTvConfig=/tvconfigs/tv/t.config\n[AUDIO]\n"
        "AUDIO_CONFIG_PATH=/tvconfigs/audio/a.ini\n[FREQTABLE]\n"
        "FREQ_TABLE_PATH=/tvconfigs/freqtables\n";

// What people type without seeing it.
const std::vector<std::string>& slips() {
    static const std::vector<std::string> all = {
            " ",
            "\t",
            "\r",
            "\xEF\xBB\xBF",
            "\xC2\xA0",
            "\xE3\x80\x80",
            "\xE2\x80\x8B",
            "\xC2\xA0\xE2\x80\x8B",
            " \xC2\xA0 ",
            "\xE2\x80\x8F",
            ",",
            "# ",
    };
    return all;
}

/** The fields of a line as a reader has them: "key", "value", and those of a channel. */
using Fields = std::map<std::string, std::string>;

class FixHarmTest : public ::testing::Test {
  protected:
    FixHarmTest() {
        mDir.write(kCustomer, "CUSTOMER_ID=1\nSYS_INI=/tvconfigs/s.ini\n");
        mDir.write(kModels, "Model_1=/tvconfigs/model/a.ini\n");
        mDir.write(kModel, kNamesOfFiles);
        mDir.write(kAudio, "[SPEAKER]\nATV_DELAY = 5\n");
        mDir.write(kFeatures, "persist.vendor.mlk.tv.enable_av=true\n");
        mDir.write(kCountries, "GERMANY,DE\n");
        mDir.write(kLanguages, "German,deu\n");
        mDir.write("tvconfigs/freqtables/country_freq_map.xml",
                   "<COUNTRY_FREQ_MAP><COUNTRY_NAME>GERMANY</COUNTRY_NAME>"
                   "<DTV_ANTENA>plan</DTV_ANTENA></COUNTRY_FREQ_MAP>");
        mDir.write(kPlan, "21, 8000000, 474000, E21, DVB_AUTO\n");
    }

    // Mends the tree once.
    void mendTree() const {
        const Tree tree(mDir.path(), {});
        const Settings settings;
        const TreeProperties properties(mDir.path("data/property"), {});
        const ProductLine line(tree, settings, properties, {});
        for (const MendedFile& file : mend(line)) {
            mDir.write(file.path, file.text);
        }
    }

    // By the number of the line, what the lines say that count.
    std::map<size_t, Fields> read(const std::string& path, FileFormat format) const {
        const Tree tree(mDir.path(), {});
        const std::unique_ptr<FileLines> file = readFile(tree, path, format);
        std::map<size_t, Fields> lines;
        auto channel = file->channels().begin();
        for (const ReadLine& line : file->lines()) {
            const bool isItem = line.use == LineUse::ITEM;
            if (isItem &&
                (file->counts(line) || format == FileFormat::COUNTRY_LIST ||
                 format == FileFormat::LANGUAGE_LIST || format == FileFormat::CHANNEL_PLAN)) {
                Fields& fields = lines[line.number];
                fields["section"] = std::string(line.section);
                fields["key"] = std::string(line.key);
                fields["value"] = std::string(line.value);
                if (format == FileFormat::CHANNEL_PLAN) {
                    fields["key"] = "";
                    fields["channel"] = std::to_string(channel->channel);
                    fields["bandwidth"] = std::to_string(channel->bandwidth);
                    fields["frequency"] = std::to_string(channel->frequency);
                    fields["label"] = std::string(channel->label.data(),
                                                  channel->label.data() + channel->label.size());
                    fields["modulation"] = std::to_string(channel->modulation);
                }
            }
            channel += isItem && format == FileFormat::CHANNEL_PLAN ? 1 : 0;
        }
        return lines;
    }

    // Expects that no line whose field was right has another one after a mend. The fields that are
    // right are those of the sound lines. Returns how many lines fix has mended for the better.
    size_t expectNoHarm(const std::string& path, FileFormat format, const std::string& sound,
                        const std::string& spoilt) const {
        mDir.write(path, sound);
        const std::map<size_t, Fields> right = read(path, format);
        mDir.write(path, spoilt);
        const std::map<size_t, Fields> before = read(path, format);
        mendTree();
        const std::string mended = mDir.read(path);
        const std::map<size_t, Fields> after = read(path, format);
        size_t better = 0;
        for (const auto& [number, fields] : right) {
            const auto was = before.find(number);
            const auto is = after.find(number);
            size_t rightBefore = 0;
            size_t rightAfter = 0;
            for (const auto& [name, text] : fields) {
                const bool wasRight = was != before.end() && was->second.at(name) == text;
                const bool isRight = is != after.end() && is->second.at(name) == text;
                EXPECT_TRUE(isRight || !wasRight)
                        << path << ": " << name << " of line " << number
                        << " is lost: " << ::testing::PrintToString(lineOf(spoilt, number))
                        << " becomes " << ::testing::PrintToString(lineOf(mended, number));
                rightBefore += wasRight ? 1 : 0;
                rightAfter += isRight ? 1 : 0;
            }
            better += rightAfter > rightBefore ? 1 : 0;
        }
        mendTree();
        EXPECT_EQ(mDir.read(path), mended) << "mended twice";
        return better;
    }

    static std::string lineOf(const std::string& text, size_t number) {
        size_t begin = 0;
        for (size_t i = 1; i < number; ++i) {
            begin = text.find('\n', begin) + 1;
        }
        return text.substr(begin, text.find('\n', begin) - begin);
    }

    const mlk::testing::QuietLog mQuiet;
    const mlk::testing::TempDir mDir;
};

// A file of sound lines, and the same with a slip in each.
struct Pair {
    std::string sound;
    std::string spoilt;
    size_t count = 0;

    // Adds a line once for each place of it and slip; the "%" is the number of the line.
    void add(const std::string& before, const std::string& line) {
        const auto numbered = [&](std::string text) {
            for (size_t at = text.find('%'); at != std::string::npos; at = text.find('%')) {
                text.replace(at, 1, std::to_string(count));
            }
            return text;
        };
        for (const std::string& slip : slips()) {
            for (size_t at = 0; at <= line.size(); ++at) {
                ++count;
                sound += numbered(before + line + "\n");
                spoilt += numbered(before + line.substr(0, at) + slip + line.substr(at) + "\n");
            }
        }
    }
};

TEST_F(FixHarmTest, ChannelPlans) {
    Pair pair;
    pair.add("", "27, 8000000, 522000, E27, DVB_AUTO");
    pair.add("", "7 7000000 191500 E7 ATV}");
    pair.add("", "28,8000000,530000,28,DVB_AUTO\r");
    EXPECT_GT(expectNoHarm(kPlan, FileFormat::CHANNEL_PLAN, pair.sound, pair.spoilt), 100U);
}

// Columns of nothing but such characters, and lines of more than one piece.
TEST_F(FixHarmTest, ColumnsAndPiecesOfChannelPlans) {
    const std::string sound =
            "27, 8000000, 522000, E27, DVB_AUTO\n"
            "28, 8000000, 530000, E28, DVB_AUTO              22 8000000 482000\n";
    for (const char* const slip : {"\xC2\xA0", "\xE2\x80\x8B", "\xEF\xBB\xBF"}) {
        const std::string begin(slip);
        (void)expectNoHarm(kPlan, FileFormat::CHANNEL_PLAN, sound,
                           "27, " + begin + ", 522000, 5\n28, 8000000, 530000, E28" + begin +
                                   ", DVB_AUTO           22 8000000 482000\n");
        (void)expectNoHarm(kPlan, FileFormat::CHANNEL_PLAN, sound,
                           begin + ", 8000000, 522000, E27\n");
    }
}

TEST_F(FixHarmTest, Lists) {
    Pair countries;
    countries.add("", "UNITED_KINGDOM,GB");
    countries.add("", "FRANCE");
    countries.add("", ",,SWEDEN,SE");
    EXPECT_GT(expectNoHarm(kCountries, FileFormat::COUNTRY_LIST, countries.sound, countries.spoilt),
              50U);
    Pair languages;
    languages.add("", "Norwegian nynorsk,nno");
    languages.add("",
                  "Fran\xC3\xA7"
                  "ais,fra");
    EXPECT_GT(
            expectNoHarm(kLanguages, FileFormat::LANGUAGE_LIST, languages.sound, languages.spoilt),
            50U);
}

// In some scripts a character that nobody sees joins or parts letters.
TEST_F(FixHarmTest, NamesOfOtherScripts) {
    const std::string names =
            "\xD9\x81\xD8\xA7\xD8\xB1\xD8\xB3\xDB\x8C\xE2\x80\x8C\xD9\x87\xD8\xA7,fas\n"
            "\xE0\xA4\x95\xE0\xA5\x8D\xE2\x80\x8D\xE0\xA4\xB7,hin\n"
            "Fran\xC3\xA7"
            "ais\xC2\xA0(Canada),fra\n";
    EXPECT_EQ(expectNoHarm(kLanguages, FileFormat::LANGUAGE_LIST, names, names), 0U);
    EXPECT_EQ(mDir.read(kLanguages), names);
}

TEST_F(FixHarmTest, ModelFiles) {
    Pair pair;
    pair.sound = pair.spoilt = kNamesOfFiles;
    pair.add("[S%]\n", "m_pPanelName = LC 430");
    pair.add("[S%]\n", "NAME=\"L'\xC3\xA9tage\" # \xC2\xA0 remark");
    pair.add("[S%]\n", "EMPTY=");
    pair.add("[S%]\n", "GROUPS = \"\xC2\xA0\"");
    EXPECT_GT(expectNoHarm(kModel, FileFormat::PROJECT, pair.sound, pair.spoilt), 100U);
    Pair sections;
    sections.sound = sections.spoilt = kNamesOfFiles;
    sections.add("[S]\nA=1\n", "[S%]\nKEY=1");
    EXPECT_GT(expectNoHarm(kModel, FileFormat::PROJECT, sections.sound, sections.spoilt), 3U);
}

TEST_F(FixHarmTest, AudioFiles) {
    Pair pair;
    pair.add("[S%]\n", "ATV_DELAY = 84");
    pair.add("[S%]\n", "NAME=\"a\"; # remark");
    pair.add("[S%]\n", "GROUPS = \xC2\xA0");
    EXPECT_GT(expectNoHarm(kAudio, FileFormat::AUXILIARY, pair.sound, pair.spoilt), 50U);
}

TEST_F(FixHarmTest, TvFeatures) {
    Pair pair;
    pair.add("", "persist.vendor.mlk.tv.k%=true");
    pair.add("", "persist.vendor.mlk.tv.l%=a=b");
    EXPECT_GT(expectNoHarm(kFeatures, FileFormat::TV_FEATURES, pair.sound, pair.spoilt), 100U);
}

TEST_F(FixHarmTest, SystemAndCustomerFiles) {
    Pair pair;
    pair.sound = pair.spoilt = "Model_1=/tvconfigs/model/a.ini\n";
    pair.add("", "Model_10% = \"/tvconfigs/model/a.ini\"");
    EXPECT_GT(expectNoHarm(kModels, FileFormat::SYSTEM, pair.sound, pair.spoilt), 5U);
    mDir.write(kModels, "Model_1=/tvconfigs/model/a.ini\n");
    const std::string line = "SYS_INI = /tvconfigs/s.ini";
    for (const std::string& slip : slips()) {
        for (size_t at = 0; at <= line.size(); at += mlk::testing::kSanitized ? 5 : 1) {
            (void)expectNoHarm(
                    kCustomer, FileFormat::CUSTOMER, "CUSTOMER_ID=1\n" + line + "\n",
                    "CUSTOMER_ID=1\n" + line.substr(0, at) + slip + line.substr(at) + "\n");
        }
    }
}

/** Two lines of one name, of which a slip keeps one from being read. */
struct Rival {
    const char* path;
    FileFormat format;
    std::string start; /**< of the file */
    std::string spoilt;
    std::string other; /**< what counts */
    const char* section;
    const char* key;
};

TEST_F(FixHarmTest, AMendedLineReplacesNoOther) {
    const std::string feature = "persist.vendor.mlk.tv.enable_av";
    const std::string panel = "[PANEL]\n";
    const Rival rivals[] = {
            {kModel, FileFormat::PROJECT, panel, "NAME\t= old\n", "NAME = new\n", "[PANEL]",
             "NAME"},
            {kModel, FileFormat::PROJECT, panel, "NAME\xC2\xA0= old\n", "NAME = new\n", "[PANEL]",
             "NAME"},
            {kModel, FileFormat::PROJECT, "", "[PANEL\xE2\x80\x8B]\nNAME = old\n",
             "[PANEL]\nNAME = new\n", "[PANEL]", "NAME"},
            {kAudio, FileFormat::AUXILIARY, "[SPEAKER]\n", "DELAY\t= 1\n", "DELAY = 2\n",
             "[SPEAKER]", "DELAY"},
            {kFeatures, FileFormat::TV_FEATURES, "", feature + " =false\n", feature + "=true\n", "",
             feature.c_str()},
    };
    for (const Rival& rival : rivals) {
        const std::string names = rival.format == FileFormat::PROJECT ? kNamesOfFiles : "";
        for (const std::string& lines : {rival.spoilt + rival.other, rival.other + rival.spoilt}) {
            const std::string text = names + rival.start + lines + "  # a comment\n";
            mDir.write(rival.path, text);
            const Tree tree(mDir.path(), {});
            const auto value = [&] {
                const auto file = readFile(tree, rival.path, rival.format);
                const ReadLine* const line = file->find(rival.section, rival.key);
                return line != nullptr ? std::string(line->value) : "nothing";
            };
            const std::string before = value();
            mendTree();
            EXPECT_EQ(value(), before) << text;
            // The mend of the comment costs nothing.
            EXPECT_EQ(lineOf(mDir.read(rival.path),
                             static_cast<size_t>(std::count(text.begin(), text.end(), '\n'))),
                      "# a comment");
        }
        mDir.write(rival.path, names);
    }
}

}  // namespace

}  // namespace mlk::tree
