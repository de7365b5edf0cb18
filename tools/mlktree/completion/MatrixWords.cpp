#include "tools/mlktree/completion/MatrixWords.h"

#include <map>

namespace mlk::tree {

namespace {

// A section without its brackets, unless somebody has typed one.
std::string sectionFor(std::string_view section, const std::string& word) {
    const bool hasBrackets = section.size() > 2 && section.front() == '[' && section.back() == ']';
    const bool isBare = hasBrackets && (word.empty() || word.front() != '[');
    return std::string(isBare ? section.substr(1, section.size() - 2) : section);
}

}  // namespace

std::vector<Candidate> matrixWords(const std::vector<MatrixRow>& rows, const std::string& word) {
    const bool isName = word.find(' ') != std::string::npos;
    std::map<std::string, std::string> words;  // with what each is
    for (const MatrixRow& row : rows) {
        if (isName) {
            words.emplace(row.name(), "");
            continue;
        }
        if (row.kind == RowKind::ITEM) {
            words.emplace(sectionFor(row.section, word), "a section");
        } else {
            words.emplace(nameOf(row.kind), "all rows of this kind");
        }
        // A plan's name may have a blank.
        if (!word.empty() && row.key.find(' ') == std::string_view::npos) {
            words.emplace(row.key, row.name());
        }
    }
    std::vector<Candidate> found;
    for (auto& [text, what] : words) {
        if (!text.empty()) {
            found.push_back({text, std::move(what)});
        }
    }
    return found;
}

}  // namespace mlk::tree
