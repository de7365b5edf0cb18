#include "tools/common/Text.h"
#include "tools/mlkctl/Completing.h"
#include "tools/mlkctl/Verb.h"

namespace mlk::ctl {

namespace {

constexpr const char* kHelp = R"(mlkctl complete - what may stand here, for a shell's completion

Usage: mlkctl complete -- [WORD]...

Prints the words that the last WORD may become; the others stand in front of it on the command line
of mlkctl. The scripts of mlkctl completion use it.

Options:
  -h, --help  this text

Output:
  A line for each word; a tab and a few words about it follow.

Exit status:
  0  done, also without a candidate

Examples:
  mlkctl complete -- call getF
)";

// A shell waits for this.
constexpr std::chrono::seconds kLimit{2};

class CompleteVerb : public Verb {
  public:
    std::string_view name() const override { return "complete"; }
    std::string help() const override { return kHelp; }
    bool takesWords() const override { return true; }

    ExitStatus run(const std::vector<std::string>& words, Environment& environment) override {
        environment.services.setLimit(kLimit);
        for (const Candidate& candidate : candidatesFor(words, environment.services)) {
            // What would be more than a line, or a command to a terminal, is not offered.
            if (printable(candidate.value) == candidate.value && !candidate.value.empty()) {
                environment.output.line(candidate.value + '\t' + printable(candidate.text));
            }
        }
        return ExitStatus::ANSWERED;
    }
};

}  // namespace

std::unique_ptr<Verb> makeCompleteVerb() {
    return std::make_unique<CompleteVerb>();
}

}  // namespace mlk::ctl
