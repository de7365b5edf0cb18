#include "tools/mlktree/diff/DiffFormats.h"
#include "tools/mlktree/Ansi.h"

#include <algorithm>

#include "tools/common/Json.h"
#include "tools/mlktree/ShownLine.h"
#include "tools/mlktree/Texts.h"
#include "tools/mlktree/diff/ToldChanges.h"

namespace mlk::tree {

namespace {

std::string placeOf(const ChangeSide& side) {
    return side.file.empty() ? "" : placeText(side.file, side.line);
}

// "no difference" or "3 differences".
std::string summaryOf(size_t count) {
    return count == 0 ? "no difference" : counted(count, "difference", "differences");
}

/** Prints the changes for a terminal. */
class TextPrinter {
  public:
    TextPrinter(bool isColoured, const TextSink& sink) : mIsColoured(isColoured), mSink(sink) {}

    void print(const Difference& difference) {
        const ChangeKind* last = nullptr;
        const std::vector<ToldChange> told = toldChanges(difference);
        for (const ToldChange& one : told) {
            const ChangeKind& kind = one.change->kind;
            if (last == nullptr || *last != kind) {
                mSink((last == nullptr ? "" : "\n") + in(ansi::kBold, std::string(titleOf(kind))) +
                      "\n");
            }
            last = &kind;
            print(one, difference.isOfSets);
        }
        mSink((last == nullptr ? "" : "\n") + summaryOf(told.size()) + "\n");
    }

  private:
    std::string in(std::string_view colour, const std::string& text) const {
        return mIsColoured ? std::string(colour) + text + std::string(ansi::kPlain) : text;
    }

    void print(const ToldChange& told, bool isOfSets) {
        const Change& change = *told.change;
        // A line "= value" before all sections is an item without a name.
        const auto textOf = [](const std::string& text) {
            return text.empty() ? "(empty)" : shownText(text);
        };
        mSink("  " + textOf(change.name) + "\n");
        const auto shown = [&](const std::optional<ChangeSide>& side) {
            return !side ? std::string() : textOf(side->value);
        };
        const std::string a = shown(change.a);
        const std::string b = shown(change.b);
        // Places of long values stand closer, not below each other.
        constexpr size_t kWidest = 60;
        const size_t width = std::min(std::max(a.size(), b.size()), kWidest);
        const auto line = [&](const char* sign, std::string_view colour, const std::string& text,
                              const std::optional<ChangeSide>& side) {
            if (!side) {
                return;
            }
            const std::string place = shownText(placeOf(*side));
            const std::string gap(2 + width - std::min(text.size(), width), ' ');
            mSink("    " + in(colour, sign + text) +
                  (place.empty() ? "" : gap + in(ansi::kDim, place)) + "\n");
        };
        line("- ", ansi::kRed, a, change.a);
        line("+ ", ansi::kGreen, b, change.b);
        for (const std::string& also : told.also) {
            mSink("    " + also + "\n");
        }
        if (!isOfSets && !change.sets.empty()) {
            mSink(in(ansi::kDim, "    in " + inWords(change.sets)) + "\n");
        }
    }

    const bool mIsColoured;
    const TextSink& mSink;
};

std::string jsonOf(const std::optional<ChangeSide>& side) {
    if (!side) {
        return "null";
    }
    JsonObject object;
    object.text("value", side->value);
    if (side->file.empty()) {
        object.json("file", "null").json("line", "null");
    } else {
        object.text("file", side->file).number("line", side->line);
    }
    return object.str();
}

// A text as code in a cell of a table. Nothing in it is markup.
std::string codeOf(std::string_view text) {
    const std::string plain = shownText(text);
    if (plain.empty()) {
        return "(empty)";
    }
    size_t longest = 0;
    size_t run = 0;
    std::string out;
    for (const char c : plain) {
        run = c == '`' ? run + 1 : 0;
        longest = std::max(longest, run);
        out += c == '|' ? "\\|" : std::string(1, c);
    }
    const std::string fence(longest + 1, '`');
    const bool needsBlanks = plain.front() == '`' || plain.back() == '`';
    const std::string blank = needsBlanks ? " " : "";
    return fence + blank + out + blank + fence;
}

std::string cellOf(const std::optional<ChangeSide>& side) {
    if (!side) {
        return "-";
    }
    const std::string place = placeOf(*side);
    return codeOf(side->value) + (place.empty() ? "" : " (" + codeOf(place) + ")");
}

}  // namespace

void writeDiffText(const Difference& difference, bool isColoured, const TextSink& sink) {
    TextPrinter(isColoured, sink).print(difference);
}

void writeDiffJson(const Difference& difference, const TextSink& sink) {
    JsonLines changes(JsonObject()
                              .number("version", kDiffVersion)
                              .text("a", difference.a)
                              .text("b", difference.b)
                              .flag("same", difference.changes.empty()),
                      "changes", sink);
    for (const Change& change : difference.changes) {
        changes.add(JsonObject()
                            .text("kind", nameOf(change.kind))
                            .text("name", change.name)
                            .json("a", jsonOf(change.a))
                            .json("b", jsonOf(change.b))
                            .json("sets", jsonTexts(inSelections(change.sets)))
                            .str());
    }
    changes.end();
}

void writeDiffMarkdown(const Difference& difference, const TextSink& sink) {
    const std::vector<ToldChange> told = toldChanges(difference);
    sink("**" + summaryOf(told.size()) + "** between " + codeOf(difference.a) + " and " +
         codeOf(difference.b) + "\n");
    const ChangeKind* last = nullptr;
    for (const ToldChange& one : told) {
        const Change& change = *one.change;
        if (last == nullptr || *last != change.kind) {
            sink("\n### " + std::string(titleOf(change.kind)) + "\n\n");
            sink(difference.isOfSets ? "| name | before | after |\n|---|---|---|\n"
                                     : "| name | before | after | sets |\n|---|---|---|---|\n");
        }
        last = &change.kind;
        std::string name = codeOf(change.name);
        for (const std::string& also : one.also) {
            name += ", " + codeOf(also);
        }
        sink("| " + name + " | " + cellOf(change.a) + " | " + cellOf(change.b) + " |");
        if (!difference.isOfSets) {
            sink(" " + (change.sets.empty() ? "-" : codeOf(inWords(change.sets))) + " |");
        }
        sink("\n");
    }
}

}  // namespace mlk::tree
