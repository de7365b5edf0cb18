#pragma once

#include <string>
#include <vector>

#include "tools/mlktree/completion/Complete.h"

namespace mlk::tree {

/** Names from the tree that a command line names so far; reads it anew for each question. */
class ReadTreeNames : public TreeNames {
  public:
    /** @param environment  must outlive the object */
    explicit ReadTreeNames(const Environment& environment) : mEnvironment(environment) {}

    std::vector<Candidate> of(Completion kind, const Arguments& given,
                              const std::string& section) override;

  private:
    const Environment& mEnvironment;
};

}  // namespace mlk::tree
