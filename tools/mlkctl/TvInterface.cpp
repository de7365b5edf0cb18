#include <vendor/morlak/mlkconfigs/1.0/IMlkTvConfigs.h>

#include "tools/mlkctl/Interface.h"

namespace mlk::ctl {

using ::vendor::morlak::mlkconfigs::V1_0::IMlkTvConfigs;

const Interface& tvInterface() {
    static const Interface interface = makeInterface<IMlkTvConfigs>(
            "IMlkTvConfigs",
            {
                    {"getAtvSystem", method(&IMlkTvConfigs::getAtvSystem)},
                    {"getDtvSystem", method(&IMlkTvConfigs::getDtvSystem)},
                    {"atvEnabled", method(&IMlkTvConfigs::atvEnabled)},
                    {"atvAntennaEnabled", method(&IMlkTvConfigs::atvAntennaEnabled)},
                    {"atvCableEnabled", method(&IMlkTvConfigs::atvCableEnabled)},
                    {"dtvEnabled", method(&IMlkTvConfigs::dtvEnabled)},
                    {"dtvAntennaEnabled", method(&IMlkTvConfigs::dtvAntennaEnabled)},
                    {"dtvCableEnabled", method(&IMlkTvConfigs::dtvCableEnabled)},
                    {"dtvSatelliteEnabled", method(&IMlkTvConfigs::dtvSatelliteEnabled)},
                    {"pvrEnabled", method(&IMlkTvConfigs::pvrEnabled)},
                    {"livepauseEnabled", method(&IMlkTvConfigs::livepauseEnabled)},
                    {"hdmiEnabled", method(&IMlkTvConfigs::hdmiEnabled)},
                    {"vgaEnabled", method(&IMlkTvConfigs::vgaEnabled)},
                    {"avEnabled", method(&IMlkTvConfigs::avEnabled)},
                    {"yppEnabled", method(&IMlkTvConfigs::yppEnabled)},
                    {"ciEnabled", method(&IMlkTvConfigs::ciEnabled)},
                    {"pipEnabled", method(&IMlkTvConfigs::pipEnabled)},
                    {"mheg5Enabled", method(&IMlkTvConfigs::mheg5Enabled)},
                    {"gingaEnabled", method(&IMlkTvConfigs::gingaEnabled)},
                    {"hbbtvEnabled", method(&IMlkTvConfigs::hbbtvEnabled)},
                    {"teltexEnabled", method(&IMlkTvConfigs::teltexEnabled)},
                    {"closeCaptionEnabled", method(&IMlkTvConfigs::closeCaptionEnabled)},
                    {"atscCloseCaptionEnabled", method(&IMlkTvConfigs::atscCloseCaptionEnabled)},
                    {"ntscCloseCaptionEnabled", method(&IMlkTvConfigs::ntscCloseCaptionEnabled)},
                    {"isdbCloseCaptionEnabled", method(&IMlkTvConfigs::isdbCloseCaptionEnabled)},
                    {"getWOWEnabled", method(&IMlkTvConfigs::getWOWEnabled)},
                    {"getFlag", method(&IMlkTvConfigs::getFlag, "type")},
                    {"setAtvSystem", method(&IMlkTvConfigs::setAtvSystem, "system")},
                    {"setDtvSystem", method(&IMlkTvConfigs::setDtvSystem, "system")},
                    {"setAtvEnabled", method(&IMlkTvConfigs::setAtvEnabled, "enabled")},
                    {"setAtvAntennaEnabled",
                     method(&IMlkTvConfigs::setAtvAntennaEnabled, "enabled")},
                    {"setAtvCableEnabled", method(&IMlkTvConfigs::setAtvCableEnabled, "enabled")},
                    {"setDtvEnabled", method(&IMlkTvConfigs::setDtvEnabled, "enabled")},
                    {"setDtvAntennaEnabled",
                     method(&IMlkTvConfigs::setDtvAntennaEnabled, "enabled")},
                    {"setDtvCableEnabled", method(&IMlkTvConfigs::setDtvCableEnabled, "enabled")},
                    {"setDtvSatelliteEnabled",
                     method(&IMlkTvConfigs::setDtvSatelliteEnabled, "enabled")},
                    {"setPvrEnabled", method(&IMlkTvConfigs::setPvrEnabled, "enabled")},
                    {"setLivepauseEnabled", method(&IMlkTvConfigs::setLivepauseEnabled, "enabled")},
                    {"setHdmiEnabled", method(&IMlkTvConfigs::setHdmiEnabled, "enabled")},
                    {"setVgaEnabled", method(&IMlkTvConfigs::setVgaEnabled, "enabled")},
                    {"setAvEnabled", method(&IMlkTvConfigs::setAvEnabled, "enabled")},
                    {"setYppEnabled", method(&IMlkTvConfigs::setYppEnabled, "enabled")},
                    {"setCiEnabled", method(&IMlkTvConfigs::setCiEnabled, "enabled")},
                    {"setPipEnabled", method(&IMlkTvConfigs::setPipEnabled, "enabled")},
                    {"setMheg5Enabled", method(&IMlkTvConfigs::setMheg5Enabled, "enabled")},
                    {"setGingaEnabled", method(&IMlkTvConfigs::setGingaEnabled, "enabled")},
                    {"setHbbtvEnabled", method(&IMlkTvConfigs::setHbbtvEnabled, "enabled")},
                    {"setTeltexEnabled", method(&IMlkTvConfigs::setTeltexEnabled, "enabled")},
                    {"setCloseCaptionEnabled",
                     method(&IMlkTvConfigs::setCloseCaptionEnabled, "enabled")},
                    {"setAtscCloseCaptionEnabled",
                     method(&IMlkTvConfigs::setAtscCloseCaptionEnabled, "enabled")},
                    {"setNtscCloseCaptionEnabled",
                     method(&IMlkTvConfigs::setNtscCloseCaptionEnabled, "enabled")},
                    {"setIsdbCloseCaptionEnabled",
                     method(&IMlkTvConfigs::setIsdbCloseCaptionEnabled, "enabled")},
                    {"setWOWEnabled", method(&IMlkTvConfigs::setWOWEnabled, "enabled")},
                    {"setFlag", method(&IMlkTvConfigs::setFlag, "type", "enabled")},
                    {"reloadTvConfig", method(&IMlkTvConfigs::reloadTvConfig, "path")},
            });
    return interface;
}

}  // namespace mlk::ctl
