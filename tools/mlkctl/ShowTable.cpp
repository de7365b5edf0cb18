#include "tools/mlkctl/ShowTable.h"

#include <algorithm>

#include "tools/common/Text.h"
#include "tools/common/Wrap.h"
#include "tools/mlkctl/Overloaded.h"

namespace mlk::ctl {

namespace {

constexpr size_t kWidth = 60;
constexpr size_t kIndent = 2;  // of a label

enum class Style { PLAIN, HEADING, FAINT, WARNING };

struct Line {
    std::string text;
    Style style = Style::PLAIN;
};
using Lines = std::vector<Line>;

// The codes that switch a style on.
const char* codeOf(Style style) {
    switch (style) {
        case Style::HEADING:
            return "\x1b[1m";
        case Style::FAINT:
            return "\x1b[2m";
        case Style::WARNING:
            return "\x1b[31m";
        case Style::PLAIN:
            break;
    }
    return "";
}

std::string styled(const Line& line, const ShowFrame& frame) {
    const std::string code = codeOf(line.style);
    return frame.styled && !code.empty() ? code + line.text + "\x1b[0m" : line.text;
}

bool isPath(const std::string& text) {
    return !text.empty() && text.front() == '/';
}

Line shown(const std::string& text, const ShowFrame& frame) {
    if (text.empty()) {
        return {"-", Style::FAINT};
    }
    const std::string path = printable(frame.mounts.asWritten(text));
    if (frame.missing.count(text) != 0) {
        return {path + " (missing)", Style::WARNING};
    }
    return {path};
}

// Texts that are short enough to stand side by side.
std::string joinedNames(const std::vector<std::string>& names) {
    std::string line;
    for (const std::string& name : names) {
        line += (line.empty() ? "" : ", ") + (name.empty() ? "-" : printable(name));
    }
    return line;
}

// The lines of a value, before they are wrapped; at least one.
Lines linesOf(const ShowValue& value, const ShowFrame& frame) {
    const Line nothing = {"-", Style::FAINT};
    Lines lines;
    std::visit(Overloaded{[&](const NoValue& none) {
                              lines = {{none.why, Style::FAINT}};
                          },
                          [&](const std::string& text) { lines = {shown(text, frame)}; },
                          [&](int32_t number) { lines = {{std::to_string(number)}}; },
                          [&](bool flag) {
                              lines = {flag ? Line{"on"} : Line{"off", Style::FAINT}};
                          },
                          [&](const Names& names) { lines = {{joinedNames(names.list)}}; },
                          [&](const std::vector<std::string>& list) {
                              for (const std::string& text : list) {
                                  lines.push_back(shown(text, frame));
                              }
                          },
                          [&](const Files& files) {
                              for (const auto& [what, path] : files) {
                                  if (!path.empty()) {
                                      const Line line = shown(path, frame);
                                      lines.push_back({what + ' ' + line.text, line.style});
                                  }
                              }
                          },
                          [&](const Counts& counts) {
                              for (const auto& [what, count] : counts) {
                                  lines.push_back({what + ": " + std::to_string(count)});
                              }
                          }},
               value);
    if (lines.empty() || (lines.size() == 1 && lines[0].text.empty())) {
        lines = {nothing};
    }
    return lines;
}

}  // namespace

std::string showTable(const std::vector<ShowValue>& answers, const ShowFrame& frame) {
    const std::vector<ShowRow>& rows = showRows();
    size_t column = 0;
    for (const ShowRow& row : rows) {
        column = std::max(column, kIndent + columnsOf(row.label) + 2);
    }
    std::string text;
    for (size_t i = 0; i < answers.size(); ++i) {
        if (i == 0 || rows[i].group != rows[i - 1].group) {
            text += (i == 0 ? "" : "\n") + styled({rows[i].group, Style::HEADING}, frame) + '\n';
        }
        std::string label = std::string(kIndent, ' ') + rows[i].label;
        for (const Line& line : linesOf(answers[i], frame)) {
            for (const std::string& piece : wrapped(line.text, kWidth - column, "/,")) {
                label.append(column - columnsOf(label), ' ');
                text += label + styled({piece, line.style}, frame) + '\n';
                label.clear();
            }
        }
    }
    return text;
}

std::set<std::string> pathsIn(const std::vector<ShowValue>& answers) {
    std::set<std::string> paths;
    const auto add = [&paths](const std::string& text) {
        if (isPath(text)) {
            paths.insert(text);
        }
    };
    for (const ShowValue& answer : answers) {
        if (const auto* text = std::get_if<std::string>(&answer)) {
            add(*text);
        } else if (const auto* list = std::get_if<std::vector<std::string>>(&answer)) {
            std::for_each(list->begin(), list->end(), add);
        } else if (const auto* files = std::get_if<Files>(&answer)) {
            for (const auto& file : *files) {
                add(file.second);
            }
        }
    }
    return paths;
}

}  // namespace mlk::ctl
