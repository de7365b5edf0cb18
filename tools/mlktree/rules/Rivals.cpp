#include "tools/mlktree/rules/Rivals.h"

#include <algorithm>
#include <cctype>
#include <set>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "projectconfigs/KnownItems.h"
#include "tools/mlktree/Texts.h"

namespace mlk::tree {

namespace {

namespace product = vendor::morlak::mlkconfigs::V1_0::implementation;

// The words of a name: "m", "n" and "Width" of "m_nWidth".
std::set<std::string_view> wordsOf(std::string_view name) {
    std::set<std::string_view> words;
    size_t begin = 0;
    for (size_t i = 0; i <= name.size(); ++i) {
        const auto is = [&](int (*test)(int), size_t at) {
            return at < name.size() && test(static_cast<unsigned char>(name[at])) != 0;
        };
        const bool isHump = i > 0 && is(std::islower, i - 1) && is(std::isupper, i);
        if (is(std::isalnum, i) && !isHump) {
            continue;
        }
        if (begin < i) {
            words.insert(name.substr(begin, i - begin));
        }
        begin = isHump ? i : i + 1;
    }
    return words;
}

// How often the names of a line, and their words, are used.
class UsedWords {
  public:
    explicit UsedWords(const ProductLine& line) {
        for (const auto& [path, file] : line.files()) {
            const bool hasNames = file->format() == FileFormat::AUXILIARY ||
                                  file->format() == FileFormat::PROJECT;
            if (hasNames) {
                addFile(*file);
            }
        }
        for (const product::KnownItem& item : product::kKnownItems) {
            mFiles.try_emplace(item.name.category, 0);
            mFiles.try_emplace(item.name.key, 0);
        }
        for (const auto& [name, files] : mFiles) {
            for (const std::string_view word : wordsOf(name)) {
                ++mNames[word];
            }
        }
    }

    size_t filesWith(std::string_view name) const { return valueIn(mFiles, name); }

    // Whether other names have the words that distinguish the name from the other one.
    bool hasUsualWords(std::string_view name, std::string_view other) const {
        const std::set<std::string_view> words = wordsOf(name);
        const std::set<std::string_view> others = wordsOf(other);
        return std::all_of(words.begin(), words.end(), [&](std::string_view word) {
            return others.count(word) > 0 || valueIn(mNames, word) > 1;
        });
    }

  private:
    using Counts = std::unordered_map<std::string_view, size_t>;

    static size_t valueIn(const Counts& counts, std::string_view name) {
        const auto found = counts.find(name);
        return found != counts.end() ? found->second : 0;
    }

    void addFile(const FileLines& file) {
        std::set<std::string_view> names;
        for (const ReadLine& read : file.lines()) {
            if (read.use == LineUse::SECTION) {
                names.insert(read.section);
            } else if (read.use == LineUse::ITEM) {
                names.insert(read.key);
            }
        }
        for (const std::string_view name : names) {
            ++mFiles[name];
        }
    }

    Counts mFiles;  // by name
    Counts mNames;  // by word
};

// Negative if the first name is probably misspelt, positive if the second one is.
int compare(const ProductLine& line, std::string_view first, std::string_view second) {
    const auto& words = line.memo().get<UsedWords>([&] { return UsedWords(line); });
    const size_t files = words.filesWith(first);
    const size_t others = words.filesWith(second);
    if (files != others) {
        return files < others ? -1 : 1;
    }
    return static_cast<int>(words.hasUsualWords(first, second)) -
           static_cast<int>(words.hasUsualWords(second, first));
}

}  // namespace

void reportRivals(const ProductLine& line, Reporter& reporter, const NamedLine& first,
                  const NamedLine& second) {
    const int order = compare(line, first.name, second.name);
    const NamedLine& wrong = order > 0 ? second : first;
    const NamedLine& right = order > 0 ? first : second;
    const Place twin = placeOf(line, *right.file, *right.line, right.name);
    const std::string message =
            order == 0 ? "only this file has " + quoted(wrong.name) + ", and only " + twin.file +
                                 " has " + quoted(right.name) + ": one of them is misspelt"
                       : quoted(wrong.name) + " is probably misspelt: " + twin.file + " has " +
                                 quoted(right.name);
    reporter.report(placeOf(line, *wrong.file, *wrong.line, wrong.name), message,
                    {{twin, "the other name"}});
}

}  // namespace mlk::tree
