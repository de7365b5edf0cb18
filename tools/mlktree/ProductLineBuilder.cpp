#include "tools/mlktree/ProductLineBuilder.h"

#include <algorithm>
#include <filesystem>
#include <memory>
#include <set>
#include <system_error>

#include "common/Decimal.h"
#include "common/Paths.h"
#include "projectconfigs/ChainKeywords.h"
#include "projectconfigs/ProjectFileReader.h"
#include "projectconfigs/ProjectID.h"
#include "tools/common/Suggest.h"
#include "tools/mlktree/CountryNames.h"
#include "tools/mlktree/FileReading.h"
#include "tools/mlktree/FolderFiles.h"
#include "tools/mlktree/Parallel.h"

namespace mlk::tree {

namespace product = vendor::morlak::mlkconfigs::V1_0::implementation;

namespace {

template <typename Value>
void addOnce(std::vector<Value>& values, const Value& value) {
    if (std::find(values.begin(), values.end(), value) == values.end()) {
        values.push_back(value);
    }
}

// "; there are 1, 2, 3": the indexes of the models, for the end of a message.
std::string indexesOf(const std::vector<Customer>& customers) {
    constexpr size_t kMostNamed = 12;
    std::set<int32_t> indexes;
    for (const Customer& customer : customers) {
        if (customer.system == nullptr) {
            continue;
        }
        for (const ReadLine& line : customer.system->lines()) {
            if (line.use == LineUse::ITEM) {
                indexes.insert(
                        product::parseDecimal(line.key.substr(product::keyword::kModel.size())));
            }
        }
    }
    std::string list;
    size_t named = 0;
    for (const int32_t index : indexes) {
        if (named++ < kMostNamed) {
            list += (list.empty() ? "; there are " : ", ") + std::to_string(index);
        }
    }
    return list +
           (named > kMostNamed ? " and " + std::to_string(named - kMostNamed) + " more" : "");
}

// "; did you mean skerry_b1.ini?", if the folder has a file of a near name.
std::string boardMeant(const std::string& board, const std::string& folder) {
    const std::vector<std::string> files = filesIn(folder, kIniEnding, kMostBoards).names;
    return didYouMean(board, {files.begin(), files.end()}, "");
}

// The customer file that --customer names: by its path, or by its name alone if it lies beside the
// usual one. Throws UsageError if there is no such file, or if the name alone fits two.
std::string customerFile(const Tree& tree, const std::string& argument) {
    std::string byPath = tree.hostOfArgument(argument);
    const std::string& folder = tree.partitions().tvconfigs;
    const bool isName = argument.find('/') == std::string::npos;
    std::string usual = pathIn(folder, argument);
    if (isName && isRegularFile(usual)) {
        std::error_code error;
        if (isRegularFile(byPath) && !std::filesystem::equivalent(byPath, usual, error)) {
            throw UsageError("--customer " + argument + ": there are " + byPath + " and " + usual +
                             "; name one of them by its path, as in tvconfigs/" + argument);
        }
        return usual;
    }
    if (isRegularFile(byPath)) {
        return byPath;
    }
    const std::string host = isName ? usual : byPath;
    const std::vector<std::string> names = filesIn(folderOf(host), kIniEnding, kMostBoards).names;
    const std::string_view near =
            suggestion(product::fileNameOf(argument), {names.begin(), names.end()});
    throw UsageError("--customer " + argument + ": there is no file " + host +
                     (near.empty()
                              ? ""
                              : "; did you mean " + argument.substr(0, argument.rfind('/') + 1) +
                                        std::string(near) + "?"));
}

}  // namespace

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
    const std::pair<std::string, FileFormat> files[] = {{kProjectIdPath, FileFormat::PROJECT_ID},
                                                        {kBoardIdPath, FileFormat::BOARD_ID},
                                                        {kCountryIdPath, FileFormat::COUNTRY_ID}};
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
        addOnce(paths, mLine.mTree.relative(customerFile(mLine.mTree, customer)));
        mCustomerWords.resize(paths.size(), customer);
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
        customer.file = fileAs(path, FileFormat::CUSTOMER);
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
            customer.system = fileAs(path, FileFormat::SYSTEM);
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
            model.counts = customer.system->counts(line);
            if (!selected || *selected == model.index) {
                mLine.mModels.push_back(model);
            }
        }
    }
    if (mSelection.model && mLine.mModels.empty()) {
        throw UsageError("--model " + std::to_string(*mSelection.model) +
                         ": no line of the system file has this index" +
                         indexesOf(mLine.mCustomers));
    }
}

