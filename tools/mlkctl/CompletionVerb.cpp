#include "tools/common/Text.h"
#include "tools/mlkctl/BashCompletion.h"
#include "tools/mlkctl/Verb.h"

namespace mlk::ctl {

namespace {

constexpr const char* kHelp = R"(mlkctl completion - completion for a shell

Usage: mlkctl completion bash

Prints a script that teaches the shell to complete mlkctl's commands and options, interfaces, the
methods of the interface that stands in front, enumerators, countries, true and false, files where
a path is wanted, and the keys of properties. It holds all names itself: only for the keys of
properties is mlkctl started, and the service is never asked.

Options:
  -h, --help  this text

Output:
  The script.

Exit status:
  0  done
  2  the command line is wrong

Examples:
  . <(mlkctl completion bash)
  mlkctl completion bash >> ~/.bash_completion
)";

class CompletionVerb : public Verb {
  public:
    std::string_view name() const override { return "completion"; }
    std::string help() const override { return kHelp; }
    bool takesWords() const override { return true; }

    ExitStatus run(const std::vector<std::string>& words, Environment& environment) override {
        if (words.size() != 1 || words[0] != "bash") {
            const std::string given = words.empty() ? "" : ", not " + excerpt(words[0]);
            throw usage("completion takes the name of a shell: bash" + given);
        }
        environment.output.write(bashCompletion());
        return ExitStatus::ANSWERED;
    }
};

}  // namespace

std::unique_ptr<Verb> makeCompletionVerb() {
    return std::make_unique<CompletionVerb>();
}

}  // namespace mlk::ctl
