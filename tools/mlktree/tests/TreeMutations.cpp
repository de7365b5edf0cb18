#include "tools/mlktree/tests/TreeMutations.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>

namespace mlk::tree {

namespace {

namespace fs = std::filesystem;

std::string textOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

void write(const std::string& path, const std::string& text) {
    std::ofstream(path, std::ios::binary) << text;
}

// The folder of a file tells what it is; the files at the top of tvconfigs stand for themselves.
std::string kindOf(const fs::path& relative) {
    const std::string folder = relative.parent_path().string();
    const bool isAtTop = folder == "tvconfigs" || folder == "impdata";
    return isAtTop ? relative.filename().string() : folder;
}

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

std::string joinedLines(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines) {
        text += line + "\n";
    }
    return text;
}

}  // namespace

TreeMutations::TreeMutations(std::string root, uint32_t seed)
    : mRoot(std::move(root)), mRandom(seed) {
    std::map<std::string, std::vector<std::string>> kinds;
    for (const auto& entry : fs::recursive_directory_iterator(mRoot)) {
        const fs::path relative = entry.path().lexically_relative(mRoot);
        if (entry.is_regular_file() && relative.has_parent_path()) {
            kinds[kindOf(relative)].push_back(relative.string());
        }
    }
    for (auto& [kind, files] : kinds) {
        std::sort(files.begin(), files.end());
        mKinds.push_back(kind);
        mFiles.push_back(files);
    }
}

size_t TreeMutations::below(size_t bound) {
    return bound == 0 ? 0 : std::uniform_int_distribution<size_t>(0, bound - 1)(mRandom);
}

std::string TreeMutations::changed(const std::string& text, std::string& what) {
    std::vector<std::string> lines = linesOf(text);
    if (lines.empty()) {
        what = "adds a line";
        return text + "x=1\n";
    }
    // Most comments are of no interest.
    size_t at = below(lines.size());
    for (int i = 0; i < 4 && (lines[at].empty() || lines[at][0] == '#' || lines[at][0] == '/');
         ++i) {
        at = below(lines.size());
    }
    const std::string number = " line " + std::to_string(at + 1);
    std::string& line = lines[at];
    const size_t sign = below(line.size());
    switch (below(12)) {
        case 0:
            what = "removes" + number;
            lines.erase(lines.begin() + static_cast<ptrdiff_t>(at));
            break;
        case 1:
            what = "doubles" + number;
            lines.insert(lines.begin() + static_cast<ptrdiff_t>(at), std::string(line));
            break;
        case 2: {
            const size_t other = below(lines.size());
            what = "swaps" + number + " and " + std::to_string(other + 1);
            std::swap(lines[at], lines[other]);
            break;
        }
        case 3:
            what = "adds a comment before" + number;
            lines.insert(lines.begin() + static_cast<ptrdiff_t>(at), "# a comment");
            break;
        case 4:
            what = "adds blanks to" + number;
            line += "   ";
            break;
        case 5:
            what = "makes a comment of" + number;
            line.insert(0, "#");
            break;
        case 6: {
            const size_t digit = line.find_first_of("0123456789");
            what = "changes a digit of" + number;
            if (digit != std::string::npos) {
                line[digit] = static_cast<char>('0' + (line[digit] - '0' + 1) % 10);
            } else {
                line += "7";
            }
            break;
        }
        case 7:
            what = "changes a sign of" + number;
            if (!line.empty()) {
                line[sign] = line[sign] == 'x' ? 'y' : 'x';
            }
            break;
        case 8:
            what = "removes a sign of" + number;
            line.erase(std::min(sign, line.size()), 1);
            break;
        case 9: {
            // The value of another line of the file: mostly another path, or another number.
            const std::string& other = lines[below(lines.size())];
            const size_t equals = line.find('=');
            const size_t from = other.find('=');
            what = "changes the value of" + number;
            if (equals != std::string::npos && from != std::string::npos) {
                line = line.substr(0, equals) + std::string(other.substr(from));
            } else {
                line = other;
            }
            break;
        }
        case 10:
            what = "puts a byte that is no text into" + number;
            line.insert(sign, "\xff");
            break;
        default:
            what = "turns around what is true in" + number;
            for (const auto& [from, to] : {std::pair{"true", "false"}, std::pair{"false", "true"},
                                           std::pair{"=1", "=0"}, std::pair{"=0", "=1"}}) {
                const size_t found = line.find(from);
                if (found != std::string::npos) {
                    line.replace(found, std::string(from).size(), to);
                    break;
                }
            }
            break;
    }
    return joinedLines(lines);
}

std::string TreeMutations::change() {
    const size_t kind = mTurn++ % mKinds.size();
    mKind = mKinds[kind];
    const std::vector<std::string>& files = mFiles[kind];
    const std::string relative = files[below(files.size())];
    mPath = mRoot + "/" + relative;
    mFormer = textOf(mPath);
    std::string what;
    if (below(16) == 0) {
        what = "removes it";
        fs::remove(mPath);
    } else {
        write(mPath, changed(mFormer, what));
    }
    return relative + ": " + what;
}

void TreeMutations::undo() {
    write(mPath, mFormer);
}

}  // namespace mlk::tree
