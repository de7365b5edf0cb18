// Rules about country maps and maps of channel plans.

#include <algorithm>
#include <iterator>

#include "regional/RegionalNames.h"
#include "regional/TvconfigsPath.h"
#include "tools/mlktree/CountryBlocks.h"
#include "tools/mlktree/Nearest.h"
#include "tools/mlktree/Texts.h"
#include "tools/mlktree/rules/Families.h"
#include "tools/mlktree/rules/FindingGroups.h"
#include "tools/mlktree/rules/RegionalXml.h"

namespace mlk::tree {

namespace {

namespace product = vendor::morlak::mlkconfigs::V1_0::implementation;
namespace element = product::element;
namespace attribute = product::attribute;

bool hasIgnoredLike(const FileLines& file, std::string_view name) {
    return std::any_of(file.lines().begin(), file.lines().end(), [name](const ReadLine& read) {
        return read.use == LineUse::IGNORED && isMeant(read.key, name);
    });
}

void checkMapNamed(const ProductLine& line, Reporter& reporter) {
    for (const FileLines* const file : xmlFilesOf(line)) {
        if (file->format() != FileFormat::TV_SYSTEMS) {
            continue;
        }
        const ReadLine* const named = file->find("", element::kCountryMap);
        const std::string message = std::string("the TV systems are never used, because ") +
                                    element::kCountryMap + " names no country map";
        if (named == nullptr && !hasIgnoredLike(*file, element::kCountryMap)) {
            reporter.report(placeOf(*file), message);
        } else if (named != nullptr && trimmed(named->value).empty()) {
            reporter.report(placeOf(line, *file, *named), message);
        }
    }
}

void checkOutside(const ProductLine& line, Reporter& reporter) {
    FindingGroups groups;
    for (const FileLines* const file : xmlFilesOf(line)) {
        const bool isSystems = file->format() == FileFormat::TV_SYSTEMS;
        const std::string_view name =
                isSystems ? element::kCountryMap : element::kFeaturesOfCountry;
        for (const ReadLine& read : file->lines()) {
            if (read.use == LineUse::ITEM && read.key == name && read.owner.empty() == isSystems &&
                !trimmed(read.value).empty() && product::fromTvconfigs(read.value).empty()) {
                groups.add(std::string(read.value), placeOf(line, *file, read, trimmed(read.value)),
                           quoted(trimmed(read.value)) +
                                   " is not used, because it does not lie in " +
                                   std::string(product::partition::kTvconfigs));
            }
        }
    }
    groups.report(reporter);
}

void checkNameless(const ProductLine& line, Reporter& reporter) {
    FindingGroups groups;
    for (const FileLines* const file : xmlFilesOf(line)) {
        for (const ReadLine& read : file->lines()) {
            if (read.use != LineUse::IGNORED || !read.owner.empty() ||
                file->format() == FileFormat::TV_SYSTEMS ||
                read.key != blockElementOf(file->format())) {
                continue;
            }
            Place place = placeOf(line, *file, read);
            std::string found;
            for (const SourceName& inner : elementsInIgnored(line, *file, read)) {
                if (isMeant(inner.name, element::kCountryName)) {
                    place = inner.place;
                    found = inner.name == element::kCountryName ? ", but an empty one"
                                                                : ", but " + quoted(inner.name);
                }
            }
            groups.add(found, std::move(place),
                       "the block is ignored, because it has no " + quoted(element::kCountryName) +
                               found);
        }
    }
    groups.report(reporter);
}

/** An element that each block of a map should have. */
struct NeededElement {
    FileFormat format;
    const char* name;
    bool isNeededAlways; /**< else a map may do without it, if no block has it */
    bool mayBeEmpty;
};
constexpr NeededElement kNeeded[] = {
        {FileFormat::CHANNEL_MAP, element::kDtvAntenna, true, true},
        {FileFormat::CHANNEL_MAP, element::kAtvAntenna, false, true},
        {FileFormat::COUNTRY_MAP, element::kSystemOfCountry, true, false},
        {FileFormat::COUNTRY_MAP, element::kFeaturesOfCountry, false, true},
};

bool lacks(const CountryBlock& block, const NeededElement& needed) {
    const ReadLine* const read = block.find(needed.name);
    if (read != nullptr) {
        return read->value.empty() && !needed.mayBeEmpty;
    }
    return std::none_of(block.elements.begin(), block.elements.end(), [&](const ReadLine* other) {
        return other->use == LineUse::IGNORED && isMeant(other->key, needed.name);
    });
}

void checkMissing(const ProductLine& line, Reporter& reporter) {
    FindingGroups groups;
    for (const FileLines* const file : xmlFilesOf(line)) {
        const std::vector<CountryBlock> blocks = blocksOf(*file);
        for (const NeededElement& needed : kNeeded) {
            const auto isLacking = [&](const CountryBlock& block) { return lacks(block, needed); };
            if (needed.format != file->format() ||
                (!needed.isNeededAlways && std::all_of(blocks.begin(), blocks.end(), isLacking))) {
                continue;
            }
            for (const CountryBlock& block : blocks) {
                if (isLacking(block)) {
                    groups.add(needed.name, placeOf(line, *file, *block.begin),
                               quoted(block.country()) + " has no " + needed.name +
                                       (file->format() == FileFormat::CHANNEL_MAP
                                                ? "; for a country without such a plan, write <" +
                                                          std::string(needed.name) + "/>"
                                                : ""));
                }
            }
        }
    }
    groups.report(reporter);
}

bool isCable(const ReadLine& read) {
    return !read.owner.empty() &&
           (read.key == element::kDtvCable || read.key == element::kAtvCable);
}

bool isKnownType(std::string_view type) {
    return std::any_of(product::kCableWords.begin(), product::kCableWords.end(),
                       [type](std::string_view word) { return beginsWith(type, word); });
}

void checkCableTypes(const ProductLine& line, Reporter& reporter) {
    const std::vector<std::string_view> words(product::kCableWords.begin(),
                                              product::kCableWords.end());
    FindingGroups groups;
    for (const FileLines* const file : xmlFilesOf(line)) {
        if (file->format() != FileFormat::CHANNEL_MAP) {
            continue;
        }
        for (const ReadLine& read : file->lines()) {
            if (!isCable(read)) {
                continue;
            }
            if (!read.section.empty()) {
                if (!isKnownType(read.section)) {
                    groups.add(std::string(read.section), placeOf(line, *file, read, read.section),
                               "there is no TYPE " + quoted(read.section) +
                                       meant(nearest(trimmed(read.section), words)) +
                                       ", and the plan is ignored");
                }
                continue;
            }
            for (const SourceName& given : attributesOf(line, *file, read)) {
                groups.add("attribute " + given.name, given.place,
                           given.name == attribute::kCableType
                                   ? "an empty TYPE is none, and the plan is ignored"
                                   : "the attribute is named " + quoted(attribute::kCableType) +
                                             ", not " + quoted(given.name) +
                                             "; without it the plan counts as \"AUTO\"");
            }
        }
    }
    groups.report(reporter);
}

void checkAutoCable(const ProductLine& line, Reporter& reporter) {
    FindingGroups groups;
    for (const PlanFiles& plans : line.planFolders()) {
        if (!isUsable(plans.map)) {
            continue;
        }
        for (const CountryBlock& block : blocksOf(*plans.map)) {
            for (const char* const name : {element::kDtvCable, element::kAtvCable}) {
                const ReadLine* other = nullptr;
                bool hasAuto = false;
                for (const ReadLine* const read : block.elements) {
                    if (read->key == name) {
                        // One that is ignored has a finding, and may have been meant.
                        hasAuto |= read->section.empty() || read->use == LineUse::IGNORED ||
                                   beginsWith(read->section, product::cable::kAuto);
                        other = read;
                    }
                }
                if (other != nullptr && !hasAuto) {
                    groups.add(name, placeOf(line, *plans.map, *other),
                               quoted(block.country()) + " has no " + name +
                                       " of TYPE \"AUTO\", so clients that ask for it get no plan");
                }
            }
        }
    }
    groups.report(reporter);
}

constexpr Rule kRules[] = {
        {"map-not-named", Severity::ERROR, "a TV system file names no country map",
         "Without a country map no country has a TV system, and a set saves no country.",
         "<CountryTvSysMapXML/>",
         "<CountryTvSysMapXML>/tvconfigs/tvsysmap/countries.xml</CountryTvSysMapXML>",
         checkMapNamed},
        {"outside-tvconfigs", Severity::ERROR,
         "a country map or a TV feature file of a country does not lie in /tvconfigs",
         "The service looks for these files in the partition tvconfigs only, and does without "
         "them.",
         "<TV_CONFIG>/tvdata/tv/tv_eu.config</TV_CONFIG>",
         "<TV_CONFIG>/tvconfigs/tv/tv_eu.config</TV_CONFIG>", checkOutside},
        {"block-without-country", Severity::ERROR, "a block of a map does not tell its country",
         "The service ignores the block: its country has no TV system, or no channel plans.",
         "<COUNTRY_FREQ_MAP>\n    <COUNTRY>GERMANY</COUNTRY>\n</COUNTRY_FREQ_MAP>",
         "<COUNTRY_FREQ_MAP>\n    <COUNTRY_NAME>GERMANY</COUNTRY_NAME>\n</COUNTRY_FREQ_MAP>",
         checkNameless},
        {"missing-element", Severity::WARNING, "a country lacks an element that others have",
         "The service logs an error, and the country has no plan of that kind, keeps the items of "
         "the former country, or keeps its TV features.",
         "<COUNTRY_NAME>GERMANY</COUNTRY_NAME>\n<DTV_ANTENA>freqtable_eu</DTV_ANTENA>",
         "<COUNTRY_NAME>GERMANY</COUNTRY_NAME>\n<DTV_ANTENA>freqtable_eu</DTV_ANTENA>\n"
         "<ATV_ANTENA/>",
         checkMissing},
        {"cable-type", Severity::ERROR, "a cable plan whose TYPE the service does not understand",
         "The plan is ignored, or counts as AUTO if the attribute has another name: a scan by "
         "cable "
         "looks at no channels, or at the wrong ones.",
         "<DTV_CABLE TYPE=\"Auto\">freqtable_cable</DTV_CABLE>",
         "<DTV_CABLE TYPE=\"AUTO\">freqtable_cable</DTV_CABLE>", checkCableTypes},
        {"cable-without-auto", Severity::NOTE, "a country has cable plans, but none of TYPE AUTO",
         "A client that asks for a TYPE which the country lacks gets no plan, and most clients ask "
         "for AUTO.",
         "<DTV_CABLE TYPE=\"STD\">freqtable_std</DTV_CABLE>",
         "<DTV_CABLE TYPE=\"AUTO\">freqtable_std</DTV_CABLE>\n"
         "<DTV_CABLE TYPE=\"STD\">freqtable_std</DTV_CABLE>",
         checkAutoCable},
};

}  // namespace

RuleFamily maps() {
    return {"maps", "Maps of countries", kRules, std::size(kRules)};
}

}  // namespace mlk::tree
