#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "projectconfigs/testing/PlainRules.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation::plain {

/** The index that a "project_id.bin" of that text gives. */
uint32_t projectIdOf(const std::string& text);

/** The board id that a "board_id.bin" of that text gives. */
std::string boardIdOf(const std::string& text);

/**
 * A plain model of the chain of project files, rule by rule. Tests compare ProjectParser with it.
 * It reads the same files.
 */
class Chain {
  public:
    /** The three mount points. */
    Chain(std::string tvdata, std::string tvconfigs, std::string impdata);

    /** A project or board file that exists and is no file changes nothing, but for the first time.
     */
    void update(const std::string& customerPath, int projectId, const std::string& boardId);

    /** Replaces the value of an item; does not add an item. */
    void setInfo(const Items::key_type& name, const std::string& value);

    /** The text of ProjectParser's dump to a stream. */
    std::string dump() const;
    std::vector<std::string> iniList() const;
    const Items& items() const { return mItems; }
    uint32_t maxIdx() const { return mMaxIdx; }
    const std::string& customerId() const { return mCustomerId; }

  private:
    std::string patched(const std::string& value) const;
    bool readChain(const std::string& customerPath, int projectId, const std::string& boardId);
    bool readProjectFile(const std::string& path);

    const std::string mTvdata;
    const std::string mTvconfigs;
    const std::string mImpdata;
    int mProjectId = 0;
    uint32_t mMaxIdx = 0;
    std::string mCustomerId;
    std::string mSystemPath;
    std::string mProjectPath;
    std::string mBoardPath;
    Items mItems;
    bool mIsRead = false;
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation::plain
