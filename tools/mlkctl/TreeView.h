#pragma once

#include <chrono>
#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include "tools/common/Facts.h"
#include "tools/mlkctl/Mounts.h"

namespace mlk::ctl {

/** What mlktree says of the partitions that the service reads. */
struct TreeView {
    /** A value that the board file or the country has put in the place of the model's. */
    struct Replaced {
        std::string group; /**< of the fact, as the table has it: "Sound" */
        std::string key;
        size_t line = 0;   /**< of the fact's value */
        std::string layer; /**< "board" or "country" */
    };
    std::vector<Replaced> replaced;
    int64_t errors = 0; /**< what check finds in this set */
    int64_t warnings = 0;
};

/**
 * Reads what `mlktree show --format json` prints.
 *
 * @return nothing if the text is something else
 */
std::optional<TreeView> parseTreeView(const std::string& json);

/** mlktree: the program beside this one, else the one on PATH; empty if neither exists. */
std::string findMlktree();

/**
 * Asks mlktree about the partitions, which must be readable here. What mlktree complains about
 * goes to standard error.
 *
 * @param limit   after this time mlktree is ended
 * @param errors  takes a line if mlktree cannot be run, is ended, or answers something else
 * @return nothing if there is no mlktree, or no answer
 */
std::optional<TreeView> askMlktree(const Mounts& mounts, std::chrono::duration<double> limit,
                                   std::ostream& errors);

/** Adds the layers to the notes of the facts. */
void addNotes(const TreeView& view, std::vector<Fact>& facts);

/** "2 errors, 1 warning: `mlktree check`"; empty if there are neither. */
std::string findingsLine(const TreeView& view);

}  // namespace mlk::ctl
