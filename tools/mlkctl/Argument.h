#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
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

/// One argument as it came: a word of the command line, which may be read as anything, or a value
/// of a batch's line, which JSON has given a type.
class Argument {
  public:
    static Argument ofCommandLine(std::string word) { return {Kind::WORD, std::move(word), 0}; }
    static Argument ofText(std::string text) { return {Kind::TEXT, std::move(text), 0}; }
    static Argument ofNumber(int64_t number) { return {Kind::NUMBER, {}, number}; }
    static Argument ofFlag(bool flag) { return {Kind::FLAG, {}, flag ? 1 : 0}; }
    /// What no method takes: null, a number with a fraction, one of more than 64 bits; as it was
    /// written.
    static Argument ofOther(std::string written) { return {Kind::OTHER, std::move(written), 0}; }

    /// Whether a text was written, whatever it may be read as.
    bool isText() const { return mKind == Kind::WORD || mKind == Kind::TEXT; }

    /// The value that the word of a call gets; throws Failure USAGE with what would be right when
    /// this is none.
    std::string toText(const Word& word) const;
    bool toFlag(const Word& word) const;
    /// At least `least`, at most `most`; for a word with names, also the number of a name.
    int64_t toNumber(const Word& word, int64_t least, int64_t most) const;

    /// What the user wrote, for a message.
    std::string written() const;

  private:
    enum class Kind { WORD, TEXT, NUMBER, FLAG, OTHER };

    Argument(Kind kind, std::string text, int64_t number)
        : mKind(kind), mText(std::move(text)), mNumber(number) {}

    std::optional<int64_t> numberFor(const Word& word) const;
    [[noreturn]] void refuse(const Word& word) const;

    Kind mKind;
    std::string mText;
    int64_t mNumber;
};

/// The number that a text is, in decimal or with 0x in hexadecimal, a minus in front of either;
/// nothing for any other text and beyond 64 bits.
std::optional<int64_t> numberFrom(std::string_view text);

}  // namespace mlk::ctl
