#include "regional/testing/PlainFrequencyMap.h"

#include "common/Texts.h"
#include "regional/XmlFile.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation::plain {

namespace {

// Parses TYPE by its first characters; false if it is unknown.
bool cableTypeOf(const char* text, AtscCableType& type) {
    const std::string word = text != nullptr ? text : "AUTO";
    if (word.substr(0, 4) == "AUTO") {
        type = AtscCableType::AUTO;
    } else if (word.substr(0, 3) == "STD") {
        type = AtscCableType::STD;
    } else if (word.substr(0, 3) == "HRC") {
        type = AtscCableType::HRC;
    } else if (word.substr(0, 3) == "IRC") {
        type = AtscCableType::IRC;
    } else {
        return false;
    }
    return true;
}

std::map<AtscCableType, std::string> cableTables(const tinyxml2::XMLElement& block,
                                                 const char* name) {
    std::map<AtscCableType, std::string> tables;
    for (const auto* element = block.FirstChildElement(name); element != nullptr;
         element = element->NextSiblingElement(name)) {
        AtscCableType type{};
        if (cableTypeOf(element->Attribute("TYPE"), type) && element->GetText() != nullptr) {
            tables.insert({type, element->GetText()});
        }
    }
    return tables;
}

}  // namespace

FrequencyMap::FrequencyMap(const std::string& path) {
    const XmlFile file(path);
    if (file.error() != nullptr) {
        return;
    }
    for (const auto* element = file.first("COUNTRY_FREQ_MAP"); element != nullptr;
         element = element->NextSiblingElement()) {
        const char* const country = textOfChild(*element, "COUNTRY_NAME");
        if (country == nullptr) {
            continue;
        }
        Block block;
        block.country = country;
        block.antenna[FreqTableType::DTV_ANTENNA] = orEmpty(textOfChild(*element, "DTV_ANTENA"));
        block.antenna[FreqTableType::ATV_ANTENNA] = orEmpty(textOfChild(*element, "ATV_ANTENA"));
        block.cable[FreqTableType::DTV_CABLE] = cableTables(*element, "DTV_CABLE");
        block.cable[FreqTableType::ATV_CABLE] = cableTables(*element, "ATV_CABLE");
        mBlocks.push_back(block);
    }
}

std::string FrequencyMap::table(const std::string& country, FreqTableType type,
                                AtscCableType cableType) const {
    std::string name;
    for (const Block& block : mBlocks) {
        if (block.country != country) {
            continue;
        }
        const auto antenna = block.antenna.find(type);
        if (antenna != block.antenna.end()) {
            name = antenna->second;
        }
        const auto cable = block.cable.find(type);
        if (cable != block.cable.end() && cable->second.count(cableType) != 0) {
            name = cable->second.at(cableType);
        }
    }
    return name;
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation::plain
