#pragma once

#include <iosfwd>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "tools/common/Output.h"

namespace mlk::tree {

/** The exit status of mlktree. */
enum class ExitStatus : int {
    NOTHING_FOUND = 0,
    FOUND = 1, /**< findings at or above the threshold */
    USAGE = 2, /**< the command line or the tree is wrong, or the system refuses */
};

/** What a shell offers where a word or the value of an option is wanted. */
enum class Completion {
    NOTHING,
    FILE,
    FOLDER,
    TREE_FILE, /**< a path of the tree, or else a file */
    CHOICE,    /**< Option::choices */
    COMMAND,
    RULE,
    SHELL,
    MODEL,
    BOARD,
    CUSTOMER,
    COUNTRY,
    PROPERTY,
    SECTION,
    KEY, /**< of the section that the word before names */
    FEATURE,
    EXPLAINED,     /**< the words that say what explain shall explain */
    SOUND_SECTION, /**< of the audio files */
    SOUND_KEY,     /**< of the section that the word before names */
    OPERAND,       /**< what diff compares: "model=6,country=GERMANY" */
    PLAN_KIND,     /**< "DTV_CABLE" */
    CABLE,         /**< "HRC" */
    ROW,           /**< what a pattern of matrix accepts */
};

/** One option of a command. */
struct Option {
    std::string_view name;  /**< "--model" */
    char letter = 0;        /**< 'o' for -o; 0 for none */
    std::string_view value; /**< what help calls its value: "N"; empty for a switch */
    std::string_view help;  /**< what it does: one sentence without a full stop */
    Completion completion = Completion::NOTHING;
    std::vector<std::string_view> choices = {}; /**< the only values that are allowed */
    std::string_view otherwise = "";            /**< what counts without the option */
    bool repeats = false;                       /**< may be given several times */
};

/** Options under one heading of the help. */
struct OptionGroup {
    std::string_view title; /**< "Options", "Which tree", ... */
    std::vector<Option> options;
};

/** A command line and what it does, short enough to stand beside it. */
struct Example {
    std::string_view line;
    std::string_view what;
};

/** A command line after its options and words have been told apart. */
class Arguments {
  public:
    /** Whether the option "--name" was given. */
    bool has(std::string_view option) const { return mOptions.count(option) != 0; }
    /** The value of an option; the default if it was not given. */
    std::string value(std::string_view option, std::string_view otherwise = "") const;
    /** Every value of an option that repeats, in the order of the command line. */
    std::vector<std::string> values(std::string_view option) const;
    /** What is no option, in order. */
    const std::vector<std::string>& words() const { return mWords; }

    void add(std::string_view option, const std::string& value);
    void addWord(const std::string& word) { mWords.push_back(word); }

  private:
    std::map<std::string, std::vector<std::string>, std::less<>> mOptions;
    std::vector<std::string> mWords;
};

/** What a command works with. */
struct Environment {
    Output& output;       /**< standard output */
    std::ostream& errors; /**< standard error */
    bool isErrorTerminal; /**< whether a person reads standard error */
    std::string root;     /**< MLK_ROOT */
    bool noColor;         /**< whether NO_COLOR has a value */
};

/**
 * One command: a row of the table that the command line, the help, and from the help the manual
 * page, and the completion of every shell come from.
 */
struct Command {
    std::string_view name;
    std::vector<std::string_view> words; /**< "[TREE]": each form that its words may have */
    std::string_view summary;            /**< "finds the mistakes of a product line" */
    std::string_view description;        /**< paragraphs with empty lines between them */
    std::vector<OptionGroup> groups;
    std::vector<std::pair<int, std::string_view>> statuses; /**< exit status and what it says */
    std::vector<Example> examples;
    size_t mostWords = 0;
    /** What a shell offers for the word that follows these. */
    std::vector<Completion> (*nextWord)(const std::vector<std::string>& before) = nullptr;
    /** Does the work. Throws UsageError, or std::system_error if the system refuses. */
    ExitStatus (*run)(const Arguments& arguments, Environment& environment) = nullptr;
    bool isHidden = false; /**< for scripts: no help lists it */

    /** The option of that name ("--model", "-o"), or null. "--help" is one. */
    const Option* find(std::string_view option) const;
};

/** Every command, in the order of the manual. */
const std::vector<Command>& commands();

/** The command of that name, or null. */
const Command* findCommand(std::string_view name);

/** "--help", which every command has. */
const Option& helpOption();

// One row each, in a file of its own.
Command checkCommand();
Command explainCommand();
Command fixCommand();
Command rulesCommand();
Command settingsCommand();
Command newCommand();
Command showCommand();
Command reportCommand();
Command snapshotCommand();
Command diffCommand();
Command planCommand();
Command matrixCommand();
Command completionCommand();
Command completeCommand(); /**< hidden: what the scripts of `completion` ask */

}  // namespace mlk::tree
