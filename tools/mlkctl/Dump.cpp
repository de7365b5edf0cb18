#include "tools/mlkctl/Dump.h"

#include <cutils/native_handle.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <memory>
#include <new>
#include <optional>
#include <system_error>

namespace mlk::ctl {

namespace {

using ::android::base::unique_fd;

[[noreturn]] void throwErrno(const char* what) {
    throw std::system_error(errno, std::generic_category(), what);
}

// The death of a reader cannot kill a service that writes here.
unique_fd memoryFile() {
    unique_fd file(memfd_create("mlkctl-dump", MFD_CLOEXEC));
    if (!file.ok()) {
        throwErrno("a file in memory");
    }
    return file;
}

void askForDump(IBase& object, int file) {
    native_handle_t* native = native_handle_create(1, 0);
    if (native == nullptr) {
        throw std::bad_alloc();
    }
    native->data[0] = dup(file);
    ::android::hardware::hidl_handle handle;
    handle.setTo(native, true);
    if (native->data[0] < 0) {
        throwErrno("a descriptor");
    }
    checkOutcome(object.debug(handle, {}), true);
}

std::string textIn(const unique_fd& file) {
    std::string text;
    std::array<char, 64UL * 1024> piece;
    while (true) {
        // The position of the descriptor is where the service stopped writing.
        const ssize_t got = TEMP_FAILURE_RETRY(
                pread(file.get(), piece.data(), piece.size(), static_cast<off_t>(text.size())));
        if (got < 0) {
            throwErrno("the dump");
        }
        if (got == 0) {
            return text;
        }
        text.append(piece.data(), static_cast<size_t>(got));
    }
}

// The text after a label, or nothing if the line does not begin with it.
std::optional<std::string> after(std::string_view line, std::string_view label) {
    if (line.substr(0, label.size()) != label) {
        return {};
    }
    return std::string(line.substr(label.size()));
}

// An item's line without its blanks: "[SECTION]:KEY=VALUE".
std::optional<DumpedItem> itemFrom(std::string_view line) {
    const size_t end = line.find("]:");
    if (line.empty() || line.front() != '[' || end == std::string_view::npos) {
        return {};
    }
    const std::string_view rest = line.substr(end + 2);
    const size_t equals = rest.find('=');
    if (equals == std::string_view::npos) {
        return {};
    }
    return DumpedItem{std::string(line.substr(0, end + 1)), std::string(rest.substr(0, equals)),
                      std::string(rest.substr(equals + 1))};
}

void addOnce(std::vector<std::string>* list, const std::string& text) {
    if (std::find(list->begin(), list->end(), text) == list->end()) {
        list->push_back(text);
    }
}

}  // namespace

unique_fd dumpInto(Services& services) {
    // Shared with the question, which may outlive this call.
    const auto file = std::make_shared<unique_fd>(memoryFile());
    services.ask(projectInterface(), [file](IBase& object) {
        askForDump(object, file->get());
        return true;
    });
    return std::move(*file);
}

std::string dumpOf(Services& services) {
    return textIn(dumpInto(services));
}

DumpedSet dumpedSet(IBase& project) {
    const unique_fd file = memoryFile();
    askForDump(project, file.get());
    return parseDump(textIn(file));
}

DumpedSet parseDump(std::string_view dump) {
    DumpedSet set;
    std::vector<DumpedItem>* items = &set.items;
    while (!dump.empty()) {
        const size_t end = std::min(dump.find('\n'), dump.size());
        std::string_view line = dump.substr(0, end);
        dump.remove_prefix(std::min(end + 1, dump.size()));
        line.remove_prefix(std::min(line.find_first_not_of(' '), line.size()));
        if (auto item = itemFrom(line)) {
            items->push_back(std::move(*item));
        } else if (line.rfind("Audio configuration file:", 0) == 0) {
            items = &set.audioItems;
        } else if (auto index = after(line, "Project ID: ")) {
            set.projectId = std::move(*index);
        } else if (auto system = after(line, "Sys ini file: ")) {
            set.systemFile = std::move(*system);
        } else if (auto project = after(line, "Project ini file: ")) {
            set.projectFile = std::move(*project);
        } else if (auto board = after(line, "Board ini file: ")) {
            set.boardFile = std::move(*board);
        }
    }
    return set;
}

std::vector<std::string> sectionsOf(const std::vector<DumpedItem>& items) {
    std::vector<std::string> sections;
    for (const DumpedItem& item : items) {
        addOnce(&sections, item.section);
    }
    return sections;
}

std::vector<std::string> keysOf(const std::vector<DumpedItem>& items, std::string_view section) {
    std::vector<std::string> keys;
    for (const DumpedItem& item : items) {
        if (item.section == section) {
            addOnce(&keys, item.key);
        }
    }
    return keys;
}

}  // namespace mlk::ctl
