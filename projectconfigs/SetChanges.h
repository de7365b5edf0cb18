#pragma once

#include <cstdint>
#include <mutex>
#include <string>

#include "projectconfigs/BoardID.h"
#include "projectconfigs/ProjectID.h"
#include "projectconfigs/ProjectSet.h"
#include "regional/CountryTable.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/**
 * Changes of a set that outlive a restart: its model and its country.
 *
 * Any thread may call. One change runs at a time, so that the items of a country are all put into
 * the items of the same model. Log tag: "MlkProjectConfigs".
 */
class SetChanges {
  public:
    /** All arguments must outlive the object. */
    SetChanges(ProjectSet& set, ProjectID& projectId, const BoardID& boardId);

    /**
     * Changes the model, saves its index and reads the items again, with the board file in use. For
     * an index above the highest known one, the files are first read again to look for new models.
     *
     * @return false, with nothing changed, if the index is not accepted (accepted are 1 to the
     *         highest) or the model's files cannot be read
     */
    bool setProject(int32_t id);

    /** The same without the search for new models. The process that asks is not used. */
    bool setProject(int32_t id, const std::string& processName, int32_t pid);

    /**
     * Puts the country's items into the items of the set, and saves the country. kNoCountry stands
     * for the saved country, and saves nothing. A later change of the model removes the country's
     * items until the next start.
     *
     * @return true if the country was saved
     */
    bool setCountry(_tv_country country);

  private:
    ProjectSet& mSet;
    ProjectID& mProjectID;
    const BoardID& mBoardID;
    std::mutex mMutex;  // held during a change
    int32_t mProjectMaxIdx;
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
