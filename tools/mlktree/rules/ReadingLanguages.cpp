// Rules about language lists.

#include <algorithm>
#include <cctype>
#include <iterator>
#include <map>
#include <string>

#include "tools/mlktree/Reporter.h"
#include "tools/mlktree/Texts.h"
#include "tools/mlktree/rules/Families.h"

namespace mlk::tree {

namespace {

// "aaa" for "ger", "Aaaaaa" for "German".
std::string shapeOf(std::string_view name) {
    std::string shape(name);
    for (char& c : shape) {
        const auto byte = static_cast<unsigned char>(c);
        c = std::isupper(byte) != 0 ? 'A' : std::islower(byte) != 0 ? 'a' : c;
    }
    return shape;
}

// The form that nearly all names of a list have; empty if their forms are mixed.
std::string usualShapeOf(const FileLines& list) {
    constexpr size_t kFewest = 4;
    std::map<std::string, size_t> counts;
    size_t all = 0;
    for (const ReadLine& read : list.lines()) {
        if (read.use == LineUse::ITEM) {
            ++counts[shapeOf(read.key)];
            ++all;
        }
    }
    for (const auto& [shape, count] : counts) {
        if (count >= kFewest && count * 4 >= all * 3) {
            return shape;
        }
    }
    return {};
}

bool isSameLetter(char one, char other) {
    return std::tolower(static_cast<unsigned char>(one)) ==
           std::tolower(static_cast<unsigned char>(other));
}

// The language that the line end was lost before, as in "ger,Germaneng,English". Names may end like
// a code, and have commas: the name after the comma has to begin like the code, too.
std::string_view joinedLanguageIn(std::string_view text, const std::string& usual) {
    constexpr size_t kShortest = 3;
    if (usual.size() < kShortest) {
        return {};
    }
    for (size_t comma = text.find(','); comma != std::string_view::npos;) {
        const size_t begin = comma + 1;
        comma = text.find(',', begin);
        if (comma == std::string_view::npos || comma - begin <= usual.size()) {
            continue;
        }
        const std::string_view code = text.substr(comma - usual.size(), usual.size());
        const std::string_view name = text.substr(comma + 1);
        if (shapeOf(code) == usual && name.size() >= code.size() &&
            std::equal(code.begin(), code.end(), name.begin(), isSameLetter)) {
            return code;
        }
    }
    return {};
}

// What is wrong with the name of a language; empty if nothing is.
std::string mistakeIn(const ReadLine& read, const std::string& usual) {
    const std::string_view name = trimmed(read.key);
    if (looksLikeComment(name)) {
        return "a list has no comments: this line counts as a language";
    }
    if (name != read.key && read.key.find('\r') == std::string_view::npos) {
        return quoted(read.key) + " has a blank at an end, which belongs to the name";
    }
    if (usual.empty()) {
        return {};
    }
    if (shapeOf(name) == usual) {
        const std::string_view joined = joinedLanguageIn(read.text, usual);
        return joined.empty() ? ""
                              : "two lines are joined: begin a new line before " + quoted(joined) +
                                        ", which the set does not offer here";
    }
    const size_t comma = read.text.find(',');
    const std::string_view later = comma != std::string_view::npos
                                           ? trimmed(read.text.substr(comma + 1))
                                           : std::string_view();
    if (shapeOf(later.substr(0, later.find(','))) == usual) {
        return "the name of the language stands before the first comma, and " + quoted(name) +
               " stands there instead of " + quoted(later.substr(0, later.find(',')));
    }
    const size_t separator = name.find_first_of(";:=|\t");
    if (comma == std::string_view::npos && separator != std::string_view::npos &&
        shapeOf(trimmed(name.substr(0, separator))) == usual) {
        return "a comma ends the name of a language: the name is " + quoted(name);
    }
    const bool isOtherCode = (name.size() <= usual.size() || read.number == 1) &&
                             name.find_first_not_of(
                                     "abcdefghijklmnopqrstuvwxyz"
                                     "ABCDEFGHIJKLMNOPQRSTUVWXYZ") == std::string_view::npos;
    return isOtherCode ? quoted(name) + " has another form than the other languages of the list"
                       : "";
}

void checkNames(const ProductLine& line, Reporter& reporter) {
    for (const auto& [path, file] : line.files()) {
        if (file->format() != FileFormat::LANGUAGE_LIST) {
            continue;
        }
        const std::string usual = usualShapeOf(*file);
        for (const ReadLine& read : file->lines()) {
            const std::string mistake =
                    read.use == LineUse::ITEM ? mistakeIn(read, usual) : std::string();
            if (!mistake.empty()) {
                reporter.report(placeOf(line, *file, read), mistake);
            }
        }
    }
}

void checkRepeated(const ProductLine& line, Reporter& reporter) {
    for (const auto& [path, file] : line.files()) {
        if (file->format() != FileFormat::LANGUAGE_LIST) {
            continue;
        }
        std::map<std::string_view, const ReadLine*> seen;
        for (const ReadLine& read : file->lines()) {
            if (read.use != LineUse::ITEM) {
                continue;
            }
            const auto [first, isNew] = seen.try_emplace(read.key, &read);
            if (!isNew) {
                reporter.report(placeOf(line, *file, read),
                                quoted(read.key) +
                                        " stands in this list twice, and the set offers it twice",
                                {{placeOf(line, *file, *first->second), "the first one"}});
            }
        }
    }
}

constexpr Rule kRules[] = {
        {"language-name", Severity::WARNING, "a name of a language list is unlike the others",
         "Programs compare names of languages byte by byte: blanks, case and comments belong to "
         "them, and what people read stands after the first comma.",
         "ger,German\nEnglish,eng", "ger,German\neng,English", checkNames},
        {"repeated-language", Severity::WARNING, "a language stands twice in one list",
         "The menu offers it twice.", "ger,German\neng,English\nger,German",
         "ger,German\neng,English", checkRepeated},
};

}  // namespace

RuleFamily languages() {
    return {"languages", "Names of languages", kRules, std::size(kRules)};
}

}  // namespace mlk::tree
