#pragma once

#include <cstdint>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/** The values of all items, in the order of the dump. A plain record: its owner guards it. */
struct TvConfigInfo {
    int32_t mAtvSystem = 1;
    int32_t mDtvSystem = 1;
    bool mAtvEnabled = true;
    bool mAtvAntennaEnabled = true;
    bool mAtvCableEnabled = true;
    bool mDtvEnabled = true;
    bool mDtvAntennaEnabled = true;
    bool mDtvCableEnabled = true;
    bool mDtvSatelliteEnabled = true;
    bool mPvrEnabled = true;
    bool mLivepauseEnabled = true;
    bool mHdmiEnabled = true;
    bool mVgaEnabled = true;
    bool mAvEnabled = true;
    bool mYppEnabled = true;
    bool mCiEnabled = true;
    bool mPipEnabled = true;
    bool mMheg5Enabled = true;
    bool mGingaEnabled = true;
    bool mHbbtvEnabled = true;
    bool mTeltexEnabled = true;
    bool mCloseCaptionEnabled = true;
    bool mAtscCloseCaptionEnabled = true;
    bool mNtscCloseCaptionEnabled = true;
    bool mIsdbCloseCaptionEnabled = true;
    bool mWOWEnabled = true;

    /** Logs the whole record as one message of debug priority, one item a line. */
    void Dump() const;
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
