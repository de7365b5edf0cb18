#include "tools/mlkctl/Completing.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <map>
#include <sstream>

#include "tools/mlkctl/Items.h"
#include "tools/mlkctl/PathCandidates.h"
#include "tools/mlkctl/Verb.h"

namespace mlk::ctl {

namespace {

// The first line of each option's text on a page: "  --json  text", or the text in the next line.
std::map<std::string, std::string> optionTexts(const std::string& page) {
    std::map<std::string, std::string> texts;
    std::istringstream lines(page.substr(std::min(page.find("\nOptions:\n"), page.size())));
    std::string name;
    for (std::string line; std::getline(lines, line);) {
        const size_t dashes = line.find("--");
        size_t begin = line.find_first_not_of(' ');
        if (begin == std::string::npos) {
            if (texts.empty()) {
                continue;
            }
            break;
        }
        if (begin == 2 && dashes != std::string::npos) {
            name = line.substr(dashes, line.find_first_of(" ,", dashes) - dashes);
            begin = line.find("  ", dashes);
            begin = begin == std::string::npos ? begin : line.find_first_not_of(' ', begin);
        }
        if (!name.empty() && begin != std::string::npos) {
            texts[name] = line.substr(begin);
            name.clear();
        }
    }
    return texts;
}

Candidates optionCandidates(Verb& verb) {
    CLI::App app;
    app.set_help_flag("-h,--help");
    verb.addOptions(app);
    const auto texts = optionTexts(verb.help());
    Candidates candidates;
    for (const CLI::Option* option : app.get_options()) {
        for (const std::string& name : option->get_lnames()) {
            const auto text = texts.find("--" + name);
            candidates.push_back({"--" + name, text == texts.end() ? "" : text->second});
        }
    }
    return candidates;
}

Candidates verbCandidates(const std::vector<std::unique_ptr<Verb>>& verbs) {
    Candidates candidates;
    for (const auto& verb : verbs) {
        const std::string page = verb->help();
        const size_t begin = page.find(" - ") + 3;
        candidates.push_back(
                {std::string(verb->name()), page.substr(begin, page.find('\n') - begin)});
    }
    candidates.push_back({"--help", "the manual"});
    candidates.push_back({"--version", "the version"});
    return candidates;
}

// Adds what does not stand there yet.
void append(Candidates* all, Candidates more) {
    all->insert(all->end(), std::make_move_iterator(more.begin()),
                std::make_move_iterator(more.end()));
}

// The candidates for the last of a verb's words.
Candidates verbWordCandidates(Verb& verb, const std::vector<std::string>& words,
                              Services& services) {
    const std::string& current = words.back();
    size_t begin = 0;
    bool valueFollows = false;
    bool optionsEnd = false;
    while (begin + 1 < words.size() && !optionsEnd && words[begin].size() > 1 &&
           words[begin].front() == '-') {
        valueFollows = verb.hasValue(words[begin]) && words[begin].find('=') == std::string::npos;
        optionsEnd = words[begin] == "--";
        begin += valueFollows ? 2 : 1;
    }
    if (valueFollows && begin + 1 > words.size()) {
        return {};
    }
    const std::vector<std::string> before(words.begin() + static_cast<std::ptrdiff_t>(begin),
                                          words.end() - 1);
    Candidates candidates;
    if (verb.takesWords()) {
        candidates = verb.candidates({before, current, services});
    }
    if (before.empty() && !optionsEnd) {
        append(&candidates, optionCandidates(verb));
    }
    return candidates;
}

Candidates beginningWith(const std::string& current, Candidates candidates) {
    const auto isOther = [&current](const Candidate& candidate) {
        return candidate.value.rfind(current, 0) != 0;
    };
    candidates.erase(std::remove_if(candidates.begin(), candidates.end(), isOther),
                     candidates.end());
    return candidates;
}

// What the running service has of the project; nothing without a service.
DumpedSet setOf(Services& services) {
    try {
        return parseDump(dumpOf(services));
    } catch (const Failure&) {
        return {};
    }
}

// The countries that the set can be installed in, or all that begin with the current word.
Candidates countryCandidates(const Word& word, const Completing& at) {
    Candidates all;
    Candidates ofSet;
    std::vector<uint32_t> numbers;
    try {
        numbers = countriesOf(at.services);
    } catch (const Failure&) {
        // All of them, then.
    }
    for (const auto& [name, number] : word.names.rows) {
        all.push_back({name, std::to_string(number)});
        if (std::find(numbers.begin(), numbers.end(), static_cast<uint32_t>(number)) !=
            numbers.end()) {
            ofSet.push_back(all.back());
        }
    }
    return beginningWith(at.current, ofSet).empty() ? all : ofSet;
}

Candidates numberCandidates(const Word& word) {
    constexpr int64_t kMost = 16;
    Candidates candidates;
    const ArgumentDescription& argument = *word.argument;
    if (argument.low && argument.high && *argument.high - *argument.low < kMost) {
        for (int64_t number = *argument.low; number <= *argument.high; ++number) {
            candidates.push_back({std::to_string(number), std::string(argument.text)});
        }
    }
    return candidates;
}

}  // namespace

Candidates interfaceCandidates(const std::string& current) {
    Candidates candidates;
    for (const Interface* interface : interfaces()) {
        candidates.push_back({std::string(interface->name), std::string(interface->shortName)});
        candidates.push_back({std::string(interface->shortName), std::string(interface->name)});
        // There are more than a hundred methods.
        if (!current.empty()) {
            append(&candidates, methodCandidates(*interface));
        }
    }
    return candidates;
}

Candidates methodCandidates(const Interface& interface) {
    Candidates candidates;
    for (const Method& method : interface.methods) {
        candidates.push_back({std::string(method.name), std::string(method.description->summary)});
    }
    return candidates;
}

Candidates sectionCandidates(const Method& method, const Completing& at) {
    const DumpedSet set = setOf(at.services);
    const std::vector<DumpedItem>* items = itemsAnsweredBy(method, set);
    if (items == nullptr) {
        return {};
    }
    std::vector<std::string> sections = sectionsOf(*items);
    if (sections.empty()) {
        for (const Method& each : projectInterface().methods) {
            for (const ItemDescription& item : each.description->items) {
                sections.emplace_back(item.section);
            }
        }
    }
    const bool isBracketed = !at.current.empty() && at.current.front() == '[';
    Candidates candidates;
    for (const std::string& section : sections) {
        candidates.push_back({isBracketed || lacksBrackets(section)
                                      ? section
                                      : section.substr(1, section.size() - 2)});
    }
    return candidates;
}

Candidates keyCandidates(const Method& method, const std::string& section, const Completing& at) {
    const DumpedSet set = setOf(at.services);
    const std::vector<DumpedItem>* items = itemsAnsweredBy(method, set);
    Candidates candidates;
    if (items == nullptr) {
        return candidates;
    }
    std::vector<std::string> keys = keysOf(*items, section);
    if (keys.empty() && lacksBrackets(section)) {
        keys = keysOf(*items, '[' + section + ']');
    }
    for (const std::string& key : keys) {
        candidates.push_back({key});
    }
    return candidates;
}

Candidates argumentCandidates(const Method& method, const std::vector<std::string>& before,
                              const Completing& at) {
    if (before.size() >= method.call.words.size()) {
        return {};
    }
    const Word& word = method.call.words[before.size()];
    Candidates candidates;
    switch (word.kind) {
        case Word::Kind::FLAG:
            return {{"true"}, {"false"}};
        case Word::Kind::ENUMERATOR:
            for (const auto& [name, number] : word.names.rows) {
                candidates.push_back({name, std::to_string(number)});
            }
            return candidates;
        case Word::Kind::NUMBER:
            return word.names.rows.empty() ? numberCandidates(word) : countryCandidates(word, at);
        case Word::Kind::TEXT:
            break;
    }
    if (word.name == "CATEGORY") {
        return sectionCandidates(method, at);
    }
    if (word.name == "KEY") {
        return keyCandidates(method, before.back(), at);
    }
    return word.name == "PATH" ? pathCandidates(at) : Candidates();
}

Candidates candidatesFor(const std::vector<std::string>& words, Services& services) {
    if (words.empty()) {
        return {};
    }
    const auto verbs = makeVerbs();
    if (words.size() == 1) {
        return beginningWith(words[0], verbCandidates(verbs));
    }
    for (const auto& verb : verbs) {
        if (verb->name() != words[0]) {
            continue;
        }
        const std::vector<std::string> rest(words.begin() + 1, words.end());
        Candidates candidates = verbWordCandidates(*verb, rest, services);
        // A path may stand for another one, which begins otherwise.
        return standsForPath(words.back(), candidates)
                       ? candidates
                       : beginningWith(words.back(), std::move(candidates));
    }
    return {};
}

}  // namespace mlk::ctl
