#include "tools/mlktree/answers/PieceWriter.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "tools/mlktree/answers/Snapshot.h"

namespace mlk::tree {

namespace {

/** Some pieces that stand one after the other. */
template <typename Iterator>
struct Range {
    Iterator first;
    Iterator last;

    Iterator begin() const { return first; }
    Iterator end() const { return last; }
};

}  // namespace

std::vector<const AnswerItem*> pointersTo(const ItemPiece& piece) {
    std::vector<const AnswerItem*> items;
    items.reserve(piece.size());
    for (const AnswerItem& item : piece) {
        items.push_back(&item);
    }
    return items;
}

void PieceWriter::number(int64_t value) {
    std::array<char, 20> digits{};  // of the smallest number, with its sign
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
    mOut.append(digits.data(), end);
}

// Opens and closes objects that group what comes one after the other: sections.
template <typename Pieces, typename GroupOf, typename Write>
void PieceWriter::writeGroups(const Pieces& pieces, const GroupOf& groupOf, const Write& write) {
    mOut += '{';
    bool isOpen = false;
    std::string_view group;
    for (const auto& one : pieces) {
        const std::string_view next = groupOf(one);
        if (!isOpen || next != group) {
            mOut += isOpen ? "},\n" : "\n";
            name(next);
            mOut += '{';
            isOpen = true;
            group = next;
        } else {
            mOut += ',';
        }
        write(one);
    }
    mOut += isOpen ? "}}" : "}";
}

void PieceWriter::writeItems(const std::vector<const AnswerItem*>& items, bool isNumbers) {
    writeGroups(
            items, [this](const AnswerItem* item) { return mLine.names[item->name].section; },
            [&](const AnswerItem* item) {
                name(mLine.names[item->name].key);
                if (isNumbers) {
                    mOut += item->value;
                } else {
                    text(item->value);
                }
            });
}

void PieceWriter::writeFeatures(const FeaturePiece& piece) {
    mOut += '{';
    bool isFirst = true;
    for (const AnswerFeature& feature : piece) {
        mOut += isFirst ? "" : ",";
        isFirst = false;
        name(feature.method);
        if (feature.type == AnswerType::TEXT) {
            text(feature.value);
        } else {
            mOut += feature.value;
        }
    }
    mOut += '}';
}

void PieceWriter::writeDelays(const DelayPiece& piece) {
    mOut += '{';
    for (auto delay = piece.begin(); delay != piece.end();) {
        const auto end = std::find_if(delay, piece.end(), [&](const AnswerDelay& one) {
            return one.receiver != delay->receiver;
        });
        mOut += delay == piece.begin() ? "\n" : ",\n";
        name(delay->receiver.empty() ? kNoReceiver : delay->receiver);
        writeGroups(
                Range<DelayPiece::const_iterator>{delay, end},
                [this](const AnswerDelay& one) { return mLine.names[one.name].section; },
                [this](const AnswerDelay& one) {
                    name(mLine.names[one.name].key);
                    mOut += std::to_string(one.value);
                });
        delay = end;
    }
    mOut += '}';
}

void PieceWriter::writeTexts(const std::vector<std::string_view>& texts) {
    mOut += '[';
    for (const std::string_view& one : texts) {
        mOut += &one == &texts.front() ? "" : ",";
        text(one);
    }
    mOut += ']';
}

void PieceWriter::writeList(const ListPiece& piece) {
    std::vector<std::string_view> texts;
    texts.reserve(piece.size());
    for (const AnswerEntry& entry : piece) {
        texts.push_back(entry.text);
    }
    writeTexts(texts);
}

void PieceWriter::writeChannels(const ChannelPiece& piece) {
    mOut += '[';
    for (const AnswerChannel& channel : piece) {
        mOut += &channel == &piece.front() ? "\n" : ",\n";
        mOut += "{\"channel\":";
        number(channel.channel);
        mOut += ",\"frequency\":";
        number(channel.frequency);
        mOut += ",\"bandwidth\":";
        number(channel.bandwidth);
        mOut += ",\"label\":";
        text(channel.label);
        mOut += ",\"modulation\":";
        number(channel.modulation);
        mOut += '}';
    }
    mOut += ']';
}

}  // namespace mlk::tree
