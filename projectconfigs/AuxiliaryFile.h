#pragma once

#include <string>
#include <string_view>

#include "common/ConfigKey.h"
#include "common/FileLimits.h"
#include "projectconfigs/IniProjectParser.h"
#include "projectconfigs/ProjectParser.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/** The project item that names an auxiliary file, and the log texts of its loading. */
struct AuxiliaryFileSource {
    ConfigKey item;
    const char* nameLabel;           /**< logged before the file's name */
    const char* missing;             /**< the error if the item is empty */
    const char* pathLabel = nullptr; /**< logged before the item's value; null: no such line */
};

/**
 * Loads the file that a project item names, and dumps the parser to the log.
 *
 * @param items   the project's items
 * @param source  the item
 * @param parser  loads the file
 * @return the name to look items up under; empty if no file is named, if its path has no folder, or
 *         if the name has kFileNameSize bytes or more
 */
std::string loadAuxiliaryFile(const ProjectParser& items, const AuxiliaryFileSource& source,
                              IniProjectParser& parser);

/**
 * One auxiliary file of a set: karaoke, keys or DDC/CI.
 *
 * The constructor loads the file. It does not change afterwards, so any thread may look items up.
 * Log tag: "MlkProjectConfigs".
 */
class AuxiliaryFile {
  public:
    AuxiliaryFile(const ProjectParser& items, const AuxiliaryFileSource& source,
                  ReadObserver* observer = nullptr)
        : mParser(observer), mName(loadAuxiliaryFile(items, source, mParser)) {}

    /** Value of an item; empty if the set has no such file or the file no such item. */
    std::string lookUp(const ConfigKey& key) const { return mParser.getInfo(mName.c_str(), key); }

  private:
    IniProjectParser mParser;
    const std::string mName;
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
