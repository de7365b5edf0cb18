// More mistakes that people make: what editors, merges and habits from elsewhere leave in files.

#include "tools/mlktree/tests/PlantedMistakes.h"
#include "tools/mlktree/tests/PlantedNames.h"

namespace mlk::tree {

namespace {

// Lines that stand in every model file.
constexpr std::string_view kCountryPath = "COUNTRY_PATH    = \"/tvconfigs/country/country_eu.txt\"";

constexpr const char* kRightPath = "/tvconfigs/country/country_eu.txt";

}  // namespace

const std::vector<PlantedMistake>& plantedOddities() {
    static const std::vector<PlantedMistake> mistakes = {
            // Files that are something else.
            {"Utf16Customer", kCustomer, kUtf16, "", "", "utf-16", nullptr, ""},
            {"Utf16System", kSystem, kUtf16, "", "", "utf-16", nullptr, ""},
            {"Utf16Model", kModel, kUtf16, "", "", "utf-16", nullptr, ""},
            {"Utf16Board", kBoard, kUtf16, "", "", "utf-16", nullptr, ""},
            {"Utf16Audio", kPanel, kUtf16, "", "", "utf-16", nullptr, ""},
            {"Utf16Features", kFeatures, kUtf16, "", "", "utf-16", nullptr, ""},
            {"Utf16List", kList, kUtf16, "", "", "utf-16", nullptr, ""},
            {"Utf16Map", kCountries, kUtf16, "", "", "utf-16", nullptr, ""},
            {"Utf16Plan", kPlan, kUtf16, "", "", "utf-16", nullptr, ""},
            {"Utf16Identity", kProjectId, kUtf16, "", "", "utf-16", nullptr, ""},
            {"EmptyModel", kModel, kWhole, "", "", "empty-file", nullptr, ""},
            {"WebPageForModel", kModel, kWhole, "",
             "<!DOCTYPE html>\n<html><body>Log in</body></html>\n", "empty-file", nullptr, ""},
            {"CarriageReturnsAlone", kModel, Planting::REPLACE_EACH, "\n", "\r", "empty-file",
             nullptr, ""},
            {"EmptyBoard", kBoard, kWhole, "", "", "empty-file", nullptr, ""},
            {"EmptyAudio", kPanel, kWhole, "", "", "empty-file", nullptr, ""},
            {"EmptyFeatures", kFeatures, kWhole, "", "", "empty-file", nullptr, ""},
            {"EmptyLanguages", kLanguages, kWhole, "", "", "empty-file", nullptr, ""},
            {"EmptySystem", kSystem, kWhole, "", "", "incomplete-chain", nullptr, ""},
            {"DanglingLink", kPanel, Planting::LINK, "", "panel_old.ini", "missing-file", kModel,
             "AUDIO_CONFIG_PATH "},
            {"LinkToItself", kModel, Planting::LINK, "", "TRQ43_M2_EU.ini", "missing-file", kSystem,
             "TRQ43_M2_EU"},
            // Merges.
            {"ConflictInModel", kModel, kReplace, "THERMAL_OFF ",
             "<<<<<<< HEAD\nTHERMAL_OFF = 112\n=======\nTHERMAL_OFF = 108\n>>>>>>> topic\n#",
             "merge-conflict", nullptr, "<<<<<<<"},
            {"ConflictInSystem", kSystem, kReplace, "Model_4 =",
             "<<<<<<< HEAD\nModel_4 = \"/tvconfigs/model/TRQ50.ini\"\n=======\nModel_4 =",
             "merge-conflict", nullptr, "<<<<<<<"},
            {"ConflictInAudio", kPanel, kReplace, "DTV_DELAY       = 68\n",
             "<<<<<<< HEAD\nDTV_DELAY = 68\n=======\nDTV_DELAY = 72\n>>>>>>> topic\n",
             "merge-conflict", nullptr, "<<<<<<<"},
            {"ConflictInFeatures", kFeatures, kReplace, "persist.vendor.mlk.tv.enable_ci=true\n",
             "<<<<<<< HEAD\npersist.vendor.mlk.tv.enable_ci=true\n=======\n"
             "persist.vendor.mlk.tv.enable_ci=false\n>>>>>>> topic\n",
             "merge-conflict", nullptr, "<<<<<<<"},
            {"ConflictInList", kList, kReplace, "GERMANY,DE\n",
             "<<<<<<< HEAD\nGERMANY,DE\n=======\nGERMANY,D\n>>>>>>> topic\n", "merge-conflict",
             nullptr, "<<<<<<<"},
            {"ConflictInLanguages", kLanguages, kReplace, "ger,German\n",
             "<<<<<<< HEAD\nger,German\n=======\ndeu,German\n>>>>>>> topic\n", "merge-conflict",
             nullptr, "<<<<<<<"},
            {"ConflictInXml", kTvSystems, kReplace,
             "        <Item category=\"[LiveTV]\" key=\"LcnDefault\" value=\"1\"/>\n",
             "<<<<<<< HEAD\n        <Item category=\"[LiveTV]\" key=\"LcnDefault\" value=\"1\"/>\n"
             "=======\n        <Item category=\"[LiveTV]\" key=\"LcnDefault\" value=\"0\"/>\n"
             ">>>>>>> topic\n",
             "merge-conflict", nullptr, "<<<<<<<"},
            {"ConflictInPlan", kPlan, kReplace, "5, 7000000, 177500, E5, DVB_AUTO\n",
             "<<<<<<< HEAD\n5, 7000000, 177500, E5, DVB_AUTO\n=======\n"
             "5, 7000000, 178500, E5, DVB_AUTO\n>>>>>>> topic\n",
             "merge-conflict", nullptr, "<<<<<<<"},
            // Characters of word processors and chats.
            {"TypographicQuotesOfPath", kModel, kReplace, kCountryPath,
             "COUNTRY_PATH    = \xE2\x80\x9C/tvconfigs/country/country_eu.txt\xE2\x80\x9D",
             "lookalike", nullptr, kRightPath},
            {"TypographicQuotesOfName", kModel, kReplace, "\"OSMR-43U60-B2\"",
             "\xE2\x80\x9COSMR-43U60-B2\xE2\x80\x9D", "lookalike", nullptr, "m_pPanelName "},
            {"NoBreakSpaceInKey", kModel, kReplace,
             "COUNTRY_PATH    =", "COUNTRY_PATH\xC2\xA0=", "lookalike", nullptr, kRightPath},
            {"NoBreakSpaceInNumber", kModel, kReplace, "ModeStatus       = 0",
             "ModeStatus       =\xC2\xA0"
             "0",
             "lookalike", nullptr, "ModeStatus "},
            {"InvisibleCharacterInKey", kModel, kReplace, "COUNTRY_PATH ",
             "COUNTRY_PATH\xE2\x80\x8B ", "lookalike", nullptr, kRightPath},
            {"CyrillicLetterInKey", kModel, kReplace, "COUNTRY_PATH ", "\xD0\xA1OUNTRY_PATH ",
             "lookalike", nullptr, kRightPath},
            {"FullWidthEquals", kModel, kReplace,
             "COUNTRY_PATH    =", "COUNTRY_PATH    \xEF\xBC\x9D", "lookalike", nullptr, kRightPath},
            {"MinusSignInDelay", kAvr, kReplace, "= -30",
             "= \xE2\x88\x92"
             "30",
             "lookalike", nullptr, "\xE2\x88\x92"},
            {"FullWidthCommaInList", kList, kReplace, "GERMANY,DE",
             "GERMANY\xEF\xBC\x8C"
             "DE",
             "lookalike", nullptr, "GERMANY"},
            {"FullWidthCommasInPlan", kPlan, kReplace, "5, 7000000, 177500, E5",
             "5\xEF\xBC\x8C"
             "7000000\xEF\xBC\x8C"
             "177500\xEF\xBC\x8C"
             "E5",
             "lookalike", nullptr, "177500"},
            // Symbols of other formats.
            {"SectionInParentheses", kModel, kReplace, "[AUDIO]", "(AUDIO)", "broken-section",
             nullptr, "(AUDIO)"},
            {"SectionInTwoBrackets", kModel, kReplace, "[AUDIO]", "[[AUDIO]]", "broken-section",
             nullptr, "[[AUDIO]]"},
            {"SectionLineForgotten", kModel, kReplace, "[AUDIO]\n", "", "misplaced-key", nullptr,
             "AUDIO_CONFIG_PATH "},
            {"SectionNumberWrong", kModel, kReplace, "[HDMI_EDID_3]", "[HDMI_EDID_5]",
             "misplaced-key", nullptr, "uhd60_p3_1p4"},
            {"SectionCopied", kModel, kReplace, "[HDMI_EDID_3]", "[HDMI_EDID_2]", "key-twice",
             nullptr, ""},
            {"ItemOfNumberedSectionMissing", kModel, kReplace,
             "HDCP_KEY_File     = \"/impdata/hdcp/hdcp_2x.bin\"\n", "", "missing-item", nullptr,
             "[HDCP_KEY_2X]"},
            {"ColonForEquals", kModel, kReplace,
             "COUNTRY_PATH    =", "COUNTRY_PATH    :", "no-equals", nullptr, kRightPath},
            {"ColonBeforeEquals", kModel, kReplace,
             "COUNTRY_PATH    =", "COUNTRY_PATH    :=", "misspelt-key", nullptr, kRightPath},
            {"TwoEquals", kModel, kReplace,
             "COUNTRY_PATH    =", "COUNTRY_PATH    ==", "relative-path", nullptr, kRightPath},
            {"FeatureWithoutItsBeginning", kFeatures, kReplace, "persist.vendor.mlk.tv.enable_ci=",
             "enable_ci=", "misspelt-feature", nullptr, "enable_ci="},
            // Paths.
            {"Backslashes", kModel, kReplace, kRightPath, "\\tvconfigs\\country\\country_eu.txt",
             "relative-path", nullptr, "\\country_eu"},
            {"PathInApostrophes", kModel, kReplace, kCountryPath,
             "COUNTRY_PATH    = '/tvconfigs/country/country_eu.txt'", "relative-path", nullptr,
             kRightPath},
            {"MountPointInPath", kModel, kReplace, kRightPath,
             "/vendor/tvconfigs/country/country_eu.txt", "mount-point", nullptr, "/vendor"},
            {"MountPointOfSystemFile", kCustomer, kReplace, "\"/tvconfigs/system",
             "\"/vendor/tvconfigs/system", "mount-point", nullptr, "/vendor"},
            {"PathOfAComputer", kModel, kReplace, kRightPath,
             "/home/anna/line/tvconfigs/country/country_eu.txt", "mount-point", nullptr, "/home"},
            {"TwoSlashesAtTheStart", kModel, kReplace, kRightPath,
             "//tvconfigs/country/country_eu.txt", "partition-prefix", nullptr, "//tvconfigs"},
            {"EndingForgotten", kModel, kReplace, kRightPath, "/tvconfigs/country/country_eu",
             "missing-file", nullptr, "/country_eu\""},
            {"ModelFolderMisspelt", kSystem, kReplace, "/tvconfigs/model/TRQ50",
             "/tvconfigs/models/TRQ50", "missing-file", nullptr, "/models/"},
            {"SystemFileIsTheCustomerFile", kCustomer, kReplace,
             "/tvconfigs/system/tarnquill_skerry.ini", "/tvconfigs/customer.ini",
             "incomplete-chain", nullptr, ""},
            {"FolderRenamed", "tvconfigs/edid", Planting::MOVE, "", "tvconfigs/edids",
             "missing-file", "tvconfigs/model/TRQ32_S1_EU.ini", "edid/hd_p1_1p4.bin"},
            {"SlashAfterFile", kModel, kReplace, "country_eu.txt\"", "country_eu.txt/\"",
             "missing-file", nullptr, "country_eu.txt/"},
            {"BackslashInPath", kModel, kReplace, kRightPath, "/tvconfigs/country\\country_eu.txt",
             "missing-file", nullptr, "\\country_eu"},
            {"PathOutOfItsPartition", kModel, kReplace, kRightPath,
             "/tvconfigs/../tvconfigs/country/country_eu.txt", "mount-point", nullptr, "/../"},
            {"ModelForFeatures", kModel, kReplace, "/tvconfigs/tv/tv_eu.config",
             "/tvconfigs/model/TRQ43_M2_EU.ini", "other-format", nullptr, "TvConfig "},
            {"KeysForKaraoke", kModel, kReplace, "karaoke/karaoke_home.ini",
             "keys/keys_joystick.ini", "other-format", nullptr, "KARAOKE_CONFIG_PATH"},
            {"LinkOutOfTheTree", "tvconfigs/pq/pq_trq43.bin", Planting::LINK, "", "/bin/sh",
             "outside-link", nullptr, ""},
            {"CountryListForLanguages", kModel, kReplace, "/tvconfigs/language/language_eu.txt",
             kRightPath, "other-format", nullptr, "LANGUAGE_PATH"},
            // Lists, identity, regions.
            {"CountryByItsCode", kList, kReplace, "GERMANY,DE", "DE", "unknown-country", nullptr,
             "DE"},
            {"CountryInItsOwnLanguage", kList, kReplace, "GERMANY", "DEUTSCHLAND",
             "unknown-country", nullptr, "DEUTSCHLAND"},
            {"CountryOfMapByItsCode", kCountries, kReplace, "GERMANY", "DEU", "unknown-country",
             nullptr, "DEU<"},
            {"LanguageTwice", kLanguages, kAppend, "", "ger,German\n", "repeated-language", nullptr,
             ""},
            {"LanguageColumnsSwapped", kLanguages, kReplace, "ger,German", "German,ger",
             "language-name", nullptr, "German,ger"},
            {"CommentInLanguages", kLanguages, kAppend, "", "# more to come\n", "language-name",
             nullptr, "# more"},
            {"KaraokeNumberInHex", kKaraoke, kReplace, "MIC_COUNT       = 1",
             "MIC_COUNT       = 0x1", "karaoke-number", nullptr, "MIC_COUNT"},
            {"DelayMisspelt", kPanel, kReplace, "HDMI_GAME_DELAY = 18", "HDMI_GMAE_DELAY = 18",
             "unlike-other-files", nullptr, "HDMI_GMAE_DELAY"},
            {"AudioSectionInOtherCase", kPanel, kReplace, "[SPEAKER]", "[Speaker]",
             "unlike-other-files", nullptr, "[Speaker]"},
            {"CommentedIndex", kProjectId, kWhole, "", "# PROJECT_ID=3 before\nPROJECT_ID=2\n",
             "commented-keyword", nullptr, "# PROJECT_ID"},
            {"IndexInTwoLines", kProjectId, kWhole, "", "PROJECT_ID=2\nPROJECT_ID=3\n",
             "identity-keyword", nullptr, "PROJECT_ID=3"},
            {"BoardIsAModel", kBoardId, kWhole, "", "BOARD_ID=/tvconfigs/model/TRQ50_M2_NA.ini\n",
             "board-value", nullptr, "BOARD_ID"},
            {"CountryIdIsAName", kCountryId, kWhole, "", "COUNTRY_ID=GERMANY\n", "identity-number",
             nullptr, "GERMANY"},
            {"ItemOfOneTvSystem", kTvSystems, kReplace, "<TvSystem type=\"DVB_WEST\">\n",
             "<TvSystem type=\"DVB_WEST\">\n"
             "        <Item category=\"[LiveTV]\" key=\"DPVR\" value=\"true\"/>\n",
             "uneven-tv-systems", nullptr, "\"DPVR\""},
            {"BlankInValueOfTvSystem", kTvSystems, kReplace, "value=\"off\"", "value=\" off\"",
             "blank-in-element", nullptr, "\" off\""},
            {"ChannelNumberMistyped", kPlan, kReplace, "26, 8000000, 514000", "62, 8000000, 514000",
             "off-raster", nullptr, "62, 8000000, 514000"},
            {"MapOfAnotherRegion", kTvSystems, kReplace, "countries_eu.xml</", "countries_na.xml</",
             "undefined-tv-system", nullptr, "countries_na.xml"},
            {"PlanWithItsFolder", kPlanMap, kReplace, "<DTV_ANTENA>freqtable_eu<",
             "<DTV_ANTENA>dtv/freqtable_eu<", "missing-file", nullptr, "dtv/freqtable_eu"},
    };
    return mistakes;
}

const std::vector<PlantedMistake>& soundVariations() {
    static const std::vector<PlantedMistake> variations = {
            {"CarriageReturnsInModel", kModel, Planting::REPLACE_EACH, "\n", "\r\n", "", nullptr,
             ""},
            {"CarriageReturnsInAudio", kPanel, Planting::REPLACE_EACH, "\n", "\r\n", "", nullptr,
             ""},
            {"CarriageReturnsInPlan", kPlan, Planting::REPLACE_EACH, "\n", "\r\n", "", nullptr, ""},
            {"CarriageReturnsInXml", kCountries, Planting::REPLACE_EACH, "\n", "\r\n", "", nullptr,
             ""},
            {"CarriageReturnsInFeatures", kFeatures, Planting::REPLACE_EACH, "\n", "\r\n", "",
             nullptr, ""},
            {"EmptyLines", kModel, Planting::REPLACE_EACH, "\n", "\n\n", "", nullptr, ""},
            {"EmptyLinesInAudio", kPanel, Planting::REPLACE_EACH, "\n", "\n   \n", "", nullptr, ""},
            {"ForeignRemark", kModel, kReplace, "# Tarnquill",
             "# \xE2\x80\x9EM\xC3\xA4rz\xE2\x80\x9C \xE2\x80\x93 f\xC3\xBCr alle\n# Tarnquill", "",
             nullptr, ""},
            {"ForeignName", kModel, kReplace, "\"TARNQUILL TV\"",
             "\"L\xE2\x80\x99\xC3\xA9"
             "cran\"",
             "", nullptr, ""},
            {"ChineseName", kModel, kReplace, "= Marl",
             "= \xE6\xB5\xB7\xEF\xBC\x88"
             "TV\xEF\xBC\x89",
             "", nullptr, ""},
            {"RussianName", kModel, kReplace, "= Marl",
             "= \"\xD0\xA2\xD0\xB5\xD0\xBB\xD0\xB5\xD0\xB2\xD0\xB8\xD0\xB7\xD0\xBE\xD1\x80\"", "",
             nullptr, ""},
            {"NamesOfLanguages", kLanguages, kWhole, "",
             "English\nFran\xC3\xA7"
             "ais\n\xD0\xA0\xD1\x83\xD1\x81\xD1\x81\xD0\xBA\xD0\xB8\xD0\xB9\n"
             "\xE4\xB8\xAD\xE6\x96\x87\xEF\xBC\x88\xE7\xAE\x80\xE4\xBD\x93\xEF\xBC\x89\n",
             "", nullptr, ""},
            {"SmallModel", kModel, kWhole, "",
             "[PANEL]\nm_pPanelName = \"P40\"\n\n[COUNTRY]\n"
             "COUNTRY_PATH = /tvconfigs/country/country_eu.txt\n\n[BACKLIGHT]\nBL_DUTY_MIN = 5\n",
             "", nullptr, ""},
            {"QuotedBoard", kBoardId, kWhole, "", "BOARD_ID=\"/tvconfigs/board/skerry_b2.ini\"\n",
             "", nullptr, ""},
            {"BlankBeforeBoard", kBoardId, kWhole, "",
             "BOARD_ID= /tvconfigs/board/skerry_b2.ini\r\n", "", nullptr, ""},
            {"BlanksAroundIndex", kProjectId, kWhole, "", "PROJECT_ID = 2", "", nullptr, ""},
            {"SlashAfterFolder", kModel, kReplace, "\"/tvconfigs/freqtables\"",
             "\"/tvconfigs//freqtables/\"", "", nullptr, ""},
            {"BlankBeforeQuote", kModel, kReplace, "country_eu.txt\"", "country_eu.txt \"", "",
             nullptr, ""},
            {"IndexWithGap", kSystem, kReplace, "Model_4", "Model_40", "", nullptr, ""},
    };
    return variations;
}

}  // namespace mlk::tree
