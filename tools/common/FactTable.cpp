#include "tools/common/FactTable.h"

#include <algorithm>

#include "tools/common/Overloaded.h"
#include "tools/common/Text.h"
#include "tools/common/Wrap.h"

namespace mlk {

namespace {

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

std::string styled(const Line& line, const FactFrame& frame) {
    const std::string code = codeOf(line.style);
    return frame.styled && !code.empty() ? code + line.text + "\x1b[0m" : line.text;
}

Line shown(const std::string& text, const FactFrame& frame) {
    if (text.empty()) {
        return {"-", Style::FAINT};
    }
    const std::string path = printable(frame.asWritten ? frame.asWritten(text) : text);
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

// The lines of a fact, before they are wrapped; at least one.
Lines linesOf(const Fact& fact, const FactFrame& frame) {
    const auto noted = [&](Line line, size_t at) {
        if (at < fact.notes.size() && !fact.notes[at].empty()) {
            line.text += " (" + fact.notes[at] + ")";
        }
        return line;
    };
    const Line nothing = {"-", Style::FAINT};
    Lines lines;
    std::visit(Overloaded{[&](const NoValue& none) {
                              lines = {{none.why, Style::FAINT}};
                          },
                          [&](const std::string& text) { lines = {noted(shown(text, frame), 0)}; },
                          [&](int32_t number) { lines = {noted({std::to_string(number)}, 0)}; },
                          [&](bool flag) {
                              lines = {noted(flag ? Line{"on"} : Line{"off", Style::FAINT}, 0)};
                          },
                          [&](const Names& names) { lines = {{joinedNames(names.list)}}; },
                          [&](const std::vector<std::string>& list) {
                              for (const std::string& text : list) {
                                  lines.push_back(shown(text, frame));
                              }
                          },
                          [&](const Files& files) {
                              for (size_t i = 0; i < files.size(); ++i) {
                                  const auto& [what, path] = files[i];
                                  if (!path.empty()) {
                                      const Line line = noted(shown(path, frame), i);
                                      lines.push_back({what + ' ' + line.text, line.style});
                                  }
                              }
                          },
                          [&](const Counts& counts) {
                              for (const auto& [what, count] : counts) {
                                  lines.push_back({what + ": " + std::to_string(count)});
                              }
                          }},
               fact.value);
    if (lines.empty() || (lines.size() == 1 && lines[0].text.empty())) {
        lines = {nothing};
    }
    return lines;
}

}  // namespace

std::string factTable(const std::vector<Fact>& facts, const FactFrame& frame) {
    size_t column = 0;
    for (const Fact& fact : facts) {
        column = std::max(column, kIndent + columnsOf(fact.name.label) + 2);
    }
    std::string text;
    std::string group;
    for (const Fact& fact : facts) {
        if (fact.name.group != group) {
            group = fact.name.group;
            text += (text.empty() ? "" : "\n") + styled({group, Style::HEADING}, frame) + '\n';
        }
        std::string label = std::string(kIndent, ' ') + fact.name.label;
        for (const Line& line : linesOf(fact, frame)) {
            for (const std::string& piece : wrapped(line.text, kFactWidth - column, "/,")) {
                label.append(column - columnsOf(label), ' ');
                text += label + styled({piece, line.style}, frame) + '\n';
                label.clear();
            }
        }
    }
    return text;
}

}  // namespace mlk
