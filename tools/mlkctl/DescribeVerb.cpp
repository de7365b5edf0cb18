#include "tools/mlkctl/Describe.h"
#include "tools/mlkctl/Verb.h"

namespace mlk::ctl {

namespace {

constexpr const char* kHelp = R"(mlkctl describe - what a method takes, answers and reads

Usage: mlkctl describe [INTERFACE] [METHOD]

Describes a method: its arguments with their types, ranges and enumerators, its result, when it
gives no answer, and the items, properties and files that the result comes from or that it writes.
Of an interface it lists the methods; without a word it lists the interfaces.

INTERFACE is IMlkProjectConfigs, IMlkTvConfigs or IMlkFrameworkConfigs, or project, tv or framework.
It may be left out. A METHOD that several interfaces have is described for each of them then.

Everything comes from the definitions of the interfaces. The service is not asked and need not run.

Options:
  -h, --help  this text

Output:
  The description, in lines of at most 80 columns.

Exit status:
  0  described
  2  the command line is wrong: there is no such interface or method

Examples:
  mlkctl describe
  mlkctl describe tv
  mlkctl describe getHDMIEdidPath
)";

class DescribeVerb : public Verb {
  public:
    std::string_view name() const override { return "describe"; }
    std::string help() const override { return kHelp; }
    bool takesWords() const override { return true; }
    Candidates candidates(const Completing& at) override {
        if (at.before.empty()) {
            return interfaceCandidates(at.current);
        }
        const Interface* interface = findInterface(at.before[0]);
        return interface != nullptr && at.before.size() == 1 ? methodCandidates(*interface)
                                                             : Candidates();
    }

    ExitStatus run(const std::vector<std::string>& words, Environment& environment) override {
        environment.output.write(description(words));
        return ExitStatus::ANSWERED;
    }

  private:
    static std::string description(const std::vector<std::string>& words) {
        if (words.empty()) {
            return describeInterfaces();
        }
        const Interface* interface = findInterface(words[0]);
        if (words.size() > (interface == nullptr ? 1U : 2U)) {
            throw usage("describe takes INTERFACE and METHOD, or one of them");
        }
        if (interface != nullptr && words.size() == 1) {
            return describe(*interface);
        }
        const std::vector<MethodOf> named = methodsNamed(words[0]);
        if (interface == nullptr && named.size() > 1) {
            std::string out;
            for (const MethodOf& each : named) {
                out += (out.empty() ? "" : "\n") + describe(*each.interface, *each.method);
            }
            return out;
        }
        size_t used = 0;
        const MethodOf found = methodFrom(words, "describe", &used);
        return describe(*found.interface, *found.method);
    }
};

}  // namespace

std::unique_ptr<Verb> makeDescribeVerb() {
    return std::make_unique<DescribeVerb>();
}

}  // namespace mlk::ctl
