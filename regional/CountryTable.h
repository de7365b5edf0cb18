#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "regional/NameTable.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/**
 * A country's value, see countryAt. A client may send any 32-bit number; nothing is configured for
 * a value without a name.
 */
enum _tv_country : int32_t {};

/** No country is chosen yet; "DEFAULT". */
constexpr _tv_country kNoCountry{-1};

/**
 * The names of all countries in files, in the order of their values. Sets store the values and
 * applications know them: names never move, and new ones are appended.
 */
// clang-format off
constexpr std::array<std::string_view, 186> kCountryNames = {
        "DEFAULT", "ANDORRA", "AUSTRALIA", "AUSTRIA", "BELGIUM", "BOTSWANA", "BRAZIL", "CANADA",
        "CHINA", "CROATIA", "CZECH", "DENMARK", "ESTONIA", "FINLAND", "FRANCE", "GERMANY", "GREECE",
        "HUNGARY", "INDIA", "INDONESIA", "IRELAND", "ITALY", "JAPAN", "LITHUANIA", "LUXEMBOURG",
        "NORTH_MACEDONIA", "MALTA", "MALAYSIA", "MEXICO", "NETHERLANDS", "NORWAY", "PHILIPPINES",
        "ROMANIA", "POLAND", "PORTUGAL", "SINGAPORE", "SLOVAKIA", "SLOVENIA", "SPAIN", "SWEDEN",
        "SWITZERLAND", "TAIWAN", "THAILAND", "TURKEY", "UNITED_KINGDOM", "USA", "VIETNAM", "IRAN",
        "MOROCCO", "MYANMAR", "NIGERIA", "GEORGIA", "KENYA", "ANGOLA", "MAURITIUS", "UZBEKISTAN",
        "TANZANIA", "ARE", "LAO_PDR", "MONGOLIA", "CAMBODIA", "BANGLADESH", "SRI_LANKA", "NEPAL",
        "BRUNEI", "FIJI", "MALDIVES", "ISRAEL", "ASIA_NONE", "AFGHANISTAN", "ALBANIA", "ALGERIA",
        "ANTIGUA_BARBUDA", "ARGENTINA", "ARMENIA", "ARUBA", "BAHRAIN", "BARBADOS", "BELARUS",
        "BELIZE", "BENIN", "BOLIVIA", "BOSNIA_HERZEGOVINA", "BULGARIA", "CHILE", "COLOMBIA",
        "CONGO", "COSTARICA", "CUBA", "CURACAO", "CYPRUS", "DEMOCRATIC_CONGO", "DOMINICA",
        "ECUADOR", "EGYPT", "ETHIOPIA", "GHANA", "GRENADA", "GUATEMALA", "GUYANA", "HAITI",
        "HONDURAS", "HONGKONG", "ICELAND", "IRAQ", "IVORY_COAST", "JAMAICA", "JORDAN", "KAZAKHSTAN",
        "KOSOVO", "KUWAIT", "KYRGYZSTAN", "LATVIA", "LEBANON", "LIBERIA", "LIBYA", "MOLDOVA",
        "MONTENEGRO", "MOZAMBIQUE", "NEW_CALEDONIA", "NEW_ZEALAND", "NICARAGUA", "NORTH_KOREA",
        "OMAN", "PAKISTAN", "PALESTINE", "PANAMA", "PARAGUAY", "PERU", "POLYNESIA", "PUERTO_RICO",
        "QATAR", "RUSSIA", "EL_SALVADOR", "SAUDI_ARABIA", "SERBIA", "SOUTH_AFRICA", "SOUTH_KOREA",
        "ST_KITTS", "ST_LUCIA", "ST_VINCENT", "SUDAN", "SURINAME", "SYRIA", "TAJIKISTAN",
        "TRINIDAD", "TUNISIA", "TURKMENISTAN", "UNITED_ARAB_EMIRATES", "UKRAINE", "URUGUAY",
        "VENEZUELA", "YEMEN", "ZAMBIA", "AZERBAIJAN", "NAMIBIA", "SENEGAL", "BENGAL",
        "BURKINA_FASO", "RWANDA", "SOMALIA", "SAMOA", "MALI", "GUINEA", "CAMEROON", "ZIMBABWE",
        "GABON", "GAMBIA", "MADAGASCAR", "MALAWI", "NIGER", "SIERRA_LEONE", "TOGO", "UGANDA",
        "CHAD", "DJIBOUTI", "MAURITANIA", "SEYCHELLES", "EQUATORIAL_GUINEA", "DOMINICAN_REPUBLIC",
        "BRITISH_VIRGIN_ISLANDS", "MONTSERRAT", "TURKS_AND_CAICOS_ISLANDS", "FRENCH_GUIANA",
        "REUNION", "PAPUA_NEW_GUINEA",
};
// clang-format on

/** Returns the value of the country at a position of kCountryNames: from -1 on, without 161. */
constexpr _tv_country countryAt(size_t position) {
    constexpr int32_t kUnused = 161;
    const int32_t value = static_cast<int32_t>(position) - 1;
    return _tv_country{value < kUnused ? value : value + 1};
}

/**
 * Makes a table of the countries. Each reader has its own, because it adds unknown names to it that
 * must not appear in another's.
 */
NameTable countryNames();

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
