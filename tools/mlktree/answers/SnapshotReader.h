#pragma once

#include <array>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include "tools/mlktree/answers/NameNumbers.h"
#include "tools/mlktree/answers/SnapshotJson.h"

namespace mlk::tree {

/** The pieces of "shared", by kind: their numbers in the tables of the line. */
struct Shared {
    std::vector<uint32_t> items;
    std::vector<uint32_t> auxiliary;
    std::vector<uint32_t> features;
    std::vector<uint32_t> delays;
    std::vector<uint32_t> lists;
    std::vector<uint32_t> channels;
    std::vector<uint32_t> plans;
    std::vector<uint32_t> answers;
};

/** Reads a snapshot into answers. For one text. */
class SnapshotReader : private SnapshotJson {
  public:
    SnapshotReader(const std::string& name, LineAnswers& line) : SnapshotJson(name, line) {}

    /** @throw UsageError, see readSnapshot() */
    void read(std::string_view content);

  private:
    /** The index in a reference to that kind of piece; nothing if the value is no reference. */
    std::optional<size_t> reference(const Json& json, const char* kind, const Where& where) const;
    /** The number of a piece that stands there or is referred to. */
    template <typename Piece, typename Read>
    uint32_t piece(const Json& json, const char* kind, const std::vector<uint32_t>& shared,
                   std::vector<Piece>& pieces, const Where& where, const Read& read);

    void readCustomers(const Json& json, const Where& where);
    void readModels(const Json& json, const Where& where);
    void readBoards(const Json& json, const Where& where);
    void readFiles(const Json& json, const Where& where);
    void readShared(const Json& json, const Where& where);
    void readSet(const Json& json, const Where& where);
    AnswerPieces readAnswers(const Json& json, const Where& where);
    std::array<uint32_t, kItemLayers> readLayers(const Json& json, const Where& where);
    ItemPiece readItems(const Json& json, const Where& where);
    FeaturePiece readFeatures(const Json& json, const Where& where);
    DelayPiece readDelays(const Json& json, const Where& where);
    ListPiece readList(const Json& json, const Where& where);
    ChannelPiece readChannels(const Json& json, const Where& where);
    PlanPiece readPlans(const Json& json, const Where& where);
    uint32_t itemsAt(const Json& json, const char* kind, const std::vector<uint32_t>& shared,
                     const Where& where) {
        return piece(json, kind, shared, mLine.items, where,
                     [this](const Json& one, const Where& at) { return readItems(one, at); });
    }

    uint32_t customerNumber(std::string_view file);
    uint32_t modelNumber(int32_t index, uint32_t customer);
    uint32_t boardNumber(std::string_view name);
    uint32_t countryNumber(std::string_view name);

    NameNumbers mNames;
    Shared mShared;
    std::map<std::string_view, uint32_t> mCustomers;
    std::map<std::pair<uint32_t, int32_t>, uint32_t> mModels;
    std::map<std::string_view, uint32_t> mBoards;
    std::map<std::string_view, uint32_t> mCountries;
    std::set<std::tuple<uint32_t, uint32_t, uint32_t, uint32_t>> mSets;
};

template <typename Piece, typename Read>
uint32_t SnapshotReader::piece(const Json& json, const char* kind,
                               const std::vector<uint32_t>& shared, std::vector<Piece>& pieces,
                               const Where& where, const Read& read) {
    if (const std::optional<size_t> index = reference(json, kind, where)) {
        if (*index >= shared.size()) {
            refuse(where, "refers to shared." + std::string(kind) + "[" + std::to_string(*index) +
                                  "], which is missing");
        }
        return shared[*index];
    }
    Piece made = read(json, where);
    if (made.empty()) {
        return kNone;
    }
    pieces.push_back(std::move(made));
    return static_cast<uint32_t>(pieces.size() - 1);
}

}  // namespace mlk::tree
