// Rules about the files that say which set this is.

#include <algorithm>
#include <iterator>
#include <string>

#include "common/Decimal.h"
#include "projectconfigs/ChainKeywords.h"
#include "regional/RegionalNames.h"
#include "tools/mlktree/Nearest.h"
#include "tools/mlktree/Reporter.h"
#include "tools/mlktree/Texts.h"
#include "tools/mlktree/rules/Families.h"
#include "tools/mlktree/rules/MeaningValue.h"

namespace mlk::tree {

namespace {

namespace product = vendor::morlak::mlkconfigs::V1_0::implementation;
namespace keyword = product::keyword;

// The line of the keyword in an identity file, or null.
const ReadLine* identityLine(const ProductLine& line, const char* path, std::string_view word) {
    const FileLines* const file = line.find(path);
    return file != nullptr && !file->isUnreadable() ? file->find("", word) : nullptr;
}

// The value up to a blank or a comment, which do no harm.
std::string_view numberIn(std::string_view value) {
    value = trimmed(value);
    return value.substr(0, value.find_first_of(" \t#"));
}

void checkIndex(const ProductLine& line, Reporter& reporter) {
    const ReadLine* const id = identityLine(line, kProjectIdPath, keyword::kProjectId);
    // Without any model, the system file has the mistake.
    if (id == nullptr || !isDecimalIn(numberIn(id->value), {}) || line.models().empty()) {
        return;
    }
    const std::string model =
            std::string(keyword::kModel) + std::to_string(product::parseDecimal(id->value));
    std::vector<Related> related;
    for (const Customer& customer : line.customers()) {
        const FileLines* const system = customer.system;
        if (system == nullptr || !system->exists() || system->isUnreadable()) {
            return;  // another finding
        }
        if (system->find("", model) != nullptr) {
            return;
        }
        related.push_back({placeOf(*system), "no line has " + model});
    }
    if (!related.empty()) {
        const FileLines& file = *line.find(kProjectIdPath);
        reporter.report(placeOf(line, file, *id, numberIn(id->value)),
                        "no model has the index " + std::string(numberIn(id->value)),
                        std::move(related));
    }
}

void checkKeyword(const ProductLine& line, Reporter& reporter, const char* path,
                  std::string_view word, const char* effect) {
    const FileLines* const file = line.find(path);
    if (file == nullptr || file->isUnreadable() || file->find("", word) != nullptr) {
        return;
    }
    const std::vector<std::string_view>& lines = line.sources().lines(path);
    const auto first = std::find_if(lines.begin(), lines.end(),
                                    [](std::string_view text) { return !trimmed(text).empty(); });
    Place place = placeOf(*file);
    std::string message = "the file is empty";
    if (first != lines.end()) {
        place.line = static_cast<size_t>(first - lines.begin()) + 1;
        place.column = 1;
        const std::string_view key = trimmed(first->substr(0, first->find('=')));
        message = "no line has \"" + std::string(word) + "=\"" +
                  (nearest(key, {word}).empty() ? "" : ", this one has " + quoted(key));
    }
    reporter.report(std::move(place), message + ": " + effect);
}

// A later line with the keyword, which the service never reads.
void checkSecond(const ProductLine& line, Reporter& reporter, const char* path,
                 std::string_view word) {
    const ReadLine* const id = identityLine(line, path, word);
    if (id == nullptr || looksLikeComment(id->text)) {
        return;
    }
    const std::vector<std::string_view>& lines = line.sources().lines(path);
    for (size_t i = id->number; i < lines.size(); ++i) {
        const size_t at = lines[i].find(word);
        if (at != std::string_view::npos && !looksLikeComment(lines[i])) {
            reporter.report({path, i + 1, at + 1},
                            quoted(word) + " stands twice; the upper line counts",
                            {{placeOf(line, *line.find(path), *id, word), "the other line"}});
            return;
        }
    }
}

void checkKeywords(const ProductLine& line, Reporter& reporter) {
    checkSecond(line, reporter, kProjectIdPath, keyword::kProjectId);
    checkSecond(line, reporter, kBoardIdPath, keyword::kBoardId);
    checkKeyword(line, reporter, kProjectIdPath, keyword::kProjectId,
                 "the index is 0, which no model has");
    checkKeyword(line, reporter, kBoardIdPath, keyword::kBoardId, "the set has no board file");
}

void checkNumber(const ProductLine& line, Reporter& reporter, const std::string& path,
                 std::string_view word) {
    const ReadLine* const id = identityLine(line, path.c_str(), word);
    if (id == nullptr) {
        return;
    }
    const std::string_view number = numberIn(id->value);
    const std::string problem = problemOf(product::ValueType::INTEGER, number);
    if (!problem.empty()) {
        reporter.report(placeOf(line, *line.find(path), *id, number.empty() ? "=" : number),
                        problem);
    }
}

void checkNumbers(const ProductLine& line, Reporter& reporter) {
    checkNumber(line, reporter, kProjectIdPath, keyword::kProjectId);
    checkNumber(line, reporter, kCountryIdPath, product::kCountryIdKeyword);
}

void checkBoard(const ProductLine& line, Reporter& reporter) {
    const ReadLine* const id = identityLine(line, kBoardIdPath, keyword::kBoardId);
    for (const Model& model : line.models()) {
        if (id != nullptr && model.file != nullptr && model.file->path() == line.boardOfSet()) {
            reporter.report(placeOf(line, *line.find(kBoardIdPath), *id, trimmed(id->value)),
                            "the board file is that of a model: its items replace those of every "
                            "model",
                            {{placeOf(line, *model.customer->system, *model.line), "the model"}});
            return;
        }
    }
    if (id == nullptr || id->value == keyword::kNoBoardFile ||
        id->value.find('/') != std::string_view::npos) {
        return;
    }
    const std::string_view value = trimmed(id->value);
    const std::string word(keyword::kNoBoardFile);
    std::string message;
    if (value.empty()) {
        message = "no path of a board file; for none write " + word;
    } else if (beginsWith(value, keyword::kNoBoardFile)) {
        message = quoted(id->value) +
                  " is taken for the path of a file: nothing may follow or "
                  "precede " +
                  word;
    } else {
        message = quoted(id->value) + " is neither a path nor " + word +
                  meant(nearest(value, {keyword::kNoBoardFile}));
    }
    reporter.report(placeOf(line, *line.find(kBoardIdPath), *id, value.empty() ? "=" : value),
                    std::move(message));
}

constexpr Rule kRules[] = {
        {"model-index", Severity::ERROR, "no model has the index of the set",
         "The set has no model: only the items of its board file are known, and most getters have "
         "no answer.",
         "PROJECT_ID=9      (the system file has Model_1 to Model_7)", "PROJECT_ID=2", checkIndex},
        {"identity-keyword", Severity::ERROR,
         "a file of the set's identity has its keyword not once",
         "The service looks for the exact word. Without it the set has no model, or no board file; "
         "of "
         "two lines the upper one counts.",
         "PROJECTID=1", "PROJECT_ID=1", checkKeywords},
        {"identity-number", Severity::ERROR,
         "the index or the country of the set is no decimal number",
         "What follows the digits does not count, and a text without digits is 0: no model, and "
         "the "
         "country ANDORRA.",
         "PROJECT_ID=0x2", "PROJECT_ID=2", checkNumbers},
        {"board-value", Severity::ERROR, "board_id.bin has neither a path nor DEFAULT_BOARD_ID",
         "The word must stand alone: with a blank or a carriage return after it, it is the path of "
         "a file that does not exist.",
         "BOARD_ID=DEFAULT_BOARD_ID # none yet", "BOARD_ID=DEFAULT_BOARD_ID", checkBoard},
};

}  // namespace

RuleFamily identity() {
    return {"identity", "Which set it is", kRules, std::size(kRules)};
}

}  // namespace mlk::tree
