// Rules about the channels of a plan.

#include <algorithm>
#include <iterator>
#include <limits>
#include <map>
#include <set>
#include <tuple>

#include "regional/RegionalNames.h"
#include "tools/mlktree/CountryBlocks.h"
#include "tools/mlktree/FolderFiles.h"
#include "tools/mlktree/Nearest.h"
#include "tools/mlktree/Texts.h"
#include "tools/mlktree/rules/Families.h"
#include "tools/mlktree/rules/FindingGroups.h"
#include "tools/mlktree/rules/Regional.h"
#include "tools/mlktree/rules/RegionalPlan.h"

namespace mlk::tree {

namespace {

namespace product = vendor::morlak::mlkconfigs::V1_0::implementation;
namespace element = product::element;

bool isDigitalElement(std::string_view name) {
    return name == element::kDtvAntenna || name == element::kDtvCable;
}

bool isPlanElement(std::string_view name) {
    return isDigitalElement(name) || name == element::kAtvAntenna || name == element::kAtvCable;
}

void checkEmpty(const ProductLine& line, Reporter& reporter) {
    for (const FileLines* const plan : plansOf(line)) {
        // Lines that are ignored or lost have findings of their own.
        const auto isLost = [](const ReadLine& read) {
            return read.hasNul || (read.use == LineUse::IGNORED && !trimmed(read.text).empty());
        };
        if (!plan->channels().empty() ||
            std::any_of(plan->lines().begin(), plan->lines().end(), isLost)) {
            continue;
        }
        std::vector<Related> related;
        const std::vector<Naming>& namings = line.namings(plan->path());
        if (!namings.empty() && namings.front().file != nullptr) {
            related.push_back({placeOf(line, *namings.front().file, *namings.front().line,
                                       namings.front().line->value),
                               "named here"});
        }
        reporter.report(placeOf(*plan), "the plan has no channel", std::move(related));
    }
}

// The names of plans in a map that have findings of their own.
class NamesInVain {
  public:
    NamesInVain(const ProductLine& line, const PlanFiles& plans, const std::string& folder) {
        constexpr size_t kMostMissing = 1'000;  // with which each unused plan is compared
        const bool isDigital = folder == plans.folder->path() + product::kDtvPlansFolder;
        for (const ReadLine& read : plans.map->lines()) {
            if (read.use == LineUse::IGNORED || hasBlankInElement(read)) {
                mIgnored.insert(trimmed(read.value));
            } else if (read.use == LineUse::ITEM && isPlanElement(read.key) &&
                       isDigitalElement(read.key) == isDigital && mMissing.size() < kMostMissing &&
                       !isUsable(line.find(folder + std::string(read.value)))) {
                mMissing.insert(read.value);
            }
        }
    }

    // True if an element that has a finding for its name was probably meant to name the plan.
    bool has(std::string_view plan) const {
        constexpr size_t kMostMistakes = 2;  // names of plans have most letters in common
        const auto isNear = [plan](std::string_view name) {
            return std::max(name.size(), plan.size()) - std::min(name.size(), plan.size()) <=
                           kMostMistakes &&
                   distanceOf(name, plan, kMostMistakes) <= kMostMistakes;
        };
        return mIgnored.count(plan) > 0 || std::any_of(mMissing.begin(), mMissing.end(), isNear);
    }

