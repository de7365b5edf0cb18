#include <algorithm>
#include <cctype>

#include "projectconfigs/ChainKeywords.h"
#include "tools/common/Text.h"
#include "tools/mlktree/Command.h"
#include "tools/mlktree/Starter.h"
#include "tools/mlktree/Tree.h"

namespace mlk::tree {

namespace {

namespace product = vendor::morlak::mlkconfigs::V1_0::implementation;

constexpr size_t kLongestName = 60;  // fits into a line of a customer or system file

// A name that can stand in the files and in a path as it is.
std::string nameOf(const Arguments& arguments, const char* option, const char* otherwise) {
    std::string name = arguments.value(option, otherwise);
    const bool isPlain = std::all_of(name.begin(), name.end(), [](unsigned char c) {
        return (c < 0x80 && std::isalnum(c) != 0) || c == '-' || c == '_' || c == '.';
    });
    if (name.empty() || name.size() > kLongestName || !isPlain || name.front() == '.') {
        throw UsageError(std::string(option) + " takes up to " + std::to_string(kLongestName) +
                         " letters, digits, \"-\", \"_\" and \".\", and no \".\" in front; not " +
                         excerpt(name));
    }
    for (const product::ChainKeyword& keyword : product::kChainKeywords) {
        if (name.find(keyword.word) != std::string::npos) {
            throw UsageError(std::string(option) + ": the service takes " +
                             std::string(keyword.word) +
                             " for its keyword wherever it stands; choose another name than " +
                             excerpt(name));
        }
    }
    return name;
}

ExitStatus run(const Arguments& arguments, Environment& environment) {
    if (arguments.words().empty()) {
        throw UsageError("which folder? mlktree new DIR");
    }
    const std::string folder = arguments.words().front();
    const StarterNames names = {nameOf(arguments, "--maker", "MAKER"),
                                nameOf(arguments, "--model", "FIRST")};
    const std::vector<std::string> paths = writeStarter(folder, names);
    for (const std::string& path : paths) {
        environment.output.write(path + "\n");
    }
    return ExitStatus::NOTHING_FOUND;
}

std::vector<Completion> folderWord(const std::vector<std::string>& before) {
    return before.empty() ? std::vector<Completion>{Completion::FOLDER} : std::vector<Completion>();
}

}  // namespace

Command newCommand() {
    Command command;
    command.name = "new";
    command.words = {"DIR"};
    command.summary = "writes a smallest product line to begin with";
    command.description =
            "Writes one model for one country into DIR, which must be new or empty, and prints the "
            "paths of the files. check finds nothing in it, and the service runs on it. The model "
            "has every item that the service looks for; comments explain the files.";
    command.groups = {
            {"Options",
             {{"--maker", 0, "NAME", "the customer's id", Completion::NOTHING, {}, "MAKER"},
              {"--model",
               0,
               "NAME",
               "the model, and its file",
               Completion::NOTHING,
               {},
               "FIRST"}}}};
    command.statuses = {
            {0, "all files are written"},
            {2, "the folder is not empty, a file cannot be written, or the command line is wrong"}};
    command.examples = {
            {"mlktree new --maker ACME --model TV43 myline", "a line to begin with"},
            {"mlktree check myline", "what check says about it"},
    };
    command.mostWords = 1;
    command.nextWord = folderWord;
    command.run = run;
    return command;
}

}  // namespace mlk::tree
