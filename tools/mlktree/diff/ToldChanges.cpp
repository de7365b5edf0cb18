#include "tools/mlktree/diff/ToldChanges.h"

#include <algorithm>
#include <cstdint>
#include <utility>

namespace mlk::tree {

namespace {

constexpr std::string_view kWith = " with ";

// The item of a delay: its name without the receiver.
std::string_view itemOf(const Change& change) {
    const size_t end = change.receiver.empty() ? 0 : kWith.size() + change.receiver.size();
    return std::string_view(change.name).substr(0, change.name.size() - end);
}

// A delay that is not there is 0.
int64_t delayOf(const std::optional<ChangeSide>& side) {
    return side ? std::stoll(side->value) : 0;
}

bool isOfOnePlace(const std::optional<ChangeSide>& one, const std::optional<ChangeSide>& other) {
    return one.has_value() == other.has_value() &&
           (!one || (one->file == other->file && one->line == other->line));
}

bool isOfOneCause(const Change& one, const Change& other) {
    return itemOf(one) == itemOf(other) && isOfOnePlace(one.a, other.a) &&
           isOfOnePlace(one.b, other.b) &&
           delayOf(one.b) - delayOf(one.a) == delayOf(other.b) - delayOf(other.a) &&
           one.sets == other.sets;
}

// What the values become; both values are there on the sides that the change has.
std::string valuesOf(const Change& change) {
    const auto textOf = [](const std::optional<ChangeSide>& side) {
        return side ? side->value : std::string("nothing");
    };
    return textOf(change.a) + " -> " + textOf(change.b);
}

std::vector<std::string> alsoOf(const Change& first, const std::vector<const Change*>& others) {
    std::vector<std::pair<std::string, std::vector<std::string>>> receivers;  // by values
    for (const Change* const other : others) {
        const std::string values = valuesOf(*other);
        const auto known = std::find_if(receivers.begin(), receivers.end(),
                                        [&](const auto& one) { return one.first == values; });
        if (known != receivers.end()) {
            known->second.push_back(other->receiver);
        } else {
            receivers.push_back({values, {other->receiver}});
        }
    }
    std::vector<std::string> also;
    for (const auto& [values, names] : receivers) {
        also.push_back((values == valuesOf(first) ? "the same" : values) + std::string(kWith) +
                       listed(names));
    }
    return also;
}

}  // namespace

std::vector<ToldChange> toldChanges(const Difference& difference) {
    std::vector<ToldChange> told;
    std::vector<std::vector<const Change*>> others;  // by the number in `told`
    size_t firstDelay = 0;
    for (const Change& change : difference.changes) {
        // Delays of one item stand together, the one without a receiver first.
        if (!told.empty() && itemOf(*told[firstDelay].change) != itemOf(change)) {
            firstDelay = told.size();
        }
        const auto begin = told.begin() + static_cast<ptrdiff_t>(firstDelay);
        const auto cause = change.kind != ChangeKind::DELAY
                                   ? told.end()
                                   : std::find_if(begin, told.end(), [&](const ToldChange& one) {
                                         return one.change->kind == ChangeKind::DELAY &&
                                                isOfOneCause(*one.change, change);
                                     });
        if (cause != told.end()) {
            others[static_cast<size_t>(cause - told.begin())].push_back(&change);
        } else {
            told.push_back({&change, {}});
            others.emplace_back();
        }
    }
    for (size_t i = 0; i < told.size(); ++i) {
        told[i].also = alsoOf(*told[i].change, others[i]);
    }
    return told;
}

}  // namespace mlk::tree
