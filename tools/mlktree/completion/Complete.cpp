#include "tools/mlktree/completion/Complete.h"

#include <vendor/morlak/mlkconfigs/1.0/types.h>

#include <algorithm>
#include <optional>

#include "tools/common/Text.h"
#include "tools/mlktree/Rule.h"
#include "tools/mlktree/Texts.h"
#include "tools/mlktree/completion/CompletionScripts.h"

namespace mlk::tree {

namespace {

using ::vendor::morlak::mlkconfigs::V1_0::AtscCableType;
using ::vendor::morlak::mlkconfigs::V1_0::FreqTableType;

bool isOption(const std::string& word) {
    return word.size() > 1 && word.front() == '-';
}

// The command line before the word that is completed. It may be wrong.
struct Before {
    Arguments given;
    const Option* open = nullptr;  // an option whose value is the word
    bool hasEnded = false;         // "--" came: no options follow
    std::string word;              // as far as it is typed
};

Before read(const Command& command, const std::vector<std::string>& words) {
    Before before;
    for (const std::string& word : words) {
        if (before.open != nullptr) {
            before.given.add(before.open->name, word);
            before.open = nullptr;
        } else if (before.hasEnded || !isOption(word)) {
            before.given.addWord(word);
        } else if (word == "--") {
            before.hasEnded = true;
        } else {
            const size_t equals = word.find('=');
            const Option* option = command.find(word.substr(0, equals));
            if (option != nullptr && equals != std::string::npos) {
                before.given.add(option->name, word.substr(equals + 1));
            } else if (option != nullptr && !option->value.empty()) {
                before.open = option;
            } else if (option != nullptr) {
                before.given.add(option->name, "");
            }
        }
    }
    return before;
}

void addRules(std::vector<Candidate>& out) {
    for (const RuleFamily& family : ruleFamilies()) {
        for (size_t i = 0; i < family.count; ++i) {
            const Rule& rule = family.rules[i];
            out.push_back({std::string(rule.name), std::string(rule.summary)});
        }
    }
}

void addCommands(std::vector<Candidate>& out) {
    for (const Command& command : commands()) {
        if (!command.isHidden) {
            out.push_back({std::string(command.name), std::string(command.summary)});
        }
    }
}

template <typename Enum>
void addEnumerators(std::vector<Candidate>& out) {
    for (const auto value : ::android::hardware::hidl_enum_range<Enum>()) {
        out.push_back({toString(value), ""});
    }
}

const std::vector<std::string>& explainedTopics() {
    static const std::vector<std::string> kTopics = {"feature", "audio", "country", "file"};
    return kTopics;
}

// Sections, without their brackets unless somebody types them or the rest is another word.
void addSections(std::vector<Candidate>& out, std::vector<Candidate> sections,
                 const std::string& word) {
    const bool isBracketed = beginsWith(word, "[");
    const auto& topics = explainedTopics();
    for (Candidate& section : sections) {
        std::string& name = section.word;
        const bool hasBrackets = name.size() > 2 && name.front() == '[' && name.back() == ']';
        const std::string bare = hasBrackets ? name.substr(1, name.size() - 2) : name;
        if (!isBracketed && std::find(topics.begin(), topics.end(), bare) == topics.end()) {
            name = bare;
        }
        out.push_back(std::move(section));
    }
}

// Paths as they are typed: relative to the tree, or as the partitions' files have them.
void addTreeFiles(Candidates& out, std::vector<Candidate> paths, const std::string& word) {
    const bool isWritten = beginsWith(word, "/");
    bool hasOne = false;
    for (Candidate& path : paths) {
        path.word.insert(0, isWritten ? "/" : "");
        hasOne = hasOne || beginsWith(path.word, word);
        out.words.push_back(std::move(path));
    }
    out.files = out.files || !hasOne;
}

std::vector<Candidate> namesOfTree(Completion kind, const Before& before, TreeNames& names) {
    const std::vector<std::string>& words = before.given.words();
    const std::string last = words.empty() ? "" : words.back();
    return names.of(kind, before.given, kind == Completion::ROW ? before.word : last);
}

void add(Candidates& out, Completion kind, const Before& before, TreeNames& names) {
    switch (kind) {
        case Completion::NOTHING:
        case Completion::CHOICE:
            return;
        case Completion::FILE:
            out.files = true;
            return;
        case Completion::FOLDER:
            out.folders = true;
            return;
        case Completion::COMMAND:
            return addCommands(out.words);
        case Completion::RULE:
            return addRules(out.words);
        case Completion::EXPLAINED:
            for (const std::string& topic : explainedTopics()) {
                out.words.push_back({topic, ""});
            }
            return;
        case Completion::PLAN_KIND:
            return addEnumerators<FreqTableType>(out.words);
        case Completion::CABLE:
            return addEnumerators<AtscCableType>(out.words);
        case Completion::SHELL:
            for (const ShellScript& shell : completionScripts()) {
                out.words.push_back({std::string(shell.name), ""});
            }
            return;
        case Completion::SECTION:
        case Completion::SOUND_SECTION:
            return addSections(out.words, namesOfTree(kind, before, names), before.word);
        case Completion::TREE_FILE:
            return addTreeFiles(out, namesOfTree(kind, before, names), before.word);
        case Completion::MODEL:
        case Completion::BOARD:
        case Completion::CUSTOMER:
        case Completion::COUNTRY:
        case Completion::PROPERTY:
        case Completion::KEY:
        case Completion::FEATURE:
        case Completion::SOUND_KEY:
        case Completion::OPERAND:
        case Completion::ROW: {
            const std::vector<Candidate> found = namesOfTree(kind, before, names);
            out.words.insert(out.words.end(), found.begin(), found.end());
        }
    }
}

// A part of a set, "model=6", after the parts that the word has before its last comma.
void addOperands(Candidates& out, const std::string& word, const Before& before, TreeNames& names) {
    static constexpr std::pair<const char*, Completion> kParts[] = {
            {"model=", Completion::MODEL},       {"board=", Completion::BOARD},
            {"customer=", Completion::CUSTOMER}, {"country=", Completion::COUNTRY},
            {"tree=", Completion::NOTHING},
    };
    out.files |= word.find('=') == std::string::npos;
    const size_t comma = word.rfind(',');
    const std::string done = comma == std::string::npos ? "" : word.substr(0, comma + 1);
    const std::string part = word.substr(done.size());
    for (const auto& [name, kind] : kParts) {
        const std::string_view start = name;
        const bool isGiven = ("," + done).find("," + std::string(start)) != std::string::npos;
        if (!isGiven && beginsWith(part, start)) {
            for (const Candidate& value : names.of(kind, before.given, "")) {
                out.words.push_back({done + name + value.word, value.what});
            }
        } else if (!isGiven) {
            out.words.push_back({done + name, "a part of a set"});
        }
    }
    if (done.empty()) {
        out.words.push_back({"rev:", "the tree as a revision has it"});
    }
}

void addValues(Candidates& out, const Option& option, const Before& before, TreeNames& names) {
    for (const std::string_view choice : option.choices) {
        out.words.push_back({std::string(choice), ""});
    }
    add(out, option.completion, before, names);
}

void addOptions(std::vector<Candidate>& out, const Command& command, const Before& before) {
    for (const OptionGroup& group : command.groups) {
        for (const Option& option : group.options) {
            if (option.repeats || !before.given.has(option.name)) {
                out.push_back({std::string(option.name), std::string(option.help)});
            }
        }
    }
    out.push_back({std::string(helpOption().name), std::string(helpOption().help)});
}

// "--model=" and its values, for a word that has the "=" already.
std::optional<Candidates> valuesAfterEquals(const Command& command, const std::string& word,
                                            const Before& before, TreeNames& names) {
    const size_t equals = word.find('=');
    if (!isOption(word) || equals == std::string::npos) {
        return std::nullopt;
    }
    Candidates found;
    const Option* option = command.find(word.substr(0, equals));
    if (option != nullptr && !option->value.empty()) {
        addValues(found, *option, before, names);
        for (Candidate& candidate : found.words) {
            candidate.word.insert(0, word.substr(0, equals + 1));
        }
    }
    return found;
}

}  // namespace

Candidates candidatesFor(const std::vector<std::string>& words, TreeNames& names) {
    Candidates found;
    if (words.size() < 2) {
        addCommands(found.words);
        found.words.push_back({"--help", "print what mlktree does"});
        found.words.push_back({"--version", "print the version"});
        return found;
    }
    const Command* command = findCommand(words.front());
    if (command == nullptr || command->isHidden) {
        return found;
    }
    const std::string& word = words.back();
    Before before = read(*command, {words.begin() + 1, words.end() - 1});
    before.word = word;
    if (before.open != nullptr) {
        addValues(found, *before.open, before, names);
        return found;
    }
    if (!before.hasEnded) {
        if (const auto values = valuesAfterEquals(*command, word, before, names)) {
            return *values;
        }
    }
    if (!before.hasEnded && beginsWith(word, "-")) {
        addOptions(found.words, *command, before);
        return found;
    }
    if (command->nextWord != nullptr && before.given.words().size() < command->mostWords) {
        for (const Completion kind : command->nextWord(before.given.words())) {
            if (kind == Completion::OPERAND) {
                addOperands(found, word, before, names);
            } else {
                add(found, kind, before, names);
            }
        }
    }
    return found;
}

std::string shownCandidates(const Candidates& candidates, const std::string& begun) {
    std::string lines;
    if (candidates.files || candidates.folders) {
        lines += candidates.files ? ":files\n" : ":folders\n";
    }
    for (const Candidate& candidate : candidates.words) {
        const std::string& word = candidate.word;
        // A word with a line feed or a tab cannot be handed to a shell in this form.
        if (beginsWith(word, begun) && printable(word) == word) {
            lines += word + (candidate.what.empty() ? "" : "\t" + printable(candidate.what)) + "\n";
        }
    }
    return lines;
}

}  // namespace mlk::tree
