#include "tools/common/Json.h"
#include "tools/common/Table.h"
#include "tools/common/Wrap.h"
#include "tools/mlktree/CommonOptions.h"
#include "tools/mlktree/Help.h"
#include "tools/mlktree/Rule.h"
#include "tools/mlktree/Tree.h"

namespace mlk::tree {

namespace {

std::string indented(std::string_view text) {
    std::string out;
    while (!text.empty()) {
        const size_t end = std::min(text.find('\n'), text.size());
        out += "    " + std::string(text.substr(0, end)) + "\n";
        text.remove_prefix(std::min(text.size(), end + 1));
    }
    return out;
}

// What to write so that one place may break the rule.
std::string adviceToAllow(const RuleFamily& family, const Rule& rule) {
    const std::string allow = "mlktree: allow " + std::string(rule.name) + " REASON";
    const std::string table = "    [[allow]]\n    rule = \"" + std::string(rule.name) +
                              "\"\n    files = \"FILE\"\n    reason = \"REASON\"\n";
    if (family.name == kAllowingFamily) {
        // No comment allows a finding about comments.
        return "\nTo allow it in one place, write into mlktree.toml:\n\n" + table;
    }
    return "\nTo allow it in one place, write a comment above the line:\n\n" +
           aligned({{"    .ini, TV features", "# " + allow},
                    {"    channel plans", "// " + allow},
                    {"    XML", "<!-- " + allow + " -->"}}) +
           "\nLists, identity files and properties hold no comment; for them, write into\n"
           "mlktree.toml:\n\n" +
           table;
}

std::string pageOf(const RuleFamily& family, const Rule& rule) {
    return std::string(rule.name) + " - " + std::string(rule.summary) + "\n\n" +
           "Severity: " + std::string(nameOf(rule.severity)) +
           "\nFamily:   " + std::string(family.title) + "\n\n" +
           paragraph("", rule.why, 0, kHelpWidth) + "\nBreaks the rule:\n\n" + indented(rule.bad) +
           "\nDoes not:\n\n" + indented(rule.good) + adviceToAllow(family, rule);
}

std::string catalogue() {
    Table rows;
    std::string title;
    std::string text;
    const auto print = [&] {
        text += aligned(rows);
        rows.clear();
    };
    for (const RuleFamily& family : ruleFamilies()) {
        if (family.title != title) {
            print();
            text += (title.empty() ? "" : "\n") + std::string(family.title) + "\n";
            title = family.title;
        }
        for (size_t i = 0; i < family.count; ++i) {
            const Rule& rule = family.rules[i];
            rows.push_back({"  " + std::string(rule.name), std::string(nameOf(rule.severity)),
                            std::string(rule.summary)});
        }
    }
    print();
    return text;
}

std::string jsonOf(const RuleFamily& family, const Rule& rule) {
    return JsonObject()
            .text("rule", rule.name)
            .text("family", family.name)
            .text("severity", nameOf(rule.severity))
            .text("summary", rule.summary)
            .text("why", rule.why)
            .text("bad", rule.bad)
            .text("good", rule.good)
            .str();
}

std::string jsonOfAll() {
    std::vector<std::string> all;
    for (const RuleFamily& family : ruleFamilies()) {
        for (size_t i = 0; i < family.count; ++i) {
            all.push_back(jsonOf(family, family.rules[i]));
        }
    }
    return jsonLines(all) + "\n";
}

ExitStatus run(const Arguments& arguments, Environment& environment) {
    const bool isJson = arguments.value("--format") == "json";
    if (arguments.words().empty()) {
        environment.output.write(isJson ? jsonOfAll() : catalogue());
        return ExitStatus::NOTHING_FOUND;
    }
    const std::string& name = arguments.words().front();
    const RuleFamily* const family = familyOf(name);
    if (family == nullptr) {
        throw UsageError(noRule(name));
    }
    const Rule* const rule = findRule(name);
    environment.output.write(isJson ? jsonOf(*family, *rule) + "\n" : pageOf(*family, *rule));
    return ExitStatus::NOTHING_FOUND;
}

std::vector<Completion> ruleWord(const std::vector<std::string>& /* before */) {
    return {Completion::RULE};
}

}  // namespace

Command rulesCommand() {
    Command command;
    command.name = "rules";
    command.words = {"[RULE]"};
    command.summary = "lists the rules of check, or explains one of them";
    command.description =
            "Without a rule: the name of each, its severity, and what it finds. With one: why it "
            "matters, an example that breaks it, and one that does not.";
    command.groups = {{"Options", {formatOption({"text", "json"})}}};
    command.statuses = {{0, "done"}, {2, "there is no such rule, or the command line is wrong"}};
    command.examples = {
            {"mlktree rules", "what check looks for"},
            {"mlktree rules missing-file", "one rule in full"},
            {"mlktree rules --format json", "all of them for a program"},
    };
    command.mostWords = 1;
    command.nextWord = ruleWord;
    command.run = run;
    return command;
}

}  // namespace mlk::tree
