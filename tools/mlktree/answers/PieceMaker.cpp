#include "tools/mlktree/answers/PieceMaker.h"

#include <algorithm>
#include <cstring>

#include "common/Decimal.h"
#include "common/FileLimits.h"
#include "common/Paths.h"
#include "tools/mlktree/CountryNames.h"
#include "tools/mlktree/Parallel.h"
#include "tools/mlktree/set/SetCountry.h"

namespace mlk::tree {

namespace product = vendor::morlak::mlkconfigs::V1_0::implementation;

namespace {

// The number of a key; a new key gets a new piece.
template <typename Key, typename Piece>
uint32_t numberOf(std::map<Key, uint32_t>& numbers, std::vector<Piece>& pieces, const Key& key) {
    const auto [entry, isNew] = numbers.try_emplace(key, static_cast<uint32_t>(pieces.size()));
    if (isNew) {
        pieces.emplace_back();
    }
    return entry->second;
}

// The keys with their numbers, for work on all cores.
template <typename Key>
std::vector<std::pair<Key, uint32_t>> listOf(const std::map<Key, uint32_t>& numbers) {
    return {numbers.begin(), numbers.end()};
}

}  // namespace

uint32_t PieceMaker::project(const FileLines* file) {
    return file == nullptr ? kNone : numberOf(mProjects, mAnswers.items, file);
}

uint32_t PieceMaker::brought(const std::vector<const BroughtItem*>& items, uint32_t byCountry) {
    return items.empty() ? kNone : numberOf(mBrought, mAnswers.items, {items, byCountry});
}

uint32_t PieceMaker::auxiliary(std::string_view value, bool isNumbers) {
    // The service looks up nothing in a file without a folder, or with a long name.
    const size_t name = product::fileNameOf(value).size();
    const bool isUsed = name < value.size() && name < product::kFileNameSize;
    return isUsed ? numberOf(mAuxiliary, mAnswers.items, {value, isNumbers}) : kNone;
}

uint32_t PieceMaker::features(std::string_view value) {
    return numberOf(mFeatures, mAnswers.features, value);
}

uint32_t PieceMaker::framework() {
    if (mFramework == kNone) {
        mFramework = static_cast<uint32_t>(mAnswers.features.size());
        mAnswers.features.emplace_back();
    }
    return mFramework;
}

uint32_t PieceMaker::delays(const std::array<std::string_view, 4>& values) {
    return numberOf(mDelays, mAnswers.delays, values);
}

uint32_t PieceMaker::list(std::string_view value, FileFormat format) {
    return value.empty() ? kNone : numberOf(mLists, mAnswers.lists, {value, format});
}

uint32_t PieceMaker::plans(std::string_view value, _tv_country country) {
    return country == product::kNoCountry ? kNone
                                          : numberOf(mPlans, mAnswers.plans, {value, country});
}

void PieceMaker::make() {
    makeItems();
    makeAuxiliary();
    makeDelays();
    sortNames(mNames, mAnswers);
    makeFeatures();
    makeLists();
    makePlans();
}

uint32_t PieceMaker::fileNumber(const std::string& path) {
    const auto [entry, isNew] =
            mPlaces.try_emplace(path, static_cast<uint32_t>(mAnswers.places.size()));
    if (isNew) {
        mAnswers.places.push_back(path);
    }
    return entry->second;
}

AnswerPlace PieceMaker::placeOf(const FileLines* file, const ReadLine* line) {
    if (file == nullptr || line == nullptr) {
        return {};
    }
    if (file != mLastFile) {
        mLastFile = file;
        mLastPlace = fileNumber(file->path());
    }
    return {mLastPlace, static_cast<uint32_t>(line->number)};
}

void PieceMaker::makeItems() {
    for (const auto& [file, number] : mProjects) {
        ItemPiece& piece = mAnswers.items[number];
        piece.reserve(file->lines().size());
        for (const ReadLine& read : file->lines()) {
            if (read.use == LineUse::ITEM) {
                piece.push_back(
                        {mNames.of(read.section, read.key), placeOf(file, &read), read.value});
            }
        }
    }
    for (const auto& [key, number] : mBrought) {
        for (const BroughtItem* const item : key.first) {
            const AnswerPlace place = item->line != nullptr
                                              ? placeOf(item->file, item->line)
                                              : AnswerPlace{kPlaceByCountry, key.second};
            mAnswers.items[number].push_back(
                    {mNames.of(item->section, item->key), place, item->value});
        }
    }
}

void PieceMaker::makeAuxiliary() {
    for (const auto& [key, number] : mAuxiliary) {
        const auto& [value, isNumbers] = key;
        const FileLines& file = mFiles.as(mFiles.pathOf(value), FileFormat::AUXILIARY);
        if (file.isUnreadable()) {
            continue;
        }
        ItemPiece& piece = mAnswers.items[number];
        for (const ReadLine& read : file.lines()) {
            // Of several lines with one key, the first counts.
            if (read.use != LineUse::ITEM || file.find(read.section, read.key) != &read) {
                continue;
            }
            const std::string_view text =
                    isNumbers ? mAnswers.keep(std::to_string(
                                        product::parseDecimal(std::string(read.value))))
                              : read.value;
            piece.push_back({mNames.of(read.section, read.key), placeOf(&file, &read), text});
        }
    }
}

void PieceMaker::makeLists() {
    const product::NameTable names = product::countryNames();
    for (const auto& [key, number] : mLists) {
        const auto& [value, format] = key;
        const FileLines& file = mFiles.as(mFiles.pathOf(value), format);
        if (file.isUnreadable()) {
            continue;
        }
        for (const ReadLine& read : file.lines()) {
            if (read.use != LineUse::ITEM) {
                continue;
            }
            std::string_view text = read.key;
            if (format == FileFormat::COUNTRY_LIST && !countryOf(read.key)) {
                // The service takes a name that it does not know for country 0.
                std::string name;
                names.firstNameOf(0, name);
                text = mAnswers.keep(name);
            }
            mAnswers.lists[number].push_back({text, placeOf(&file, &read)});
        }
    }
}

uint32_t PieceMaker::channelsOf(const std::string& path) {
    const auto [entry, isNew] =
            mChannels.try_emplace(path, static_cast<uint32_t>(mAnswers.channels.size()));
    if (!isNew) {
        return entry->second;
    }
    const FileLines& file = mFiles.as(path, FileFormat::CHANNEL_PLAN);
    ChannelPiece piece;
    auto channel = file.channels().begin();
    for (const ReadLine& read : file.lines()) {
        if (read.use != LineUse::ITEM || channel == file.channels().end()) {
            continue;
        }
        const char* const label = reinterpret_cast<const char*>(channel->label.data());
        piece.push_back({channel->channel,
                         channel->frequency,
                         channel->bandwidth,
                         {label, strnlen(label, channel->label.size())},
                         channel->modulation,
                         placeOf(&file, &read)});
        ++channel;
    }
    if (piece.empty()) {
        entry->second = kNone;
    } else {
        mAnswers.channels.push_back(std::move(piece));
    }
    return entry->second;
}

void PieceMaker::makePlans() {
    std::vector<std::vector<CountryPlan>> found(mPlans.size());
    const auto wanted = listOf(mPlans);
    forEachInParallel(wanted.size(), [&](size_t i) {
        const auto& [value, country] = wanted[i].first;
        const PlanFiles& files = mFiles.plans(planFolderOf(mFiles.line().tree(), value));
        found[i] = plansOf({files.folder.get(), files.map}, country);
    });
    for (size_t i = 0; i < wanted.size(); ++i) {
        PlanPiece& piece = mAnswers.plans[wanted[i].second];
        for (const CountryPlan& plan : found[i]) {
            const uint32_t channels = channelsOf(plan.file);
            if (channels != kNone) {
                piece.push_back(
                        {mAnswers.keep(nameOf(plan)), channels, placeOf(plan.map, plan.line)});
            }
        }
        std::sort(piece.begin(), piece.end(),
                  [](const AnswerPlan& a, const AnswerPlan& b) { return a.kind < b.kind; });
    }
}

}  // namespace mlk::tree
