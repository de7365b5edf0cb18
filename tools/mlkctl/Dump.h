#pragma once

#include <android-base/unique_fd.h>

#include <string>
#include <string_view>
#include <vector>

#include "tools/mlkctl/Services.h"

namespace mlk::ctl {

/**
 * Has the project service write its dump into a file in memory: so the service never waits for a
 * reader. Throws as Services::ask does.
 */
::android::base::unique_fd dumpInto(Services& services);

/** The dump as a text. Throws as dumpInto does. */
std::string dumpOf(Services& services);

/** An item as the dump shows it. */
struct DumpedItem {
    std::string section;  // with its brackets
    std::string key;
    std::string value;
};

/** What the dump tells of a set. */
struct DumpedSet {
    std::string projectId;               // the index of the model
    std::string systemFile;              // which selects models
    std::string projectFile;             // of the model; empty if none is selected
    std::string boardFile;               // empty for a set without a board file
    std::vector<DumpedItem> items;       // of the selected project
    std::vector<DumpedItem> audioItems;  // of the audio files; several files may have the same one
};

/** Takes a dump apart. Lines of another form are passed over. */
DumpedSet parseDump(std::string_view dump);

/** What the object's dump tells. Throws Failure as BoundCall does. */
DumpedSet dumpedSet(IBase& project);

/** The sections of some items, each once, in their order. */
std::vector<std::string> sectionsOf(const std::vector<DumpedItem>& items);

/** The keys of a section, each once, in their order. */
std::vector<std::string> keysOf(const std::vector<DumpedItem>& items, std::string_view section);

}  // namespace mlk::ctl
