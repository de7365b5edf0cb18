// Rules about the customer file and the list of models.

#include <algorithm>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <utility>

#include "common/Paths.h"
#include "projectconfigs/ChainKeywords.h"
#include "tools/mlktree/Nearest.h"
#include "tools/mlktree/Reporter.h"
#include "tools/mlktree/Texts.h"
#include "tools/mlktree/rules/Families.h"
#include "tools/mlktree/rules/MeaningValue.h"

namespace mlk::tree {

namespace {

namespace product = vendor::morlak::mlkconfigs::V1_0::implementation;
namespace keyword = product::keyword;

// The system files that can be read, each once.
std::set<const FileLines*> systemFilesOf(const ProductLine& line) {
    std::set<const FileLines*> files;
    for (const Customer& customer : line.customers()) {
        if (isUsable(customer.system)) {
            files.insert(customer.system);
        }
    }
    return files;
}

// Calls check(file, line) for each line of a model that is not meant as a comment.
template <typename Check>
void forEachModelLine(const ProductLine& line, const Check& check) {
    for (const FileLines* const file : systemFilesOf(line)) {
        for (const ReadLine& read : file->lines()) {
            if (read.use == LineUse::ITEM && !looksLikeComment(read.text)) {
                check(*file, read);
            }
        }
    }
}

// The text between "Model_" and the "=".
std::string_view indexText(const ReadLine& read) {
    std::string_view text = read.text.substr(read.text.find(keyword::kModel));
    text.remove_prefix(keyword::kModel.size());
    return trimmed(text.substr(0, text.find('=')));
}

void checkSameIndex(const ProductLine& line, Reporter& reporter) {
    std::map<std::pair<const FileLines*, std::string_view>, const ReadLine*> seen;
    forEachModelLine(line, [&](const FileLines& file, const ReadLine& read) {
        const auto [former, isNew] = seen.try_emplace({&file, read.key}, &read);
        if (!isNew) {
            reporter.report(
                    placeOf(line, file, read, keyword::kModel),
                    std::string(read.key) + " stands twice; this line counts, and " +
                            std::string(former->second->value) + " cannot be selected",
                    {{placeOf(line, file, *former->second, keyword::kModel), "the other line"}});
            former->second = &read;
        }
    });
}

void checkNumbers(const ProductLine& line, Reporter& reporter) {
    forEachModelLine(line, [&](const FileLines& file, const ReadLine& read) {
        const std::string_view index = indexText(read);
        std::string message;
        if (!isDecimalIn(index, {})) {
            message = quoted(index) + " is no index; the line counts as " + std::string(read.key);
        } else if (read.key == "Model_0") {
            message = "the index 0 is that of a set without an index; begin with 1";
        } else if (beginsWith(index, "-")) {
            message = "the index is negative, so that the service refuses every change of model";
        }
        if (!message.empty()) {
            reporter.report(placeOf(line, file, read, keyword::kModel), std::move(message));
        }
    });
}

// What the list of models shows of a line.
std::string shownOf(const ReadLine& read) {
    const size_t folder = read.text.find(keyword::kModelFolder);
    std::string shown(read.text.substr(folder + keyword::kModelFolder.size()));
    shown.erase(std::remove(shown.begin(), shown.end(), '"'), shown.end());
    return std::string(trimmed(shown));
}

void checkFolders(const ProductLine& line, Reporter& reporter) {
    forEachModelLine(line, [&](const FileLines& file, const ReadLine& read) {
        // A file that does not exist is another finding.
        if (!read.value.empty() &&
            read.text.find(keyword::kModelFolder) == std::string_view::npos &&
            product::pathExists(line.tree().hostOfWritten(read.value))) {
            reporter.report(placeOf(line, file, read, read.value),
                            "the list of models shows what follows \"model/\", and otherwise the "
                            "line without its first five bytes; put model files into a folder "
                            "\"model\"");
        }
    });
}

void checkRemarks(const ProductLine& line, Reporter& reporter) {
    forEachModelLine(line, [&](const FileLines& file, const ReadLine& read) {
        const size_t folder = read.value.find(keyword::kModelFolder);
        if (folder == std::string_view::npos) {
            return;
        }
        const std::string_view name = read.value.substr(folder + keyword::kModelFolder.size());
        const std::string shown = shownOf(read);
        if (shown != name) {
            const bool begins = beginsWith(shown, name);
            const std::string rest(begins ? trimmed(std::string_view(shown).substr(name.size()))
                                          : shown);
            reporter.report(placeOf(line, file, read, rest),
                            "the list of models shows " + quoted(shown) + ", not " + quoted(name) +
                                    "; put the remark on a line of its own");
        }
    });
}

// The keyword that a line without one was probably meant to have; empty for none.
std::string_view keywordMeantBy(const FileLines& file, const ReadLine& read) {
    if (read.use != LineUse::NOTHING || looksLikeComment(read.text) ||
        read.text.find('=') == std::string_view::npos) {
        return {};
    }
    std::string_view key = trimmed(read.text.substr(0, read.text.find('=')));
    if (file.format() == FileFormat::SYSTEM) {
        key = key.substr(0, key.find_last_not_of("0123456789") + 1);
        return nearest(key, {keyword::kModel});
    }
    std::vector<std::string_view> missing;
    for (const std::string_view word : {keyword::kCustomerId, keyword::kSystemFile}) {
        if (file.find("", word) == nullptr) {
            missing.push_back(word);
        }
    }
    return nearest(key, missing);
}

void checkKeywords(const ProductLine& line, Reporter& reporter) {
    const auto check = [&](const FileLines& file) {
        for (const ReadLine& read : file.lines()) {
            const std::string_view word = keywordMeantBy(file, read);
            if (!word.empty()) {
                reporter.report(placeOf(line, file, read, trimmed(read.text)),
                                "the service skips the line; is " + quoted(word) + " meant?");
            }
        }
    };
    for (const Customer& customer : line.customers()) {
        check(*customer.file);
    }
    for (const FileLines* const file : systemFilesOf(line)) {
        check(*file);
    }
}

// True if some line of the file was meant to have the keyword, and has another finding.
bool isMeantSomewhere(const FileLines& file, std::string_view word) {
    return std::any_of(file.lines().begin(), file.lines().end(), [&](const ReadLine& read) {
        return read.use == LineUse::IGNORED || keywordMeantBy(file, read) == word;
    });
}

void checkCustomer(const ProductLine& line, Reporter& reporter, const Customer& customer) {
    const FileLines& file = *customer.file;
    const std::pair<std::string_view, const char*> words[] = {
            {keyword::kCustomerId, "the service answers no customer id"},
            {keyword::kSystemFile, "no list of models is read, and a set has no model"}};
    for (const auto& [word, effect] : words) {
        const ReadLine* const read = file.find("", word);
        if (read == nullptr && !isMeantSomewhere(file, word)) {
            reporter.report(placeOf(file), "no " + std::string(word) + ": " + effect);
        } else if (read != nullptr && read->value.empty()) {
            reporter.report(placeOf(line, file, *read, "="),
                            std::string(word) + " is empty: " + effect);
        }
    }
}

void checkWhole(const ProductLine& line, Reporter& reporter) {
    for (const Customer& customer : line.customers()) {
        if (isUsable(customer.file)) {
            checkCustomer(line, reporter, customer);
        }
    }
    for (const FileLines* const file : systemFilesOf(line)) {
        const bool hasModels =
                std::any_of(file->lines().begin(), file->lines().end(),
                            [](const ReadLine& read) { return read.use == LineUse::ITEM; });
        if (!hasModels && !isMeantSomewhere(*file, keyword::kModel)) {
            std::vector<Related> related;
            for (const Naming& naming : line.namings(file->path())) {
                if (naming.file != nullptr && naming.file->format() == FileFormat::CUSTOMER) {
                    related.push_back(
                            {placeOf(line, *naming.file, *naming.line, naming.line->value),
                             "named here as the list of models"});
                }
            }
            reporter.report(placeOf(*file),
                            "no line has \"Model_\" and an index: the product line "
                            "has no model",
                            std::move(related));
        }
    }
}

void checkPaths(const ProductLine& line, Reporter& reporter) {
    forEachModelLine(line, [&](const FileLines& file, const ReadLine& read) {
        if (read.value.empty()) {
            reporter.report(placeOf(line, file, read, "="),
                            std::string(read.key) +
                                    " has no path: a set with this index has the "
                                    "items of its board file alone");
        }
    });
}

void checkSameFile(const ProductLine& line, Reporter& reporter) {
    std::map<std::pair<const FileLines*, const FileLines*>, const Model*> first;  // of a list
    for (const Model& model : line.models()) {
        if (!model.counts || model.file == nullptr || !model.file->exists()) {
            continue;
        }
        const FileLines& list = *model.customer->system;
        const auto [former, isNew] = first.try_emplace({&list, model.file}, &model);
        if (!isNew && former->second->index != model.index) {
            reporter.report(placeOf(line, list, *model.line, model.line->value),
                            std::string(model.line->key) + " has the project file of " +
                                    std::string(former->second->line->key),
                            {{placeOf(line, list, *former->second->line), "the other line"}});
        }
    }
}

constexpr Rule kRules[] = {
        {"same-index", Severity::ERROR, "two models have one index",
         "The lower line counts, and the model of the upper one cannot be selected.",
         "Model_1 = /tvconfigs/model/a.ini\nModel_1 = /tvconfigs/model/b.ini",
         "Model_1 = /tvconfigs/model/a.ini\nModel_2 = /tvconfigs/model/b.ini", checkSameIndex},
        {"model-number", Severity::ERROR, "the index of a model is no number from 1 on",
         "A text without digits counts as 0, the index of a set without one. With a negative index "
         "the service refuses every change of model.",
         "Model_x = /tvconfigs/model/a.ini", "Model_3 = /tvconfigs/model/a.ini", checkNumbers},
        {"model-without-path", Severity::ERROR, "a model has no project file",
         "A set with this index has the items of its board file alone.",
         "Model_3 =", "Model_3 = /tvconfigs/model/a.ini", checkPaths},
        {"same-model", Severity::NOTE, "two models have one project file",
         "Sets with either index are the same. If only one of the lines was copied, the file of "
         "the "
         "other model has no index.",
         "Model_3 = /tvconfigs/model/a.ini\nModel_4 = /tvconfigs/model/a.ini",
         "Model_3 = /tvconfigs/model/a.ini\nModel_4 = /tvconfigs/model/b.ini", checkSameFile},
        {"model-folder", Severity::WARNING, "a model file lies in no folder named \"model\"",
         "The list of models shows what follows \"model/\" in a line. Without it the list has the "
         "line without its first five bytes.",
         "Model_3 = /tvconfigs/projects/a.ini", "Model_3 = /tvconfigs/model/a.ini", checkFolders},
        {"model-remark", Severity::WARNING, "a remark follows the path of a model",
         "The list of models shows the line to its end, the remark included.",
         "Model_3 = /tvconfigs/model/a.ini  # from May on",
         "# from May on\nModel_3 = /tvconfigs/model/a.ini", checkRemarks},
        {"misspelt-keyword", Severity::ERROR,
         "a line of a customer or system file has nearly a keyword",
         "The service skips every line without the exact word: a model is missing, or all are.",
         "MODEL_3 = /tvconfigs/model/a.ini", "Model_3 = /tvconfigs/model/a.ini", checkKeywords},
        {"incomplete-chain", Severity::ERROR,
         "a customer file lacks a keyword, or a system file has no model",
         "Everything that a set has begins with the customer file, which names the system file, "
         "which lists the models.",
         "CUSTOMER_ID = 17      (and no SYS_INI)",
         "CUSTOMER_ID = 17\nSYS_INI = /tvconfigs/system/line.ini", checkWhole},
};

}  // namespace

RuleFamily models() {
    return {"models", "Customer file and list of models", kRules, std::size(kRules)};
}

}  // namespace mlk::tree
