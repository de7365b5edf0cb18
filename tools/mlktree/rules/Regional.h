#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tools/mlktree/ProductLine.h"

namespace mlk::tree {

/**
 * What a text has at its ends that does not belong there: "a carriage return at its end"; empty if
 * there is nothing.
 */
std::string flawAtEnds(std::string_view text);

/** True if a country list has any line that counts. */
bool hasCountries(const FileLines& list);

/** True for an element of an XML file whose text has blanks at its ends: a rule reports them. */
bool hasBlankInElement(const ReadLine& read);

/**
 * True if a TV system file names the country map of another one: none of the TV systems of the map
 * is defined here, nor nearly.
 */
bool namesOtherMap(const TvSystemFiles& files);

/** The files that decide together what a country brings; null for one that is not named. */
struct RegionalSet {
    const FileLines* list = nullptr;        /**< of the countries that the menu offers */
    const TvSystemFiles* systems = nullptr; /**< TV systems and country map */
    const PlanFiles* plans = nullptr;
};

/** The different ones of all models and boards. */
std::vector<RegionalSet> regionalSetsOf(const ProductLine& line);

}  // namespace mlk::tree
