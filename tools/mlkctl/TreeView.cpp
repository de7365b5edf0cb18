#include "tools/mlkctl/TreeView.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <nlohmann/json.hpp>
#include <ostream>
#include <string_view>

#include "tools/common/ChildProcess.h"
#include "tools/common/Text.h"

namespace mlk::ctl {

namespace {

using Clock = std::chrono::steady_clock;

constexpr const char* kProgram = "mlktree";
constexpr size_t kMostBytes = size_t{16} << 20U;  // of the answer
constexpr size_t kMostLines = 100;                // of a fact

bool isProgram(const std::string& path) {
    return access(path.c_str(), X_OK) == 0;
}

// The folder of this program, with a slash at its end; empty if it is unknown.
std::string ownFolder() {
    char path[PATH_MAX];
    const ssize_t size = readlink("/proc/self/exe", path, sizeof(path));
    const std::string_view text(path, size > 0 ? static_cast<size_t>(size) : 0);
    const size_t slash = text.rfind('/');
    return slash == std::string_view::npos ? "" : std::string(text.substr(0, slash + 1));
}

// The folder that holds all three partitions under their names; empty if none does.
std::string treeOf(const Mounts& mounts) {
    std::string tree;
    for (const Mounts::Mount& mount : mounts.all()) {
        const std::string& point = mount.mountPoint;
        if (point.size() <= mount.name.size() ||
            point.compare(point.size() - mount.name.size(), std::string::npos, mount.name) != 0) {
            return "";
        }
        const std::string parent = point.substr(0, point.size() - mount.name.size());
        if (!tree.empty() && tree != parent) {
            return "";
        }
        tree = parent;
    }
    return tree;
}

std::vector<std::string> commandLine(const std::string& program, const Mounts& mounts) {
    std::vector<std::string> words = {program, "show", "--format", "json"};
    const std::string tree = treeOf(mounts);
    if (!tree.empty()) {
        words.insert(words.end(), {"--tree", tree});
        return words;
    }
    for (const Mounts::Mount& mount : mounts.all()) {
        words.insert(words.end(), {"--" + mount.name.substr(1), mount.mountPoint});
    }
    return words;
}

// All that the program prints, up to kMostBytes; nothing if it goes on after the limit.
std::optional<std::string> outputOf(const ChildProcess& child,
                                    std::chrono::duration<double> limit) {
    const auto end = Clock::now() + std::chrono::duration_cast<Clock::duration>(limit);
    std::string text;
    char piece[4096];
    while (text.size() <= kMostBytes) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now());
        pollfd wanted = {child.output(), POLLIN, 0};
        const int64_t wait = std::clamp<int64_t>(left.count(), 0, INT_MAX);
        const int ready = poll(&wanted, 1, static_cast<int>(wait));
        if (ready == 0) {
            return std::nullopt;
        }
        const ssize_t count = ready > 0 ? ::read(child.output(), piece, sizeof(piece)) : -1;
        if (count == 0) {
            break;
        }
        if (count > 0) {
            text.append(piece, static_cast<size_t>(count));
        } else if (errno != EINTR) {
            break;
        }
    }
    return text;
}

std::string counted(int64_t count, const char* what) {
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

}  // namespace

std::optional<TreeView> parseTreeView(const std::string& json) {
    try {
        const nlohmann::json parsed = nlohmann::json::parse(json);
        TreeView view;
        view.errors = parsed.at("findings").at("errors").get<int64_t>();
        view.warnings = parsed.at("findings").at("warnings").get<int64_t>();
        for (const nlohmann::json& one : parsed.at("replaced")) {
            view.replaced.push_back({one.at("group").get<std::string>(),
                                     one.at("key").get<std::string>(), one.at("line").get<size_t>(),
                                     one.at("layer").get<std::string>()});
        }
        return view;
    } catch (const nlohmann::json::exception&) {
        return std::nullopt;
    }
}

std::string findMlktree() {
    std::string beside = ownFolder() + kProgram;
    if (beside.front() == '/' && isProgram(beside)) {
        return beside;
    }
    const char* const variable = getenv("PATH");
    std::string_view folders = variable != nullptr ? variable : "";
    while (!folders.empty()) {
        const std::string_view folder = folders.substr(0, folders.find(':'));
        folders.remove_prefix(std::min(folders.size(), folder.size() + 1));
        std::string path = std::string(folder) + "/" + kProgram;
        // A relative folder of PATH is no place to take a program from.
        if (!folder.empty() && folder.front() == '/' && isProgram(path)) {
            return path;
        }
    }
    return "";
}

std::optional<TreeView> askMlktree(const Mounts& mounts, std::chrono::duration<double> limit,
                                   std::ostream& errors) {
    const bool isReadable =
            !mounts.all().empty() &&
            std::all_of(mounts.all().begin(), mounts.all().end(), [](const Mounts::Mount& mount) {
                return access(mount.mountPoint.c_str(), R_OK | X_OK) == 0;
            });
    const std::string program = isReadable ? findMlktree() : "";
    if (program.empty()) {
        return std::nullopt;
    }
    ChildProcess child({commandLine(program, mounts)});
    if (child.error() != 0) {
        errors << "mlkctl: " << printable(program)
               << " cannot be run: " << std::strerror(child.error()) << std::endl;
        return std::nullopt;
    }
    const std::optional<std::string> text = outputOf(child, limit);
    if (!text) {
        errors << "mlkctl: " << printable(program)
               << " takes longer than --timeout; what it finds in this set is not shown"
               << std::endl;
        return std::nullopt;
    }
    // It has said on standard error why it failed.
    if (text->size() <= kMostBytes && child.wait() != 0) {
        return std::nullopt;
    }
    std::optional<TreeView> view = parseTreeView(*text);
    if (!view) {
        errors << "mlkctl: " << printable(program) << " answers no set; is it of another version?"
               << std::endl;
    }
    return view;
}

void addNotes(const TreeView& view, std::vector<Fact>& facts) {
    for (const TreeView::Replaced& replaced : view.replaced) {
        for (Fact& fact : facts) {
            if (fact.name.group == replaced.group && fact.name.key == replaced.key &&
                replaced.line < kMostLines) {
                fact.notes.resize(std::max(fact.notes.size(), replaced.line + 1));
                fact.notes[replaced.line] = replaced.layer;
            }
        }
    }
}

std::string findingsLine(const TreeView& view) {
    std::string line = view.errors == 0 ? "" : counted(view.errors, "error");
    if (view.warnings != 0) {
        line += (line.empty() ? "" : ", ") + counted(view.warnings, "warning");
    }
    return line.empty() ? "" : line + ": `mlktree check`";
}

}  // namespace mlk::ctl
