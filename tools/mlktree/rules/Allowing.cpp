// Rules about the comments and tables that allow findings. They are applied after all others:
// Suppressions.cpp reports what they find.

#include <iterator>

#include "tools/mlktree/rules/Families.h"

namespace mlk::tree {

namespace {

void checkLater(const ProductLine& /* line */, Reporter& /* reporter */) {}

constexpr Rule kRules[] = {
        {"allow-without-reason", Severity::WARNING,
         "a comment that allows a finding, without a reason",
         "Whoever reads the line later cannot know whether the finding is still meant. The comment "
         "allows nothing until it has a reason.",
         "# mlktree: allow missing-file\nAUDIO_CONFIG_PATH = /tvconfigs/audio/oem.ini",
         "# mlktree: allow missing-file the panel's maker adds it in the factory\n"
         "AUDIO_CONFIG_PATH = /tvconfigs/audio/oem.ini",
         checkLater},
        {"unknown-rule", Severity::WARNING, "a comment that speaks to mlktree and names no rule",
         "The comment allows nothing: the finding that it is meant for stays, or the rule that it "
         "speaks of has another name.",
         "# mlktree: allow mising-file the panel's maker adds it in the factory",
         "# mlktree: allow missing-file the panel's maker adds it in the factory", checkLater},
        {"unused-allow", Severity::NOTE,
         "a comment or table that allows a finding that is not there",
         "The mistake is mended, or the comment stands above the wrong line. If it stays, it hides "
         "the next mistake of this kind.",
         "# mlktree: allow missing-file the file comes later\n[PANEL]", "[PANEL]", checkLater},
};

}  // namespace

RuleFamily allowing() {
    return {kAllowingFamily, "Comments and tables that allow findings", kRules, std::size(kRules)};
}

}  // namespace mlk::tree
