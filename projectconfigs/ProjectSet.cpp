#include "projectconfigs/ProjectSet.h"

#include <utility>

#include "projectconfigs/KnownItems.h"
#include "projectconfigs/KnownProperties.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

namespace {

constexpr AuxiliaryFileSource kKaraoke = {item::kKaraoke,
                                          "mKarakeName:", "Can't get karaoke config path!"};
constexpr AuxiliaryFileSource kGlobalKeys = {item::kGlobalKeys,
                                             "mGlobalKeyName:", "Can't get key config path!"};
constexpr AuxiliaryFileSource kCustomerDdcci = {
        item::kCustomerDdcci,
        "[DDCCI] mCustomerDdcciName: ", "Can't get Customer DDCCI config path!",
        "[DDCCI] customerDdcciConfigPath = "};

}  // namespace

// The members are constructed, and the files read, in the order of their declaration.
ProjectSet::ProjectSet(Partitions partitions, const Properties& properties, RegionalData& data,
                       const SetIdentity& identity, ReadObserver* observer)
    : mPartitions(std::move(partitions)),
      mStore(mPartitions, properties, identity.projectId, identity.boardId, identity.customer,
             observer),
      mSounds(mStore.items(), mPartitions, properties.get(property::kHardware), observer),
      mKaraoke(mStore.items(), kKaraoke, observer),
      mGlobalKeys(mStore.items(), kGlobalKeys, observer),
      mCustomerDdcci(mStore.items(), kCustomerDdcci, observer),
      mRegion(mStore.items(), mPartitions, properties, data) {
    mRegion.apply(identity.country);
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