  private:
    std::set<std::string_view> mIgnored;
    std::set<std::string_view> mMissing;
};

void checkUnused(const ProductLine& line, Reporter& reporter) {
    constexpr size_t kMostUnused = 1'000;  // of a folder; nobody reads more findings
    constexpr size_t kMostPlans = 100'000;
    for (const PlanFiles& plans : line.planFolders()) {
        if (!isUsable(plans.map) || plans.map->sections().empty() ||
            countIgnoredBlocks(*plans.map) > 0) {
            continue;
        }
        for (const char* const kind : {product::kDtvPlansFolder, product::kAtvPlansFolder}) {
            const std::string folder = plans.folder->path() + kind;
            const NamesInVain vain(line, plans, folder);
            size_t unused = 0;
            for (const std::string& name :
                 filesIn(line.tree().host(folder), "", kMostPlans).names) {
                if (line.namings(folder + name).empty() && ++unused <= kMostUnused &&
                    !vain.has(name)) {
                    reporter.reportIn({}, {folder + name, 0, 0},
                                      "no country of " + plans.map->path() + " has this plan");
                }
            }
        }
    }
}

// What can be wrong with the bandwidth and the frequency of a channel; the first that fits counts.
struct Implausibility {
    int64_t leastBandwidth;
    int64_t mostBandwidth;
    int64_t leastFrequency;
    int64_t mostFrequency;
    size_t column; /**< where the mistake is, from 0 */
    std::string_view text;
};
constexpr int64_t kAny = std::numeric_limits<int64_t>::max();
constexpr int64_t kThousand = 1000;
constexpr Implausibility kImplausibilities[] = {
        {kLowestKhz, kHighestKhz, kLeastHz, kMostHz, 1,
         "frequency and bandwidth are exchanged: the second column is the bandwidth in Hz, the "
         "third the frequency in kHz"},
        {kLowestKhz, kHighestKhz, -kAny, kLowestKhz - 1, 1,
         "a column is left out: the second one is the bandwidth in Hz, the third the frequency in "
         "kHz"},
        {-kAny, kAny, kLowestKhz* kThousand, kHighestKhz* kThousand, 2,
         "the frequency is in Hz, and counts in kHz"},
        {-kAny, kAny, kLowestKhz / kThousand, kHighestKhz / kThousand, 2,
         "the frequency is in MHz, and counts in kHz"},
        {-kAny, kAny, kHighestKhz + 1, kAny, 2, "television has no such frequency"},
        {-kAny, kAny, -kAny, kLowestKhz - 1, 2, "television has no such frequency"},
        {kLeastHz / kThousand, kMostHz / kThousand, -kAny, kAny, 1,
         "the bandwidth is in kHz, and counts in Hz"},
        {2, kMostHz / kThousand / kThousand, -kAny, kAny, 1,
         "the bandwidth is in MHz, and counts in Hz"},
        {-kAny, kAny, -kAny, kAny, 1, "television has no such bandwidth"},
};

const Implausibility& implausibilityOf(const PlanChannel& channel) {
    const int64_t bandwidth = channel.item.bandwidth;
    const int64_t frequency = channel.item.frequency;
    return *std::find_if(std::begin(kImplausibilities), std::end(kImplausibilities),
                         [&](const Implausibility& row) {
                             return bandwidth >= row.leastBandwidth &&
                                    bandwidth <= row.mostBandwidth &&
                                    frequency >= row.leastFrequency &&
                                    frequency <= row.mostFrequency;
                         });
}

void checkPlausible(const ProductLine& line, Reporter& reporter) {
    FindingGroups groups;
    for (const FileLines* const plan : plansOf(line)) {
        for (const PlanChannel& channel : channelsOf(*plan)) {
            if (isPlausible(channel) || channel.read->column > 1 || channel.read->isCut ||
                !isNumber(channel.columns[0])) {
                continue;
            }
            const Implausibility& row = implausibilityOf(channel);
            const std::string_view number = channel.columns[row.column];
            groups.add(std::string(row.text), placeOf(line, *plan, *channel.read, number),
                       quoted(number) + ": " + std::string(row.text));
        }
    }
    groups.report(reporter);
}

void checkRepeated(const ProductLine& line, Reporter& reporter) {
    FindingGroups groups;
    for (const FileLines* const plan : plansOf(line)) {
        std::map<std::tuple<int32_t, int32_t, int32_t>, const ReadLine*> frequencies;
        std::map<std::string_view, const ReadLine*> labels;
        const std::vector<PlanChannel> channels = channelsOf(*plan);
        for (size_t i = 0; i < channels.size(); ++i) {
            const PlanChannel& channel = channels[i];
            if (channel.read->column > 1 || !isPlausible(channel) || isOffRaster(channels, i)) {
                continue;
            }
            const HidlFreqListItem& item = channel.item;
            const auto frequency = frequencies.try_emplace(
                    {item.frequency, item.bandwidth, item.modulation}, channel.read);
            // Not the number: variants of a channel share it.
            const auto label = labels.try_emplace(channel.label, channel.read);
            const std::string khz = std::to_string(item.frequency) + " kHz";
            if (!frequency.second) {
                groups.add("frequency", placeOf(line, *plan, *channel.read, channel.columns[2]),
                           khz + " stands twice in this plan",
                           {{placeOf(line, *plan, *frequency.first->second), "first here"}});
            } else if (!label.second && !channel.label.empty()) {
                groups.add("label", placeOf(line, *plan, *channel.read, channel.label),
                           "channel " + channel.name() + " stands twice in this plan, with " + khz +
                                   " the second time",
                           {{placeOf(line, *plan, *label.first->second), "first here"}});
            }
        }
    }
    groups.report(reporter);
}

// True if the number of a channel is not the one that its neighbours leave out.
bool isOffSequence(const std::vector<PlanChannel>& channels, size_t at) {
    if (at == 0 || at + 1 >= channels.size()) {
        return false;
    }
    const PlanChannel& before = channels[at - 1];
    const PlanChannel& channel = channels[at];
    const PlanChannel& after = channels[at + 1];
    const bool isRow = before.variant() == channel.variant() &&
                       after.variant() == channel.variant() &&
                       before.item.frequency < channel.item.frequency &&
                       channel.item.frequency < after.item.frequency;
    return isRow && before.item.channel + 2 == after.item.channel &&
           before.item.channel + 1 != channel.item.channel;
}

void checkRaster(const ProductLine& line, Reporter& reporter) {
    FindingGroups groups;
    for (const FileLines* const plan : plansOf(line)) {
        const std::vector<PlanChannel> channels = channelsOf(*plan);
        for (size_t i = 0; i < channels.size(); ++i) {
            if (isOffSequence(channels, i)) {
                groups.add("number" + std::to_string(i), placeOf(line, *plan, *channels[i].read),
                           "channel " + std::to_string(channels[i].item.channel) +
                                   " stands between " +
                                   std::to_string(channels[i - 1].item.channel) + " and " +
                                   std::to_string(channels[i + 1].item.channel) + " (is \"" +
                                   std::to_string(channels[i - 1].item.channel + 1) + "\" meant?)");
            }
            if (!isOffRaster(channels, i)) {
                continue;
            }
            const PlanChannel& before = channels[i - 1];
            const bool isWidth = channels[i].item.bandwidth != before.item.bandwidth;
            const int32_t expected = before.item.frequency + before.bandwidthInKhz();
            groups.add(
                    std::to_string(i),
                    placeOf(line, *plan, *channels[i].read, channels[i].columns[isWidth ? 1 : 2]),
                    "channel " + channels[i].name() +
                            " does not fit between its neighbours, where there is room for " +
                            std::to_string(before.item.bandwidth) + " Hz at " +
                            std::to_string(expected) + " kHz");
        }
    }
    groups.report(reporter);
}

// Channels of one plan that a tuner could confuse: those of one variant.
void checkOverlaps(const ProductLine& line, Reporter& reporter) {
    constexpr int32_t kTolerance = 20;  // a twentieth of the bandwidth
    FindingGroups groups;
    for (const FileLines* const plan : plansOf(line)) {
        const std::vector<PlanChannel> channels = channelsOf(*plan);
        std::map<std::string_view, std::vector<const PlanChannel*>> variants;
        for (size_t i = 0; i < channels.size(); ++i) {
            if (isPlausible(channels[i]) && !isOffRaster(channels, i)) {
                variants[channels[i].variant()].push_back(&channels[i]);
            }
        }
        for (auto& [variant, row] : variants) {
            std::stable_sort(row.begin(), row.end(), [](const auto* a, const auto* b) {
                return a->lowerEdge() < b->lowerEdge();
            });
            for (size_t i = 1; i < row.size(); ++i) {
                const PlanChannel& lower = *row[i - 1];
                const PlanChannel& upper = *row[i];
                const int32_t overlap =
                        lower.lowerEdge() + lower.bandwidthInKhz() - upper.lowerEdge();
                if (overlap > lower.bandwidthInKhz() / kTolerance &&
                    lower.item.frequency != upper.item.frequency) {
                    groups.add("overlap", placeOf(line, *plan, *upper.read),
                               "channel " + upper.name() + " begins " + std::to_string(overlap) +
                                       " kHz before channel " + lower.name() + " ends",
                               {{placeOf(line, *plan, *lower.read), "channel " + lower.name()}});
                }
            }
        }
    }
    groups.report(reporter);
}

void checkOrder(const ProductLine& line, Reporter& reporter) {
    FindingGroups groups;
    for (const FileLines* const plan : plansOf(line)) {
        const std::vector<PlanChannel> channels = channelsOf(*plan);
        const PlanChannel* last = nullptr;
        for (size_t i = 0; i < channels.size(); ++i) {
            if (!isPlausible(channels[i]) || isOffRaster(channels, i) ||
                channels[i].read->column > 1) {
                continue;
            }
            if (last != nullptr && channels[i].item.channel < last->item.channel &&
                channels[i].item.frequency < last->item.frequency) {
                groups.add("order", placeOf(line, *plan, *channels[i].read),
                           "channel " + channels[i].name() + " stands after channel " +
                                   last->name() +
                                   ", though its number and its frequency are lower");
            }
            last = &channels[i];
        }
    }
    groups.report(reporter);
}

// The kind of plan that the lines name it as; nothing if they name it as both.
std::optional<bool> isNamedDigital(const ProductLine& line, const FileLines& plan) {
    std::set<bool> kinds;
    for (const Naming& naming : line.namings(plan.path())) {
        if (naming.line != nullptr) {
            kinds.insert(isDigitalElement(naming.line->key));
        }
    }
    return kinds.size() == 1 ? std::optional(*kinds.begin()) : std::nullopt;
}

void checkKind(const ProductLine& line, Reporter& reporter) {
    FindingGroups groups;
    for (const FileLines* const plan : plansOf(line)) {
        const std::optional<bool> isDigital = isNamedDigital(line, *plan);
        for (const PlanChannel& channel : channelsOf(*plan)) {
            if (!isDigital || !isModulation(channel.modulation) || channel.read->column > 1 ||
                channel.modulation == "UNKNOW" || channel.isAnalogue() != *isDigital) {
                continue;
            }
            groups.add("kind", placeOf(line, *plan, *channel.read, channel.modulation),
                       std::string(*isDigital ? "a digital" : "an analogue") +
                               " plan has a channel with the modulation " +
                               quoted(channel.modulation));
        }
    }
    groups.report(reporter);
}

constexpr Rule kRules[] = {
        {"empty-plan", Severity::ERROR, "a channel plan that a country names has no channel",
         "A scan in the countries that have this plan has no channels to look at.",
         "(a file of comments only)", "21, 8000000, 474000, E21, DVB_AUTO", checkEmpty},
        {"implausible-channel", Severity::ERROR,
         "a channel has a frequency or a bandwidth that television does not have",
         "The tuner gets these numbers as they are and finds nothing: mostly two columns are "
         "exchanged, one is left out, or a number has another unit.",
         "21, 474000, 8000000, E21, DVB_AUTO", "21, 8000000, 474000, E21, DVB_AUTO",
         checkPlausible},
        {"repeated-channel", Severity::WARNING, "a channel or a frequency stands twice in a plan",
         "A scan looks at the frequency twice and may list its programmes twice; with one name at "
         "two frequencies, one of them is probably mistyped.",
         "21, 8000000, 474000, E21, DVB_AUTO\n22, 8000000, 474000, E22, DVB_AUTO",
         "21, 8000000, 474000, E21, DVB_AUTO\n22, 8000000, 482000, E22, DVB_AUTO", checkRepeated},
        {"off-raster", Severity::WARNING,
         "a channel does not lie between its neighbours, though they leave room for it",
         "A digit of the number, the frequency or the bandwidth is probably mistyped: a scan "
         "misses "
         "the channel, or finds it under another number.",
         "21, 8000000, 474000, E21, DVB_AUTO\n22, 8000000, 428000, E22, DVB_AUTO\n"
         "23, 8000000, 490000, E23, DVB_AUTO",
         "21, 8000000, 474000, E21, DVB_AUTO\n22, 8000000, 482000, E22, DVB_AUTO\n"
         "23, 8000000, 490000, E23, DVB_AUTO",
         checkRaster},
        {"overlapping-channels", Severity::NOTE, "two channels of a plan overlap",
         "Some standards have such channels. In others a frequency or a bandwidth is mistyped. "
         "Variants of a plan, told apart by the letters of their labels, may overlap.",
         "21, 8000000, 474000, E21, DVB_AUTO\n22, 8000000, 480000, E22, DVB_AUTO",
         "21, 8000000, 474000, E21, DVB_AUTO\n22, 8000000, 482000, E22, DVB_AUTO", checkOverlaps},
        {"unordered-channels", Severity::NOTE, "the channels of a plan are out of order",
         "A scan follows the order of the plan, and its progress jumps.",
         "22, 8000000, 482000, E22, DVB_AUTO\n21, 8000000, 474000, E21, DVB_AUTO",
         "21, 8000000, 474000, E21, DVB_AUTO\n22, 8000000, 482000, E22, DVB_AUTO", checkOrder},
        {"plan-of-other-kind", Severity::WARNING,
         "a digital plan has analogue channels, or an analogue plan digital ones",
         "The tuner is told to scan for what the country's element does not mean: the element "
         "probably names the wrong plan.",
         "2, 7000000, 48250, E2, DVB_AUTO      (in a plan of ATV_ANTENA)",
         "2, 7000000, 48250, E2, ATV}", checkKind},
        {"unused-plan", Severity::NOTE, "a channel plan that no country has",
         "The file takes space, and somebody may mend it in vain. Or a country was forgotten.",
         "freqtables/dtv/freqtable_old without an element that names it",
         "<DTV_ANTENA>freqtable_old</DTV_ANTENA>", checkUnused},
};

}  // namespace

RuleFamily channels() {
    return {"channels", "Channels of plans", kRules, std::size(kRules)};
}

}  // namespace mlk::tree
