#include "tools/mlkctl/Items.h"

#include <vendor/morlak/mlkconfigs/1.0/IMlkProjectConfigs.h>

#include <algorithm>

#include "tools/common/Suggest.h"
#include "tools/common/Text.h"
#include "tools/mlkctl/Ask.h"

namespace mlk::ctl {

namespace {

using V1_0::IMlkProjectConfigs;

bool has(const std::vector<std::string>& list, const std::string& text) {
    return std::find(list.begin(), list.end(), text) != list.end();
}

std::string meant(const std::string& word, const std::vector<std::string>& names) {
    return didYouMean(word, {names.begin(), names.end()}, "");
}

}  // namespace

std::vector<V1_0::ConfigKeyValue> itemsOf(Services& services, const std::string& section) {
    return services.ask(projectInterface(), [section](IBase& object) {
        const auto items =
                ask(object, &IMlkProjectConfigs::getConfigsByCategory, hidl_string(section));
        return std::vector<V1_0::ConfigKeyValue>(items);
    });
}

std::vector<uint32_t> countriesOf(Services& services) {
    return services.ask(projectInterface(), [](IBase& object) {
        return std::vector<uint32_t>(ask(object, &IMlkProjectConfigs::getCountryList));
    });
}

bool lacksBrackets(const std::string& section) {
    return section.empty() || section.front() != '[' || section.back() != ']';
}

std::string sectionMeant(Services& services, const std::string& written) {
    if (!lacksBrackets(written) || !itemsOf(services, written).empty()) {
        return written;
    }
    const std::string bracketed = '[' + written + ']';
    return itemsOf(services, bracketed).empty() ? written : bracketed;
}

std::optional<size_t> sectionWord(const Method& method) {
    const std::vector<Word>& words = method.call.words;
    for (size_t i = 0; i < words.size(); ++i) {
        if (words[i].name == "CATEGORY") {
            return i;
        }
    }
    return {};
}

const std::vector<DumpedItem>* itemsAnsweredBy(const Method& method, const DumpedSet& set) {
    if (method.name == "getConfig" || method.name == "getConfigsByCategory") {
        return &set.items;
    }
    return method.name == "getAudioDelay" ? &set.audioItems : nullptr;
}

std::string missingItem(const std::vector<DumpedItem>& items, const std::string& section,
                        const std::optional<std::string>& key) {
    const std::vector<std::string> sections = sectionsOf(items);
    const std::string bracketed = lacksBrackets(section) ? '[' + section + ']' : section;
    const std::string& found = has(sections, section) ? section : bracketed;
    if (!has(sections, found)) {
        return "there is no section " + excerpt(section) + meant(bracketed, sections);
    }
    if (!key) {
        return {};
    }
    const std::vector<std::string> keys = keysOf(items, found);
    return has(keys, *key) ? std::string()
                           : found + " has no key " + excerpt(*key) + meant(*key, keys);
}

}  // namespace mlk::ctl
