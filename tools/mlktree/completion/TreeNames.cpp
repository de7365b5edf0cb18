#include "tools/mlktree/completion/TreeNames.h"

#include <filesystem>
#include <set>
#include <stdexcept>
#include <system_error>

#include "regional/CountryTable.h"
#include "tools/mlktree/OpenTree.h"
#include "tools/mlktree/completion/MatrixWords.h"

namespace mlk::tree {

namespace {

bool isSection(std::string_view name, const std::string& given) {
    return name == given || name == "[" + given + "]";
}

// The name that a line has for a completion of that kind; empty if it has none.
std::string_view nameIn(const FileLines& file, const ReadLine& read, Completion kind,
                        const std::string& section) {
    const bool isItem = read.use == LineUse::ITEM;
    const bool isSound = kind == Completion::SOUND_SECTION || kind == Completion::SOUND_KEY;
    if (kind == Completion::FEATURE) {
        return isItem && file.format() == FileFormat::TV_FEATURES ? read.key : "";
    }
    if (file.format() != (isSound ? FileFormat::AUXILIARY : FileFormat::PROJECT)) {
        return "";
    }
    if (kind == Completion::SECTION || kind == Completion::SOUND_SECTION) {
        return read.use == LineUse::SECTION ? read.section : "";
    }
    return isItem && isSection(read.section, section) ? read.key : "";
}

std::vector<Candidate> namesInLines(const ProductLine& line, Completion kind,
                                    const std::string& section) {
    std::set<std::string_view> names;
    for (const auto& [path, file] : line.files()) {
        for (const ReadLine& read : file->lines()) {
            names.insert(nameIn(*file, read, kind, section));
        }
    }
    std::vector<Candidate> found;
    for (const std::string_view name : names) {
        if (!name.empty()) {
            found.push_back({std::string(name), ""});
        }
    }
    return found;
}

// The files that were read, and those that lines name.
std::vector<Candidate> filesIn(const ProductLine& line) {
    std::set<std::string_view> paths;
    for (const auto& [path, file] : line.files()) {
        paths.insert(path);
    }
    for (const auto& [path, namings] : line.namedPaths()) {
        paths.insert(path);
    }
    std::vector<Candidate> found;
    found.reserve(paths.size());
    for (const std::string_view path : paths) {
        found.push_back({std::string(path), ""});
    }
    return found;
}

std::vector<Candidate> namesIn(const OpenTree& tree, Completion kind, const std::string& section) {
    std::vector<Candidate> found;
    const auto pathOf = [](const FileLines* file) {
        return file != nullptr ? file->path() : std::string();
    };
    switch (kind) {
        case Completion::MODEL:
            for (const Model& model : tree.line().models()) {
                found.push_back({std::to_string(model.index), pathOf(model.file)});
            }
            return found;
        case Completion::BOARD:
            for (const Board& board : tree.line().boards()) {
                found.push_back({board.name, pathOf(board.file)});
            }
            return found;
        case Completion::CUSTOMER:
            for (const Customer& customer : tree.line().customers()) {
                found.push_back({pathOf(customer.file), ""});
            }
            return found;
        case Completion::COUNTRY: {
            const auto names = vendor::morlak::mlkconfigs::V1_0::implementation::countryNames();
            for (const _tv_country country : tree.line().countries()) {
                std::string name;
                if (names.firstNameOf(country, name)) {
                    found.push_back({name, ""});
                }
            }
            return found;
        }
        case Completion::PROPERTY:
            for (const std::string& key : tree.properties().keys()) {
                found.push_back({key + "=", tree.properties().get(key.c_str())});
            }
            return found;
        case Completion::TREE_FILE:
            return filesIn(tree.line());
        case Completion::ROW:
            return matrixWords(rowsOf(*answersOf(tree.line())), section);
        default:
            return namesInLines(tree.line(), kind, section);
    }
}

// TREE of a command line that may be unfinished: its last word that names a tree.
std::string treeWordOf(const Arguments& given) {
    for (auto word = given.words().rbegin(); word != given.words().rend(); ++word) {
        std::error_code error;
        if (std::filesystem::is_directory(std::filesystem::path(*word) / "tvconfigs", error)) {
            return *word;
        }
    }
    return "";
}

}  // namespace

std::vector<Candidate> ReadTreeNames::of(Completion kind, const Arguments& given,
                                         const std::string& section) {
    try {
        return namesIn(
                OpenTree(given, given.has("--tree") ? "" : treeWordOf(given), mEnvironment, {}),
                kind, section);
    } catch (const std::exception&) {
        // No tree, no names: a shell must not be told about it.
        return {};
    }
}

}  // namespace mlk::tree
