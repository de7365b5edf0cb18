#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "tools/common/TextSink.h"
#include "tools/mlktree/answers/LineAnswers.h"

namespace mlk::tree {

/** The version of the form of snapshots. */
inline constexpr int kSnapshotVersion = 1;

/** The name of delays without a receiver. */
inline constexpr std::string_view kNoReceiver = "none";

/**
 * Writes what the sets of a line answer as JSON; docs/mlktree-snapshot.schema.json has the form.
 * The same answers are the same bytes.
 */
void writeSnapshot(const LineAnswers& line, const TextSink& sink);

/**
 * Reads a snapshot. The answers have no places.
 *
 * @param text  JSON
 * @param name  of the file, for messages
 * @throw UsageError if it is no snapshot, or of another version; the message names the member
 */
std::unique_ptr<const LineAnswers> readSnapshot(std::string_view text, const std::string& name);

}  // namespace mlk::tree
