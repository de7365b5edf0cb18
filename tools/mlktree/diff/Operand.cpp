#include "tools/mlktree/diff/Operand.h"

#include <sys/stat.h>

#include <algorithm>

#include "tools/common/Suggest.h"
#include "tools/common/Text.h"
#include "tools/mlktree/FileText.h"
#include "tools/mlktree/FolderFiles.h"
#include "tools/mlktree/OpenTree.h"
#include "tools/mlktree/Texts.h"
#include "tools/mlktree/answers/Snapshot.h"
#include "tools/mlktree/diff/SetFilter.h"

namespace mlk::tree {

namespace {

constexpr std::string_view kRevision = "rev:";
constexpr const char* kExpected =
        "; expected is a folder with tvconfigs/, the file of a snapshot, rev:REVISION, or a set "
        "such as model=6,board=FILE,country=NAME,tree=DIR";

bool exists(const std::string& path) {
    struct stat status = {};
    return stat(path.c_str(), &status) == 0;
}

// A message that begins with an option, "--model 9: ...", in the words of an operand that has the
// part instead: "model=9: ...".
std::string inWordsOf(const Operand& operand, const std::string& message) {
    for (const auto& [part, value] : operand.set) {
        const std::string option = "--" + part + " ";
        if (operand.ofOptions.count(part) == 0 && beginsWith(message, option)) {
            const std::string_view rest = std::string_view(message).substr(option.size());
            return part + (beginsWith(rest, value) ? "=" : "= ") + std::string(rest);
        }
    }
    return message;
}

Selection selectionOf(const Operand& operand, bool isOneSet,
                      const std::vector<std::string>& customers = {}) {
    Arguments arguments;
    for (const auto& [part, value] : operand.set) {
        arguments.add("--" + part, value);
    }
    Selection selection;
    try {
        selection = mlk::tree::selectionOf(arguments);
    } catch (const UsageError& error) {
        throw UsageError(excerpt(operand.text) + ": " + inWordsOf(operand, error.what()));
    }
    selection.isOneSet = isOneSet;
    if (!isOneSet) {
        selection.customers = customers;
    }
    return selection;
}

SetFilter filterOf(const Operand& operand) {
    const Selection selection = selectionOf(operand, true);
    try {
        return SetFilter(selection);
    } catch (const UsageError& error) {
        throw UsageError(inWordsOf(operand, error.what()));
    }
}

bool isPart(std::string_view name) {
    return std::find(kOperandParts.begin(), kOperandParts.end(), name) != kOperandParts.end();
}

// The end of the part that begins here: a comma, or the end of the word. The names of files may
// have commas; those end before what is a part or was probably meant as one.
size_t endOfPart(std::string_view word, size_t begin) {
    const std::string_view name = word.substr(begin, word.find('=', begin) - begin);
    const bool isFile = name == "board" || name == "customer" || name == "tree";
    size_t end = word.find(',', begin);
    while (isFile && end != std::string_view::npos) {
        const std::string_view rest = word.substr(end + 1);
        const size_t equals = rest.find_first_of("=,");
        const std::string next(rest.substr(0, equals));
        const bool hasEquals = equals != std::string_view::npos && rest[equals] == '=';
        if (rest.empty() ||
            (hasEquals && (isPart(next) || !didYouMean(next, kOperandParts, "").empty()))) {
            break;
        }
        end = word.find(',', end + 1);
    }
    return std::min(end, word.size());
}

}  // namespace

const std::vector<std::string_view> kOperandParts = {"model", "board", "customer", "country",
                                                     "tree"};

Operand parseOperand(const std::string& word) {
    Operand operand;
    operand.text = word;
    const std::string_view first = std::string_view(word).substr(0, word.find_first_of("=,"));
    const bool hasParts = word.find('=') != std::string::npos;
    const bool isKnown = isPart(first);
    // A file may have "=" in its name.
    if (!hasParts || beginsWith(word, kRevision) || (!isKnown && exists(word))) {
        operand.source = word;
        return operand;
    }
    for (size_t begin = 0; begin <= word.size();) {
        const size_t end = endOfPart(word, begin);
        const std::string part = word.substr(begin, end - begin);
        begin = end + 1;
        const size_t equals = part.find('=');
        const std::string name = part.substr(0, equals);
        if (equals == std::string::npos || !isPart(name)) {
            throw UsageError(excerpt(word) + ": " + excerpt(part) +
                             " is no part of a set; the parts are model=N, board=FILE, "
                             "customer=FILE, country=NAME and tree=DIR, with commas between them" +
                             didYouMean(name, kOperandParts, ""));
        }
        const std::string value = part.substr(equals + 1);
        std::string& kept = name == "tree" ? operand.source : operand.set[name];
        if (value.empty() || !kept.empty()) {
            throw UsageError(excerpt(word) + ": " + name + "= " +
                             (value.empty() ? "has no value" : "is there twice"));
        }
        kept = value;
    }
    return operand;
}

void addParts(Operand& operand, const Arguments& arguments) {
    for (const std::string_view part : kOperandParts) {
        const std::string option = "--" + std::string(part);
        if (option == "--tree" || !arguments.has(option)) {
            continue;
        }
        if (arguments.values(option).size() > 1) {
            throw UsageError("a set has one customer file; give --customer once");
        }
        const std::string value = arguments.value(option);
        const auto [known, isNew] = operand.set.emplace(part, value);
        operand.ofOptions.emplace(part);
        if (!isNew) {
            throw UsageError(excerpt(operand.text) + " and " + option + " " + excerpt(value) +
                             " both name a " + std::string(part) + "; leave one of them out");
        }
    }
}

OpenOperand::OpenOperand(const Operand& operand, bool isOneSet, const Arguments& arguments,
                         const Environment& environment)
    : mOperand(operand) {
    const std::string& source = operand.source;
    const std::string otherwise = treeFolder(arguments, "", environment);
    if (beginsWith(source, kRevision)) {
        mExtracted = extractRevision(otherwise, source.substr(kRevision.size()));
        openTree(mExtracted->path() + kExtractedTree, source + " of " + otherwise, isOneSet,
                 arguments);
    } else if (source.empty()) {
        openTree(otherwise, otherwise, isOneSet, arguments);
    } else if (isFolder(source)) {
        openTree(source, source, isOneSet, arguments);
    } else if (exists(source)) {
        openSnapshot(source);
    } else {
        throw UsageError("there is no file or folder " + excerpt(source) + kExpected);
    }
}

void OpenOperand::openTree(const std::string& folder, const std::string& name, bool isOneSet,
                           const Arguments& arguments) {
    const std::string where = folder + "/";
    try {
        if (!isFolder(where + "tvconfigs")) {
            const bool isDefault = mExtracted != nullptr || mOperand.source.empty();
            throw UsageError(std::string("there is no folder tvconfigs in it") +
                             (isDefault ? "; --tree names the tree" : ""));
        }
        mTree = std::make_unique<Tree>(folder, Tree::Apart());
        mSettings = std::make_unique<Settings>(readSettings(where + "mlktree.toml"));
        mProperties = std::make_unique<TreeProperties>(where + "data/property",
                                                       arguments.values("--prop"));
        mLine = std::make_unique<ProductLine>(
                *mTree, *mSettings, *mProperties,
                selectionOf(mOperand, isOneSet, arguments.values("--customer")));
    } catch (const UsageError& error) {
        // The temporary folder of a revision is gone when somebody reads the message.
        std::string what = inWordsOf(mOperand, error.what());
        for (size_t at = what.find(where); mExtracted != nullptr && at != std::string::npos;
             at = what.find(where)) {
            what.erase(at, where.size());
        }
        throw UsageError(printable(name) + ": " + what);
    }
    mAnswers = answersOf(*mLine, isOneSet);
}

void OpenOperand::addSets(const Selection& selection) {
    try {
        auto line =
                std::make_unique<const ProductLine>(*mTree, *mSettings, *mProperties, selection);
        mAnswers = answersOf(*line);
        mLine = std::move(line);
    } catch (const UsageError&) {
        // The other side may have the board: then its lack is a difference.
    }
}

void OpenOperand::openSnapshot(const std::string& path) {
    mIsSnapshot = true;
    mAnswers = readSnapshot(textOf(path, kMostSnapshotBytes), path);
}

const AnswerSet& OpenOperand::set() const {
    const LineAnswers& line = *mAnswers;
    if (!mIsSnapshot && line.sets.size() == 1) {
        return line.sets.front();
    }
    const SetFilter filter = filterOf(mOperand);
    const AnswerSet* found = nullptr;
    for (const AnswerSet& set : line.sets) {
        if (!filter.fits(line, set)) {
            continue;
        }
        if (found != nullptr) {
            throw UsageError(excerpt(mOperand.text) + " fits several sets of the snapshot, " +
                             printable(nameOf(line, *found)) + " and " +
                             printable(nameOf(line, set)) +
                             "; name model=, board=, customer= and country=");
        }
        found = &set;
    }
    if (found == nullptr) {
        throw UsageError(excerpt(mOperand.text) + " fits no set of the " +
                         (mIsSnapshot ? "snapshot" : "tree"));
    }
    return *found;
}

}  // namespace mlk::tree
