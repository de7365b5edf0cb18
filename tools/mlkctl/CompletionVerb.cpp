#include "tools/common/Suggest.h"
#include "tools/common/Text.h"
#include "tools/mlkctl/Completing.h"
#include "tools/mlkctl/CompletionScripts.h"
#include "tools/mlkctl/Verb.h"

namespace mlk::ctl {

namespace {

constexpr const char* kHelp = R"(mlkctl completion - completion for a shell

Usage: mlkctl completion bash | fish | zsh

Prints a script that teaches the shell to complete mlkctl: commands and options, interfaces and
methods, enumerators, numbers of a range, true and false, the keys of properties; and, from the
running service, sections, keys, countries and paths. The script starts mlkctl for each word that
is completed. A service that gives no answer within two seconds is left out.

bash reads ~/.bash_completion, fish the files of ~/.config/fish/completions, and zsh a file _mlkctl
in a folder of its fpath. The package of mlkctl has all three.

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
  mlkctl completion fish > mlkctl.fish
  mlkctl completion zsh > _mlkctl
)";

class CompletionVerb : public Verb {
  public:
    std::string_view name() const override { return "completion"; }
    std::string help() const override { return kHelp; }
    bool takesWords() const override { return true; }

    Candidates candidates(const Completing& at) override {
        Candidates shells;
        if (at.before.empty()) {
            for (const CompletionScript& script : completionScripts()) {
                shells.push_back({std::string(script.shell)});
            }
        }
        return shells;
    }

    ExitStatus run(const std::vector<std::string>& words, Environment& environment) override {
        std::vector<std::string> shells;
        for (const CompletionScript& script : completionScripts()) {
            if (words.size() == 1 && words[0] == script.shell) {
                environment.output.write(script.text);
                return ExitStatus::ANSWERED;
            }
            shells.emplace_back(script.shell);
        }
        const std::string given = words.empty() ? "" : ", not " + excerpt(words[0]);
        throw usage("completion takes the name of a shell: " + joined(shells) + given);
    }
};

}  // namespace

std::unique_ptr<Verb> makeCompletionVerb() {
    return std::make_unique<CompletionVerb>();
}

}  // namespace mlk::ctl
