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
 * Changes take turns, whatever thread they come from: a country's items belong to one state of the
 * items. Log tag: "MlkProjectConfigs".
 */
class SetChanges {
  public:
    /** All must outlive the object. */
    SetChanges(ProjectSet& set, ProjectID& projectId, const BoardID& boardId);

    /**
     * Makes the set another model, saves the choice and reads the items anew, with the board file
     * that is in use. For an index above the highest known the files are looked at again first.
     *
     * @return false, with nothing changed, if the index is not accepted (accepted are 1 to the
     *         highest) or the model's files cannot be read
     */
    bool setProject(int32_t id);

    /** The same without the second look; the trace names the process that asked. */
    bool setProject(int32_t id, const std::string& processName, int32_t pid);

    /**
     * Puts what belongs to the country into the items, and saves the country. kNoCountry puts in
     * what belongs to the saved country, and is not saved. A later change of the model takes the
     * country's items out again, until the next start.
     *
     * @return whether the country was saved
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
