#include "tools/mlkctl/TimeLimit.h"

#include <CLI/CLI.hpp>

#include <stdexcept>

#include "tools/common/Text.h"

namespace mlk::ctl {

std::optional<double> secondsFrom(const std::string& text) {
    if (text.find_first_not_of("0123456789.") != std::string::npos) {
        return {};
    }
    size_t used = 0;
    try {
        const double seconds = std::stod(text, &used);
        if (used == text.size() && seconds <= 86400) {
            return seconds;
        }
    } catch (const std::logic_error&) {  // no number, or out of range
    }
    return {};
}

std::chrono::duration<double> limitOf(const std::string& seconds) {
    return std::chrono::duration<double>(secondsFrom(seconds).value_or(0));
}

void addTimeout(CLI::App& app, std::string* seconds) {
    const auto problemOf = [](const std::string& text) {
        return secondsFrom(text) ? "" : "SECONDS is a number from 0 to 86400, not " + excerpt(text);
    };
    app.add_option("--timeout", *seconds)
            ->type_name("SECONDS")
            ->check(problemOf)
            ->capture_default_str();
}

}  // namespace mlk::ctl
