#include "tools/mlkctl/Argument.h"

#include <charconv>
#include <limits>
#include <system_error>

#include "tools/common/Suggest.h"
#include "tools/common/Text.h"
#include "tools/mlkctl/Failure.h"

namespace mlk::ctl {

namespace {

std::vector<std::string_view> namesOf(const NumberNames& names) {
    std::vector<std::string_view> list;
    for (const auto& row : names.rows) {
        list.emplace_back(row.first);
    }
    return list;
}

// All names, in order: "EDID_1P4, EDID_2P0 or EDID_2P1".
std::string enumeratorsOf(const NumberNames& names) {
    std::string list;
    for (size_t i = 0; i < names.rows.size(); ++i) {
        const bool isLast = i + 1 == names.rows.size();
        list += (i == 0 ? "" : isLast ? " or " : ", ") + names.rows[i].first;
    }
    return list;
}

}  // namespace

std::optional<int64_t> numberFrom(std::string_view text) {
    const bool negative = !text.empty() && text.front() == '-';
    if (negative) {
        text.remove_prefix(1);
    }
    int base = 10;
    if (text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) {
        text.remove_prefix(2);
        base = 16;
    }
    // Unsigned, so that a second sign is refused. No argument has more than 63 bits.
    uint64_t number = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number, base);
    if (error != std::errc() || stop != end || number > std::numeric_limits<int64_t>::max()) {
        return {};
    }
    const auto value = static_cast<int64_t>(number);
    return negative ? -value : value;
}

std::string Word::allowed() const {
    const std::string_view range = argument == nullptr ? std::string_view() : argument->range;
    switch (kind) {
        case Kind::TEXT:
            return range.empty() ? "a text" : "a text of " + std::string(range);
        case Kind::FLAG:
            return "true or false";
        case Kind::NUMBER: {
            const std::string number = "a number from -2147483648 to 2147483647";
            if (!names.rows.empty()) {
                return std::string(names.what) + " or " + number;
            }
            return range.empty() ? number : "a number, " + std::string(range);
        }
        case Kind::ENUMERATOR:
            break;
    }
    std::string list;
    for (const auto& row : names.rows) {
        list += row.first + ", ";
    }
    return list + "or a number of 32 bits";
}

void Argument::refuse(const Word& word) const {
    const bool mayBeName = isText() && !word.names.rows.empty();
    throw usage(word.name + " is " + word.allowed() + ", not " + written() +
                (mayBeName ? didYouMean(mText, namesOf(word.names), "") : ""));
}

std::string Argument::written() const {
    if (isText()) {
        return excerpt(mText);
    }
    if (mKind == Kind::NUMBER) {
        return std::to_string(mNumber);
    }
    if (mKind == Kind::FLAG) {
        return mNumber != 0 ? "true" : "false";
    }
    return mText.substr(0, 60);
}

std::string Argument::toText(const Word& word) const {
    if (!isText()) {
        refuse(word);
    }
    return mKind == Kind::WORD ? withoutByteEscapes(mText) : mText;
}

bool Argument::toFlag(const Word& word) const {
    if (mKind == Kind::FLAG) {
        return mNumber != 0;
    }
    if (mKind != Kind::WORD || (mText != "true" && mText != "false")) {
        refuse(word);
    }
    return mText == "true";
}

std::optional<int64_t> Argument::numberFor(const Word& word) const {
    if (mKind == Kind::NUMBER) {
        return mNumber;
    }
    if (!isText()) {
        return {};
    }
    for (const auto& [name, number] : word.names.rows) {
        if (name == mText) {
            return number;
        }
    }
    // JSON has numbers: a number in quotes is accepted only for a word that also takes a text.
    if (mKind == Kind::TEXT && word.kind != Word::Kind::ENUMERATOR) {
        return {};
    }
    return numberFrom(mText);
}

std::string Argument::outsideOf(const Word& word) const {
    if (word.argument == nullptr) {
        return {};
    }
    const ArgumentDescription& argument = *word.argument;
    if (word.kind == Word::Kind::TEXT) {
        if (!isText() || !argument.high) {
            return {};
        }
        const auto size = static_cast<int64_t>(toText(word).size());
        return size <= *argument.high ? std::string()
                                      : word.name + " of " + std::to_string(size) +
                                                " bytes is too long: " + word.allowed();
    }
    const auto number = numberFor(word);
    if (!number || word.kind == Word::Kind::FLAG) {
        return {};
    }
    const std::string given = word.name + ' ' + std::to_string(*number);
    if (!word.names.rows.empty()) {
        for (const auto& row : word.names.rows) {
            if (row.second == *number) {
                return {};
            }
        }
        if (word.kind == Word::Kind::NUMBER) {
            return given + ": no country has this number";
        }
        constexpr size_t kMostNames = 6;
        return given + (word.names.rows.size() <= kMostNames
                                ? " is not " + enumeratorsOf(word.names)
                                : ": no enumerator has this number");
    }
    const bool isInside = (!argument.low || *number >= *argument.low) &&
                          (!argument.high || *number <= *argument.high);
    return isInside ? std::string()
                    : given + " is out of its range, " + std::string(argument.range);
}

int64_t Argument::toNumber(const Word& word, int64_t least, int64_t most) const {
    const auto number = numberFor(word);
    if (!number || *number < least || *number > most) {
        refuse(word);
    }
    return *number;
}

}  // namespace mlk::ctl
