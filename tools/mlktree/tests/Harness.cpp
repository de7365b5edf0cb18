#include "tools/mlktree/tests/Harness.h"

#include <fcntl.h>
#include <unistd.h>

#include <filesystem>
#include <map>
#include <memory>
#include <sstream>

#include "host/testing/Process.h"
#include "tools/mlktree/CommandLine.h"

namespace mlk::tree {

Outcome runMlktree(const std::vector<std::string>& words, const std::string& root) {
    const mlk::testing::TempDir dir;
    const std::string path = dir.write("out", "");
    const int descriptor = open(path.c_str(), O_WRONLY | O_CLOEXEC);
    std::ostringstream errors;
    Output output(descriptor);
    Environment environment{output, errors, false, root, false};
    const ExitStatus status = runCommandLine(words, environment);
    close(descriptor);
    return {static_cast<int>(status), dir.read("out"), errors.str()};
}

void copySoundTree(const mlk::testing::TempDir& dir) {
    std::filesystem::copy(mlk::testing::sourceDir() + "/tools/mlktree/tests/rules/base", dir.path(),
                          std::filesystem::copy_options::recursive);
    const std::string path = "tvconfigs/tvsysmap/systems.xml";
    std::string systems = dir.read(path);
    systems.insert(systems.find("<Item "),
                   "<!-- mlktree: allow country-replaces the base has one of each kind -->\n");
    dir.write(path, systems);
}

Finding finding(const std::string& rule, Severity severity, const Place& place,
                const std::string& message) {
    return {rule, severity, place, message, {"all"}, {}};
}

LineOf linesOf(const std::vector<std::pair<std::string, std::string>>& files) {
    const auto lines = std::make_shared<std::map<std::pair<std::string, size_t>, std::string>>();
    for (const auto& [file, text] : files) {
        std::istringstream stream(text);
        size_t number = 0;
        for (std::string line; std::getline(stream, line);) {
            (*lines)[{file, ++number}] = line;
        }
    }
    return [lines](const std::string& file, size_t line) {
        const auto found = lines->find({file, line});
        return found != lines->end() ? std::string_view(found->second) : std::string_view();
    };
}

std::string printed(Format format, const CheckReport& report, const FormatContext& context) {
    std::string text;
    format(report, context, [&](std::string_view piece) { text += piece; });
    return text;
}

}  // namespace mlk::tree
