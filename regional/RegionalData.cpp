#include "regional/RegionalData.h"

#include "platform/Platform.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

RegionalData& RegionalData::GetInstance() {
    static RegionalData instance(systemPartitions);
    return instance;
}

CountryListParser& CountryListParser::GetInstance() {
    return RegionalData::GetInstance().countries;
}

CountryFreqMapParse& CountryFreqMapParse::GetInstance() {
    return RegionalData::GetInstance().plans;
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
