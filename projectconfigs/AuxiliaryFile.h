#pragma once

#include <string>
#include <string_view>

#include "common/ConfigKey.h"
#include "projectconfigs/IniProjectParser.h"
#include "projectconfigs/ProjectParser.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/** Bytes that the name of an auxiliary file has room for, its final NUL included. */
inline constexpr size_t kFileNameSize = 128;

/** The project item that names an auxiliary file, and what the log says when the file is loaded. */
struct AuxiliaryFileSource {
    const char* category;
    const char* key;
    const char* nameLabel;            ///< before the file's name
    const char* missing;              ///< the error when the item is empty
    const char* pathLabel = nullptr;  ///< before the item's value, where that is logged
};

/**
 * Loads the file that a project item names, and dumps the parser to the log.
 *
 * @param items   the project's items
 * @param source  the item
 * @param parser  the file goes there
 * @return the name to look items up under; empty if no file is named, if its path has no folder, or
 *         if the name has kFileNameSize bytes or more
 */
std::string loadAuxiliaryFile(const ProjectParser& items, const AuxiliaryFileSource& source,
                              IniProjectParser& parser);

/**
 * One auxiliary file of a set: karaoke, keys or DDC/CI.
 *
 * The constructor loads the file; nothing changes afterwards, so that any thread may look items up.
 * Log tag: "MlkProjectConfigs".
 */
class AuxiliaryFile {
  public:
    AuxiliaryFile(const ProjectParser& items, const AuxiliaryFileSource& source)
        : mName(loadAuxiliaryFile(items, source, mParser)) {}

    /** Value of an item; empty if the set has no such file or the file no such item. */
    std::string lookUp(const ConfigKey& key) const { return mParser.getInfo(mName.c_str(), key); }

  private:
    IniProjectParser mParser;
    const std::string mName;
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
