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

/** The audio files of a set, as they lie in its folders. One thread at a time. */
class SetDelays {
  public:
    /** Sections and keys. */
    using Names = std::vector<std::pair<std::string_view, std::string_view>>;

    /**
     * @param set        must outlive the object
     * @param avrVendor  vendor id of the AVR in use; empty, as is its name, for none
     * @param avrName    OSD name of the AVR
     * @throw UsageError if a text of the AVR does not fit
     */
    SetDelays(const SetModel& set, const std::string& avrVendor, const std::string& avrName);

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

    const SetModel& mSet;
    std::vector<Role> mRoles;
    bool mIsAvrSet = false;  // the product's object has the AVR
    std::map<std::string, const FileLines*, std::less<>> mLoaded;  // by file name
    std::vector<std::unique_ptr<FileLines>> mOwn;
};

}  // namespace mlk::tree