bool ProductLineBuilder::followBoardId() {
    const Partitions& partitions = mLine.mTree.partitions();
    const FileLines* const identity = fileOf(kBoardIdPath);
    const ReadLine* const id =
            identity != nullptr ? identity->find("", product::keyword::kBoardId) : nullptr;
    product::ProjectFileReader reader(partitions.tvdata.c_str(), partitions.tvconfigs.c_str(),
                                      partitions.impdata.c_str(), nullptr);
    const std::string boardPath(id != nullptr ? reader.cleanPath(id->value) : "");
    // A misspelt word for no board is the path of a file that does not exist.
    const bool isWord = boardPath.find('/') == std::string::npos;
    if (!isWord) {
        mLine.mBoardIdPath = mLine.mTree.relative(boardPath);
        name(mLine.mBoardIdPath, identity, id);
    }
    return isWord && !boardPath.empty();
}

std::string ProductLineBuilder::boardOfOption() const {
    // A file name alone names a file of the usual folder.
    const std::string folder = mLine.mTree.partitions().tvconfigs + "/board";
    const std::string usual = pathIn(folder, mSelection.board);
    const std::string host =
            isRegularFile(usual) ? usual : mLine.mTree.hostOfArgument(mSelection.board);
    if (!isRegularFile(host)) {
        const bool isName = mSelection.board.find('/') == std::string::npos;
        throw UsageError("--board " + mSelection.board + ": there is no file " +
                         (isName ? usual : host) + boardMeant(mSelection.board, folder));
    }
    return mLine.mTree.relative(host);
}

std::set<std::string> ProductLineBuilder::boardsOfTree() {
    std::set<std::string> paths;
    if (!mLine.mBoardIdPath.empty()) {
        paths.insert(mLine.mBoardIdPath);
    }
    if (mSelection.isOneSet) {
        return paths;
    }
    for (const std::string& folder :
         {std::string("tvconfigs/board"), folderOf(mLine.mBoardIdPath)}) {
        if (folder.empty()) {
            continue;
        }
        for (const std::string& file : iniFilesIn(folder, kMostBoards, "boards")) {
            paths.insert(pathIn(folder, file));
        }
    }
    return paths;
}

void ProductLineBuilder::findBoards() {
    const bool isWithout = followBoardId();
    std::set<std::string> paths;
    if (mSelection.board.empty()) {
        paths = boardsOfTree();
    } else if (mSelection.board != "none") {
        paths = {boardOfOption()};
    }
    if (paths.empty() || (isWithout && mSelection.board.empty())) {
        mLine.mBoards.push_back({"none", nullptr});
    }
    const size_t former = mLine.mBoards.size();
    for (const std::string& path : paths) {
        ask(path, FileFormat::PROJECT);
        mLine.mBoards.push_back({std::string(product::fileNameOf(path)), nullptr});
    }
    readRequests();
    size_t board = former;
    for (const std::string& path : paths) {
        mLine.mBoards[board++].file = fileAs(path, FileFormat::PROJECT);
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
            model.file = fileAs(path, FileFormat::PROJECT);
            name(path, model.customer->system, model.line);
        }
    }
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
        mLine.mContents.add(*files[i]);
    });
    for (size_t i = 0; i < requests.size(); ++i) {
        mLine.mFiles.emplace(requests[i].first, std::move(files[i]));
    }
}

std::vector<std::string> ProductLineBuilder::iniFilesIn(const std::string& folder, size_t most,
                                                        const char* what) {
    FolderFiles files = filesIn(mLine.mTree.host(folder), kIniEnding, most);
    if (files.isTooLarge) {
        mLine.mUnsearched[folder] = what;
    }
    return std::move(files.names);
}

const FileLines* ProductLineBuilder::fileAs(const std::string& path, FileFormat format) {
    const FileLines* const file = fileOf(path);
    if (file == nullptr || file->format() == format) {
        return file;
    }
    const FileLines*& anew = mReadAnew[{path, format}];
    if (anew == nullptr) {
        std::unique_ptr<FileLines> read = readFile(mLine.mTree, path, format);
        mLine.mContents.add(*read);
        anew = keep(std::move(read));
    }
    return anew;
}

const FileLines* ProductLineBuilder::keep(std::unique_ptr<FileLines> file) {
    std::unique_ptr<FileLines>& first = mLine.mFiles[file->path()];
    if (first == nullptr) {
        first = std::move(file);
        return first.get();
    }
    if (first->format() == file->format()) {
        return first.get();
    }
    // A path that lines name as files of two formats. Others refer to the first reading.
    return mLine.mOtherReadings.emplace_back(std::move(file)).get();
}

// The path that a value names, relative to the tree.
std::string ProductLineBuilder::pathOf(std::string_view value) const {
    return mLine.mTree.relative(mLine.mTree.hostOfWritten(value));
}

}  // namespace mlk::tree
