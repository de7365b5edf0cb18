#include "tools/mlktree/OpenTree.h"

#include <charconv>
#include <filesystem>
#include <system_error>

#include "tools/common/Text.h"

namespace mlk::tree {

namespace {

Tree::Apart apartOf(const Arguments& arguments) {
    return {arguments.value("--tvconfigs"), arguments.value("--tvdata"),
            arguments.value("--impdata")};
}

// The root of a tree; none if every partition is named apart and no tree is.
std::string rootOf(const Arguments& arguments, const std::string& word,
                   const Environment& environment) {
    const Tree::Apart apart = apartOf(arguments);
    const bool isWhole =
            !apart.tvconfigs.empty() && !apart.tvdata.empty() && !apart.impdata.empty();
    const bool isNamed = !word.empty() || arguments.has("--tree");
    return isWhole && !isNamed ? "" : treeFolder(arguments, word, environment);
}

}  // namespace

Selection selectionOf(const Arguments& arguments) {
    Selection selection;
    if (arguments.has("--model")) {
        const std::string text = arguments.value("--model");
        int32_t number = 0;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
        if (error != std::errc() || end != text.data() + text.size()) {
            throw UsageError("--model takes the index of a model, a number, not " + excerpt(text));
        }
        selection.model = number;
    }
    selection.board = arguments.value("--board");
    selection.customers = arguments.values("--customer");
    selection.country = arguments.value("--country");
    return selection;
}

Selection selectionOfSet(const Arguments& arguments) {
    Selection selection = selectionOf(arguments);
    selection.isOneSet = true;
    if (selection.customers.size() > 1) {
        throw UsageError("a set has one customer file; give --customer once");
    }
    return selection;
}

std::string treeFolder(const Arguments& arguments, const std::string& word,
                       const Environment& environment) {
    if (arguments.has("--tree")) {
        if (!word.empty()) {
            throw UsageError("there are two trees, " + excerpt(word) + " and --tree " +
                             excerpt(arguments.value("--tree")) + "; leave one of them out");
        }
        return arguments.value("--tree");
    }
    if (!word.empty()) {
        return word;
    }
    return environment.root.empty() ? "." : environment.root;
}

bool looksLikeTree(const std::string& word) {
    std::error_code error;
    return word == "." || word == ".." || word.find('/') != std::string::npos ||
           std::filesystem::is_directory(std::filesystem::path(word) / "tvconfigs", error);
}

OpenTree::OpenTree(const Arguments& arguments, const std::string& word,
                   const Environment& environment, const Selection& selection)
    : mTree(rootOf(arguments, word, environment), apartOf(arguments)),
      mSettings(mTree.root().empty() ? Settings() : readSettings(mTree.root() + "/mlktree.toml")),
      mProperties(mTree.root().empty() ? std::string() : mTree.root() + "/data/property",
                  arguments.values("--prop")),
      mLine(mTree, mSettings, mProperties, selection) {}

}  // namespace mlk::tree
