#include "tools/mlktree/plan/PlanText.h"

#include "tools/common/Json.h"
#include "tools/common/Table.h"
#include "tools/mlktree/ShownLine.h"
#include "tools/mlktree/Texts.h"

namespace mlk::tree {

namespace {

// What a person looks for: a note for each channel, in the order of the plan.
std::vector<std::string> notesOf(const PlanView& plan) {
    std::vector<std::string> notes(plan.channels.size());
    const auto add = [&notes](size_t channel, const std::string& text) {
        notes[channel] += (notes[channel].empty() ? "" : "; ") + text;
    };
    for (const Meeting& gap : plan.gaps) {
        add(gap.upper,
            "gap of " + megahertz(gap.width()) + " MHz after " + plan.channels[gap.lower].name());
    }
    for (const Meeting& overlap : plan.overlaps) {
        add(overlap.upper, "overlaps " + plan.channels[overlap.lower].name() + " by " +
                                   megahertz(overlap.width()) + " MHz");
    }
    for (size_t i = 0; i < plan.channels.size(); ++i) {
        const std::string repeated = repeatedOf(plan, i);
        if (!repeated.empty()) {
            add(i, "repeats " + repeated);
        }
    }
    return notes;
}

std::string json(const PlanView& plan, const Meeting& meeting) {
    return JsonObject()
            .number("from", meeting.low)
            .number("to", meeting.high)
            .text("after", plan.channels[meeting.lower].name())
            .text("before", plan.channels[meeting.upper].name())
            .str();
}

std::string json(const PlanView& plan, const std::vector<Meeting>& meetings) {
    std::vector<std::string> texts;
    texts.reserve(meetings.size());
    for (const Meeting& meeting : meetings) {
        texts.push_back(json(plan, meeting));
    }
    return jsonArray(texts);
}

std::string json(const PlanView& plan, size_t index) {
    const ViewedChannel& channel = plan.channels[index];
    JsonObject object;
    object.number("channel", channel.number)
            .number("frequency", channel.frequency)
            .number("bandwidth", channel.bandwidth)
            .text("label", channel.label)
            .number("modulation", channel.modulation)
            .text("modulationName", modulationName(channel.modulation));
    if (channel.line != 0) {
        object.number("line", static_cast<int64_t>(channel.line));
    }
    const std::string repeated = repeatedOf(plan, index);
    if (!repeated.empty()) {
        object.text("repeats", repeated);
    }
    return object.str();
}

}  // namespace

std::string planTable(const PlanView& plan) {
    std::string text = plan.country + " " + plan.name + ": " +
                       counted(plan.channels.size(), "channel", "channels") + ", " +
                       summaryOf(plan) + "\n" + shownText(plan.file);
    if (plan.mapLine != 0) {
        text += ", named by " + shownText(placeText(plan.map, plan.mapLine));
    }
    const std::vector<std::string> notes = notesOf(plan);
    Table table = {{"CHANNEL", "FREQUENCY", "BANDWIDTH", "LABEL", "MODULATION", ""},
                   {"", "kHz", "Hz", "", "", ""}};
    for (size_t i = 0; i < plan.channels.size(); ++i) {
        const ViewedChannel& channel = plan.channels[i];
        const std::string_view name = modulationName(channel.modulation);
        table.push_back({std::to_string(channel.number), std::to_string(channel.frequency),
                         std::to_string(channel.bandwidth),
                         channel.label.empty() ? "-" : shownText(channel.label),
                         std::to_string(channel.modulation) + " " + std::string(name),
                         shownText(notes[i])});
    }
    return text + "\n\n" + aligned(table);
}

std::string planJson(const PlanView& plan) {
    std::vector<std::string> channels;
    channels.reserve(plan.channels.size());
    for (size_t i = 0; i < plan.channels.size(); ++i) {
        channels.push_back(json(plan, i));
    }
    const size_t blank = plan.name.find(' ');
    JsonObject named;
    named.text("file", plan.map).number("line", static_cast<int64_t>(plan.mapLine));
    return JsonObject()
                   .text("country", plan.country)
                   .text("kind", plan.name.substr(0, blank))
                   .text("cable", blank == std::string::npos ? "" : plan.name.substr(blank + 1))
                   .text("file", plan.file)
                   .json("named", plan.mapLine == 0 ? "null" : named.str())
                   .json("channels", jsonArray(channels))
                   .json("gaps", json(plan, plan.gaps))
                   .json("overlaps", json(plan, plan.overlaps))
                   .str() +
           "\n";
}

}  // namespace mlk::tree
