// Rules about the names of countries in lists and maps.

#include <algorithm>
#include <cctype>
#include <iterator>
#include <map>

#include "host/text/Utf8.h"
#include "regional/RegionalNames.h"
#include "tools/mlktree/CountryCodes.h"
#include "tools/mlktree/CountryNames.h"
#include "tools/mlktree/Lookalikes.h"
#include "tools/mlktree/Nearest.h"
#include "tools/mlktree/Texts.h"
#include "tools/mlktree/rules/Families.h"
#include "tools/mlktree/rules/FindingGroups.h"
#include "tools/mlktree/rules/Regional.h"

namespace mlk::tree {

namespace {

namespace element = vendor::morlak::mlkconfigs::V1_0::implementation::element;

using vendor::morlak::mlkconfigs::V1_0::implementation::kNoCountry;

constexpr std::string_view kFirstCountry = "ANDORRA";
constexpr size_t kCodeSize = 2;  // of ISO 3166, after the country's comma

/** A mistake in a name; lines of one file with the same group have the same mistake. */
struct NameMistake {
    std::string group;
    std::string message; /**< empty if the name is right */
};

// The first country among the entries of a line, as in "DE,GERMANY".
std::string_view countryIn(std::string_view rest) {
    while (!rest.empty()) {
        const size_t comma = std::min(rest.find(','), rest.size());
        const std::string_view entry = trimmed(rest.substr(0, comma));
        if (countryOf(entry)) {
            return entry;
        }
        rest.remove_prefix(std::min(comma + 1, rest.size()));
    }
    return {};
}

NameMistake mistakeInList(const ReadLine& read, std::string_view name) {
    if (trimmed(name).empty()) {
        // All lines of a file with carriage returns have the same mistake.
        const bool hasReturn = name.find('\r') != std::string_view::npos;
        return {hasReturn ? flawAtEnds("x\r") : "blank",
                "a line of " + quoted(name) + " counts as a country; remove it"};
    }
    const std::string_view core = trimmed(name);
    if (core.front() == '#' || core.front() == ';' || beginsWith(core, "//")) {
        return {"comment", "a list has no comments: this line counts as a country"};
    }
    if (const std::string_view later = countryIn(read.text); !later.empty()) {
        return {"order", "the name of the country stands before the first comma, and " +
                                 quoted(name) + " stands there instead of " + quoted(later)};
    }
    return {};
}

// The country at the end of a name that another country begins, as in "GERMANYAUSTRIA".
std::string_view countryAfterCountry(std::string_view name) {
    for (size_t end = 1; end < name.size(); ++end) {
        const std::string_view later = trimmed(name.substr(end));
        if (countryOf(later) && countryOf(trimmed(name.substr(0, end)))) {
            return later;
        }
    }
    return {};
}

NameMistake mistakeIn(const FileLines& file, const ReadLine& read, std::string_view name) {
    const bool isList = file.format() == FileFormat::COUNTRY_LIST;
    const std::optional<_tv_country> country = countryOf(name);
    if (country) {
        const bool isNone = *country == kNoCountry && file.format() != FileFormat::CHANNEL_MAP;
        return isNone ? NameMistake{"none", quoted(name) + " stands for no country"}
                      : NameMistake{};
    }
    const std::string_view core = trimmed(name);
    if (const std::string flaw = flawAtEnds(name); !flaw.empty() && countryOf(core)) {
        return {flaw, quoted(core) + " has " + flaw +
                              ", which belongs to the name and makes it an unknown country"};
    }
    if (beginsWith(name, kByteOrderMark)) {
        return {};  // another rule reports the mark
    }
    if (isList) {
        if (NameMistake mistake = mistakeInList(read, name); !mistake.message.empty()) {
            return mistake;
        }
        if (const std::string_view later = countryAfterCountry(name); !later.empty()) {
            return {std::string(name), quoted(name) +
                                               " is no country: two lines are joined; begin a new "
                                               "line before " +
                                               quoted(later)};
        }
    }
    return {std::string(name),
            "the service knows no country " + quoted(name) + meant(countryMeantBy(name))};
}

// What the wrong name does besides.
std::string effectOf(FileFormat format, std::string_view name) {
    std::string effect;
    if (countryOf(name)) {
        return effect;
    }
    if (format == FileFormat::COUNTRY_LIST) {
        effect = "; the set offers \"ANDORRA\" instead";
    }
    if (format != FileFormat::CHANNEL_MAP && name < kFirstCountry) {
        effect += "; and it takes the place of \"ANDORRA\" itself, which it sorts before";
    }
    return effect;
}

// The name of a country that a line gives; nothing if it gives none, or one that does not count.
std::optional<std::string_view> nameIn(const FileLines& file, const ReadLine& read) {
    if (read.use != LineUse::ITEM) {
        return std::nullopt;
    }
    if (file.format() == FileFormat::COUNTRY_LIST) {
        return read.key;
    }
    return read.key == element::kCountryName && read.isNew ? std::optional(read.value)
                                                           : std::nullopt;
}

bool namesCountries(FileFormat format) {
    return format == FileFormat::COUNTRY_LIST || format == FileFormat::COUNTRY_MAP ||
           format == FileFormat::CHANNEL_MAP;
}

// The country that the line end was lost before, as in "CHINA,CNHONGKONG,HK". A comma has to
// follow: "SOMALI" may stand after the comma of Somalia, and has no Mali.
std::string_view countryAfterCode(std::string_view first, std::string_view rest) {
    const size_t comma = rest.find(',');
    if (comma == std::string_view::npos || comma < kCodeSize) {
        return {};
    }
    const std::string_view joined = rest.substr(kCodeSize, comma - kCodeSize);
    const std::string_view country = trimmed(joined);
    // "AM SAMOA" is a name, while "DE AUSTRIA" after GERMANY is no name of it.
    const bool isJoined = country == joined || countryOfCode(rest.substr(0, kCodeSize)) == first;
    return isJoined && countryOf(country) ? country : std::string_view();
}

// The same after a name that people read, as in "GERMANY,GermanyAUSTRIA,Austria". A small letter,
// or one that is not ASCII, ends such a name, so that no country is found in another one.
std::string_view countryAfterName(std::string_view rest) {
    const std::string_view entry = rest.substr(0, std::min(rest.find(','), rest.size()));
    const size_t last = entry.find_last_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZ_");
    if (entry.size() == rest.size() || last == std::string_view::npos ||
        (isAscii(entry.substr(last, 1)) &&
         std::islower(static_cast<unsigned char>(entry[last])) == 0)) {
        return {};
    }
    const std::string_view country = entry.substr(last + 1);
    return countryOf(country) ? country : std::string_view();
}

std::string_view joinedCountryIn(std::string_view first, std::string_view rest) {
    const std::string_view country = countryAfterCode(first, rest);
    return country.empty() ? countryAfterName(rest) : country;
}

// Countries after the first comma of a line that begins with a country.
void checkLost(const ProductLine& line, Reporter& reporter) {
    FindingGroups groups;
    for (const auto& [path, file] : line.files()) {
        if (file->format() != FileFormat::COUNTRY_LIST) {
            continue;
        }
        for (const ReadLine& read : file->lines()) {
            const size_t comma = read.text.find(',', read.text.find(read.key));
            if (read.use != LineUse::ITEM || comma == std::string_view::npos ||
                !countryOf(read.key) || groups.isFull(path)) {
                continue;
            }
            const std::string_view rest = read.text.substr(comma + 1);
            const std::string_view entry = countryIn(rest);
            const std::string_view joined = entry.empty() ? joinedCountryIn(read.key, rest) : "";
            if (!joined.empty()) {
                groups.add("joined", placeOf(line, *file, read, joined),
                           "two lines are joined: begin a new line before " + quoted(joined) +
                                   ", which the set does not offer here");
            } else if (!entry.empty() && entry != read.key) {
                groups.add(
                        "lost", placeOf(line, *file, read, entry),
                        "a line has one country, before its first comma: the set does not offer " +
                                quoted(entry));
            }
        }
    }
    groups.report(reporter);
}

void checkNames(const ProductLine& line, Reporter& reporter) {
    FindingGroups groups;
    for (const auto& [path, file] : line.files()) {
        if (!namesCountries(file->format())) {
            continue;
        }
        for (const ReadLine& read : file->lines()) {
            const std::optional<std::string_view> name = nameIn(*file, read);
            if (groups.isFull(path)) {
                break;
            }
            const NameMistake mistake = name ? mistakeIn(*file, read, *name) : NameMistake{};
            if (!mistake.message.empty()) {
                groups.add(mistake.group, placeOf(line, *file, read, trimmed(*name)),
                           mistake.message + effectOf(file->format(), *name));
            }
        }
    }
    groups.report(reporter);
}

std::string repeatedMessage(FileFormat format, std::string_view country) {
    const std::string name = quoted(country);
    if (format == FileFormat::COUNTRY_LIST) {
        return name + " stands in this list twice, and the set offers it twice";
    }
    if (format == FileFormat::COUNTRY_MAP) {
        return name + " has a second record, which is never used: the first one counts";
    }
    return name + " has a second block, which replaces the plans of the first one";
}

void checkRepeated(const ProductLine& line, Reporter& reporter) {
    FindingGroups groups;
    for (const auto& [path, file] : line.files()) {
        if (!namesCountries(file->format())) {
            continue;
        }
        std::map<std::string_view, const ReadLine*> seen;
        for (const ReadLine& read : file->lines()) {
            const std::optional<std::string_view> name = nameIn(*file, read);
            // Names that are wrong are reported as such.
            if (!name || !countryOf(*name)) {
                continue;
            }
            const auto [first, isNew] = seen.try_emplace(*name, &read);
            if (!isNew) {
                groups.add(std::string(*name), placeOf(line, *file, read, *name),
                           repeatedMessage(file->format(), *name),
                           {{placeOf(line, *file, *first->second, *name), "the first one"}});
            }
        }
    }
    groups.report(reporter);
}

constexpr Rule kRules[] = {
        {"unknown-country", Severity::ERROR,
         "a country list or map has a name that the service does not know",
         "In a list the name silently becomes the first country, ANDORRA: the menu offers it, and "
         "a "
         "customer who chooses it gets its channels, and the set saves it. In a map no set ever "
         "finds the record. Case counts, and blanks and carriage returns belong to the name.",
         "GERMNAY,DE", "GERMANY,DE", checkNames},
        {"lost-country", Severity::WARNING, "a line of a country list has two countries",
         "Only the text before the first comma counts.", "GERMANY,SWEDEN", "GERMANY,DE\nSWEDEN,SE",
         checkLost},
        {"repeated-country", Severity::WARNING, "a country stands twice in one list or map",
         "A list offers the country twice. Of two records in a country map the first one counts, "
         "of two blocks in the map of channel plans the last one, so that a change of the other "
         "has "
         "no effect.",
         "GERMANY,DE\nSWEDEN,SE\nGERMANY,DE", "GERMANY,DE\nSWEDEN,SE", checkRepeated},
};

}  // namespace

RuleFamily countries() {
    return {"countries", "Names of countries", kRules, std::size(kRules)};
}

}  // namespace mlk::tree
