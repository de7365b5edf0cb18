// What PieceMaker makes of features and sound delays.

#include <algorithm>
#include <set>

#include "common/Paths.h"
#include "projectconfigs/SoundDelays.h"
#include "tools/mlktree/FolderFiles.h"
#include "tools/mlktree/Parallel.h"
#include "tools/mlktree/Texts.h"
#include "tools/mlktree/answers/PieceMaker.h"
#include "tools/mlktree/set/SetFeatures.h"

namespace mlk::tree {

namespace product = vendor::morlak::mlkconfigs::V1_0::implementation;

namespace {

constexpr const char* kArc = "ARC";

FeaturePiece pieceOf(const std::vector<Feature>& features, LineAnswers& answers,
                     std::vector<std::pair<std::string, size_t>>& places) {
    FeaturePiece piece;
    for (const Feature& feature : features) {
        AnswerFeature& made = piece.emplace_back();
        made.method = answers.keep(feature.method);
        made.value = answers.keep(feature.answer());
        made.type = feature.isText   ? AnswerType::TEXT
                    : feature.isFlag ? AnswerType::FLAG
                                     : AnswerType::NUMBER;
        const FeatureOrigin& origin = feature.history.back();
        places.emplace_back(origin.file, origin.line);
    }
    return piece;
}

// The files of AVRs beside the default AVR's, by name.
std::vector<std::string> avrFilesOf(const ProductLine& line, const DelayPaths& paths) {
    std::vector<std::string> files;
    const std::string path = line.tree().hostOfWritten(paths.presentAvr);
    const size_t folder = path.size() - product::fileNameOf(path).size();
    if (paths.presentAvr.empty() || folder == 0) {
        return files;
    }
    const std::string_view prefix = product::kAvrAudioPrefix;
    for (const std::string& name :
         filesIn(path.substr(0, folder - 1), kIniEnding, kMostReceivers).names) {
        // "AVR_", vendor, "_", name, ".ini": neither is empty.
        const size_t end = name.size() - std::string_view(kIniEnding).size();
        const size_t split = name.find('_', prefix.size() + 1);
        if (beginsWith(name, prefix) && split != std::string::npos && split + 1 < end &&
            !SetDelays::isRefused(paths, name)) {
            files.push_back(name);
        }
    }
    return files;
}

/** The delays with one receiver. */
struct Sums {
    std::string receiver;
    std::unique_ptr<SetDelays> delays;
    SetDelays::Names items;
    std::vector<std::vector<Summand>> summands;
};

std::vector<Sums> sumsOf(const ProductLine& line, const DelayPaths& paths) {
    std::vector<std::pair<std::string, std::string>> receivers = {{"", ""}, {kArc, ""}};
    for (const std::string& file : avrFilesOf(line, paths)) {
        receivers.emplace_back(file, file);
    }
    std::vector<Sums> all;
    for (const auto& [receiver, file] : receivers) {
        Sums& sums = all.emplace_back();
        sums.receiver = receiver;
        sums.delays = std::make_unique<SetDelays>(line, paths, file);
        const bool isArc = !receiver.empty();
        sums.items = sums.delays->items(isArc);
        for (const auto& [section, key] : sums.items) {
            sums.summands.push_back(sums.delays->summands(section, key, isArc));
        }
    }
    return all;
}

}  // namespace

void PieceMaker::makeFeatures() {
    const ProductLine& line = mFiles.line();
    const std::vector<std::pair<std::string_view, uint32_t>> wanted(mFeatures.begin(),
                                                                    mFeatures.end());
    std::vector<std::vector<Feature>> found(wanted.size());
    forEachInParallel(wanted.size(), [&](size_t i) {
        found[i] = tvFeaturesOf(line, featureFileOf(line, wanted[i].first));
    });
    const auto add = [this](const std::vector<Feature>& features, uint32_t number) {
        std::vector<std::pair<std::string, size_t>> places;
        FeaturePiece piece = pieceOf(features, mAnswers, places);
        for (size_t i = 0; i < piece.size(); ++i) {
            if (!places[i].first.empty()) {
                piece[i].place = {fileNumber(places[i].first),
                                  static_cast<uint32_t>(places[i].second)};
            }
        }
        std::sort(piece.begin(), piece.end(), [](const AnswerFeature& a, const AnswerFeature& b) {
            return a.method < b.method;
        });
        mAnswers.features[number] = std::move(piece);
    };
    for (size_t i = 0; i < wanted.size(); ++i) {
        add(found[i], wanted[i].second);
    }
    if (mFramework != kNone) {
        add(frameworkSwitchesOf(line), mFramework);
    }
}

void PieceMaker::makeDelays() {
    const std::vector<std::pair<std::array<std::string_view, 4>, uint32_t>> wanted(mDelays.begin(),
                                                                                   mDelays.end());
    std::vector<std::shared_ptr<std::vector<Sums>>> found(wanted.size());
    forEachInParallel(wanted.size(), [&](size_t i) {
        const auto& [panel, ic, avr, present] = wanted[i].first;
        const DelayPaths paths{std::string(panel), std::string(ic), std::string(avr),
                               std::string(present)};
        found[i] = std::make_shared<std::vector<Sums>>(sumsOf(mFiles.line(), paths));
    });
    std::map<std::string, std::string_view> roles;
    for (size_t i = 0; i < wanted.size(); ++i) {
        DelayPiece& piece = mAnswers.delays[wanted[i].second];
        for (const Sums& sums : *found[i]) {
            const std::string_view receiver = mAnswers.keep(sums.receiver);
            for (size_t item = 0; item < sums.items.size(); ++item) {
                const auto& [section, key] = sums.items[item];
                AnswerDelay& delay = piece.emplace_back();
                delay.receiver = receiver;
                delay.name = mNames.of(section, key);
                delay.value = sumOf(sums.summands[item]);
                for (const Summand& summand : sums.summands[item]) {
                    std::string_view& role = roles[summand.role];
                    if (role.empty()) {
                        role = mAnswers.keep(summand.role);
                    }
                    delay.summands.push_back(
                            {role, summand.value, placeOf(summand.file, summand.line)});
                }
            }
        }
        // They own files that the line lacks, and so the texts of names.
        mAnswers.owners.push_back(found[i]);
    }
}

}  // namespace mlk::tree
