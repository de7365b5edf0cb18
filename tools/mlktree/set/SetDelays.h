#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/mlktree/set/SetModel.h"

namespace mlk::tree {

/** One of the values that a sound delay is the sum of. */
struct Summand {
    std::string role;                /**< "panel", "IC", "hardware", "default AVR" or "AVR" */
    std::string path;                /**< of the file, relative to the tree; empty for none */
    const FileLines* file = nullptr; /**< the file that was loaded under its name; null for none */
    const ReadLine* line = nullptr;  /**< null if the file lacks the item, which counts as 0 */
    int32_t value = 0;
};

/** The sum of some values; out of the range of 32 bits it wraps, as in the service. */
int32_t sumOf(const std::vector<Summand>& summands);

/** The items that name audio files; their values as written, empty for none. */
struct DelayPaths {
    // By the values before the country is applied: the service has loaded these files by then.
    std::string panel;
    std::string ic;
    std::string defaultAvr;
    std::string presentAvr; /**< that of the default AVR after the country was applied */
};

/** The names of audio files in a set. */
DelayPaths delayPathsOf(const SetModel& set);

/** The audio files of a set, as they lie in its folders. One thread at a time. */
class SetDelays {
  public:
    /** Sections and keys. */
    using Names = std::vector<std::pair<std::string_view, std::string_view>>;

    /**
     * @param line     must outlive the object
     * @param avrFile  name of the file of the AVR in use; empty for none
     */
    SetDelays(const ProductLine& line, const DelayPaths& paths, const std::string& avrFile);

    /** True if the service refuses an AVR with a file of that name. */
    static bool isRefused(const DelayPaths& paths, const std::string& avrFile);

    /** The delay, as the service answers it. */
    int32_t delay(std::string_view section, std::string_view key, bool isArc) const;

    /** The summands of a delay, in the order in which the files are loaded. */
    std::vector<Summand> summands(std::string_view section, std::string_view key, bool isArc) const;

    /** All items of the files that count, by section and key. */
    Names items(bool isArc) const;

  private:
    /** Which file holds the values of a role. */
    struct Role {
        std::string name;
        std::string path;
        const FileLines* file = nullptr;
        bool isOfArc = false;
    };

    void add(const char* role, const std::string& path, bool needsFolder, bool isOfArc);
    const FileLines* load(const std::string& path);

    const ProductLine& mLine;
    std::vector<Role> mRoles;
    std::map<std::string, const FileLines*, std::less<>> mLoaded;  // by file name
    std::vector<std::unique_ptr<FileLines>> mOwn;
};

}  // namespace mlk::tree
