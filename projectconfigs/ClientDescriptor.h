#pragma once

#include <chrono>
#include <cstddef>
#include <string_view>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/**
 * How long a reader may leave all that was written where it is. One that works is there within
 * milliseconds even on a busy set; one that is stopped keeps its thread of the pool so long.
 */
inline constexpr std::chrono::milliseconds kReaderPatience(1000);

/**
 * How many threads may wait at once for readers of pipes and sockets, for file systems, and for
 * everything else. Of the ten threads of the pool four are left even if all of these wait.
 */
inline constexpr int kWaitForReaders = 2;
inline constexpr int kWaitForFiles = 3;
inline constexpr int kWaitForOthers = 1;

enum class WriteOutcome {
    COMPLETE,
    FAILED,   ///< the descriptor takes nothing (any more)
    UNREAD,   ///< its reader took nothing for kReaderPatience
    CROWDED,  ///< to be waited for, but as many threads wait already as may
};

/** What became of a text. */
struct Written {
    WriteOutcome outcome;
    size_t size;  ///< bytes that the descriptor took
};

/**
 * Writes `text` to a descriptor that a client has sent: a reader that reads gets all of it, however
 * slowly it reads, and one that does not costs no more than kReaderPatience. The descriptor stays
 * open and its flags as they are, which are the client's too. Keeps the calling thread's SIGPIPE
 * from ending the process. Any number of threads.
 *
 * Two kinds of descriptors hold their thread beyond that, for as long as their other end likes: a
 * file of a file system that does not answer, and a device that takes nothing.
 */
Written writeToClient(int descriptor, std::string_view text);

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
