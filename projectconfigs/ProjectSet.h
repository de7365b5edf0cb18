#pragma once

#include <cstdint>
#include <string>

#include "common/Partitions.h"
#include "common/Properties.h"
#include "projectconfigs/AuxiliaryFile.h"
#include "projectconfigs/ProjectStore.h"
#include "projectconfigs/Region.h"
#include "projectconfigs/SoundDelays.h"
#include "regional/CountryTable.h"
#include "regional/RegionalData.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/** Identifies one set of a product line. */
struct SetIdentity {
    int32_t projectId = 0; /**< the model, the number after "Model_" in the system file */
    std::string boardId;   /**< path of the board file; "DEFAULT_BOARD_ID" for none */
    _tv_country country = kNoCountry; /**< kNoCountry for the country that the set has saved */
    std::string customer{}; /**< the customer file; empty for that of the tvconfigs partition */
};

/**
 * What one set is: the items of its model, board and country, and the files that these name.
 *
 * A set depends on no service and no state of the process: a program may have any number of sets of
 * any product lines side by side. The constructor reads all files in a fixed order, which the log
 * shows. Each part documents which threads may call it.
 */
class ProjectSet {
  public:
    /**
     * @param partitions  the set's mount points
     * @param properties  the set's system properties; must outlive the object
     * @param data        what the set's regional files share; must outlive the object
     * @param identity    the model, the board and the country
     * @param observer    hears of every line of project and auxiliary files; must outlive the
     *                    object; null for none
     */
    ProjectSet(Partitions partitions, const Properties& properties, RegionalData& data,
               const SetIdentity& identity, ReadObserver* observer = nullptr);
    ProjectSet(const ProjectSet&) = delete;
    ProjectSet& operator=(const ProjectSet&) = delete;

    const Partitions& partitions() const { return mPartitions; }
    ProjectStore& store() { return mStore; }
    const ProjectParser& items() const { return mStore.items(); }
    SoundDelays& sounds() { return mSounds; }
    const SoundDelays& sounds() const { return mSounds; }
    const AuxiliaryFile& karaoke() const { return mKaraoke; }
    const AuxiliaryFile& globalKeys() const { return mGlobalKeys; }
    const AuxiliaryFile& customerDdcci() const { return mCustomerDdcci; }
    Region& region() { return mRegion; }
    const Region& region() const { return mRegion; }

  private:
    const Partitions mPartitions;
    ProjectStore mStore;
    SoundDelays mSounds;
    AuxiliaryFile mKaraoke;
    AuxiliaryFile mGlobalKeys;
    AuxiliaryFile mCustomerDdcci;
    Region mRegion;
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
