// How ProductLineBuilder follows the lines that name files.

#include <algorithm>
#include <memory>
#include <optional>
#include <set>

#include "projectconfigs/KnownItems.h"
#include "projectconfigs/KnownProperties.h"
#include "projectconfigs/SoundDelays.h"
#include "regional/RegionalNames.h"
#include "regional/TvconfigsPath.h"
#include "tools/mlktree/FolderFiles.h"
#include "tools/mlktree/Parallel.h"
#include "tools/mlktree/ProductLineBuilder.h"
#include "tools/mlktree/Texts.h"
#include "tvconfigs/TvConfigItems.h"

namespace mlk::tree {

namespace product = vendor::morlak::mlkconfigs::V1_0::implementation;

namespace {

void addOnce(std::vector<std::string>& texts, const std::string& text) {
    if (std::find(texts.begin(), texts.end(), text) == texts.end()) {
        texts.push_back(text);
    }
}

}  // namespace

void ProductLineBuilder::followItems() {
    std::set<const FileLines*> files;
    for (const Model& model : mLine.mModels) {
        files.insert(model.file);
    }
    for (const Board& board : mLine.mBoards) {
        files.insert(board.file);
    }
    std::vector<std::optional<NamingLists>> lists(mLine.contents().size());  // by content
    // In the order of their paths, so that the result is the same from run to run.
    for (const auto& [path, file] : mLine.mFiles) {
        if (files.find(file.get()) == files.end()) {
            continue;
        }
        for (const ReadLine& line : file->lines()) {
            if (!file->counts(line)) {
                continue;
            }
            std::optional<NamingLists>& known = lists[file->contentOf(line)];
            if (!known) {
                known = namingListsOf(line);
            }
            for (std::vector<Naming>* const list : *known) {
                list->push_back({file.get(), &line});
            }
        }
    }
    const std::string audio = "tvconfigs" + std::string(product::kHardwareAudioFolder);
    const std::string hardware = mLine.mProperties.get(product::property::kHardware);
    if (!hardware.empty()) {
        const std::string path = audio + product::kHardwareAudioPrefix + hardware + kIniEnding;
        name(path, nullptr, nullptr);
        ask(path, FileFormat::AUXILIARY);
    }
    const std::string features = "tvconfigs" + std::string(product::kDefaultTvConfigFile);
    name(features, nullptr, nullptr);
    ask(features, FileFormat::TV_FEATURES);
    readRequests();
}

ProductLineBuilder::NamingLists ProductLineBuilder::namingListsOf(const ReadLine& line) {
    const product::KnownItem* const known = product::findKnownItem({line.section, line.key});
    const bool isPath = beginsWith(line.value, "/");
    const bool namesFile = known != nullptr && (known->type == product::ValueType::PATH ||
                                                known->type == product::ValueType::FOLDER);
    if (line.value.empty() || (!isPath && !namesFile)) {
        return {};
    }
    if (namesFile && known->names == FileFormat::CHANNEL_PLANS) {
        const std::string folder = planFolderOf(mLine.mTree, line.value);
        addOnce(mPlanFolders, folder);
        return {&mLine.mNamings[folder + product::kChannelMapFile]};
    }
    const std::string path = pathOf(line.value);
    NamingLists lists = {&mLine.mNamings[path]};
    if (!namesFile) {
        return lists;
    }
    if (known->names == FileFormat::TV_SYSTEMS) {
        addOnce(mTvSystemPaths, path);
    } else if (known->names != FileFormat::OPAQUE) {
        ask(path, known->names);
    }
    if (line.key == product::item::kAvrAudio.key &&
        line.section == product::item::kAvrAudio.category) {
        const std::string folder = folderOf(path);
        for (const std::string& avr : iniFilesIn(folder, kMostReceivers, "files of receivers")) {
            if (beginsWith(avr, product::kAvrAudioPrefix)) {
                const std::string avrPath = pathIn(folder, avr);
                lists.push_back(&mLine.mNamings[avrPath]);
                ask(avrPath, FileFormat::AUXILIARY);
            }
        }
    }
    return lists;
}

void ProductLineBuilder::followTvSystems() {
    std::sort(mTvSystemPaths.begin(), mTvSystemPaths.end());
    std::vector<std::unique_ptr<TvSystems>> systems(mTvSystemPaths.size());
    forEachInParallel(systems.size(), [&](size_t i) {
        systems[i] = std::make_unique<TvSystems>(mLine.mTree, mLine.mProperties, mTvSystemPaths[i]);
    });
    for (size_t i = 0; i < systems.size(); ++i) {
        TvSystemFiles files;
        std::unique_ptr<FileLines> map = systems[i]->takeMap();
        files.file = keep(systems[i]->takeFile());
        if (map != nullptr) {
            name(map->path(), files.file, files.file->find("", product::element::kCountryMap));
            files.map = keep(std::move(map));
        }
        files.systems = std::move(systems[i]);
        mLine.mTvSystems.push_back(std::move(files));
    }
    for (const TvSystemFiles& files : mLine.mTvSystems) {
        for (const ReadLine& line : files.file->lines()) {
            if (line.use == LineUse::ITEM && !line.section.empty() && line.isNew) {
                for (std::vector<Naming>* const list : namingListsOf(line)) {
                    list->push_back({files.file, &line});
                }
            }
        }
        if (files.map == nullptr) {
            continue;
        }
        // By reference: the lines are kept, so a copy must not be walked through.
        for (const ReadLine& line : files.map->lines()) {
            const std::string_view written = product::fromTvconfigs(line.value);
            if (line.use == LineUse::ITEM && line.key == product::element::kFeaturesOfCountry &&
                !written.empty()) {
                const std::string path = pathOf(written);
                name(path, files.map, &line);
                ask(path, FileFormat::TV_FEATURES);
            }
        }
    }
    readRequests();
}

void ProductLineBuilder::followPlans() {
    if (mPlanFolders.empty() && !mLine.mModels.empty()) {
        mPlanFolders.push_back(planFolderOf(mLine.mTree, ""));
        name(mPlanFolders.back() + product::kChannelMapFile, nullptr, nullptr);
    }
    std::sort(mPlanFolders.begin(), mPlanFolders.end());
    std::vector<std::unique_ptr<PlanFolder>> folders(mPlanFolders.size());
    forEachInParallel(folders.size(), [&](size_t i) {
        folders[i] = std::make_unique<PlanFolder>(mLine.mTree, mPlanFolders[i]);
    });
    for (std::unique_ptr<PlanFolder>& folder : folders) {
        PlanFiles files;
        files.map = keep(folder->takeMap());
        for (const ReadLine& line : files.map->lines()) {
            const bool isDigital = line.key == product::element::kDtvAntenna ||
                                   line.key == product::element::kDtvCable;
            const bool isPlan = isDigital || line.key == product::element::kAtvAntenna ||
                                line.key == product::element::kAtvCable;
            if (line.use == LineUse::ITEM && isPlan && !line.value.empty()) {
                const std::string path =
                        folder->path() +
                        (isDigital ? product::kDtvPlansFolder : product::kAtvPlansFolder) +
                        std::string(line.value);
                name(path, files.map, &line);
                ask(path, FileFormat::CHANNEL_PLAN);
            }
        }
        files.folder = std::move(folder);
        mLine.mPlanFolders.push_back(std::move(files));
    }
    readRequests();
}

}  // namespace mlk::tree
