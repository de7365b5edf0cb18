#include "tools/mlktree/answers/LineAnswers.h"

#include <algorithm>
#include <tuple>

namespace mlk::tree {

namespace {

template <typename Piece>
const Piece& pieceOf(const std::vector<Piece>& pieces, uint32_t number) {
    static const Piece kEmpty;
    return number == kNone ? kEmpty : pieces[number];
}

auto fieldsOf(const AnswerPieces& set) {
    return std::tie(set.items, set.features, set.framework, set.delays, set.karaoke, set.keys,
                    set.ddcci, set.countries, set.cltvCountries, set.languages);
}

const AnswerItem* findIn(const ItemPiece& piece, uint32_t name) {
    const auto found = std::lower_bound(
            piece.begin(), piece.end(), name,
            [](const AnswerItem& item, uint32_t number) { return item.name < number; });
    return found != piece.end() && found->name == name ? &*found : nullptr;
}

}  // namespace

bool AnswerPieces::operator==(const AnswerPieces& other) const {
    return fieldsOf(*this) == fieldsOf(other);
}

bool AnswerPieces::operator<(const AnswerPieces& other) const {
    return fieldsOf(*this) < fieldsOf(other);
}

uint32_t LineAnswers::find(std::string_view section, std::string_view key) const {
    const auto found = std::lower_bound(names.begin(), names.end(), std::tie(section, key),
                                        [](const AnswerName& name, const auto& wanted) {
                                            return std::tie(name.section, name.key) < wanted;
                                        });
    const bool isIt = found != names.end() && found->section == section && found->key == key;
    return isIt ? static_cast<uint32_t>(found - names.begin()) : kNone;
}

const AnswerItem* LineAnswers::item(const AnswerPieces& set, uint32_t name) const {
    for (size_t layer = kItemLayers; layer-- > 0;) {
        const AnswerItem* const found = findIn(itemPiece(set.items[layer]), name);
        if (found != nullptr) {
            return found;
        }
    }
    return nullptr;
}

std::vector<const AnswerItem*> LineAnswers::itemsOf(const AnswerPieces& set) const {
    std::vector<const AnswerItem*> all;
    for (const uint32_t number : set.items) {
        const ItemPiece& layer = itemPiece(number);
        const std::vector<const AnswerItem*> before = std::move(all);
        all = {};
        all.reserve(before.size() + layer.size());
        auto older = before.begin();
        for (const AnswerItem& item : layer) {
            for (; older != before.end() && (*older)->name < item.name; ++older) {
                all.push_back(*older);
            }
            if (older != before.end() && (*older)->name == item.name) {
                ++older;
            }
            all.push_back(&item);
        }
        all.insert(all.end(), older, before.end());
    }
    return all;
}

const ItemPiece& LineAnswers::itemPiece(uint32_t number) const {
    return pieceOf(items, number);
}
const FeaturePiece& LineAnswers::featurePiece(uint32_t number) const {
    return pieceOf(features, number);
}
const DelayPiece& LineAnswers::delayPiece(uint32_t number) const {
    return pieceOf(delays, number);
}
const ListPiece& LineAnswers::listPiece(uint32_t number) const {
    return pieceOf(lists, number);
}
const ChannelPiece& LineAnswers::channelPiece(uint32_t number) const {
    return pieceOf(channels, number);
}
const PlanPiece& LineAnswers::planPiece(uint32_t number) const {
    return pieceOf(plans, number);
}

AnswerPlace LineAnswers::placeOf(const AnswerItem& item, const AnswerSet& set) const {
    if (item.place.file != kPlaceByCountry) {
        return item.place;
    }
    return set.country == kNone ? AnswerPlace() : placesByCountry[item.place.line][set.country];
}

std::string_view LineAnswers::pathOf(const AnswerPlace& place) const {
    return place.isKnown() ? std::string_view(places[place.file]) : std::string_view();
}

std::string nameOf(const LineAnswers& line, const AnswerSet& set) {
    std::string name;
    const auto add = [&name](const char* part, std::string_view value) {
        name.append(name.empty() ? "" : ",").append(part).append(value);
    };
    if (set.model != kNone) {
        add("model=", std::to_string(line.models[set.model].index));
    }
    add("board=", line.boards[set.board].name);
    if (line.customers.size() > 1) {
        add("customer=", line.customers[set.customer].file);
    }
    if (set.country != kNone) {
        add("country=", line.countries[set.country]);
    }
    return name;
}

}  // namespace mlk::tree
