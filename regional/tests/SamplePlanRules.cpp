#include "regional/tests/SamplePlanRules.h"

#include <algorithm>
#include <functional>
#include <sstream>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

namespace {

constexpr int64_t kMHz = 1000000;
constexpr int64_t kVision = 1250000;  // vision carrier above the lower edge of its channel

// Names of modulations by their codes.
constexpr int32_t kAnalogue = 1;
constexpr int32_t kVsb = 3;
constexpr int32_t kQam = 5;
constexpr int32_t kIsdb = 17;
constexpr int32_t kDvb = 18;
constexpr int32_t kDtmb = 19;

// Channels side by side.
struct Band {
    int first;
    int last;
    int64_t edge;   // lower edge of the first one, in kHz
    int64_t width;  // MHz
    std::string label;
    int numberedFrom = 0;  // what the file adds to the channel's number
};

// Where the signal lies in its channel.
struct Signal {
    int32_t modulation;
    std::function<int64_t(int64_t width)> offset;  // above the lower edge, in Hz
};

const Signal kVisionCarrier{kAnalogue, [](int64_t) { return kVision; }};

Signal centre(int32_t modulation) {
    return {modulation, [](int64_t width) { return width / 2; }};
}
// ISDB-T shifts its carriers by a seventh of a megahertz.
const Signal kIsdbCentre{kIsdb, [](int64_t width) { return width / 2 + 1000000 / 7; }};

std::vector<std::string> linesOf(const std::vector<Band>& bands, const Signal& signal) {
    std::vector<std::string> lines;
    for (const Band& band : bands) {
        const int64_t width = band.width * kMHz;
        for (int channel = band.first; channel <= band.last; ++channel) {
            const int64_t edge = band.edge * 1000 + (channel - band.first) * width;
            // "+" is followed by the number of the channel, "MHz" by its centre.
            std::string label = band.label;
            if (label == "MHz" || label == "DMHz") {
                label = label.substr(0, label.size() - 3) +
                        std::to_string((edge + width / 2) / kMHz);
            } else if (!label.empty() && label.back() == '+') {
                label.pop_back();
                label += std::to_string(channel);
            }
            lines.push_back(lineOf(channel + band.numberedFrom, width, edge + signal.offset(width),
                                   label, signal.modulation));
        }
    }
    return lines;
}

std::vector<Band> join(std::vector<Band> bands, const std::vector<Band>& more) {
    bands.insert(bands.end(), more.begin(), more.end());
    return bands;
}

// UHF channel n of Europe has its centre at 306 + 8 n MHz.
std::vector<Band> europeanUhf(const std::string& label) {
    return {{21, 69, 306000 + 8 * 21000 - 4000, 8, label}};
}

std::vector<Band> americanAir(int first, int last) {
    std::vector<Band> bands;
    const std::vector<Band> all = {{2, 4, 54000, 6, "+"},
                                   {5, 6, 76000, 6, "+"},
                                   {7, 13, 174000, 6, "+"},
                                   {14, 69, 470000, 6, "+"}};
    for (Band band : all) {
        band.edge += 6000L * std::max(first - band.first, 0);
        band.first = std::max(band.first, first);
        band.last = std::min(band.last, last);
        if (band.first <= band.last) {
            bands.push_back(band);
        }
    }
    return bands;
}

const std::vector<Band> kAustralianVhf = {
        {6, 9, 174000, 7, "+"}, {9, 9, 202000, 7, "9A"}, {10, 12, 209000, 7, "+"}};

const std::vector<Band> kChineseLow = {{1, 3, 48500, 8, "DS+"}, {4, 5, 76000, 8, "DS+"}};

std::vector<Band> chineseAir(int last) {
    return {{6, 12, 167000, 8, "DS+"}, {13, 24, 470000, 8, "DS+"}, {25, last, 606000, 8, "DS+"}};
}

const std::vector<Band> kChineseCable = {
        {1, 7, 111000, 8, "Z+", 100}, {6, 12, 167000, 8, "DS+"},      {8, 37, 223000, 8, "Z+", 100},
        {13, 24, 470000, 8, "DS+"},   {38, 42, 566000, 8, "Z+", 100}, {25, 56, 606000, 8, "DS+"}};

// American cable. The channels of the two combs are the harmonics of their fundamental: channel 2
// is the ninth. The standard plan has no channel 1 and keeps 5 and 6 where they are on air.

int harmonicOf(int channel) {
    struct Row {
        int first;
        int last;
        int harmonic;
    };
    constexpr Row kRows[] = {{2, 4, 9},    {1, 1, 12},  {5, 6, 13},   {95, 99, 15},
                             {14, 22, 20}, {7, 13, 29}, {23, 94, 36}, {100, 158, 108}};
    for (const Row& row : kRows) {
        if (channel >= row.first && channel <= row.last) {
            return row.harmonic + channel - row.first;
        }
    }
    return 0;
}

// Carriers in bands of the air traffic are shifted off its frequencies.
int64_t aeronauticalOffset(int64_t carrier) {
    const auto within = [carrier](int64_t from, int64_t to) {
        return carrier >= from * 100000 && carrier < to * 100000;
    };
    if (within(1080, 1180) || within(3286, 3354)) {
        return 25000;
    }
    return within(1180, 1370) || within(2250, 3286) || within(3354, 4000) ? 12500 : 0;
}

int64_t standardCarrier(int channel) {
    const int64_t edge = channel == 5   ? 76 * kMHz
                         : channel == 6 ? 82 * kMHz
                                        : harmonicOf(channel) * 6 * kMHz;
    return edge + kVision + aeronauticalOffset(edge + kVision);
}

int64_t incrementalCarrier(int channel) {
    const int64_t carrier = harmonicOf(channel) * 6 * kMHz + kVision;
    return carrier + std::max<int64_t>(aeronauticalOffset(carrier), 12500);
}

int64_t harmonicCarrier(int channel) {
    return harmonicOf(channel) * int64_t{6000300};
}

// @param plans  letters of the plans: C standard, H HRC, I IRC
std::vector<std::string> americanCable(const std::string& plans, bool digital) {
    const int64_t toCentre = digital ? 3 * kMHz - kVision : 0;
    std::vector<std::string> lines;
    const auto add = [&](char plan, int channel, int64_t carrier) {
        lines.push_back(lineOf(channel, 6 * kMHz, carrier + toCentre,
                               plan + std::to_string(channel), digital ? kQam : kAnalogue));
    };
    for (int channel = 1; channel <= 158; ++channel) {
        if (plans.find('C') != std::string::npos && channel != 1) {
            add('C', channel, standardCarrier(channel));
        }
        if (plans.find('H') != std::string::npos) {
            add('H', channel, harmonicCarrier(channel));
        }
        const bool nearTheStandard = channel != 1 && channel != 5 && channel != 6;
        if (plans == "I" || (plans == "CHI" && !nearTheStandard)) {
            add('I', channel, incrementalCarrier(channel));
        }
    }
    return lines;
}

Plans digitalPlans() {
    return {
            {"dtv/freqtable_eu",
             linesOf(join({{5, 12, 174000, 7, "E+"}}, europeanUhf("E+")), centre(kDvb))},
            {"dtv/freqtable_dvbt_uhf", linesOf(europeanUhf("+"), centre(kDvb))},
            {"dtv/freqtable_dvbt_russia",
             linesOf(join({{6, 12, 174000, 8, "R+"}}, europeanUhf("R+")), centre(kDvb))},
            {"dtv/freqtable_dvbt_australia",
             linesOf(join(kAustralianVhf, {{28, 51, 526000, 7, "+"}}), centre(kDvb))},
            {"dtv/freqtable_dvbt_colombia", linesOf(americanAir(14, 51), centre(kDvb))},
            {"dtv/freqtable_atsc_air", linesOf(americanAir(2, 36), centre(kVsb))},
            {"dtv/freqtable_atsc_air_korea", linesOf(americanAir(14, 51), centre(kVsb))},
            {"dtv/freqtable_isdb", linesOf(americanAir(7, 51), kIsdbCentre)},
            {"dtv/freqtable_isdb_japan", linesOf({{13, 52, 470000, 6, "+"}}, kIsdbCentre)},
            {"dtv/freqtable_dtmb", linesOf(chineseAir(48), centre(kDtmb))},
            {"dtv/freqtable_dtmb_hongkong", linesOf(europeanUhf("+"), centre(kDtmb))},
            {"dtv/freqtable_atsc_cable_auto", americanCable("CHI", true)},
            {"dtv/freqtable_atsc_cable_std", americanCable("C", true)},
            {"dtv/freqtable_atsc_cable_hrc", americanCable("H", true)},
            {"dtv/freqtable_atsc_cable_irc", americanCable("I", true)},
            {"dtv/freqtable_dvbc_germany",
             linesOf(join({{1, 24, 110000, 8, "DMHz", 200}, {21, 41, 302000, 8, "S+", 100}},
                          europeanUhf("K+")),
                     centre(kQam))},
            {"dtv/freqtable_dvbc_others", linesOf({{1, 111, 110000, 8, "MHz"}}, centre(kQam))},
            {"dtv/freqtable_dvbc_china", linesOf(kChineseCable, centre(kQam))},
    };
}

Plans analoguePlans() {
    // The vision carriers of system L follow no rule of channel edges.
    std::vector<std::string> systemL = {lineOf(2, 8 * kMHz, 55750000, "L2", kAnalogue),
                                        lineOf(3, 8 * kMHz, 60500000, "L3", kAnalogue),
                                        lineOf(4, 8 * kMHz, 63750000, "L4", kAnalogue)};
    for (const std::string& line :
         linesOf(join({{5, 10, 174750, 8, "L+"}}, europeanUhf("L+")), kVisionCarrier)) {
        systemL.push_back(line);
    }
    return {
            {"atv/freqtable_atv_bg",
             linesOf(join({{2, 4, 47000, 7, "E+"}, {5, 12, 174000, 7, "E+"}}, europeanUhf("E+")),
                     kVisionCarrier)},
            {"atv/freqtable_atv_i", linesOf(europeanUhf("+"), kVisionCarrier)},
            {"atv/freqtable_atv_dk", linesOf(join({{1, 1, 48500, 8, "R+"},
                                                   {2, 2, 58000, 8, "R+"},
                                                   {3, 5, 76000, 8, "R+"},
                                                   {6, 12, 174000, 8, "R+"}},
                                                  europeanUhf("R+")),
                                             kVisionCarrier)},
            {"atv/freqtable_atv_l", systemL},
            {"atv/freqtable_atv_dk_china",
             linesOf(join(kChineseLow, chineseAir(48)), kVisionCarrier)},
            {"atv/freqtable_atv_m", linesOf(americanAir(2, 69), kVisionCarrier)},
            {"atv/freqtable_atv_m_japan", linesOf({{1, 3, 90000, 6, "J+"},
                                                   {4, 7, 170000, 6, "J+"},
                                                   {8, 12, 192000, 6, "J+"},
                                                   {13, 62, 470000, 6, "J+"}},
                                                  kVisionCarrier)},
            {"atv/freqtable_atv_b_australia", linesOf(join(join({{0, 0, 45000, 7, "+"},
                                                                 {1, 2, 56000, 7, "+"},
                                                                 {3, 3, 85000, 7, "+"},
                                                                 {4, 5, 94000, 7, "+"},
                                                                 {5, 5, 137000, 7, "5A"}},
                                                                kAustralianVhf),
                                                           {{28, 69, 526000, 7, "+"}}),
                                                      kVisionCarrier)},
            {"atv/freqtable_atv_m_cable_auto", americanCable("CHI", false)},
            {"atv/freqtable_atv_m_cable_std", americanCable("C", false)},
            {"atv/freqtable_atv_m_cable_hrc", americanCable("H", false)},
            {"atv/freqtable_atv_m_cable_irc", americanCable("I", false)},
            {"atv/freqtable_atv_bg_cable", linesOf(join({{2, 4, 47000, 7, "E+"},
                                                         {1, 10, 104000, 7, "S+", 100},
                                                         {5, 12, 174000, 7, "E+"},
                                                         {11, 20, 230000, 7, "S+", 100},
                                                         {21, 41, 302000, 8, "S+", 100}},
                                                        europeanUhf("E+")),
                                                   kVisionCarrier)},
            {"atv/freqtable_atv_dk_cable_china",
             linesOf(join(kChineseLow, kChineseCable), kVisionCarrier)},
    };
}

}  // namespace

std::string lineOf(int64_t channel, int64_t bandwidth, int64_t hertz, const std::string& label,
                   int32_t modulation) {
    std::ostringstream line;
    line << channel << ' ' << bandwidth << ' ' << (hertz + 500) / 1000 << ' ' << label << ' '
         << modulation;
    return line.str();
}

Plans samplePlans() {
    Plans plans = digitalPlans();
    plans.merge(analoguePlans());
    return plans;
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
