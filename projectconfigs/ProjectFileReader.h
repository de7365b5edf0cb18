#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "common/ItemStore.h"
#include "common/LineReader.h"
#include "common/ReadObserver.h"
#include "common/TextArena.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/**
 * Reads the INI files of the chain that makes a set: customer, system, project and board file.
 *
 * Grammar of project and board files: "[SECTION]" lines, "key=value" lines, "#" comments. If a key
 * occurs twice in one section, the last value counts. Comments, quotes and semicolons are removed
 * from values, and a leading partition name becomes the partition's mount point. In customer and
 * system files a keyword counts anywhere in a line. A line that cannot be used is skipped alone.
 *
 * One thread at a time. Log tag: "MlkProjectConfigs".
 */
class ProjectFileReader {
  public:
    /**
     * The texts are the mount points that replace the prefixes "/tvdata", "/tvconfigs" and
     * "/impdata"; null is empty. They are not copied and must outlive the object, as must the
     * observer; null for none.
     */
    ProjectFileReader(const char* tvdataPath, const char* tvconfigsPath, const char* impdataPath,
                      ReadObserver* observer);

    /**
     * Reads a customer file.
     *
     * @param customerId  set to the id; untouched if the file has none
     * @param sysIniPath  set to the path of the system file; untouched if the file names none
     */
    void parse_customer_ini(const char* path, std::string& customerId, std::string& sysIniPath);

    /**
     * Reads a system file.
     *
     * @param projectId       the model whose project file is wanted
     * @param projectIniPath  set to the path of that file; untouched if the model has no line
     * @param maxIdx          raised to the highest index of a "Model_" line
     */
    void parse_sys_ini(const char* path, int32_t projectId, std::string& projectIniPath,
                       uint32_t& maxIdx);

    /**
     * Reads a project or board file.
     *
     * @param path   null is logged and skipped, as is a missing file
     * @param items  gets the items; an item that it has already gets the new value
     * @return false if the file exists but cannot be read to its end
     */
    bool parse_project_ini(const char* path, ItemStore& items);

    /**
     * Cleans a value and replaces a leading partition name, as is done with the path of a board
     * file. The result is valid until the next call.
     */
    std::string_view cleanPath(std::string_view value);

    /** True, and logged with the name and line of the caller, if nothing has that path. */
    static bool isMissing(const std::string& path, const char* function, int sourceLine);

  private:
    void addNewItem(ItemStore& items, ItemStore::Section section, std::string_view wholeLine,
                    const LineReader& reader);
    std::string_view eraseSymbol(std::string_view text);
    std::string_view PatchIniItemPath(std::string_view value);

    const std::string_view mTvdataPath;
    const std::string_view mTvconfigsPath;
    const std::string_view mImpdataPath;
    ReadObserver* const mObserver;
    TextArena mScratch;  // texts that differ from those of the current line
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
