// How PieceDiff compares what are no items: features, delays, auxiliary files, lists and plans.

#include <algorithm>
#include <set>

#include "regional/FreqTableParser.h"
#include "tools/mlktree/Texts.h"
#include "tools/mlktree/diff/PieceDiff.h"
#include "tools/mlktree/diff/Sequences.h"

namespace mlk::tree {

namespace product = vendor::morlak::mlkconfigs::V1_0::implementation;

namespace {

constexpr std::string_view kArc = "ARC";

// "E21, 474000 kHz, 8000000 Hz wide, DVBT"
std::string textOf(const AnswerChannel& channel) {
    static const product::NameTable kModulations = product::FreqTableParser::knownModulations();
    std::string modulation = "modulation " + std::to_string(channel.modulation);
    kModulations.firstNameOf(channel.modulation, modulation);
    return (channel.label.empty() ? "" : std::string(channel.label) + ", ") +
           std::to_string(channel.frequency) + " kHz, " + std::to_string(channel.bandwidth) +
           " Hz wide, " + modulation;
}

bool isSame(const AnswerChannel& a, const AnswerChannel& b) {
    return a.channel == b.channel && a.frequency == b.frequency && a.bandwidth == b.bandwidth &&
           a.label == b.label && a.modulation == b.modulation;
}

// The delays with a receiver by their names. A receiver without a file counts as any other.
std::map<uint32_t, const AnswerDelay*> delaysWith(const DelayPiece& piece,
                                                  std::string_view receiver,
                                                  const std::vector<uint32_t>& common) {
    const auto isOf = [&](std::string_view wanted) {
        std::map<uint32_t, const AnswerDelay*> found;
        for (const AnswerDelay& delay : piece) {
            if (delay.receiver == wanted) {
                found[common[delay.name]] = &delay;
            }
        }
        return found;
    };
    const std::map<uint32_t, const AnswerDelay*> own = isOf(receiver);
    return own.empty() && !receiver.empty() ? isOf(kArc) : own;
}

// The place of the summand that makes the difference.
AnswerPlace placeOf(const AnswerDelay& delay, const AnswerDelay* other) {
    AnswerPlace last;
    for (const AnswerSummand& summand : delay.summands) {
        if (!summand.place.isKnown()) {
            continue;
        }
        last = summand.place;
        bool isThere = false;
        for (const AnswerSummand& one :
             other != nullptr ? other->summands : std::vector<AnswerSummand>()) {
            isThere |= one.role == summand.role && one.value == summand.value;
        }
        if (other != nullptr && !isThere) {
            break;
        }
    }
    return last;
}

// For each channel, how many of its number the plan has up to it.
std::vector<size_t> occurrencesIn(const ChannelPiece& plan) {
    std::map<int32_t, size_t> counts;
    std::vector<size_t> occurrences;
    occurrences.reserve(plan.size());
    for (const AnswerChannel& channel : plan) {
        occurrences.push_back(++counts[channel.channel]);
    }
    return occurrences;
}

std::string positionText(size_t position) {
    return "at place " + std::to_string(position + 1);
}

}  // namespace

void PieceDiff::compareTexts(List& list, ChangeKind kind, const std::string& name,
                             const AnswerEntry& a, const AnswerEntry& b) {
    if (a.text == b.text) {
        return;
    }
    Change change;
    change.kind = kind;
    change.name = name;
    if (!a.text.empty()) {
        change.a = sideOf(mA, a.text, a.place);
    }
    if (!b.text.empty()) {
        change.b = sideOf(mB, b.text, b.place);
    }
    list.push_back(numberOf(std::move(change)));
}

void PieceDiff::compareLists(List& list, ChangeKind kind, const std::string& prefix,
                             const ListPiece& a, const ListPiece& b) {
    const auto textsOf = [](const ListPiece& piece) {
        std::vector<std::string> texts;
        for (const AnswerEntry& entry : piece) {
            texts.emplace_back(entry.text);
        }
        return texts;
    };
    for (const SequencePair& pair : matchSequences(textsOf(a), textsOf(b))) {
        if (pair.a && pair.b && !pair.isMoved) {
            continue;
        }
        Change change;
        change.kind = kind;
        change.name = prefix + std::string(pair.a ? a[*pair.a].text : b[*pair.b].text);
        if (pair.a) {
            change.a = sideOf(mA, pair.isMoved ? positionText(*pair.a) : a[*pair.a].text,
                              a[*pair.a].place);
        }
        if (pair.b) {
            change.b = sideOf(mB, pair.isMoved ? positionText(*pair.b) : b[*pair.b].text,
                              b[*pair.b].place);
        }
        list.push_back(numberOf(std::move(change)));
    }
}

uint32_t PieceDiff::features(ChangeKind kind, uint32_t a, uint32_t b) {
    const auto [entry, isNew] =
            mPieceLists.try_emplace({std::string(mlk::tree::nameOf(kind)), {a, b}}, kNone);
    if (!isNew) {
        return entry->second;
    }
    std::map<std::string_view, std::pair<const AnswerFeature*, const AnswerFeature*>> both;
    for (const AnswerFeature& feature : mA.featurePiece(a)) {
        both[feature.method].first = &feature;
    }
    for (const AnswerFeature& feature : mB.featurePiece(b)) {
        both[feature.method].second = &feature;
    }
    List list;
    for (const auto& [method, pair] : both) {
        if (pair.first != nullptr && pair.second != nullptr &&
            pair.first->value == pair.second->value) {
            continue;
        }
        Change change;
        change.kind = kind;
        change.name = std::string(method);
        if (pair.first != nullptr) {
            change.a = sideOf(mA, pair.first->value, pair.first->place);
        }
        if (pair.second != nullptr) {
            change.b = sideOf(mB, pair.second->value, pair.second->place);
        }
        list.push_back(numberOf(std::move(change)));
    }
    return entry->second = keep(std::move(list));
}

void PieceDiff::compareDelay(List& list, std::string_view receiver, uint32_t name,
                             const AnswerDelay* a, const AnswerDelay* b) {
    if ((a != nullptr ? a->value : 0) == (b != nullptr ? b->value : 0)) {
        return;
    }
    Change change;
    change.kind = ChangeKind::DELAY;
    change.name = mNameOfA[name] != kNone ? nameOf(mA, mNameOfA[name]) : nameOf(mB, mNameOfB[name]);
    if (!receiver.empty()) {
        change.receiver = receiver;
        change.name += " with " + change.receiver;
    }
    if (a != nullptr) {
        change.a = sideOf(mA, std::to_string(a->value), placeOf(*a, b));
    }
    if (b != nullptr) {
        change.b = sideOf(mB, std::to_string(b->value), placeOf(*b, a));
    }
    list.push_back(numberOf(std::move(change)));
}

uint32_t PieceDiff::delays(uint32_t a, uint32_t b) {
    const auto [entry, isNew] = mPieceLists.try_emplace({"delay", {a, b}}, kNone);
    if (!isNew || (a == b && &mA == &mB)) {
        return entry->second;
    }
    std::set<std::string_view> receivers;
    for (const DelayPiece* const piece : {&mA.delayPiece(a), &mB.delayPiece(b)}) {
        for (const AnswerDelay& delay : *piece) {
            receivers.insert(delay.receiver);
        }
    }
    List list;
    for (const std::string_view receiver : receivers) {
        const auto inA = delaysWith(mA.delayPiece(a), receiver, mToCommonA);
        const auto inB = delaysWith(mB.delayPiece(b), receiver, mToCommonB);
        std::set<uint32_t> names;
        for (const auto* const found : {&inA, &inB}) {
            for (const auto& [name, delay] : *found) {
                names.insert(name);
            }
        }
        for (const uint32_t name : names) {
            const auto ofA = inA.find(name);
            const auto ofB = inB.find(name);
            compareDelay(list, receiver, name, ofA != inA.end() ? ofA->second : nullptr,
                         ofB != inB.end() ? ofB->second : nullptr);
        }
    }
    return entry->second = keep(std::move(list));
}

uint32_t PieceDiff::auxiliary(const char* kind, const char* nothing, uint32_t a, uint32_t b) {
    const auto [entry, isNew] = mPieceLists.try_emplace({kind, {a, b}}, kNone);
    if (!isNew) {
        return entry->second;
    }
    const auto findIn = [](const ItemPiece& piece, uint32_t name) -> const AnswerItem* {
        const auto found = std::lower_bound(
                piece.begin(), piece.end(), name,
                [](const AnswerItem& item, uint32_t number) { return item.name < number; });
        return name != kNone && found != piece.end() && found->name == name ? &*found : nullptr;
    };
    List list;
    for (const uint32_t name : differing(a, b)) {
        const AnswerItem* const inA = findIn(mA.itemPiece(a), mNameOfA[name]);
        const AnswerItem* const inB = findIn(mB.itemPiece(b), mNameOfB[name]);
        // The service answers what it does not know as it answers this.
        if ((inA == nullptr && inB->value == nothing) ||
            (inB == nullptr && inA->value == nothing)) {
            continue;
        }
        Change change;
        change.kind = ChangeKind::AUXILIARY;
        change.name = std::string(kind) + " " +
                      (inA != nullptr ? nameOf(mA, inA->name) : nameOf(mB, inB->name));
        if (inA != nullptr) {
            change.a = sideOf(mA, inA->value, inA->place);
        }
        if (inB != nullptr) {
            change.b = sideOf(mB, inB->value, inB->place);
        }
        list.push_back(numberOf(std::move(change)));
    }
    return entry->second = keep(std::move(list));
}

uint32_t PieceDiff::list(ChangeKind kind, const char* prefix, uint32_t a, uint32_t b) {
    const auto [entry, isNew] =
            mPieceLists.try_emplace({std::string(mlk::tree::nameOf(kind)) + prefix, {a, b}}, kNone);
    if (isNew) {
        List found;
        compareLists(found, kind, prefix, mA.listPiece(a), mB.listPiece(b));
        entry->second = keep(std::move(found));
    }
    return entry->second;
}

uint32_t PieceDiff::plans(uint32_t a, uint32_t b) {
    const auto [entry, isNew] = mPieceLists.try_emplace({"plan", {a, b}}, kNone);
    if (!isNew || (a == b && &mA == &mB)) {
        return entry->second;
    }
    std::map<std::string_view, std::pair<const AnswerPlan*, const AnswerPlan*>> kinds;
    for (const AnswerPlan& plan : mA.planPiece(a)) {
        kinds[plan.kind].first = &plan;
    }
    for (const AnswerPlan& plan : mB.planPiece(b)) {
        kinds[plan.kind].second = &plan;
    }
    List list;
    for (const auto& [kind, plans] : kinds) {
        if (plans.first != nullptr && plans.second != nullptr) {
            comparePlan(list, kind, plans.first->channels, plans.second->channels);
            continue;
        }
        const auto sideOfPlan = [this](const LineAnswers& line, const AnswerPlan& plan) {
            const size_t count = line.channelPiece(plan.channels).size();
            return sideOf(line, counted(count, "channel", "channels"), plan.place);
        };
        Change change;
        change.kind = ChangeKind::PLAN;
        change.name = std::string(kind);
        if (plans.first != nullptr) {
            change.a = sideOfPlan(mA, *plans.first);
        } else {
            change.b = sideOfPlan(mB, *plans.second);
        }
        list.push_back(numberOf(std::move(change)));
    }
    return entry->second = keep(std::move(list));
}

void PieceDiff::comparePlan(List& list, std::string_view kind, uint32_t a, uint32_t b) {
    const ChannelPiece& inA = mA.channelPiece(a);
    const ChannelPiece& inB = mB.channelPiece(b);
    if (std::equal(inA.begin(), inA.end(), inB.begin(), inB.end(), isSame)) {
        return;
    }
    const auto numbersOf = [](const ChannelPiece& piece) {
        std::vector<std::string> numbers;
        for (const AnswerChannel& channel : piece) {
            numbers.push_back(std::to_string(channel.channel));
        }
        return numbers;
    };
    const std::vector<size_t> occurrencesInA = occurrencesIn(inA);
    const std::vector<size_t> occurrencesInB = occurrencesIn(inB);
    for (const SequencePair& pair : matchSequences(numbersOf(inA), numbersOf(inB))) {
        const AnswerChannel& any = pair.a ? inA[*pair.a] : inB[*pair.b];
        // The greater one is that of the plan that has more channels of this number: so each has
        // a name of its own, and the same one if the plans are exchanged.
        const size_t occurrence = std::max(pair.a ? occurrencesInA[*pair.a] : 0,
                                           pair.b ? occurrencesInB[*pair.b] : 0);
        const bool isChanged = pair.a && pair.b && !isSame(inA[*pair.a], inB[*pair.b]);
        if (pair.a && pair.b && !isChanged && !pair.isMoved) {
            continue;
        }
        Change change;
        change.kind = ChangeKind::PLAN;
        change.name = std::string(kind) + " " + std::to_string(any.channel) +
                      (occurrence > 1 ? " (" + std::to_string(occurrence) + ")" : "");
        const auto add = [&](std::optional<ChangeSide>& side, const LineAnswers& line,
                             const ChannelPiece& piece, const std::optional<size_t>& position) {
            if (position) {
                const std::string moved = pair.isMoved ? positionText(*position) : "";
                const std::string text =
                        pair.isMoved && !isChanged
                                ? moved
                                : textOf(piece[*position]) + (moved.empty() ? "" : ", " + moved);
                side = sideOf(line, text, piece[*position].place);
            }
        };
        add(change.a, mA, inA, pair.a);
        add(change.b, mB, inB, pair.b);
        list.push_back(numberOf(std::move(change)));
    }
}

}  // namespace mlk::tree
