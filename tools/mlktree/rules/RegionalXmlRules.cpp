// Rules that hold for all XML files: TV systems, country maps, maps of channel plans.

#include <algorithm>
#include <iterator>
#include <map>
#include <tuple>

#include "regional/RegionalNames.h"
#include "tools/mlktree/Nearest.h"
#include "tools/mlktree/Texts.h"
#include "tools/mlktree/rules/Families.h"
#include "tools/mlktree/rules/FindingGroups.h"
#include "tools/mlktree/rules/Regional.h"
#include "tools/mlktree/rules/RegionalXml.h"

namespace mlk::tree {

namespace {

namespace product = vendor::morlak::mlkconfigs::V1_0::implementation;
namespace element = product::element;
namespace attribute = product::attribute;

void checkMalformed(const ProductLine& line, Reporter& reporter) {
    for (const auto& [path, file] : line.files()) {
        for (const Problem& problem : file->problems()) {
            if (problem.kind == ProblemKind::MALFORMED_XML) {
                reporter.report({path, problem.line, 0},
                                "the file is not used, because it is " + problem.text());
            }
        }
    }
}

void checkUnreadable(const ProductLine& line, Reporter& reporter) {
    for (const auto& [path, file] : line.files()) {
        const bool isOfRule = isXml(file->format()) || file->format() == FileFormat::CHANNEL_PLAN;
        if (!isOfRule || !file->isUnreadable()) {
            continue;
        }
        for (const Problem& problem : file->problems()) {
            const bool isMuch = problem.kind == ProblemKind::COSTLY_XML;
            if (isMuch || problem.isReadFailure()) {
                reporter.report(placeOf(*file), "the file is not used, because it " +
                                                        std::string(isMuch ? "has " : "") +
                                                        problem.text());
            }
        }
    }
}

// Elements that may stand where an ignored one stands.
std::vector<std::string_view> elementsBeside(const FileLines& file, const ReadLine& read) {
    const FileFormat format = file.format();
    const bool isTvSystems = format == FileFormat::TV_SYSTEMS;
    if (!read.owner.empty()) {
        return elementsIn(format, isTvSystems ? element::kTvSystem
                                              : std::string(blockElementOf(format)).c_str());
    }
    std::vector<std::string_view> names = elementsIn(format, nullptr);
    if (isTvSystems) {
        names.emplace_back(element::kTvSystem);  // the reader does not tell the two levels apart
    }
    return names;
}

// True for the elements that other rules look at.
bool isOfOtherRule(const FileLines& file, const Complaints& complaints, const ReadLine& read) {
    const bool isBlock = read.owner.empty() && file.format() != FileFormat::TV_SYSTEMS &&
                         read.key == blockElementOf(file.format());
    const bool isCable = read.key == element::kDtvCable || read.key == element::kAtvCable;
    const bool lacksAttribute = file.format() == FileFormat::TV_SYSTEMS && complaints.has(read);
    return isBlock || (isCable && !read.owner.empty()) || lacksAttribute;
}

std::string unknownMessage(const ProductLine& line, const FileLines& file, const ReadLine& read) {
    const std::vector<std::string_view> names = elementsBeside(file, read);
    const std::string name = quoted(read.key);
    if (std::find(names.begin(), names.end(), read.key) != names.end()) {
        return name + " is ignored here: it stands in the wrong place, or twice";
    }
    for (const SourceName& inner : elementsInIgnored(line, file, read)) {
        const bool isWrapped = read.owner.empty() && inner.name == names.front();
        if (isWrapped && nearest(read.key, names).empty()) {
            return quoted(inner.name) +
                   " stands at the top of the file, not in another element "
                   "like " +
                   name;
        }
    }
    return "there is no element " + name + meant(nearest(read.key, names)) +
           ", and nothing of it is read";
}

void checkUnknown(const ProductLine& line, Reporter& reporter) {
    FindingGroups groups;
    for (const FileLines* const file : xmlFilesOf(line)) {
        const Complaints complaints(*file);
        for (const ReadLine& read : file->lines()) {
            if (read.use == LineUse::IGNORED && !isOfOtherRule(*file, complaints, read) &&
                !groups.isFull(file->path())) {
                groups.add(std::string(read.key), placeOf(line, *file, read, read.key),
                           unknownMessage(line, *file, read));
            }
        }
    }
    groups.report(reporter);
}

void checkBlockNames(const ProductLine& line, Reporter& reporter) {
    FindingGroups groups;
    for (const FileLines* const file : xmlFilesOf(line)) {
        const std::string_view expected = blockElementOf(file->format());
        for (const ReadLine& read : file->lines()) {
            if (read.use == LineUse::SECTION && read.key != expected) {
                groups.add(std::string(read.key), placeOf(line, *file, read, read.key),
                           quoted(read.key) + " counts as " + quoted(expected) +
                                   " only because it follows one");
            }
        }
    }
    groups.report(reporter);
}

// The attributes that an ignored element of a TV system file needs.
std::vector<std::string_view> attributesNeeded(const ReadLine& read) {
    if (read.owner.empty()) {
        return {attribute::kType};
    }
    return {attribute::kCategory, attribute::kKey, attribute::kValue};
}

void checkAttributesOf(const ProductLine& line, const FileLines& file, const ReadLine& read,
                       FindingGroups& groups) {
    const std::vector<SourceName> given = attributesOf(line, file, read);
    for (const std::string_view needed : attributesNeeded(read)) {
        const auto isNeeded = [needed](const SourceName& n) { return n.name == needed; };
        const auto isNear = [needed](const SourceName& n) { return isMeant(n.name, needed); };
        if (std::any_of(given.begin(), given.end(), isNeeded)) {
            continue;
        }
        const auto near = std::find_if(given.begin(), given.end(), isNear);
        const bool isMisspelt = near != given.end();
        const std::string but = isMisspelt ? ", but " + quoted(near->name) : "";
        groups.add(std::string(needed) + but, isMisspelt ? near->place : placeOf(line, file, read),
                   std::string(read.owner.empty() ? "the TV system" : "the item") +
                           " is ignored, because it has no attribute " + quoted(needed) + but);
    }
}

void checkAttributes(const ProductLine& line, Reporter& reporter) {
    FindingGroups groups;
    for (const FileLines* const file : xmlFilesOf(line)) {
        const Complaints complaints(*file);
        for (const ReadLine& read : file->lines()) {
            const bool isTvSystems = file->format() == FileFormat::TV_SYSTEMS;
            if (isTvSystems && read.use == LineUse::IGNORED && complaints.has(read)) {
                checkAttributesOf(line, *file, read, groups);
            }
        }
    }
    groups.report(reporter);
}

std::string repeatedMessage(const FileLines& file, const ReadLine& read) {
    const std::string owner = quoted(read.owner);
    if (file.format() == FileFormat::TV_SYSTEMS) {
        return "TV system " + owner + " has " + quoted(read.section) + " " + quoted(read.key) +
               " twice, and the first one counts";
    }
    const std::string type = read.section.empty() ? "" : " of type " + quoted(read.section);
    return owner + " has " + quoted(read.key) + type + " twice, and the first one counts";
}

// A cable plan whose attribute has another name has a finding for that.
bool hasOtherAttribute(const ProductLine& line, const FileLines& file, const ReadLine& read) {
    return file.format() == FileFormat::CHANNEL_MAP && read.section.empty() &&
           !attributesOf(line, file, read).empty();
}

void checkRepeated(const ProductLine& line, Reporter& reporter) {
    FindingGroups groups;
    for (const FileLines* const file : xmlFilesOf(line)) {
        using Name = std::tuple<std::string_view, std::string_view>;
        std::map<Name, const ReadLine*> first;  // of the present block
        for (const ReadLine& read : file->lines()) {
            if (read.use == LineUse::SECTION) {
                first.clear();
            }
            if (read.use != LineUse::ITEM || read.owner.empty()) {
                continue;
            }
            const auto earlier = first.try_emplace({read.section, read.key}, &read).first->second;
            // A TV system that is defined twice has a finding of its own.
            if (!read.isNew && earlier != &read && !hasOtherAttribute(line, *file, read)) {
                groups.add(std::string(read.owner) + '\n' + std::string(read.section) +
                                   std::string(read.key),
                           placeOf(line, *file, read, read.key), repeatedMessage(*file, read),
                           {{placeOf(line, *file, *earlier, earlier->key), "the first one"}});
            }
        }
    }
    groups.report(reporter);
}

void checkBlanks(const ProductLine& line, Reporter& reporter) {
    FindingGroups groups;
    for (const FileLines* const file : xmlFilesOf(line)) {
        const bool isTvSystems = file->format() == FileFormat::TV_SYSTEMS;
        for (const ReadLine& read : file->lines()) {
            const auto report = [&](std::string_view text, std::string_view what) {
                const std::string flaw = flawAtEnds(text);
                if (!flaw.empty()) {
                    groups.add(flaw + std::string(what), placeOf(line, *file, read, trimmed(text)),
                               quoted(trimmed(text)) + " has " + flaw + ", which belongs to the " +
                                       std::string(what));
                }
            };
            if (read.use == LineUse::SECTION && isTvSystems) {
                report(read.owner, "name");
            } else if (read.use == LineUse::ITEM && isTvSystems && !read.owner.empty()) {
                report(read.section, "category");
                report(read.key, "key");
                if (!trimmed(read.value).empty()) {
                    report(read.value, trimmed(read.value).front() == '/' ? "path" : "value");
                }
            } else if (read.use == LineUse::ITEM && read.key != element::kCountryName) {
                // Another rule looks at the names of countries.
                report(read.value, read.key == element::kSystemOfCountry ? "name" : "path");
            }
        }
    }
    groups.report(reporter);
}

void checkEmpty(const ProductLine& line, Reporter& reporter) {
    for (const FileLines* const file : xmlFilesOf(line)) {
        const bool isSound =
                std::none_of(file->lines().begin(), file->lines().end(), [](const ReadLine& read) {
                    return read.use == LineUse::SECTION || read.use == LineUse::IGNORED;
                });
        if (isSound) {
            const bool isTvSystems = file->format() == FileFormat::TV_SYSTEMS;
            reporter.report(placeOf(*file), isTvSystems ? "the file defines no TV system"
                                                        : "the map has no country");
        }
    }
}

constexpr Rule kRules[] = {
        {"malformed-xml", Severity::ERROR, "an XML file is not well-formed",
         "Nothing of the file is used: the set has no TV systems, no countries or no channel "
         "plans.",
         "<DTV_ANTENA>freqtable_eu</DTV_ANTENNA>", "<DTV_ANTENA>freqtable_eu</DTV_ANTENA>",
         checkMalformed},
        {"unreadable-file", Severity::ERROR, "a map or a channel plan cannot be used as a whole",
         "A file that is too large, has too many attributes or references, or cannot be opened by "
         "the service, counts as empty.",
         "a channel plan of 17 MiB", "the same without what is no channel", checkUnreadable},
        {"unknown-element", Severity::ERROR, "an element that the service does not know",
         "The service ignores it with all that it holds. Some names are spelt unusually, and are "
         "right as they are: DTV_ANTENA and ATV_ANTENA with one N, TvSystemConfigration without U.",
         "<DTV_ANTENNA>freqtable_eu</DTV_ANTENNA>", "<DTV_ANTENA>freqtable_eu</DTV_ANTENA>",
         checkUnknown},
        {"misspelt-block", Severity::WARNING, "a block counts in spite of its name",
         "The service takes all that follow a first block for blocks, whatever their names. If the "
         "block becomes the first one, it is ignored.",
         "<COUNTRY_FREQ_MPA>", "<COUNTRY_FREQ_MAP>", checkBlockNames},
        {"missing-attribute", Severity::ERROR,
         "a TV system or an item lacks an attribute that it needs",
         "The service ignores the item, or the whole TV system: a country does not change what it "
         "should.",
         "<Item category=\"[LiveTV]\" name=\"DPVR\" value=\"true\"/>",
         "<Item category=\"[LiveTV]\" key=\"DPVR\" value=\"true\"/>", checkAttributes},
        {"repeated-element", Severity::WARNING,
         "an element or an item stands twice where the first one counts",
         "The second one has no effect, and neither has a change of it.",
         "<DTV_ANTENA>freqtable_eu</DTV_ANTENA>\n<DTV_ANTENA>freqtable_uhf</DTV_ANTENA>",
         "<DTV_ANTENA>freqtable_uhf</DTV_ANTENA>", checkRepeated},
        {"blank-in-element", Severity::ERROR,
         "a text of an XML file has a blank or a line break at its ends",
         "The blank belongs to the text: the service looks for a file or a TV system whose name "
         "has "
         "it, and finds none.",
         "<DTV_ANTENA> freqtable_eu </DTV_ANTENA>", "<DTV_ANTENA>freqtable_eu</DTV_ANTENA>",
         checkBlanks},
        {"empty-map", Severity::ERROR, "an XML file has none of the blocks that it is read for",
         "The set has no TV systems, no countries or no channel plans.",
         "<?xml version=\"1.0\"?>\n<!-- to do -->",
         "<?xml version=\"1.0\"?>\n<COUNTRY_FREQ_MAP>...</COUNTRY_FREQ_MAP>", checkEmpty},
};

}  // namespace

RuleFamily xml() {
    return {"xml", "XML files", kRules, std::size(kRules)};
}

}  // namespace mlk::tree
