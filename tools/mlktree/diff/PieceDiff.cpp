#include "tools/mlktree/diff/PieceDiff.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <tuple>

#include "tools/mlktree/answers/NamedFiles.h"
#include "tools/mlktree/diff/Sequences.h"

namespace mlk::tree {

namespace {

// "2048 bytes, 5b1a..."; nothing for a file that is missing.
std::optional<ChangeSide> sideOf(const AnswerFile& file) {
    if (!file.exists) {
        return std::nullopt;
    }
    return ChangeSide{std::to_string(file.size) + " bytes, hash " + hexOf(file.hash), "", 0};
}

std::vector<uint32_t> united(const std::vector<uint32_t>& a, const std::vector<uint32_t>& b) {
    std::vector<uint32_t> all;
    std::set_union(a.begin(), a.end(), b.begin(), b.end(), std::back_inserter(all));
    return all;
}

// The items of each piece that name one of the files.
template <typename Files>
std::vector<std::vector<const AnswerItem*>> namingsIn(const LineAnswers& line, const Files& files) {
    std::vector<std::vector<const AnswerItem*>> namings(line.items.size());
    for (size_t i = 0; i < namings.size() && !files.empty(); ++i) {
        for (const AnswerItem& item : line.items[i]) {
            if (isInPartition(item.value) && files.count(item.value) > 0 &&
                mayNameFile(line.names[item.name])) {
                namings[i].push_back(&item);
            }
        }
    }
    return namings;
}

// The changed files that a set names.
std::set<std::string_view> namedBy(const LineAnswers& line, const AnswerPieces& pieces,
                                   const std::vector<std::vector<const AnswerItem*>>& namings) {
    std::set<std::string_view> paths;
    for (const uint32_t layer : pieces.items) {
        if (layer == kNone) {
            continue;
        }
        for (const AnswerItem* const item : namings[layer]) {
            if (line.item(pieces, item->name) == item) {
                paths.insert(item->value);
            }
        }
    }
    return paths;
}

}  // namespace

PieceDiff::PieceDiff(const LineAnswers& a, const LineAnswers& b)
    : mA(a), mB(b), mToCommonA(a.names.size()), mToCommonB(b.names.size()) {
    const auto key = [](const AnswerName& name) { return std::tie(name.section, name.key); };
    uint32_t inA = 0;
    uint32_t inB = 0;
    while (inA < a.names.size() || inB < b.names.size()) {
        const auto common = static_cast<uint32_t>(mNameOfA.size());
        const bool isOfA = inA < a.names.size() &&
                           (inB >= b.names.size() || !(key(b.names[inB]) < key(a.names[inA])));
        const bool isOfB = inB < b.names.size() &&
                           (inA >= a.names.size() || !(key(a.names[inA]) < key(b.names[inB])));
        mNameOfA.push_back(isOfA ? inA : kNone);
        mNameOfB.push_back(isOfB ? inB : kNone);
        if (isOfA) {
            mToCommonA[inA++] = common;
        }
        if (isOfB) {
            mToCommonB[inB++] = common;
        }
    }
    findChangedFiles();
}

uint32_t PieceDiff::numberOf(Change change) {
    std::string key = std::to_string(static_cast<int>(change.kind)) + '\0' + change.name;
    for (const std::optional<ChangeSide>* const side : {&change.a, &change.b}) {
        key += *side ? std::string("\0+", 2) + (*side)->value : std::string("\0-", 2);
    }
    const auto [entry, isNew] =
            mNumbers.try_emplace(std::move(key), static_cast<uint32_t>(mChanges.size()));
    if (isNew) {
        mChanges.push_back(std::move(change));
    }
    return entry->second;
}

uint32_t PieceDiff::keep(List list) {
    if (list.empty()) {
        return kNone;
    }
    std::sort(list.begin(), list.end());
    list.erase(std::unique(list.begin(), list.end()), list.end());
    mLists.push_back(std::move(list));
    return static_cast<uint32_t>(mLists.size() - 1);
}

uint32_t PieceDiff::addList(Change change) {
    return keep({numberOf(std::move(change))});
}

ChangeSide PieceDiff::sideOf(const LineAnswers& line, std::string_view value,
                             const AnswerPlace& place) const {
    return {std::string(value), std::string(line.pathOf(place)), place.isKnown() ? place.line : 0};
}

std::string PieceDiff::nameOf(const LineAnswers& line, uint32_t name) const {
    const AnswerName& item = line.names[name];
    std::string text(item.section);
    return text.append(text.empty() ? "" : " ").append(item.key);
}

const std::vector<uint32_t>& PieceDiff::differing(uint32_t a, uint32_t b) {
    const auto [entry, isNew] = mDiffering.try_emplace({a, b});
    if (!isNew || (a == b && &mA == &mB)) {
        return entry->second;
    }
    const ItemPiece& pieceA = mA.itemPiece(a);
    const ItemPiece& pieceB = mB.itemPiece(b);
    auto itemA = pieceA.begin();
    auto itemB = pieceB.begin();
    while (itemA != pieceA.end() || itemB != pieceB.end()) {
        const uint32_t nameA = itemA != pieceA.end() ? mToCommonA[itemA->name] : kNone;
        const uint32_t nameB = itemB != pieceB.end() ? mToCommonB[itemB->name] : kNone;
        if (nameA != nameB || itemA->value != itemB->value) {
            entry->second.push_back(std::min(nameA, nameB));
        }
        itemA += nameA <= nameB ? 1 : 0;
        itemB += nameB <= nameA ? 1 : 0;
    }
    return entry->second;
}

void PieceDiff::compareItem(List& list, uint32_t name, const SetPair& sets, const ItemPair& items) {
    const bool isInBoth = items.a != nullptr && items.b != nullptr;
    if (items.a == items.b || (isInBoth && items.a->value == items.b->value)) {
        return;
    }
    Change change;
    change.kind = ChangeKind::ITEM;
    change.name = mNameOfA[name] != kNone ? nameOf(mA, mNameOfA[name]) : nameOf(mB, mNameOfB[name]);
    if (items.a != nullptr) {
        change.a = sideOf(mA, items.a->value, mA.placeOf(*items.a, *sets.a));
    }
    if (items.b != nullptr) {
        change.b = sideOf(mB, items.b->value, mB.placeOf(*items.b, *sets.b));
    }
    list.push_back(numberOf(std::move(change)));
}

// The names that only the first layers have are compared once for these. The few names of other
// layers, and those of the first ones that they replace, are looked up in all layers.
void PieceDiff::addItemLists(std::vector<uint32_t>& lists, const SetPair& sets) {
    const AnswerPieces& a = mA.pieces[sets.a->pieces];
    const AnswerPieces& b = mB.pieces[sets.b->pieces];
    std::vector<uint32_t> replacing;
    std::vector<uint32_t> different;
    for (size_t layer = 1; layer < kItemLayers; ++layer) {
        for (const AnswerItem& item : mA.itemPiece(a.items[layer])) {
            replacing.push_back(mToCommonA[item.name]);
        }
        for (const AnswerItem& item : mB.itemPiece(b.items[layer])) {
            replacing.push_back(mToCommonB[item.name]);
        }
        different = united(different, differing(a.items[layer], b.items[layer]));
    }
    std::sort(replacing.begin(), replacing.end());
    const std::vector<uint32_t>& base = differing(a.items[0], b.items[0]);
    std::vector<uint32_t> replaced;
    std::vector<uint32_t> unique = replacing;
    unique.erase(std::unique(unique.begin(), unique.end()), unique.end());
    std::set_intersection(base.begin(), base.end(), unique.begin(), unique.end(),
                          std::back_inserter(replaced));
    const auto [entry, isNew] = mBaseLists.try_emplace({{a.items[0], b.items[0]}, replaced}, kNone);
    if (isNew) {
        List list;
        std::vector<uint32_t> own;
        std::set_difference(base.begin(), base.end(), replaced.begin(), replaced.end(),
                            std::back_inserter(own));
        for (const uint32_t name : own) {
            // Not replaced by another layer, so this is the item that counts.
            compareItem(list, name, sets,
                        {mNameOfA[name] != kNone ? mA.item(a, mNameOfA[name]) : nullptr,
                         mNameOfB[name] != kNone ? mB.item(b, mNameOfB[name]) : nullptr});
        }
        entry->second = keep(std::move(list));
    }
    lists.push_back(entry->second);
    lists.push_back(replacedItems(sets, united(different, replaced)));
}

uint32_t PieceDiff::replacedItems(const SetPair& sets, const std::vector<uint32_t>& names) {
    List list;
    for (const uint32_t name : names) {
        const AnswerPieces& a = mA.pieces[sets.a->pieces];
        const AnswerPieces& b = mB.pieces[sets.b->pieces];
        compareItem(list, name, sets,
                    {mNameOfA[name] != kNone ? mA.item(a, mNameOfA[name]) : nullptr,
                     mNameOfB[name] != kNone ? mB.item(b, mNameOfB[name]) : nullptr});
    }
    return keep(std::move(list));
}

void PieceDiff::findChangedFiles() {
    std::vector<Change> found;
    auto inB = mB.files.begin();
    for (const AnswerFile& file : mA.files) {
        while (inB != mB.files.end() && inB->path < file.path) {
            ++inB;
        }
        if (inB != mB.files.end() && inB->path == file.path && !(*inB == file)) {
            Change change;
            change.kind = ChangeKind::FILE;
            change.name = std::string(file.path);
            change.a = mlk::tree::sideOf(file);
            change.b = mlk::tree::sideOf(*inB);
            mChangedFiles[file.path] = numberOf(std::move(change));
        }
    }
    mNamingA = namingsIn(mA, mChangedFiles);
    mNamingB = namingsIn(mB, mChangedFiles);
}

void PieceDiff::addFileLists(std::vector<uint32_t>& lists, const SetPair& sets) {
    if (mChangedFiles.empty()) {
        return;
    }
    List list;
    const auto inB = namedBy(mB, mB.pieces[sets.b->pieces], mNamingB);
    for (const std::string_view path : namedBy(mA, mA.pieces[sets.a->pieces], mNamingA)) {
        // Of a file that only one side names, the item tells.
        if (inB.count(path) > 0) {
            list.push_back(mChangedFiles.at(path));
        }
    }
    lists.push_back(keep(std::move(list)));
}

std::vector<uint32_t> PieceDiff::listsOf(const SetPair& sets) {
    const auto [entry, isNew] = mPiecesLists.try_emplace({sets.a->pieces, sets.b->pieces});
    std::vector<uint32_t>& lists = entry->second;
    if (isNew) {
        const AnswerPieces& a = mA.pieces[sets.a->pieces];
        const AnswerPieces& b = mB.pieces[sets.b->pieces];
        addItemLists(lists, sets);
        lists.push_back(features(ChangeKind::FEATURE, a.features, b.features));
        lists.push_back(features(ChangeKind::FRAMEWORK, a.framework, b.framework));
        lists.push_back(delays(a.delays, b.delays));
        lists.push_back(auxiliary("karaoke", "0", a.karaoke, b.karaoke));
        lists.push_back(auxiliary("keys", "", a.keys, b.keys));
        lists.push_back(auxiliary("ddcci", "", a.ddcci, b.ddcci));
        lists.push_back(list(ChangeKind::COUNTRY, "countries ", a.countries, b.countries));
        lists.push_back(
                list(ChangeKind::COUNTRY, "cltvCountries ", a.cltvCountries, b.cltvCountries));
        lists.push_back(list(ChangeKind::LANGUAGE, "", a.languages, b.languages));
        addFileLists(lists, sets);
        lists.erase(std::remove(lists.begin(), lists.end(), kNone), lists.end());
    }
    std::vector<uint32_t> all = lists;
    const uint32_t ofPlans = plans(sets.a->plans, sets.b->plans);
    if (ofPlans != kNone) {
        all.push_back(ofPlans);
    }
    return all;
}

}  // namespace mlk::tree
