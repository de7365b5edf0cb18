#include "tvconfigs/MlkTvConfigs.h"

#include <gtest/gtest.h>

#include "host/testing/CallMethod.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

using ::android::sp;

template <auto... methods>
void expectRefusals(IMlkTvConfigs& service) {
    int answers = 0;
    const auto refused = [&](const auto& answer) {
        ++answers;
        EXPECT_FALSE(answer.success);
        EXPECT_EQ(answer.value, 0);
    };
    EXPECT_TRUE((::mlk::testing::callWithDefaults(service, methods, refused).isOk() && ...));
    EXPECT_EQ(answers, static_cast<int>(sizeof...(methods)));
    EXPECT_EQ(answers, 55);
}

TEST(MlkTvConfigs, ServesNoRequestYet) {
    using I = IMlkTvConfigs;
    const sp<I> service = new MlkTvConfigs("");
    expectRefusals<&I::getAtvSystem, &I::getDtvSystem, &I::atvEnabled, &I::atvAntennaEnabled,
                   &I::atvCableEnabled, &I::dtvEnabled, &I::dtvAntennaEnabled, &I::dtvCableEnabled,
                   &I::dtvSatelliteEnabled, &I::pvrEnabled, &I::livepauseEnabled, &I::hdmiEnabled,
                   &I::vgaEnabled, &I::avEnabled, &I::yppEnabled, &I::ciEnabled, &I::pipEnabled,
                   &I::mheg5Enabled, &I::gingaEnabled, &I::hbbtvEnabled, &I::teltexEnabled,
                   &I::closeCaptionEnabled, &I::atscCloseCaptionEnabled,
                   &I::ntscCloseCaptionEnabled, &I::isdbCloseCaptionEnabled, &I::getWOWEnabled,
                   &I::getFlag, &I::setAtvSystem, &I::setDtvSystem, &I::setAtvEnabled,
                   &I::setAtvAntennaEnabled, &I::setAtvCableEnabled, &I::setDtvEnabled,
                   &I::setDtvAntennaEnabled, &I::setDtvCableEnabled, &I::setDtvSatelliteEnabled,
                   &I::setPvrEnabled, &I::setLivepauseEnabled, &I::setHdmiEnabled,
                   &I::setVgaEnabled, &I::setAvEnabled, &I::setYppEnabled, &I::setCiEnabled,
                   &I::setPipEnabled, &I::setMheg5Enabled, &I::setGingaEnabled, &I::setHbbtvEnabled,
                   &I::setTeltexEnabled, &I::setCloseCaptionEnabled, &I::setAtscCloseCaptionEnabled,
                   &I::setNtscCloseCaptionEnabled, &I::setIsdbCloseCaptionEnabled,
                   &I::setWOWEnabled, &I::setFlag, &I::reloadTvConfig>(*service);
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
