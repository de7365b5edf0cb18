#include "tools/mlktree/diff/Change.h"

#include <utility>

#include "tools/mlktree/ShownLine.h"

namespace mlk::tree {

std::string listed(const std::vector<std::string>& names) {
    constexpr size_t kMostListed = 8;
    const auto isNumber = [](const std::string& name) {
        return !name.empty() && name.size() < 9 &&
               name.find_first_not_of("0123456789") == std::string::npos;
    };
    std::vector<std::string> parts;
    size_t hidden = 0;
    for (size_t i = 0; i < names.size();) {
        size_t end = i + 1;
        while (end < names.size() && isNumber(names[end]) && isNumber(names[end - 1]) &&
               std::stol(names[end]) == std::stol(names[end - 1]) + 1) {
            ++end;
        }
        end = end - i > 2 ? end : i + 1;
        if (parts.size() < kMostListed) {
            parts.push_back(shownText(names[i]) +
                            (end - i > 2 ? " to " + shownText(names[end - 1]) : ""));
        } else {
            hidden += end - i;
        }
        i = end;
    }
    std::string text;
    for (const std::string& part : parts) {
        text += (text.empty() ? "" : ", ") + part;
    }
    return text + (hidden > 0 ? " and " + std::to_string(hidden) + " more" : "");
}

namespace {

struct KindRow {
    ChangeKind kind;
    std::string_view name;
    std::string_view title;
};

constexpr KindRow kKinds[] = {
        {ChangeKind::MODEL, "model", "Models"},
        {ChangeKind::BOARD, "board", "Boards"},
        {ChangeKind::CUSTOMER, "customer", "Customer"},
        {ChangeKind::ITEM, "item", "Items"},
        {ChangeKind::FEATURE, "feature", "TV features"},
        {ChangeKind::FRAMEWORK, "framework", "Framework switches"},
        {ChangeKind::DELAY, "delay", "Sound delays"},
        {ChangeKind::AUXILIARY, "auxiliary", "Karaoke, keys, DDC/CI"},
        {ChangeKind::COUNTRY, "country", "Countries"},
        {ChangeKind::LANGUAGE, "language", "Languages"},
        {ChangeKind::PLAN, "plan", "Channel plans"},
        {ChangeKind::FILE, "file", "Files"},
};

const KindRow& rowOf(ChangeKind kind) {
    for (const KindRow& row : kKinds) {
        if (row.kind == kind) {
            return row;
        }
    }
    return kKinds[0];
}

// "2 of tvconfigs/customer_b.ini": the index, and the customer file; empty if the line has only
// one.
std::pair<std::string, std::string> partsOf(const std::string& model) {
    constexpr std::string_view kOf = " of ";
    const size_t end = model.find(kOf);
    return end == std::string::npos
                   ? std::pair(model, std::string())
                   : std::pair(model.substr(0, end), model.substr(end + kOf.size()));
}

// "2, 3", "1 to 3 of tvconfigs/customer_b.ini" or "2 of ..., 2 of ..." for several customers.
std::string listedModels(const std::vector<std::string>& models) {
    const std::string customer = partsOf(models.front()).second;
    std::vector<std::string> indexes;
    for (const std::string& model : models) {
        const auto [index, other] = partsOf(model);
        if (other != customer) {
            return listed(models);
        }
        indexes.push_back(index);
    }
    return listed(indexes) + (customer.empty() ? "" : " of " + shownText(customer));
}

std::string inWords(const SetGroup& group) {
    if (group.isAll()) {
        return "all sets";
    }
    std::string text = group.models.empty() ? "all models"
                                            : (group.models.size() == 1 ? "model " : "models ") +
                                                      listedModels(group.models);
    text += "; ";
    text += group.boards.empty()
                    ? "all boards"
                    : (group.boards.size() == 1 ? "board " : "boards ") + listed(group.boards);
    if (!group.countries.empty()) {
        text += "; " + listed(group.countries);
    }
    return text;
}

}  // namespace

std::string_view nameOf(ChangeKind kind) {
    return rowOf(kind).name;
}

std::string_view titleOf(ChangeKind kind) {
    return rowOf(kind).title;
}

std::string inWords(const std::vector<SetGroup>& groups) {
    constexpr size_t kMostGroups = 8;
    std::string text;
    for (size_t i = 0; i < groups.size() && i < kMostGroups; ++i) {
        text += (i == 0 ? "" : " and ") + inWords(groups[i]);
    }
    return text + (groups.size() > kMostGroups
                           ? " and " + std::to_string(groups.size() - kMostGroups) + " more groups"
                           : "");
}

std::vector<std::string> inSelections(const std::vector<SetGroup>& groups) {
    std::vector<std::string> selections;
    for (const SetGroup& group : groups) {
        std::vector<std::string> made = {""};
        const auto multiply = [&made](const char* part, const std::vector<std::string>& values) {
            if (values.empty()) {
                return;
            }
            std::vector<std::string> all;
            for (const std::string& before : made) {
                for (const std::string& value : values) {
                    std::string& one = all.emplace_back(before);
                    one.append(before.empty() ? "" : ",").append(part).append(value);
                }
            }
            made = std::move(all);
        };
        std::vector<std::string> models;
        for (const std::string& model : group.models) {
            const auto [index, customer] = partsOf(model);
            std::string& one = models.emplace_back(index);
            if (!customer.empty()) {
                one.append(",customer=").append(customer);
            }
        }
        multiply("model=", models);
        multiply("board=", group.boards);
        multiply("country=", group.countries);
        for (std::string& one : made) {
            selections.push_back(one.empty() ? "all" : std::move(one));
        }
    }
    return selections;
}

}  // namespace mlk::tree
