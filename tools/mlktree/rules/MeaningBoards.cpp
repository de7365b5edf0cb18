// Rules about names that board files alone have.

#include <algorithm>
#include <iterator>
#include <map>
#include <vector>

#include "tools/mlktree/Texts.h"
#include "tools/mlktree/rules/Families.h"
#include "tools/mlktree/rules/Meaning.h"
#include "tools/mlktree/rules/NameUses.h"
#include "tools/mlktree/rules/Rivals.h"

namespace mlk::tree {

namespace {

// A name in board files. Names that models have, too, are compared with those of models.
struct BoardName {
    std::vector<NamedLine> lines;  // the first one of each file
    bool isKnown = false;
};

using BoardNames = std::map<std::string_view, BoardName>;

bool hasBoth(const BoardName& one, const BoardName& other) {
    return std::any_of(one.lines.begin(), one.lines.end(), [&](const NamedLine& line) {
        return std::any_of(other.lines.begin(), other.lines.end(),
                           [&](const NamedLine& each) { return each.file == line.file; });
    });
}

void compareNames(const ProductLine& line, Reporter& reporter, const BoardNames& names,
                  size_t& searches) {
    NameUses uses;
    for (const auto& [name, board] : names) {
        uses.add(name, board.lines.size());
    }
    uses.sort(true);
    for (const auto& [name, board] : names) {
        const std::string_view right = board.isKnown ? "" : uses.rivalNameFor(name, searches);
        if (right.empty() || differsInShortWord(name, right) || hasBoth(board, names.at(right))) {
            continue;
        }
        const BoardName& other = names.at(right);
        if (other.isKnown || other.lines.size() > board.lines.size()) {
            for (const NamedLine& each : board.lines) {
                reporter.report(placeOf(line, *each.file, *each.line, name),
                                counted(other.lines.size(), "other board file has ",
                                        "other board files have ") +
                                        quoted(right) + ", not " + quoted(name));
            }
        } else if (board.lines.size() == 1 && name < right) {
            reportRivals(line, reporter, board.lines.front(), other.lines.front());
        }
    }
}

void checkUnlike(const ProductLine& line, Reporter& reporter) {
    const ItemTable& table = itemTableOf(line);
    BoardNames sections;
    std::map<std::string_view, BoardNames> keys;  // by section
    for (const ItemFile& item : table.files) {
        if (!item.isBoard) {
            continue;
        }
        for (const auto& [name, first, facts] : item.sections) {
            const bool isAlone = facts->models == 0 && facts->meant.empty();
            if (isAlone && isWholeSection(name)) {
                BoardName& board = sections[name];
                board.lines.push_back({item.file, first, name});
                board.isKnown = line.settings().knowsSection(name);
            }
        }
        for (const auto& [read, facts] : item.items) {
            if (facts->models == 0 && facts->meant.empty()) {
                BoardName& board = keys[read->section][read->key];
                board.lines.push_back({item.file, read, read->key});
                board.isKnown = facts->isKnown();
            }
        }
    }
    size_t searches = 0;
    compareNames(line, reporter, sections, searches);
    for (const auto& [section, names] : keys) {
        compareNames(line, reporter, names, searches);
    }
}

constexpr Rule kRules[] = {
        {"unlike-other-boards", Severity::WARNING,
         "a section or key of a board file has nearly the name that another board file has",
         "The service does not know the name, but the programs of the line that ask for it do. "
         "Boards may differ in what they have, but rarely in a letter.",
         "[BOARD]\nBOARD_REVISOIN = 2      (the other boards have BOARD_REVISION)",
         "[BOARD]\nBOARD_REVISION = 2", checkUnlike},
};

}  // namespace

RuleFamily boardNames() {
    return {"board-names", "Names in board files", kRules, std::size(kRules)};
}

}  // namespace mlk::tree
