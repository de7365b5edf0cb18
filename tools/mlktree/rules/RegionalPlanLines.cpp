// Rules about the lines of channel plans: what is no channel, and what is lost of one.

#include <algorithm>
#include <iterator>

#include "common/FileLimits.h"
#include "regional/Modulations.h"
#include "tools/mlktree/Nearest.h"
#include "tools/mlktree/Texts.h"
#include "tools/mlktree/rules/Families.h"
#include "tools/mlktree/rules/FindingGroups.h"
#include "tools/mlktree/rules/RegionalPlan.h"

namespace mlk::tree {

namespace {

using vendor::morlak::mlkconfigs::V1_0::implementation::kModulations;
using vendor::morlak::mlkconfigs::V1_0::implementation::kPlanPieceSize;

// A line as it stands in the file: pieces of at most 49 bytes.
struct WholeLine {
    const ReadLine* first = nullptr;
    std::vector<const ReadLine*> rest;
};

std::vector<WholeLine> longLinesOf(const FileLines& plan) {
    std::vector<WholeLine> all;
    for (const ReadLine& read : plan.lines()) {
        if (read.column > 1) {
            all.back().rest.push_back(&read);
            continue;
        }
        if (!all.empty() && all.back().rest.empty()) {
            all.pop_back();
        }
        all.push_back({&read, {}});
    }
    if (!all.empty() && all.back().rest.empty()) {
        all.pop_back();
    }
    return all;
}

const ReadLine* pieceOfUse(const WholeLine& whole, LineUse use) {
    const auto found = std::find_if(whole.rest.begin(), whole.rest.end(), [use](const auto* read) {
        return read->use == use && !trimmed(read->text).empty();
    });
    return found != whole.rest.end() ? *found : nullptr;
}

// True if the line is cut before its channel is complete.
bool isChannelCut(const WholeLine& whole) {
    const bool isChannel = whole.first->use == LineUse::ITEM ||
                           (whole.first->use == LineUse::IGNORED && isNumber(whole.first->key));
    const PlanColumns columns(whole.first->text);
    // The cut goes through the last column that counts, or comes before it.
    const std::string_view text = whole.first->text;
    const std::string_view last = columns[PlanColumns::kUsed - 1];
    const bool isComplete = !last.empty() && last.data() + last.size() < text.data() + text.size();
    return isChannel && !isComplete && pieceOfUse(whole, LineUse::IGNORED) != nullptr;
}

std::string limit() {
    return "a line of a plan has at most " + std::to_string(kPlanPieceSize) + " bytes";
}

void checkSplit(const ProductLine& line, Reporter& reporter) {
    FindingGroups groups;
    for (const FileLines* const plan : plansOf(line)) {
        for (const WholeLine& whole : longLinesOf(*plan)) {
            const std::string group = std::to_string(whole.first->number);
            if (const ReadLine* const channel = pieceOfUse(whole, LineUse::ITEM)) {
                groups.add(group, placeOf(line, *plan, *channel),
                           limit() + ", and the rest of this one, " + quoted(channel->text) +
                                   ", counts as a channel");
            } else if (isChannelCut(whole)) {
                groups.add(group, placeOf(line, *plan, *whole.rest.front()),
                           limit() + ", and the channel of this one is cut here");
            }
        }
    }
    groups.report(reporter);
}

void checkLong(const ProductLine& line, Reporter& reporter) {
    FindingGroups groups;
    for (const FileLines* const plan : plansOf(line)) {
        for (const WholeLine& whole : longLinesOf(*plan)) {
            const ReadLine* const ignored = pieceOfUse(whole, LineUse::IGNORED);
            if (ignored != nullptr && pieceOfUse(whole, LineUse::ITEM) == nullptr &&
                !isChannelCut(whole)) {
                groups.add("long", placeOf(line, *plan, *ignored),
                           limit() +
                                   "; the rest of this one counts as a line of its own and is "
                                   "ignored");
            }
        }
    }
    groups.report(reporter);
}

void checkNul(const ProductLine& line, Reporter& reporter) {
    for (const FileLines* const plan : plansOf(line)) {
        for (const ReadLine& read : plan->lines()) {
            if (read.hasNul) {
                Place place = placeOf(line, *plan, read);
                place.column += read.text.size();
                reporter.report(std::move(place), "a NUL byte ends the line here");
                break;
            }
        }
    }
}

bool startsWithDigit(std::string_view text) {
    return isNumber(text.substr(0, 1));
}

void checkText(const ProductLine& line, Reporter& reporter) {
    FindingGroups groups;
    for (const FileLines* const plan : plansOf(line)) {
        for (const ReadLine& read : plan->lines()) {
            if (read.use == LineUse::IGNORED && read.column == 1 && !trimmed(read.text).empty() &&
                !startsWithDigit(read.key) && !hasByteOrderMark(read) && !read.hasNul) {
                const bool isIndented = read.key.substr(0, 2) == "//";
                groups.add("text", placeOf(line, *plan, read, read.key),
                           isIndented ? "a comment has its \"//\" in the first two columns"
                                      : "this line is no channel, and no comment: a comment begins "
                                        "with \"//\"");
            }
        }
    }
    groups.report(reporter);
}

// Why a line that begins with a number has no frequency in its third column.
std::string lackOf(const ReadLine& read) {
    const PlanColumns columns(read.text);
    const auto isFrequency = [&](size_t i) {
        return isNumberBetween(columns[i], kLowestKhz, kHighestKhz);
    };
    const auto isBandwidth = [&](size_t i) {
        return isNumberBetween(columns[i], kLeastHz, kMostHz);
    };
    for (const auto& [separator, name] : {std::pair('\t', "tabs"), std::pair(';', "semicolons")}) {
        if (read.key.find(separator) != std::string_view::npos) {
            return std::string("blanks or commas separate columns, not ") + name;
        }
    }
    if (isBandwidth(0) && isFrequency(1)) {
        return "its first column, the number of the channel, is left out";
    }
    if (isFrequency(1)) {
        return "its second column, the bandwidth, is left out";
    }
    if (columns.size() < 3) {
        return "columns are left out";
    }
    return quoted(columns[2]) + " is none";
}

void checkFrequencies(const ProductLine& line, Reporter& reporter) {
    FindingGroups groups;
    for (const FileLines* const plan : plansOf(line)) {
        for (const ReadLine& read : plan->lines()) {
            if (read.use == LineUse::IGNORED && read.column == 1 && startsWithDigit(read.key) &&
                !read.isCut && !read.hasNul) {
                const std::string lack = lackOf(read);
                const bool isNone = lack.front() == '"';
                groups.add(
                        isNone ? "none" : lack, placeOf(line, *plan, read, read.key),
                        "the line is ignored, because its third column has no frequency: " + lack);
            }
        }
    }
    groups.report(reporter);
}

void checkNumbers(const ProductLine& line, Reporter& reporter) {
    FindingGroups groups;
    for (const FileLines* const plan : plansOf(line)) {
        for (const PlanChannel& channel : channelsOf(*plan)) {
            const std::string_view number = channel.columns[0];
            constexpr int64_t kHighest = 0xffff;
            if (isNumberBetween(number, 0, kHighest) || hasByteOrderMark(*channel.read) ||
                channel.read->column > 1) {
                continue;
            }
            const bool isComment =
                    number.front() == '#' || number.front() == ';' || beginsWith(number, "//");
            const std::string counts = " counts as channel " + std::to_string(channel.item.channel);
            const char* const group = startsWithDigit(number) ? "digits" : "name";
            groups.add(isComment ? "comment" : group, placeOf(line, *plan, *channel.read, number),
                       isComment
                               ? "this line is no comment and" + counts +
                                         "; a comment has \"//\" in the first two columns"
                               : quoted(number) + counts + "; the first column is a number up to " +
                                         std::to_string(kHighest));
        }
    }
    groups.report(reporter);
}

std::string_view nearestModulation(std::string_view word) {
    static const std::vector<std::string_view> names = [] {
        std::vector<std::string_view> all;
        all.reserve(kModulations.size());
        for (const auto& modulation : kModulations) {
            all.push_back(modulation.name);
        }
        return all;
    }();
    return nearest(word, names);
}

// A fourth and last column that is nearly a modulation.
bool isMistypedModulation(const PlanChannel& channel) {
    constexpr size_t kLeast = 4;  // "E21" and such are labels
    return channel.modulation.empty() && channel.columns.size() < PlanColumns::kUsed &&
           (channel.label == "ATV" || channel.label.size() >= kLeast) &&
           !nearestModulation(channel.label).empty();
}

void checkModulations(const ProductLine& line, Reporter& reporter) {
    FindingGroups groups;
    for (const FileLines* const plan : plansOf(line)) {
        for (const PlanChannel& channel : channelsOf(*plan)) {
            const bool isLabel = isMistypedModulation(channel);
            const std::string_view word = isLabel ? channel.label : channel.modulation;
            if (word.empty() || isModulation(word) || channel.read->isCut ||
                channel.read->column > 1 || !startsWithDigit(channel.columns[0])) {
                continue;
            }
            groups.add(std::string(word), placeOf(line, *plan, *channel.read, word),
                       "the service knows no modulation " + quoted(word) +
                               meant(nearestModulation(word)) + ", and takes it for " +
                               (isLabel ? "a label" : "\"UNKNOW\""));
        }
    }
    groups.report(reporter);
}

void checkNoModulation(const ProductLine& line, Reporter& reporter) {
    FindingGroups groups;
    for (const FileLines* const plan : plansOf(line)) {
        for (const PlanChannel& channel : channelsOf(*plan)) {
            if (channel.modulation.empty() && !isMistypedModulation(channel) &&
                !channel.read->isCut && channel.read->column == 1 && !channel.read->hasNul &&
                isNumber(channel.columns[0]) && isPlausible(channel)) {
                groups.add("none", placeOf(line, *plan, *channel.read),
                           "the channel has no modulation and counts as \"UNKNOW\"");
            }
        }
    }
    groups.report(reporter);
}

void checkLabels(const ProductLine& line, Reporter& reporter) {
    constexpr size_t kLongest = sizeof(HidlFreqListItem::label) - 1;
    FindingGroups groups;
    for (const FileLines* const plan : plansOf(line)) {
        for (const PlanChannel& channel : channelsOf(*plan)) {
            if (channel.label.size() > kLongest && !isMistypedModulation(channel) &&
                channel.read->column == 1 && isPlausible(channel)) {
                groups.add("label", placeOf(line, *plan, *channel.read, channel.label),
                           "a label has at most " + std::to_string(kLongest) + " characters, and " +
                                   quoted(channel.label) + " becomes " +
                                   quoted(channel.label.substr(0, kLongest)));
            }
        }
    }
    groups.report(reporter);
}

constexpr Rule kRules[] = {
        {"split-channel", Severity::ERROR,
         "a line of a channel plan is too long, and a channel comes or goes by it",
         "The service reads pieces of 49 bytes. The rest of a longer line counts as a line of its "
         "own: a scan looks at a channel that nobody wrote, or misses the modulation of the one "
         "that the line has.",
         "// remarks that are longer than forty-nine bytes 2 8000000 482000",
         "// remarks that are longer than forty-nine bytes\n// 2 8000000 482000", checkSplit},
        {"long-plan-line", Severity::WARNING, "a line of a channel plan is too long",
         "The service reads pieces of 49 bytes, and the rest of a longer line counts as a line of "
         "its own. It is ignored now, but becomes a channel when a number stands where a frequency "
         "is looked for.",
         "// a comment of this length has a rest that is read",
         "// a comment of this length\n// has no rest that is read", checkLong},
        {"nul-in-plan", Severity::ERROR, "a channel plan has a NUL byte",
         "A NUL byte ends its line, and what follows is lost. Files with NUL bytes were mostly "
         "saved "
         "in an encoding of two bytes a character; no line of such a file is a channel.",
         "a plan saved as UTF-16", "the same saved as UTF-8 or ASCII", checkNul},
        {"text-in-plan", Severity::WARNING,
         "a line of a channel plan is neither a channel nor a comment",
         "The line is ignored without a log line. A comment needs \"//\" in its first two columns; "
         "another one that has numbers in it becomes a channel.",
         "# UHF", "// UHF", checkText},
        {"channel-without-frequency", Severity::ERROR,
         "a line of a channel plan is ignored, because it has no frequency",
         "The service drops a line whose third column is no number above 0, without a log line: a "
         "scan does not find the channel. Columns cannot be empty, because several commas or "
         "blanks "
         "count as one.",
         "21, 474000, E21, DVB_AUTO", "21, 8000000, 474000, E21, DVB_AUTO", checkFrequencies},
        {"channel-number", Severity::ERROR, "the first column of a channel plan is not a number",
         "The text counts as the number that it begins with, else as 0: the channel list shows "
         "several channels of one number. A name of a channel belongs into the fourth column.",
         "E21, 8000000, 474000, E21, DVB_AUTO", "21, 8000000, 474000, E21, DVB_AUTO", checkNumbers},
        {"unknown-modulation", Severity::ERROR, "a modulation that the service does not know",
         "The channel's modulation counts as UNKNOW, with which most tuners cannot scan. Case "
         "counts, and the word for analogue is \"ATV}\", with its brace.",
         "21, 8000000, 474000, E21, QAM_64", "21, 8000000, 474000, E21, QAM64", checkModulations},
        {"missing-modulation", Severity::WARNING, "a channel has no modulation",
         "The channel's modulation counts as UNKNOW, with which most tuners cannot scan.",
         "21, 8000000, 474000, E21", "21, 8000000, 474000, E21, DVB_AUTO", checkNoModulation},
        {"label-cut", Severity::WARNING, "a channel's label is cut",
         "Clients get the first four characters, so that several channels can have the same label.",
         "114, 8000000, 474000, DS-13, DTMB_AUTO", "114, 8000000, 474000, DS13, DTMB_AUTO",
         checkLabels},
};

}  // namespace

RuleFamily planLines() {
    return {"plan-lines", "Lines of channel plans", kRules, std::size(kRules)};
}

}  // namespace mlk::tree
