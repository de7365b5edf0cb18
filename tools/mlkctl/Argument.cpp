#include "tools/mlkctl/Argument.h"

#include <charconv>
#include <limits>

#include "tools/mlkctl/Failure.h"
#include "tools/mlkctl/Suggest.h"
#include "tools/mlkctl/Text.h"

namespace mlk::ctl {

namespace {

std::vector<std::string_view> namesOf(const NumberNames& names) {
    std::vector<std::string_view> list;
    for (const auto& row : names.rows) list.emplace_back(row.first);
    return list;
}

template <typename... Cases>
struct Overloaded : Cases... {
    using Cases::operator()...;
};
template <typename... Cases>
Overloaded(Cases...) -> Overloaded<Cases...>;

}  // namespace

std::optional<int64_t> numberFrom(std::string_view text) {
    const bool negative = !text.empty() && text.front() == '-';
    if (negative) text.remove_prefix(1);
    int base = 10;
    if (text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) {
        text.remove_prefix(2);
        base = 16;
    }
    // Unsigned, so that a second sign is none; 63 bits are more than any argument has.
    uint64_t number = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number, base);
    if (error != std::errc() || stop != end || number > std::numeric_limits<int64_t>::max())
        return {};
    const auto value = static_cast<int64_t>(number);
    return negative ? -value : value;
}

std::string Word::allowed() const {
    switch (kind) {
        case Kind::TEXT:
            return "a text";
        case Kind::FLAG:
            return "true or false";
        case Kind::NUMBER: {
            const std::string number = "a number from -2147483648 to 2147483647";
            return names.rows.empty() ? number : std::string(names.what) + " or " + number;
        }
        case Kind::ENUMERATOR:
            break;
    }
    std::string list;
    for (const auto& row : names.rows) list += row.first + ", ";
    return list + "or a number of 32 bits";
}

void Argument::refuse(const Word& word) const {
    std::string hint;
    const auto* text = std::get_if<std::string>(&mValue);
    if (text != nullptr && !word.names.rows.empty())
        hint = didYouMean(*text, namesOf(word.names), "");
    throw usage(word.name + " is " + word.allowed() + ", not " + written() + hint);
}

std::string Argument::written() const {
    return std::visit(Overloaded{[](const std::string& text) { return excerpt(text); },
                                 [](int64_t number) { return std::to_string(number); },
                                 [](bool flag) { return std::string(flag ? "true" : "false"); },
                                 [](const OtherNumber& number) {
                                     return printable(number.text.substr(0, 60));
                                 },
                                 [](Null) { return std::string("null"); }},
                      mValue);
}

std::string Argument::toText(const Word& word) const {
    const auto* text = std::get_if<std::string>(&mValue);
    if (text == nullptr) refuse(word);
    return mTyped ? *text : withoutByteEscapes(*text);
}

bool Argument::toFlag(const Word& word) const {
    if (const auto* flag = std::get_if<bool>(&mValue)) return *flag;
    const auto* text = std::get_if<std::string>(&mValue);
    if (mTyped || text == nullptr || (*text != "true" && *text != "false")) refuse(word);
    return *text == "true";
}

std::optional<int64_t> Argument::numberOf(const Word& word) const {
    if (const auto* number = std::get_if<int64_t>(&mValue)) return *number;
    const auto* text = std::get_if<std::string>(&mValue);
    if (text == nullptr) return {};
    for (const auto& [name, number] : word.names.rows) {
        if (name == *text) return number;
    }
    // JSON has numbers of its own; only where a text can be right anyway is one in quotes, too.
    if (mTyped && word.kind != Word::Kind::ENUMERATOR) return {};
    return numberFrom(*text);
}

int64_t Argument::toNumber(const Word& word, int64_t least, int64_t most) const {
    const auto number = numberOf(word);
    if (!number || *number < least || *number > most) refuse(word);
    return *number;
}

}  // namespace mlk::ctl
