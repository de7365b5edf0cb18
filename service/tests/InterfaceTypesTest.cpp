// The layout of every record and the number of every enumerator: processes that were built at
// different times exchange them.

#include <gmock/gmock.h>
#include <vendor/morlak/mlkconfigs/1.0/types.h>

#include <cstddef>
#include <cstring>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace vendor::morlak::mlkconfigs::V1_0 {
namespace {

using ::android::hardware::hidl_array;
using ::android::hardware::hidl_enum_range;
using ::android::hardware::hidl_string;
using ::android::hardware::hidl_vec;

/** Name, type and offset of a member. */
#define EXPECT_MEMBER(Struct, member, Type, place)                 \
    static_assert(std::is_same_v<decltype(Struct::member), Type>); \
    EXPECT_EQ(offsetof(Struct, member), place) << #Struct "." #member

TEST(InterfaceTypes, AnswersKeepTheirLayout) {
    EXPECT_EQ(sizeof(OptionalBool), 2U);
    EXPECT_MEMBER(OptionalBool, success, bool, 0U);
    EXPECT_MEMBER(OptionalBool, value, bool, 1U);

    EXPECT_EQ(sizeof(OptionalInt32), 8U);
    EXPECT_MEMBER(OptionalInt32, success, bool, 0U);
    EXPECT_MEMBER(OptionalInt32, value, int32_t, 4U);

    EXPECT_EQ(sizeof(OptionalString), 24U);
    EXPECT_MEMBER(OptionalString, success, bool, 0U);
    EXPECT_MEMBER(OptionalString, value, hidl_string, 8U);
}

TEST(InterfaceTypes, KeyRecordsKeepTheirLayout) {
    EXPECT_EQ(sizeof(ProjectConfigKey), 32U);
    EXPECT_MEMBER(ProjectConfigKey, category, hidl_string, 0U);
    EXPECT_MEMBER(ProjectConfigKey, key, hidl_string, 16U);

    EXPECT_EQ(sizeof(ConfigKeyValue), 32U);
    EXPECT_MEMBER(ConfigKeyValue, key, hidl_string, 0U);
    EXPECT_MEMBER(ConfigKeyValue, value, hidl_string, 16U);
}

TEST(InterfaceTypes, FrequenciesKeepTheirLayoutToTheByte) {
    using Label = hidl_array<uint8_t, 5>;
    EXPECT_EQ(sizeof(HidlFreqListItem), 24U);
    EXPECT_EQ(alignof(HidlFreqListItem), 4U);
    EXPECT_MEMBER(HidlFreqListItem, channel, uint16_t, 0U);
    EXPECT_MEMBER(HidlFreqListItem, frequency, int32_t, 4U);
    EXPECT_MEMBER(HidlFreqListItem, bandwidth, int32_t, 8U);
    EXPECT_MEMBER(HidlFreqListItem, label, Label, 12U);
    EXPECT_EQ(sizeof(Label), 5U);
    EXPECT_MEMBER(HidlFreqListItem, modulation, int32_t, 20U);
}

TEST(InterfaceTypes, AVectorOfFrequenciesHasNothingBetweenItsItems) {
    hidl_vec<HidlFreqListItem> items;
    items.resize(2);
    items[1].channel = 0x1234;
    items[1].frequency = 0x01020304;
    items[1].label[0] = 'E';
    items[1].label[4] = 'x';
    items[1].modulation = 0x05060708;
    std::vector<uint8_t> bytes(48);
    memcpy(bytes.data(), static_cast<const void*>(items.data()), bytes.size());
    EXPECT_EQ(bytes[24], 0x34);
    EXPECT_EQ(bytes[25], 0x12);
    EXPECT_EQ(bytes[28], 0x04);
    EXPECT_EQ(bytes[36], 'E');
    EXPECT_EQ(bytes[40], 'x');
    EXPECT_EQ(bytes[44], 0x08);
}

#undef EXPECT_MEMBER

using Enumerators = std::vector<std::pair<uint32_t, std::string>>;

/** All enumerators of the type in their declared order. */
template <typename Enumeration>
Enumerators enumeratorsOf() {
    static_assert(std::is_same_v<std::underlying_type_t<Enumeration>, uint32_t>);
    static_assert(sizeof(Enumeration) == 4);
    Enumerators result;
    for (const Enumeration each : hidl_enum_range<Enumeration>()) {
        result.emplace_back(static_cast<uint32_t>(each), toString(each));
    }
    return result;
}

TEST(InterfaceTypes, ConfigTypesKeepTheirNumbers) {
    EXPECT_EQ(enumeratorsOf<ConfigType>(), (Enumerators{{1, "ATV"},
                                                        {2, "ATV_ANTENNA"},
                                                        {3, "ATV_CABLE"},
                                                        {5, "DTV"},
                                                        {6, "DTV_ANTENNA"},
                                                        {7, "DTV_CABLE"},
                                                        {8, "DTV_SATELLITE"},
                                                        {9, "PVR"},
                                                        {10, "LIVEPAUSE"},
                                                        {11, "HDMI"},
                                                        {12, "VGA"},
                                                        {13, "AV"},
                                                        {14, "YPP"},
                                                        {15, "CI"},
                                                        {16, "PIP"},
                                                        {17, "MHEG5"},
                                                        {18, "GINGA"},
                                                        {19, "HBBTV"},
                                                        {20, "TELTEX"},
                                                        {21, "CLOSE_CAPTION"},
                                                        {22, "ATSC_CLOSE_CAPTION"},
                                                        {23, "NTSC_CLOSE_CAPTION"},
                                                        {24, "ISDB_CLOSE_CAPTION"},
                                                        {25, "WOW"}}));
}

TEST(InterfaceTypes, SelectorsKeepTheirNumbers) {
    EXPECT_EQ(enumeratorsOf<CommonPath>(), (Enumerators{{0, "AMP_MAIN"}, {1, "AMP_SUB"}}));
    EXPECT_EQ(enumeratorsOf<EdidVer>(),
              (Enumerators{{0, "EDID_1P4"}, {1, "EDID_2P0"}, {2, "EDID_2P1"}}));
    EXPECT_EQ(enumeratorsOf<HdcpVer>(), (Enumerators{{0, "HDCP_1X"}, {1, "HDCP_2X"}}));
    EXPECT_EQ(enumeratorsOf<FreqTableType>(),
              (Enumerators{
                      {0, "DTV_ANTENNA"}, {1, "DTV_CABLE"}, {2, "ATV_ANTENNA"}, {3, "ATV_CABLE"}}));
    EXPECT_EQ(enumeratorsOf<AtscCableType>(),
              (Enumerators{{0, "AUTO"}, {1, "STD"}, {2, "HRC"}, {3, "IRC"}}));
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0
