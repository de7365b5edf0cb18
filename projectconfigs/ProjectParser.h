#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "common/ConfigKey.h"
#include "common/ItemStore.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/**
 * The configuration items of one set, read from a chain of INI files: the customer file names the
 * system file, the system file lists the project file of every model, the project index picks one
 * of these, and the board file overrides its items.
 *
 * Grammar of project and board files: "[SECTION]" lines, "key=value" lines, "#" comments. Of a key
 * that occurs twice in one section the last value counts. Values are cleaned of comments, quotes
 * and semicolons, and a leading partition name becomes the partition's mount point. A missing or
 * unreadable file is logged and skipped; a line that cannot be used costs that line only.
 *
 * Owned by MlkProjectConfigs and called from its constructor and from every RPC thread: each
 * operation takes mMutex for as long as it touches a member, update() for its whole run, so that
 * nobody sees a store half rebuilt. No operation calls out while it holds the lock, but to the log.
 * Log tag: "MlkProjectConfigs".
 */
class ProjectParser {
  public:
    /**
     * Starts with an empty store. The texts are the mount points that replace the prefixes
     * "/tvdata", "/tvconfigs" and "/impdata"; they are not copied and have to outlive the object.
     */
    ProjectParser(const char* tvdataPath, const char* tvconfigsPath, const char* impdataPath);
    ProjectParser(const ProjectParser&) = delete;
    ProjectParser& operator=(const ProjectParser&) = delete;

    /**
     * Rebuilds the store from the files as they are now. What a file no longer supplies (customer
     * id, system, project and board path) keeps its value, and the highest index only grows.
     *
     * A project or board file that exists but cannot be read fails the update: everything stays as
     * it was, and the log says so. Only the first update has nothing to keep, and takes what can be
     * read. Out of memory, too, leaves everything as it was.
     *
     * @param customerIniPath  the customer file; null leaves everything as it is
     * @param projectId        project index, the number after "Model_" in the system file
     * @param boardId          path of the board file; "DEFAULT_BOARD_ID" for none; empty for the
     *                         board file of the update before
     * @return false when the update failed
     */
    bool update(const char* customerIniPath, int projectId, const std::string& boardId);

    /** Value of an item; empty when there is no such item. */
    std::string getInfo(const ConfigKey& key) const;

    /** Replaces the value of an item. @return false, with nothing added, when there is none */
    bool setInfo(const ConfigKey& key, std::string_view value);

    /** Items of one section (its name with brackets), from key to value in byte order of the key.
     */
    std::map<std::string, std::string> getInfosByCategory(const std::string& category) const;

    std::string getCustomerId() const;

    /** Highest number of a "Model_" line seen since construction, commented-out lines included. */
    unsigned int getProjectMaxIdx() const;

    /**
     * Appends what each "Model_" line of the system file names, in file order: the text after the
     * first "model/", or else the line without its first five characters; quotes taken out. Appends
     * nothing when the file cannot be read to its end: a menu that lacks models looks complete.
     */
    void getProjectIniList(std::vector<std::string>& list) const;

    /** Logs where the items come from and how many there are. */
    void dump() const;

    /** Logs where the items come from and each item. */
    void dumpDetail() const;

    /** Writes where the items come from and each item. */
    void dump(std::ostream& out) const;

    /**
     * Reads a file for a client, as readForClient (FileDelivery.h) has it. Needs no lock.
     *
     * @param path  the file, possibly in double quotes; only a regular file is read
     * @return its bytes; empty when there is no such file, or when it cannot be read whole
     */
    static std::vector<uint8_t> getTvFile(const std::string& path);

    /** True when something has that path, which may be in double quotes. Needs no lock. */
    static bool isFileExist(const std::string& path);

  private:
    friend struct ProjectParserPeer;  // tests

    static bool isMissing(const std::string& path, const char* function, int sourceLine);

    // These run with mMutex held. False when a project or board file cannot be read.
    bool readChain(const char* customerIniPath, int projectId, const std::string& boardId);
    void parse_customer_ini(const char* path, std::string& customerId, std::string& sysIniPath);
    void parse_sys_ini(const char* path, std::string& projectIniPath, unsigned int& maxIdx);
    bool parse_project_ini(const char* path);
    bool parse_board_id_ini(const std::string& boardId);
    void addNewItem(ItemStore::Section section, std::string_view line);
    std::string_view PatchIniItemPath(std::string_view value);
    void logSources() const;

    ItemStore mItems;
    ItemStore mFormerItems;  // of the update before, while one runs; keeps its memory for the next
    bool mIsRead = false;    // an update was made
    mutable std::mutex mMutex;
    int32_t mProjectId = 0;
    uint32_t mProjectMaxIdx = 0;
    std::string mCustomerId;
    std::string mSysIniPath;
    std::string mProjectIniPath;
    std::string mBoardIniPath;
    std::string mCleanedKey;  // texts that are no part of the line they come from
    std::string mCleaned;
    std::string mPatched;
    const char* const mTvdataPath;
    const char* const mTvconfigsPath;
    const char* const mImpdataPath;
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
