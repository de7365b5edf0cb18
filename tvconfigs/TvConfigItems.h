#pragma once

/// Everything that the TV feature service keeps, one row an item, in the order of the record and of
/// its dump. From a row's name come the record's member (mAtvSystem, mAtvEnabled) and the
/// interface's setter (setAtvSystem, setAtvEnabled).
///
/// The systems: name, key, and the least and the most that a client may set. What a file or a
/// property holds is not held to that.
#define MLK_TV_SYSTEMS(SYSTEM)                                  \
    SYSTEM(AtvSystem, "persist.vendor.mlk.tv.atv_system", 0, 1) \
    SYSTEM(DtvSystem, "persist.vendor.mlk.tv.dtv_system", 1, 4)

/// The flags: the ConfigType, the name, the interface's getter, the key and the FlagRule
/// (TvConfigInfo.h). The last key has no ".tv" in it: the framework service has the same property.
#define MLK_TV_FLAGS(FLAG)                                                                        \
    FLAG(ATV, AtvEnabled, atvEnabled, "persist.vendor.mlk.tv.enable_atv", PLAIN)                  \
    FLAG(ATV_ANTENNA, AtvAntennaEnabled, atvAntennaEnabled, "persist.vendor.mlk.tv.atv_antenna",  \
         UNDER_ATV)                                                                               \
    FLAG(ATV_CABLE, AtvCableEnabled, atvCableEnabled, "persist.vendor.mlk.tv.atv_cable",          \
         UNDER_ATV)                                                                               \
    FLAG(DTV, DtvEnabled, dtvEnabled, "persist.vendor.mlk.tv.enable_dtv", PLAIN)                  \
    FLAG(DTV_ANTENNA, DtvAntennaEnabled, dtvAntennaEnabled, "persist.vendor.mlk.tv.dtv_antenna",  \
         UNDER_DTV)                                                                               \
    FLAG(DTV_CABLE, DtvCableEnabled, dtvCableEnabled, "persist.vendor.mlk.tv.dtv_cable",          \
         UNDER_DTV)                                                                               \
    FLAG(DTV_SATELLITE, DtvSatelliteEnabled, dtvSatelliteEnabled,                                 \
         "persist.vendor.mlk.tv.dtv_satellite", UNDER_DTV)                                        \
    FLAG(PVR, PvrEnabled, pvrEnabled, "persist.vendor.mlk.tv.enable_pvr", PLAIN)                  \
    FLAG(LIVEPAUSE, LivepauseEnabled, livepauseEnabled, "persist.vendor.mlk.tv.enable_livepause", \
         PLAIN)                                                                                   \
    FLAG(HDMI, HdmiEnabled, hdmiEnabled, "persist.vendor.mlk.tv.enable_hdmi", PLAIN)              \
    FLAG(VGA, VgaEnabled, vgaEnabled, "persist.vendor.mlk.tv.enable_vga", PLAIN)                  \
    FLAG(AV, AvEnabled, avEnabled, "persist.vendor.mlk.tv.enable_av", PLAIN)                      \
    FLAG(YPP, YppEnabled, yppEnabled, "persist.vendor.mlk.tv.enable_ypp", PLAIN)                  \
    FLAG(CI, CiEnabled, ciEnabled, "persist.vendor.mlk.tv.enable_ci", PLAIN)                      \
    FLAG(PIP, PipEnabled, pipEnabled, "persist.vendor.mlk.tv.enable_pip", PLAIN)                  \
    FLAG(MHEG5, Mheg5Enabled, mheg5Enabled, "persist.vendor.mlk.tv.enable_mheg5", PLAIN)          \
    FLAG(GINGA, GingaEnabled, gingaEnabled, "persist.vendor.mlk.tv.enable_ginga", PLAIN)          \
    FLAG(HBBTV, HbbtvEnabled, hbbtvEnabled, "persist.vendor.mlk.tv.enable_hbbtv", PLAIN)          \
    FLAG(TELTEX, TeltexEnabled, teltexEnabled, "persist.vendor.mlk.tv.enable_tt", PLAIN)          \
    FLAG(CLOSE_CAPTION, CloseCaptionEnabled, closeCaptionEnabled,                                 \
         "persist.vendor.mlk.tv.enable_cc", CAPTION_MASTER)                                       \
    FLAG(ATSC_CLOSE_CAPTION, AtscCloseCaptionEnabled, atscCloseCaptionEnabled,                    \
         "persist.vendor.mlk.tv.enable_atsc_cc", CAPTION)                                         \
    FLAG(NTSC_CLOSE_CAPTION, NtscCloseCaptionEnabled, ntscCloseCaptionEnabled,                    \
         "persist.vendor.mlk.tv.enable_ntsc_cc", CAPTION)                                         \
    FLAG(ISDB_CLOSE_CAPTION, IsdbCloseCaptionEnabled, isdbCloseCaptionEnabled,                    \
         "persist.vendor.mlk.tv.enable_isdb_cc", CAPTION)                                         \
    FLAG(WOW, WOWEnabled, getWOWEnabled, "persist.vendor.mlk.enable_wow", PLAIN)
