#include "tools/mlkctl/Describe.h"

#include "tools/common/Wrap.h"

namespace mlk::ctl {

namespace {

constexpr size_t kWidth = 80;

// The words that stand for an argument: one, or category and key.
std::string wordsOf(const Method& method, const ArgumentDescription& argument) {
    std::string out;
    for (const Word& word : method.call.words) {
        if (word.argument == &argument) {
            out += (out.empty() ? "" : " ") + word.name;
        }
    }
    return out;
}

std::string enumeratorsOf(const ArgumentDescription& argument) {
    std::string out;
    for (const Enumerator& each : argument.enumerators) {
        out += (out.empty() ? "" : ", ") + std::string(each.name) + ' ' +
               std::to_string(each.value);
    }
    return out;
}

std::string describeArguments(const Method& method) {
    size_t indent = 0;
    for (const ArgumentDescription& argument : method.description->arguments) {
        indent = std::max(indent, wordsOf(method, argument).size() + 4);
    }
    std::string out;
    for (const ArgumentDescription& argument : method.description->arguments) {
        std::string begin = "  " + wordsOf(method, argument);
        begin.append(indent - begin.size(), ' ');
        std::string text(argument.type);
        if (!argument.range.empty()) {
            text += ", " + std::string(argument.range);
        }
        text += ": " + std::string(argument.text);
        out += paragraph(begin, text, indent, kWidth);
        if (!argument.enumerators.empty()) {
            out += paragraph(std::string(indent, ' '), enumeratorsOf(argument), indent, kWidth);
        }
    }
    return out;
}

template <typename Texts>
std::string listOf(const Texts& texts) {
    std::string out;
    for (const std::string_view text : texts) {
        out += (out.empty() ? "" : ", ") + std::string(text);
    }
    return out;
}

// A labelled fact, with its label in a column of its own.
std::string fact(const std::string& label, const std::string& text) {
    constexpr size_t kColumn = 11;
    return paragraph(label + std::string(kColumn - label.size(), ' '), text, kColumn, kWidth);
}

std::string describeSources(const MethodDescription& description) {
    std::string out;
    for (const ItemDescription& item : description.items) {
        out += fact("Item", std::string(item.section) + ' ' + listOf(item.keys));
    }
    for (const std::string_view property : description.properties) {
        out += fact("Property", std::string(property));
    }
    for (const std::string_view file : description.files) {
        out += fact("File", std::string(file));
    }
    return out;
}

}  // namespace

std::string describeInterfaces() {
    std::string out;
    for (const Interface* interface : interfaces()) {
        out += (out.empty() ? "" : "\n") + std::string(interface->name) + ", or " +
               std::string(interface->shortName) + ": " +
               std::to_string(interface->methods.size()) + " methods\n";
        // The first sentence is the summary.
        const std::string_view summary = interface->summary;
        out += paragraph("  ", summary.substr(0, summary.find(". ") + 1), 2, kWidth);
    }
    return out;
}

std::string describe(const Interface& interface) {
    std::string out = std::string(interface.name) + ", or " + std::string(interface.shortName) +
                      "\n\n" + paragraph("", interface.summary, 0, kWidth) + '\n';
    for (const Method& method : interface.methods) {
        const std::string arguments = synopsis(method);
        out += std::string(method.name) + (arguments.empty() ? "" : " ") + arguments + '\n' +
               paragraph("    ", method.description->summary, 4, kWidth);
    }
    return out;
}

std::string describe(const Interface& interface, const Method& method) {
    const MethodDescription& description = *method.description;
    const std::string arguments = synopsis(method);
    std::string out = std::string(interface.name) + ' ' + std::string(method.name) +
                      (arguments.empty() ? "" : " ") + arguments + "\n\n" +
                      paragraph("", description.summary, 0, kWidth);
    if (!description.details.empty()) {
        out += paragraph("", description.details, 0, kWidth);
    }
    if (!description.arguments.empty()) {
        out += "\nArguments:\n" + describeArguments(method);
    }
    out += '\n' + fact("Answer", std::string(description.resultType) + ": " +
                                         std::string(description.resultText));
    if (!description.noAnswer.empty()) {
        out += fact("No answer", "if " + std::string(description.noAnswer));
    }
    return out + describeSources(description);
}

}  // namespace mlk::ctl
