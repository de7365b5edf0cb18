#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace mlk::ctl {

/// Names for numbers, where a method's number is one: countries.
struct NumberNames {
    const char* what = "";  ///< For messages: "a country's name".
    std::vector<std::pair<std::string, int64_t>> rows = {};
};

/// What a user writes for one word of a call: its name, and what may stand there.
struct Word {
    enum class Kind { TEXT, NUMBER, FLAG, ENUMERATOR };

    std::string name;  ///< As help and messages show it: "INDEX".
    Kind kind;
    NumberNames names =
            {};  ///< Of an ENUMERATOR all there are; of a NUMBER those that it may have.

    /// What may stand there, for a message: "a number from -2147483648 to 2147483647".
    std::string allowed() const;
};

/// One argument as it came: a word of the command line, which is anything until a method's
/// parameter reads it, or a value of a batch's line, which JSON has given a type.
class Argument {
  public:
    struct Null {};
    /// A number that has a fraction or does not fit into 64 bits, as it was written.
    struct OtherNumber {
        std::string text;
    };
    using Value = std::variant<std::string, int64_t, bool, OtherNumber, Null>;

    static Argument ofCommandLine(std::string word) { return {std::move(word), false}; }
    static Argument ofJson(Value value) { return {std::move(value), true}; }

    /// The value that the word of a call gets; throws Failure USAGE with what would be right when
    /// this is none.
    std::string toText(const Word& word) const;
    bool toFlag(const Word& word) const;
    /// At least `least`, at most `most`; for a word with names, also the number of a name.
    int64_t toNumber(const Word& word, int64_t least, int64_t most) const;

    /// What the user wrote, for a message.
    std::string written() const;

  private:
    Argument(Value value, bool typed) : mValue(std::move(value)), mTyped(typed) {}

    std::optional<int64_t> numberOf(const Word& word) const;
    [[noreturn]] void refuse(const Word& word) const;

    Value mValue;
    bool mTyped;
};

/// The number that a text is, in decimal or with 0x in hexadecimal, a minus in front of either;
/// nothing for any other text and beyond 64 bits.
std::optional<int64_t> numberFrom(std::string_view text);

}  // namespace mlk::ctl
