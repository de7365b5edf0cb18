#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tools/mlkctl/Dump.h"
#include "tools/mlkctl/Method.h"
#include "tools/mlkctl/Services.h"

/** Sections and keys of the selected project, as the running service has them. */
namespace mlk::ctl {

/** All items of a section. Throws Failure as Services::ask does. */
std::vector<V1_0::ConfigKeyValue> itemsOf(Services& services, const std::string& section);

/** The numbers of the countries that the set can be installed in. Throws as itemsOf does. */
std::vector<uint32_t> countriesOf(Services& services);

/** Whether a section is written without brackets, which most have. */
bool lacksBrackets(const std::string& section);

/**
 * The section that is meant: the one written if the project has it, else the one with brackets if
 * the project has that, else the one written. Throws as itemsOf does.
 */
std::string sectionMeant(Services& services, const std::string& written);

/** The word of a call that takes a section, if the method has one. */
std::optional<size_t> sectionWord(const Method& method);

/** The items that the method answers from: those of the audio files for getAudioDelay. */
const std::vector<DumpedItem>* itemsAnsweredBy(const Method& method, const DumpedSet& set);

/**
 * Says which section or key is missing and which one is probably meant: "there is no section
 * "[LivTV]"; did you mean [LiveTV]?". Without a key it is about the section only. Empty if the item
 * exists.
 */
std::string missingItem(const std::vector<DumpedItem>& items, const std::string& section,
                        const std::optional<std::string>& key);

}  // namespace mlk::ctl
