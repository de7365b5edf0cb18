#include "bench/ProjectText.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <string_view>

namespace mlk::bench {

namespace {

// The items that the service reads at start, and the one that the measured getter answers. The
// files are those of the sample product line.
struct KnownItem {
    const char* category;
    const char* key;
    const char* value;
};
constexpr KnownItem kKnownItems[] = {
        {"[CLIENT_TYPE_INFO]", "CLIENT_TYPE", "RETAIL"},
        {"[PROJECT_NAME_CFG]", "PROJECT_NAME", "TRQ43-M2"},
        {"[MODEL_REGION_NAME_CFG]", "REGION_NAME", "EUROPE"},
        {"[PANEL]", "m_pPanelName", "OSMR-43U60-B2"},
        {"[PANEL]", "m_pPanelVendor", "Osmerond"},
        {"[AUDIO]", "AUDIO_CONFIG_PATH", "/tvconfigs/audio/panel_osmr_uhd60.ini"},
        {"[AUDIO]", "AUDIO_CONFIG_IC_PATH", "/tvconfigs/audio/ic_pln2104.ini"},
        {"[AUDIO]", "AUDIO_CONFIG_AVR_PATH", "/tvconfigs/audio/avr_default.ini"},
        {"[KARAOKE]", "KARAOKE_CONFIG_PATH", "/tvconfigs/karaoke/karaoke_home.ini"},
        {"[KEY]", "KEY_CONFIG_PATH", "/tvconfigs/keys/keys_joystick.ini"},
        {"[DDCCI]", "CUSTOMER_DDCCI_PATH", "/tvconfigs/ddcci/ddcci_std.ini"},
        {"[LiveTV]", "TvConfig", "/tvconfigs/tv/tv_eu.config"},
        {"[LiveTV]", "inputSource", "TV,AV,HDMI1,HDMI2,HDMI3,USB"},
        {"[LiveTV]", "SubtitleDefault", "off"},
        {"[COUNTRY]", "COUNTRY_PATH", "/tvconfigs/bench/country.txt"},
        {"[COUNTRY]", "tvSysMap", "/tvconfigs/bench/tvsys.xml"},
        {"[COUNTRY]", "TV_SYSTEM", "DVB"},
        {"[TV_LANGUAGE]", "LANGUAGE_PATH", "/tvconfigs/language/language_eu.txt"},
};

constexpr std::array<std::string_view, 24> kSections = {
        "PANEL_POWER", "BACKLIGHT", "HDMI_EDID",  "AMPLIFIER", "TUNER",   "TELETEXT",
        "SATELLITE",   "CEC",       "POWER_LOGO", "STANDBY",   "THERMAL", "USB",
        "NETWORK",     "BT",        "LAUNCHER",   "MEMORY",    "FACTORY", "LED",
        "OVERSCAN",    "PICTURE",   "SOUND",      "IR_FILTER", "GPIO",    "REMOTE"};
constexpr std::array<std::string_view, 32> kWords = {
        "ENABLE", "MODE",   "LIMIT",   "DELAY", "LEVEL", "PATH",  "NAME",    "WIDTH",
        "HEIGHT", "CLOCK",  "CHANNEL", "GAIN",  "RANGE", "INDEX", "COUNT",   "OFFSET",
        "STEP",   "SOURCE", "TARGET",  "GPIO",  "BUS",   "ADDR",  "VENDOR",  "REVISION",
        "MIN",    "MAX",    "DEFAULT", "TABLE", "CURVE", "COLOR", "TIMEOUT", "REPEAT"};
constexpr std::array<std::string_view, 12> kRemarks = {
        "ms",
        "kHz",
        "mV",
        "pixels",
        "from the data sheet",
        "percent",
        "0: never",
        "lines",
        "I2C, 7 bits",
        "as on board B1",
        "1: on",
        "measured on the line, not taken from the drawing"};
constexpr std::array<std::string_view, 8> kFolders = {"pq",  "edid", "eq",   "aq",
                                                      "amp", "logo", "keys", "overscan"};

// A generator that gives the same numbers on every machine.
class Numbers {
  public:
    size_t below(size_t limit) {
        mState = mState * 6364136223846793005U + 1442695040888963407U;
        return static_cast<size_t>(mState >> 33) % limit;
    }
    template <size_t N>
    std::string oneOf(const std::array<std::string_view, N>& words) {
        return std::string(words[below(N)]);
    }

