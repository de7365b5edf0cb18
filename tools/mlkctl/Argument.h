#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/mlkctl/MethodDescription.h"

namespace mlk::ctl {

/** Names that a user may write instead of a number, such as those of countries. */
struct NumberNames {
    const char* what = "";  // For messages: "a country's name".
    std::vector<std::pair<std::string, int64_t>> rows = {};
};

/** One word of a call, as a user writes it: its name and its allowed values. */
struct Word {
    enum class Kind { TEXT, NUMBER, FLAG, ENUMERATOR };

    std::string name;  // as help and messages show it: "INDEX"
    Kind kind;
    NumberNames names = {};  // of an ENUMERATOR: all of them; of a NUMBER: optional
    /** The argument that the word is, or is a part of, as the interface declares it. */
    const ArgumentDescription* argument = nullptr;

    /** The allowed values, for a message: "a number, 0 or 1", "a text". */
    std::string allowed() const;
};

/**
 * One argument as the user gave it: a word of the command line, which may be read as any type, or a
 * value of a batch line, whose type JSON fixes.
 */
class Argument {
  public:
    static Argument ofCommandLine(std::string word) { return {Kind::WORD, std::move(word), 0}; }
    static Argument ofText(std::string text) { return {Kind::TEXT, std::move(text), 0}; }
    static Argument ofNumber(int64_t number) { return {Kind::NUMBER, {}, number}; }
    static Argument ofFlag(bool flag) { return {Kind::FLAG, {}, flag ? 1 : 0}; }
    /**
     * A value that no method takes (null, a number with a fraction or of more than 64 bits), as it
     * was written.
     */
    static Argument ofOther(std::string written) { return {Kind::OTHER, std::move(written), 0}; }

    /** Whether the user wrote a text, even if it can be read as another type. */
    bool isText() const { return mKind == Kind::WORD || mKind == Kind::TEXT; }

    /**
     * The value for a word of a call. Throws Failure USAGE, which says what is allowed, if the
     * argument has no such value.
     */
    std::string toText(const Word& word) const;
    bool toFlag(const Word& word) const;
    /** At least `least`, at most `most`; for a word with names, also the number of a name. */
    int64_t toNumber(const Word& word, int64_t least, int64_t most) const;

    /**
     * Why the method does not serve this value, though its type has it: "INDEX 5 is out of its
     * range, 0 or 1". Empty if the value is in the word's range, or the word has none.
     */
    std::string outsideOf(const Word& word) const;

    /** What the user wrote, for a message. */
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

/**
 * Parses a decimal number, or a hexadecimal one after 0x, with an optional minus in front. Returns
 * nothing for any other text and for numbers of more than 64 bits.
 */
std::optional<int64_t> numberFrom(std::string_view text);

}  // namespace mlk::ctl
