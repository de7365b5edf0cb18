// Rules about the files that lines name.

#include <dirent.h>
#include <strings.h>

#include <iterator>
#include <memory>
#include <optional>

#include "common/Paths.h"
#include "tools/mlktree/Reporter.h"
#include "tools/mlktree/rules/Families.h"
#include "tools/mlktree/rules/Regional.h"

namespace mlk::tree {

namespace {

using vendor::morlak::mlkconfigs::V1_0::implementation::fileNameOf;
using vendor::morlak::mlkconfigs::V1_0::implementation::pathExists;

// The path that exists and differs from this one in the case of letters only.
std::optional<std::string> inAnotherCase(const std::string& host) {
    std::string found = host.front() == '/' ? "" : ".";
    size_t at = 0;
    while (at < host.size()) {
        const size_t begin = host.find_first_not_of('/', at);
        if (begin == std::string::npos) {
            break;
        }
        const size_t end = std::min(host.find('/', begin), host.size());
        const std::string part = host.substr(begin, end - begin);
        at = end;
        if (pathExists(found + "/" + part)) {
            found += "/" + part;
            continue;
        }
        const std::unique_ptr<DIR, int (*)(DIR*)> folder(
                opendir(found.empty() ? "/" : found.c_str()), closedir);
        std::string match;
        for (const dirent* entry = nullptr;
             folder != nullptr && (entry = readdir(folder.get())) != nullptr;) {
            if (strcasecmp(entry->d_name, part.c_str()) == 0) {
                match = entry->d_name;
                break;
            }
        }
        if (match.empty()) {
            return std::nullopt;
        }
        found += "/" + match;
    }
    return found;
}

void checkMissingFiles(const ProductLine& line, Reporter& reporter) {
    for (const auto& [path, namings] : line.namedPaths()) {
        const std::string host = line.tree().host(path);
        if (pathExists(host)) {
            continue;
        }
        const std::optional<std::string> other = inAnotherCase(host);
        for (const Naming& naming : namings) {
            if (naming.file == nullptr || hasBlankInElement(*naming.line)) {
                continue;
            }
            std::string message = "there is no file " + std::string(naming.line->value);
            if (other) {
                message += "; case counts, and there is " + line.tree().written(*other);
            }
            reporter.report(placeOf(line, *naming.file, *naming.line, naming.line->value),
                            std::move(message));
        }
    }
}

constexpr Rule kRules[] = {
        {"missing-file", Severity::ERROR, "a line names a file that does not exist",
         "The service goes on without the file's content: sound delays are 0, lists and plans are "
         "empty, and clients get a path that leads nowhere.",
         "[AUDIO]\nAUDIO_CONFIG_PATH = /tvconfigs/audio/Panel.ini      (the file is panel.ini)",
         "[AUDIO]\nAUDIO_CONFIG_PATH = /tvconfigs/audio/panel.ini", checkMissingFiles},
};

}  // namespace

RuleFamily paths() {
    return {"paths", "Files that lines name", kRules, std::size(kRules)};
}

}  // namespace mlk::tree
