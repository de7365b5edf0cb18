// How SnapshotReader reads single pieces.

#include <algorithm>

#include "tools/mlktree/answers/Snapshot.h"
#include "tools/mlktree/answers/SnapshotReader.h"

namespace mlk::tree {

ItemPiece SnapshotReader::readItems(const Json& json, const Where& where) {
    ItemPiece piece;
    forMembers(json, where, [&](std::string_view section, const Json& keys, const Where& at) {
        forMembers(keys, at, [&](std::string_view key, const Json& value, const Where& inside) {
            const std::string_view text =
                    value.is_number() ? mLine.keep(std::to_string(number(value, inside)))
                                      : this->text(value, inside);
            piece.push_back({mNames.of(section, key), {}, text});
        });
    });
    return piece;
}

FeaturePiece SnapshotReader::readFeatures(const Json& json, const Where& where) {
    FeaturePiece piece;
    forMembers(json, where, [&](std::string_view method, const Json& value, const Where& at) {
        AnswerFeature& feature = piece.emplace_back();
        feature.method = method;
        if (value.is_boolean()) {
            feature.value = value.get<bool>() ? "true" : "false";
        } else if (value.is_string()) {
            feature.type = AnswerType::TEXT;
            feature.value = text(value, at);
        } else {
            feature.type = AnswerType::NUMBER;
            feature.value = mLine.keep(std::to_string(number(value, at)));
        }
    });
    std::sort(piece.begin(), piece.end(),
              [](const AnswerFeature& a, const AnswerFeature& b) { return a.method < b.method; });
    return piece;
}

DelayPiece SnapshotReader::readDelays(const Json& json, const Where& where) {
    DelayPiece piece;
    forMembers(json, where, [&](std::string_view name, const Json& sections, const Where& at) {
        const std::string_view receiver = name == kNoReceiver ? std::string_view() : name;
        forMembers(sections, at, [&](std::string_view section, const Json& keys, const Where& in) {
            forMembers(keys, in, [&](std::string_view key, const Json& value, const Where& inside) {
                piece.push_back({receiver,
                                 mNames.of(section, key),
                                 static_cast<int32_t>(number(value, inside)),
                                 {}});
            });
        });
    });
    return piece;
}

ListPiece SnapshotReader::readList(const Json& json, const Where& where) {
    ListPiece piece;
    forEach(json, where, [&](const Json& one, const Where& at) {
        piece.push_back({text(one, at), {}});
    });
    return piece;
}

ChannelPiece SnapshotReader::readChannels(const Json& json, const Where& where) {
    ChannelPiece piece;
    forEach(json, where, [&](const Json& one, const Where& at) {
        const auto numberIn = [&](const char* name) {
            return static_cast<int32_t>(number(member(one, name, at), {&at, name}));
        };
        piece.push_back({numberIn("channel"),
                         numberIn("frequency"),
                         numberIn("bandwidth"),
                         textIn(one, "label", at),
                         numberIn("modulation"),
                         {}});
    });
    return piece;
}

PlanPiece SnapshotReader::readPlans(const Json& json, const Where& where) {
    PlanPiece piece;
    forMembers(json, where, [&](std::string_view kind, const Json& value, const Where& at) {
        const uint32_t channels = this->piece(
                value, "channels", mShared.channels, mLine.channels, at,
                [this](const Json& one, const Where& in) { return readChannels(one, in); });
        if (channels != kNone) {
            piece.push_back({kind, channels, {}});
        }
    });
    std::sort(piece.begin(), piece.end(),
              [](const AnswerPlan& a, const AnswerPlan& b) { return a.kind < b.kind; });
    return piece;
}

}  // namespace mlk::tree
