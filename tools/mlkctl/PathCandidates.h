#pragma once

#include <string>

#include "tools/mlkctl/Completing.h"

namespace mlk::ctl {

/**
 * Paths that begin with the current word; folders end with a slash. A word that begins with a
 * partition's name which is no folder of this host stands for the path below the mount point; for
 * an empty word the mount points are offered, too.
 */
Candidates pathCandidates(const Completing& at);

/** Whether all candidates are paths that the word stands for without being their beginning. */
bool standsForPath(const std::string& word, const Candidates& candidates);

}  // namespace mlk::ctl
