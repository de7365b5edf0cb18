#pragma once

#include <iosfwd>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tools/common/Output.h"
#include "tools/mlkctl/Completing.h"
#include "tools/mlkctl/Failure.h"
#include "tools/mlkctl/Services.h"

namespace CLI {
class App;
}

namespace mlk::ctl {

/** What a verb works with. */
struct Environment {
    int input;             // descriptor of standard input
    Output& output;        // standard output
    std::ostream& errors;  // standard error, for findings that do not end the verb
    Services& services;

    /**
     * Writes one line to standard error that does not end the verb. Flushes standard output first,
     * so that the line stands after the answer that it is about.
     */
    void note(const std::string& text);
};

/**
 * One of mlkctl's commands: `mlkctl VERB [OPTION]... [WORD]...`. An object serves one command line.
 */
class Verb {
  public:
    Verb() = default;
    virtual ~Verb() = default;
    Verb(const Verb&) = delete;
    Verb& operator=(const Verb&) = delete;

    virtual std::string_view name() const = 0;

    /** The manual page. Its first line is "mlkctl NAME - summary". */
    virtual std::string help() const = 0;

    /** Declares the verb's options, which fill its members. */
    virtual void addOptions(CLI::App& /* app */) {}

    /**
     * Whether words may follow the options. The first word ends the options: everything after it is
     * a word, too.
     */
    virtual bool takesWords() const { return false; }

    /** Called if "--" stood in front of the words: none of them is an option. */
    virtual void endOptions() {}

    /** Whether a value follows the option. Only asked if words may follow. */
    virtual bool hasValue(std::string_view /* option */) const { return false; }

    /**
     * What may stand at a place of its words, for a shell's completion. It may have more than
     * begins with the word so far.
     */
    virtual Candidates candidates(const Completing& /* at */) { return {}; }

    /**
     * Does the work. It need not flush its output. Throws Failure, or std::system_error if the
     * system refuses.
     */
    virtual ExitStatus run(const std::vector<std::string>& words, Environment& environment) = 0;
};

std::unique_ptr<Verb> makeListVerb();
std::unique_ptr<Verb> makeWaitVerb();
std::unique_ptr<Verb> makeCallVerb();
std::unique_ptr<Verb> makeDescribeVerb();
std::unique_ptr<Verb> makeGetVerb();
std::unique_ptr<Verb> makeWatchVerb();
std::unique_ptr<Verb> makeBatchVerb();
std::unique_ptr<Verb> makeDumpVerb();
std::unique_ptr<Verb> makeShowVerb();
std::unique_ptr<Verb> makePropVerb();
std::unique_ptr<Verb> makeCompletionVerb();

/** For the scripts of a shell: not in the manual. */
std::unique_ptr<Verb> makeCompleteVerb();

/** One verb of each kind that the manual has, in its order. */
std::vector<std::unique_ptr<Verb>> makeVerbs();

}  // namespace mlk::ctl