  private:
    uint64_t mState = 20240611;
};

std::string lowered(std::string text) {
    for (char& c : text) {
        if (c >= 'A' && c <= 'Z') {
            c = static_cast<char>(c - 'A' + 'a');
        }
    }
    return text;
}

class Writer {
  public:
    Writer(size_t lines, size_t items) : mLines(lines), mItems(items) {}

    ProjectText write() {
        mFile.text.reserve(std::min(mLines, mItems) * 48);
        line("# Written by the benchmark; a product line's project file in its proportions.");
        for (const KnownItem& known : kKnownItems) {
            if (mCategory != known.category) {
                begin(known.category);
            }
            item(known.key, known.value, 22);
        }
        for (size_t number = 0; !isFull(); ++number) {
            section(number);
        }
        // A file with a given number of lines is filled up with comments, not with half a section.
        while (mLines != kNoLimit && mFile.lines < mLines) {
            line("# End.");
        }
        return std::move(mFile);
    }

    static constexpr size_t kNoLimit = SIZE_MAX;

  private:
    bool isFull() const { return mFile.lines >= mLines || mFile.items.size() >= mItems; }

    void line(const std::string& text) {
        if (mFile.lines >= mLines) {
            return;
        }
        mFile.text += text;
        mFile.text += '\n';
        ++mFile.lines;
    }

    void begin(const std::string& category) {
        line("");
        line(category);
        mCategory = category;
    }

    void section(size_t number) {
        const std::string name =
                std::string(kSections[number % kSections.size()]) + "_" + std::to_string(number);
        begin("[" + name + "]");
        if (mNumbers.below(4) == 0) {
            line("# " + mNumbers.oneOf(kRemarks) + " unless a line says so.");
        }
        const size_t count = 6 + mNumbers.below(9);
        const size_t width = 14 + mNumbers.below(12);
        for (size_t i = 0; i < count && !isFull(); ++i) {
            // The number makes the keys of a section distinct.
            const std::string key = name.substr(0, name.find('_')) + "_" + mNumbers.oneOf(kWords) +
                                    "_" + std::to_string(i);
            item(key, value(), width);
        }
    }

    std::string path() {
        const size_t kind = mNumbers.below(8);
        const char* const partition = kind == 0   ? "/tvdata/"
                                      : kind == 1 ? "/impdata/"
                                                  : "/tvconfigs/";
        const std::string folder = mNumbers.oneOf(kFolders);
        return partition + folder + "/" + folder + "_" + lowered(mNumbers.oneOf(kWords)) + "_" +
               std::to_string(mNumbers.below(1000)) + ".bin";
    }

    std::string value() {
        const size_t kind = mNumbers.below(100);
        if (kind < 40) {
            return std::to_string(mNumbers.below(100000));
        }
        if (kind < 48) {
            char text[8];
            (void)snprintf(text, sizeof text, "0x%04X",
                           static_cast<unsigned>(mNumbers.below(0x10000)));
            return text;
        }
        if (kind < 65) {
            return lowered(mNumbers.oneOf(kWords));
        }
        if (kind < 85) {
            return path();
        }
        if (kind < 92) {
            return mNumbers.oneOf(kSections) + " " + mNumbers.oneOf(kWords);
        }
        if (kind < 97) {
            return "TV,AV,HDMI" + std::to_string(mNumbers.below(5));
        }
        return "";
    }

    void item(const std::string& key, const std::string& value, size_t width) {
        if (isFull()) {
            return;
        }
        std::string text = key;
        text.resize(std::max(width, key.size()), ' ');
        const bool quoted = isPath(value) || value.find(' ') != std::string::npos;
        text += quoted ? " = \"" + value + "\"" : value.empty() ? " =" : " = " + value;
        if (mNumbers.below(4) == 0) {
            text += "  # " + mNumbers.oneOf(kRemarks);
        }
        line(text);
        mFile.items.push_back({mCategory, key, value});
    }

    const size_t mLines;
    const size_t mItems;
    Numbers mNumbers;
    ProjectText mFile;
    std::string mCategory;
};

}  // namespace

ProjectText projectOfLines(size_t lines) {
    return Writer(lines, Writer::kNoLimit).write();
}

ProjectText projectOfItems(size_t items) {
    return Writer(Writer::kNoLimit, items).write();
}

bool isPath(const std::string& value) {
    return !value.empty() && value.front() == '/';
}

}  // namespace mlk::bench
