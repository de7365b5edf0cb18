#include "tools/mlktree/ProductLineBuilder.h"

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <memory>
#include <set>

#include "common/Decimal.h"
#include "common/Paths.h"
#include "projectconfigs/ChainKeywords.h"
#include "projectconfigs/KnownItems.h"
#include "projectconfigs/KnownProperties.h"
#include "projectconfigs/ProjectFileReader.h"
#include "projectconfigs/ProjectID.h"
#include "projectconfigs/SoundDelays.h"
#include "regional/RegionalNames.h"
#include "tools/mlktree/FileReading.h"
#include "tools/mlktree/Parallel.h"

namespace mlk::tree {

namespace product = vendor::morlak::mlkconfigs::V1_0::implementation;

namespace {

constexpr const char* kIniEnding = ".ini";

bool isRegularFile(const std::string& path) {
    struct stat info {};
    return stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode);
}

bool endsWith(std::string_view text, std::string_view end) {
    return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

std::string folderOf(const std::string& path) {
    const size_t slash = path.rfind('/');
    return slash == std::string::npos ? "" : path.substr(0, slash);
}

template <typename Value>
void addOnce(std::vector<Value>& values, const Value& value) {
    if (std::find(values.begin(), values.end(), value) == values.end()) {
        values.push_back(value);
    }
}

}  // namespace

std::vector<std::string> filesIn(const std::string& hostFolder, std::string_view ending) {
    std::vector<std::string> names;
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(opendir(hostFolder.c_str()), closedir);
    if (folder == nullptr) {
        return names;
    }
    while (const dirent* const entry = readdir(folder.get())) {
        const std::string name = entry->d_name;
        if (endsWith(name, ending) && isRegularFile(hostFolder + "/" + name)) {
            names.push_back(name);
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

void ProductLineBuilder::build() {
    readIdentity();
    findCustomers();
    findModels();
    findBoards();
    readProjects();
    followItems();
    followTvSystems();
    followPlans();
    findCountries();
    selectCountry();
}

void ProductLineBuilder::readIdentity() {
    const std::pair<std::string, FileFormat> files[] = {
            {kProjectIdPath, FileFormat::PROJECT_ID},
            {kBoardIdPath, FileFormat::BOARD_ID},
            {"tvdata" + std::string(product::kCountryIdFolder) + product::kCountryIdFile,
             FileFormat::COUNTRY_ID}};
    for (const auto& [path, format] : files) {
        // A new set has none of them.
        if (product::pathExists(mLine.mTree.host(path))) {
            ask(path, format);
        }
    }
    readRequests();
}

void ProductLineBuilder::findCustomers() {
    std::vector<std::string> paths;
    for (const std::string& customer : mSelection.customers) {
        const std::string host = mLine.mTree.hostOfArgument(customer);
        if (!product::pathExists(host)) {
            throw UsageError("--customer " + customer + ": there is no file " + host);
        }
        addOnce(paths, mLine.mTree.relative(host));
    }
    if (paths.empty()) {
        paths.push_back(mLine.mTree.relative(mLine.mTree.partitions().tvconfigs +
                                             product::keyword::kCustomerFile));
    }
    for (const std::string& path : paths) {
        ask(path, FileFormat::CUSTOMER);
    }
    readRequests();
    for (const std::string& path : paths) {
        Customer customer;
        customer.file = fileOf(path);
        customer.systemLine = customer.file->find("", product::keyword::kSystemFile);
        if (customer.systemLine != nullptr && !customer.systemLine->value.empty()) {
            ask(pathOf(customer.systemLine->value), FileFormat::SYSTEM);
        }
        mLine.mCustomers.push_back(customer);
    }
    readRequests();
    for (Customer& customer : mLine.mCustomers) {
        if (customer.systemLine != nullptr && !customer.systemLine->value.empty()) {
            const std::string path = pathOf(customer.systemLine->value);
            customer.system = fileOf(path);
            name(path, customer.file, customer.systemLine);
        }
    }
}

// The index of the one model that the product line has; nothing for all models.
std::optional<int32_t> ProductLineBuilder::selectedModel() const {
    if (mSelection.model || !mSelection.isOneSet) {
        return mSelection.model;
    }
    const std::string& folder = mLine.mTree.partitions().impdata;
    return static_cast<int32_t>(product::ProjectID::read(folder).value_or(0));
}

void ProductLineBuilder::findModels() {
    const std::optional<int32_t> selected = selectedModel();
    for (const Customer& customer : mLine.mCustomers) {
        if (customer.system == nullptr) {
            continue;
        }
        for (const ReadLine& line : customer.system->lines()) {
            if (line.use != LineUse::ITEM) {
                continue;
            }
            Model model;
            model.index = product::parseDecimal(line.key.substr(product::keyword::kModel.size()));
            model.customer = &customer;
            model.line = &line;
            model.counts = customer.system->find("", line.key) == &line;
            if (!selected || *selected == model.index) {
                mLine.mModels.push_back(model);
            }
        }
    }
    if (mSelection.model && mLine.mModels.empty()) {
        throw UsageError("--model " + std::to_string(*mSelection.model) +
                         ": no line of the system file has this index");
    }
}

void ProductLineBuilder::findBoards() {
    const Partitions& partitions = mLine.mTree.partitions();
    const FileLines* const identity = fileOf(kBoardIdPath);
    const ReadLine* const id =
            identity != nullptr ? identity->find("", product::keyword::kBoardId) : nullptr;
    product::ProjectFileReader reader(partitions.tvdata.c_str(), partitions.tvconfigs.c_str(),
                                      partitions.impdata.c_str(), nullptr);
    const std::string boardPath(id != nullptr ? reader.cleanPath(id->value) : "");
    std::vector<std::string> paths;
    // A misspelt word for no board is the path of a file that does not exist.
    bool hasNone = !boardPath.empty() && boardPath.find('/') == std::string::npos;
    if (!boardPath.empty() && !hasNone) {
        mLine.mBoardIdPath = mLine.mTree.relative(boardPath);
        name(mLine.mBoardIdPath, identity, id);
    }
    if (mSelection.board == "none") {
        hasNone = true;
    } else if (!mSelection.board.empty()) {
        // A file name alone names a file of the usual folder.
        const std::string usual = partitions.tvconfigs + "/board/" + mSelection.board;
        const std::string host =
                isRegularFile(usual) ? usual : mLine.mTree.hostOfArgument(mSelection.board);
        if (!isRegularFile(host)) {
            throw UsageError("--board " + mSelection.board + ": there is no file " + host);
        }
        hasNone = false;
        paths.push_back(mLine.mTree.relative(host));
    } else if (!mLine.mBoardIdPath.empty()) {
        paths.push_back(mLine.mBoardIdPath);
    }
    if (mSelection.board.empty() && !mSelection.isOneSet) {
        for (const std::string& folder :
             {std::string("tvconfigs/board"), folderOf(mLine.mBoardIdPath)}) {
            for (const std::string& file :
                 folder.empty() ? std::vector<std::string>()
                                : filesIn(mLine.mTree.host(folder), kIniEnding)) {
                addOnce(paths, folder + "/" + file);
            }
        }
    }
    if (hasNone || paths.empty()) {
        mLine.mBoards.push_back({"none", nullptr});
    }
    std::sort(paths.begin(), paths.end());
    for (const std::string& path : paths) {
        ask(path, FileFormat::PROJECT);
        mLine.mBoards.push_back({std::string(product::fileNameOf(path)), nullptr});
    }
    readRequests();
    for (size_t i = 0; i < paths.size(); ++i) {
        mLine.mBoards[mLine.mBoards.size() - paths.size() + i].file = fileOf(paths[i]);
    }
}

void ProductLineBuilder::readProjects() {
    for (const Model& model : mLine.mModels) {
        if (!model.line->value.empty()) {
            ask(pathOf(model.line->value), FileFormat::PROJECT);
        }
    }
    readRequests();
    for (Model& model : mLine.mModels) {
        if (!model.line->value.empty()) {
            const std::string path = pathOf(model.line->value);
            model.file = fileOf(path);
            name(path, model.customer->system, model.line);
        }
    }
}

void ProductLineBuilder::followItems() {
    std::set<const FileLines*> files;
    for (const Model& model : mLine.mModels) {
        files.insert(model.file);
    }
    for (const Board& board : mLine.mBoards) {
        files.insert(board.file);
    }
    // In the order of their paths, so that the result is the same from run to run.
    for (const auto& [path, file] : mLine.mFiles) {
        if (files.find(file.get()) == files.end()) {
            continue;
        }
        for (const ReadLine& line : file->lines()) {
            if (line.use == LineUse::ITEM && file->find(line.section, line.key) == &line) {
                followItem(*file, line);
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
    const std::string features = "tvconfigs/tv.config";
    name(features, nullptr, nullptr);
    ask(features, FileFormat::TV_FEATURES);
    readRequests();
}

void ProductLineBuilder::followItem(const FileLines& file, const ReadLine& line) {
    const product::KnownItem* const known = product::findKnownItem({line.section, line.key});
    const bool isPath = !line.value.empty() && line.value.front() == '/';
    const bool namesFile = known != nullptr && (known->type == product::ValueType::PATH ||
                                                known->type == product::ValueType::FOLDER);
    if (line.value.empty() || (!isPath && !namesFile)) {
        return;
    }
    std::string path = pathOf(line.value);
    if (namesFile && known->names == FileFormat::CHANNEL_PLANS) {
        addOnce(mPlanFolders, path);
        name(path + product::kChannelMapFile, &file, &line);
        return;
    }
    name(path, &file, &line);
    if (!namesFile) {
        return;
    }
    if (known->names == FileFormat::TV_SYSTEMS) {
        addOnce(mTvSystemPaths, path);
    } else if (known->names != FileFormat::OPAQUE) {
        ask(path, known->names);
    }
    if (line.key == product::item::kAvrAudio.key &&
        line.section == product::item::kAvrAudio.category) {
        const std::string folder = folderOf(path);
        for (const std::string& avr : filesIn(mLine.mTree.host(folder), kIniEnding)) {
            if (avr.compare(0, 4, "AVR_") == 0) {
                name(folder + "/" + avr, &file, &line);
                ask(folder + "/" + avr, FileFormat::AUXILIARY);
            }
        }
    }
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
        auto& file = mLine.mFiles[mTvSystemPaths[i]];
        file = systems[i]->takeFile();
        files.file = file.get();
        if (map != nullptr) {
            name(map->path(), files.file, files.file->find("", product::element::kCountryMap));
            auto& kept = mLine.mFiles[map->path()];
            kept = kept != nullptr ? std::move(kept) : std::move(map);
            files.map = kept.get();
        }
        files.systems = std::move(systems[i]);
        mLine.mTvSystems.push_back(std::move(files));
    }
    for (const TvSystemFiles& files : mLine.mTvSystems) {
        for (const ReadLine& line : files.file->lines()) {
            if (line.use == LineUse::ITEM && !line.section.empty() && line.isNew) {
                followItem(*files.file, line);
            }
        }
        if (files.map == nullptr) {
            continue;
        }
        // By reference: the lines are kept, so a copy must not be walked through.
        for (const ReadLine& line : files.map->lines()) {
            // The service removes what stands before the partition's name.
            const size_t at = line.value.find("/tvconfigs");
            if (line.use == LineUse::ITEM && line.key == product::element::kFeaturesOfCountry &&
                at != std::string_view::npos) {
                const std::string path = pathOf(line.value.substr(at));
                name(path, files.map, &line);
                ask(path, FileFormat::TV_FEATURES);
            }
        }
    }
    readRequests();
}

void ProductLineBuilder::followPlans() {
    if (mPlanFolders.empty() && !mLine.mModels.empty()) {
        mPlanFolders.push_back("tvconfigs" + std::string(product::kDefaultPlansFolder));
        name(mPlanFolders.back() + product::kChannelMapFile, nullptr, nullptr);
    }
    std::sort(mPlanFolders.begin(), mPlanFolders.end());
    std::vector<std::unique_ptr<PlanFolder>> folders(mPlanFolders.size());
    forEachInParallel(folders.size(), [&](size_t i) {
        folders[i] = std::make_unique<PlanFolder>(mLine.mTree, mPlanFolders[i]);
    });
    for (std::unique_ptr<PlanFolder>& folder : folders) {
        PlanFiles files;
        std::unique_ptr<FileLines> map = folder->takeMap();
        const std::string mapPath = map->path();
        auto& kept = mLine.mFiles[mapPath];
        kept = std::move(map);
        files.map = kept.get();
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

void ProductLineBuilder::findCountries() {
    const product::NameTable names = product::countryNames();
    std::set<int32_t> values;
    const auto add = [&](std::string_view name) {
        const std::optional<int32_t> value = names.find(name);
        if (value && *value != product::kNoCountry) {
            values.insert(*value);
        }
    };
    for (const auto& [path, file] : mLine.mFiles) {
        if (file->format() == FileFormat::COUNTRY_LIST) {
            for (const ReadLine& line : file->lines()) {
                if (line.use == LineUse::ITEM) {
                    add(line.key);
                }
            }
        } else if (file->format() == FileFormat::COUNTRY_MAP) {
            for (const auto& [name, line] : file->sections()) {
                add(name);
            }
        }
    }
    for (const int32_t value : values) {
        mLine.mCountries.push_back(_tv_country{value});
    }
}

// As at a start of the service, which would save the first country of the map.
_tv_country ProductLineBuilder::countryOfSet() const {
    const Partitions& partitions = mLine.mTree.partitions();
    product::RegionalData data([&] { return partitions; });
    const product::TvSysMapCfgHolder holder(partitions, mLine.mProperties, data);
    if (const std::optional<_tv_country> saved = holder.savedCountry()) {
        return *saved;
    }
    const Model none;
    const Model& model = mLine.mModels.empty() ? none : mLine.mModels.back();
    const LayeredItem systems =
            mLine.item(model, mLine.mBoards.front(), product::item::kTvSystems.category,
                       product::item::kTvSystems.key);
    for (const TvSystemFiles& files : mLine.mTvSystems) {
        if (systems && files.file->path() == pathOf(systems.line->value)) {
            return files.systems->firstCountry();
        }
    }
    return product::kNoCountry;
}

void ProductLineBuilder::selectCountry() {
    if (mSelection.country.empty()) {
        if (mSelection.isOneSet) {
            const _tv_country country = countryOfSet();
            mLine.mCountries.assign(country == product::kNoCountry ? 0 : 1, country);
        }
        return;
    }
    const std::optional<int32_t> value = product::countryNames().find(mSelection.country);
    if (!value) {
        throw UsageError("--country " + mSelection.country + ": the service knows no such country");
    }
    mLine.mCountries = {_tv_country{*value}};
}

void ProductLineBuilder::name(const std::string& path, const FileLines* file,
                              const ReadLine* line) {
    mLine.mNamings[path].push_back({file, line});
}

void ProductLineBuilder::readRequests() {
    // A file has the format in which it is named first.
    std::map<std::string, FileFormat> wanted;
    for (const auto& [path, format] : mRequests) {
        if (mLine.mFiles.find(path) == mLine.mFiles.end()) {
            wanted.try_emplace(path, format);
        }
    }
    mRequests.clear();
    const std::vector<Request> requests(wanted.begin(), wanted.end());
    std::vector<std::unique_ptr<FileLines>> files(requests.size());
    forEachInParallel(requests.size(), [&](size_t i) {
        files[i] = readFile(mLine.mTree, requests[i].first, requests[i].second);
    });
    for (size_t i = 0; i < requests.size(); ++i) {
        mLine.mFiles.emplace(requests[i].first, std::move(files[i]));
    }
}

// The path that a value names, relative to the tree.
std::string ProductLineBuilder::pathOf(std::string_view value) const {
    return mLine.mTree.relative(mLine.mTree.hostOfWritten(value));
}

}  // namespace mlk::tree
