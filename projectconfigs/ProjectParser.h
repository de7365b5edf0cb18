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
#include "projectconfigs/ProjectFileReader.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/**
 * The configuration items of one set, read from a chain of INI files: the customer file names the
 * system file, the system file lists the project file of every model, the project index picks one
 * of these, and the board file overrides its items.
 *
 * ProjectFileReader documents the grammar. A missing or unreadable file is logged and skipped.
 *
 * Owned by ProjectStore. Any number of threads may call it: each operation holds mMutex while it
 * uses a member, and update() for its whole run, so that no caller sees a half-built store. While
 * it holds the lock, an operation calls nothing outside but the log. Log tag: "MlkProjectConfigs".
 */
class ProjectParser {
  public:
    /**
     * Starts with an empty store. The texts are the mount points that replace the prefixes
     * "/tvdata", "/tvconfigs" and "/impdata"; they are not copied and must outlive the object.
     *
     * @param observer  hears of every line; must outlive the object; null for none
     */
    ProjectParser(const char* tvdataPath, const char* tvconfigsPath, const char* impdataPath,
                  ReadObserver* observer = nullptr);
    ProjectParser(const ProjectParser&) = delete;
    ProjectParser& operator=(const ProjectParser&) = delete;

    /**
     * Rebuilds the store from the files as they are now. The customer id and the paths of the
     * system, project and board file keep their values if the files no longer name others. The
     * highest index never decreases.
     *
     * The update fails if a project or board file exists but cannot be read: everything stays as it
     * was, and the log names the file. The first update has no former state, and keeps what it
     * could read. If memory runs out, everything stays as it was.
     *
     * @param customerIniPath  the customer file; if null, nothing changes
     * @param projectId        project index, the number after "Model_" in the system file
     * @param boardId          path of the board file; "DEFAULT_BOARD_ID" for none; empty for the
     *                         board file of the previous update
     * @return false if the update failed
     */
    bool update(const char* customerIniPath, int projectId, const std::string& boardId);

    /** Value of an item; empty if there is no such item. */
    std::string getInfo(const ConfigKey& key) const;

    /**
     * Replaces the values of those items that the store has; adds none. All of them change at once:
     * no caller sees only some, and if memory runs out, none changes.
     *
     * Logs each of the given items in order, with the value that the store has then; empty if it
     * has no such item.
     */
    void setInfos(const ItemStore& values);

    /** Items of one section (its name with brackets), from key to value in byte order of the key.
     */
    std::map<std::string, std::string> getInfosByCategory(const std::string& category) const;

    std::string getCustomerId() const;

    /** Highest number of a "Model_" line seen since construction, commented-out lines included. */
    unsigned int getProjectMaxIdx() const;

    /**
     * Appends an entry for each "Model_" line of the system file, in file order: the text after the
     * first "model/", or else the line without its first five characters; without quotes. Appends
     * nothing if the file cannot be read to its end, because a menu that lacks models looks
     * complete.
     */
    void getProjectIniList(std::vector<std::string>& list) const;

    /** Logs where the items come from and how many there are. */
    void dump() const;

    /** Logs where the items come from and each item. */
    void dumpDetail() const;

    /** Writes where the items come from and each item. */
    void dump(std::ostream& out) const;

    /**
     * Reads a file for a client into memory; see readForClient in FileDelivery.h. Takes no lock.
     *
     * @param path  the file, possibly in double quotes; only a regular file is read
     * @return its bytes; empty if there is no such file, or if it cannot be read whole
     */
    static std::vector<uint8_t> getTvFile(const std::string& path);

    /** True if something has that path, which may be in double quotes. Takes no lock. */
    static bool isFileExist(const std::string& path);

  private:
    friend struct ProjectParserPeer;  // tests

    // Where the items come from. An update keeps what its files no longer name.
    struct Sources {
        int32_t mProjectId = 0;
        std::string mCustomerId;
        std::string mSysIniPath;
        std::string mProjectIniPath;
        std::string mBoardIniPath;
    };

    // These run with mMutex held, and read into mNewItems.
    //
    // Changes the sources to those that it reads. Returns the path of the project or board file
    // that cannot be read, of the project file if neither can; empty if both can.
    std::string readChain(const char* customerIniPath, int projectId, const std::string& boardId,
                          Sources& sources);
    bool parse_board_id_ini(const std::string& boardId, std::string& boardIniPath);
    void logSources() const;

    ProjectFileReader mReader;
    ItemStore mItems;
    ItemStore mNewItems;   // of an update, while it runs; keeps its memory for the next
    bool mIsRead = false;  // after the first update
    mutable std::mutex mMutex;
    Sources mSources;
    uint32_t mProjectMaxIdx = 0;
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
