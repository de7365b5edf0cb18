#pragma once

#include <cstddef>
#include <optional>
#include <string>

/**
 * Reads small files whole, for programs that need all of their text: a snapshot, a baseline, a file
 * of settings. Each caller names a limit, so that a wrong path cannot fill the memory. A path that
 * leads to a folder, FIFO or device is refused at once; nothing waits for its data.
 */
namespace mlk::tree {

/** The most bytes that a snapshot may have: 256 MiB, that is one of some hundred thousand sets. */
inline constexpr size_t kMostSnapshotBytes = size_t{256} << 20U;

/** The most bytes that a baseline may have: 64 MiB, that is some hundred thousand findings. */
inline constexpr size_t kMostBaselineBytes = size_t{64} << 20U;

/** The most bytes that `mlktree.toml` may have: 1 MiB. */
inline constexpr size_t kMostSettingsBytes = size_t{1} << 20U;

/**
 * The text of a file.
 *
 * @param path  of a regular file, or of a link to one
 * @param most  the limit in bytes
 * @throw UsageError "PATH cannot be read: REASON" if it does not exist, is no regular file, has
 *     more bytes, or reading fails
 */
std::string textOf(const std::string& path, size_t most);

/** The same; nothing if nothing has that path. */
std::optional<std::string> textIfThere(const std::string& path, size_t most);

/** The same, for a text that only adds to a message; empty in place of an error. */
std::string textOrNothing(const std::string& path, size_t most);

}  // namespace mlk::tree
