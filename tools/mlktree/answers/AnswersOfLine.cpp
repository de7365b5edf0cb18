// Makes the answers of a product line: who its sets are, and which pieces each of them has.

#include <algorithm>
#include <iterator>
#include <map>
#include <set>

#include "projectconfigs/ChainKeywords.h"
#include "projectconfigs/KnownItems.h"
#include "tools/mlktree/FolderFiles.h"
#include "tools/mlktree/answers/FilesOfLine.h"
#include "tools/mlktree/answers/LineAnswers.h"
#include "tools/mlktree/answers/NamedFiles.h"
#include "tools/mlktree/answers/PieceMaker.h"
#include "tools/mlktree/set/CountryItems.h"
#include "tools/mlktree/set/SetCountry.h"
#include "tools/mlktree/set/SetModel.h"
#include "tools/mlktree/set/SetProduct.h"

namespace mlk::tree {

namespace product = vendor::morlak::mlkconfigs::V1_0::implementation;

namespace {

/** The items that decide which pieces a set has. */
enum Deciding : size_t {
    PANEL,
    IC,
    AVR,
    KARAOKE,
    KEYS,
    DDCCI,
    TV_SYSTEMS,
    TV_CONFIG,
    COUNTRIES,
    CLTV_COUNTRIES,
    LANGUAGES,
    PLANS,
};
constexpr ConfigKey kDeciding[] = {
        product::item::kPanelAudio,    product::item::kICAudio,    product::item::kAvrAudio,
        product::item::kKaraoke,       product::item::kGlobalKeys, product::item::kCustomerDdcci,
        product::item::kTvSystems,     product::kTvConfigItem,     product::item::kCountries,
        product::item::kCLTVCountries, product::item::kLanguages,  product::item::kChannelPlans,
};
using DecidingValues = std::array<std::string_view, std::size(kDeciding)>;

/** Countries that bring the same items. */
struct CountryClass {
    std::vector<BroughtItem> items;   // without a line if each country has a line of its own
    uint32_t byCountry = kNone;       // number in LineAnswers::placesByCountry
    std::vector<uint32_t> countries;  // numbers in LineAnswers::countries; kNone for no country
};

/** A model and a board: their files, and what these give before the country is applied. */
struct Pair {
    uint32_t model = kNone;
    uint32_t board = 0;
    uint32_t customer = 0;
    const FileLines* modelFile = nullptr;
    const FileLines* boardFile = nullptr;
    DecidingValues values;

    const ReadLine* find(std::string_view section, std::string_view key) const {
        const ReadLine* line = boardFile != nullptr ? boardFile->find(section, key) : nullptr;
        if (line == nullptr && modelFile != nullptr) {
            line = modelFile->find(section, key);
        }
        return line;
    }
};

class AnswersBuilder {
  public:
    AnswersBuilder(const ProductLine& line, LineAnswers& answers)
        : mLine(line),
          mAnswers(answers),
          mFiles(std::make_shared<FilesOfLine>(line)),
          mMaker(*mFiles, answers) {}

    void build(bool isOneSet) {
        addCustomers();
        addBoards();
        addCountries();
        addCountriesOfCustomers();
        for (const Model& model : mLine.models()) {
            if (model.counts) {
                addModel(model);
            }
        }
        if (isOneSet && mAnswers.models.empty()) {
            addSets(Pair());
        }
        mMaker.make();
        mAnswers.files = namedFiles(mAnswers, mLine.tree());
        mAnswers.owners.push_back(mFiles);
    }

  private:
    void addCustomers();
    void addBoards();
    void addCountries();
    void addCountriesOfCustomers();
    void addModel(const Model& model);
    /** Adds the sets of a model with all boards and countries. */
    void addSets(const Pair& ofModel);
    void addSetsOf(const Pair& pair, const CountryClass& countries);
    const std::vector<CountryClass>& classesOf(std::string_view tvSystems);
    std::string_view written(const FileLines* file) {
        const Tree& tree = mLine.tree();
        return file == nullptr ? "" : mAnswers.keep(tree.written(tree.host(file->path())));
    }
    const FileLines* asProject(const FileLines* file) {
        return file == nullptr ? nullptr : &mFiles->as(file->path(), FileFormat::PROJECT);
    }

    const ProductLine& mLine;
    LineAnswers& mAnswers;
    const std::shared_ptr<FilesOfLine> mFiles;
    PieceMaker mMaker;
    std::vector<const FileLines*> mBoardFiles;
    std::vector<_tv_country> mCountries;
    std::map<const Customer*, uint32_t> mCustomers;
    std::map<std::string_view, std::vector<CountryClass>> mClasses;  // by the TV system file
    std::map<AnswerPieces, uint32_t> mPieces;
};

void AnswersBuilder::addCustomers() {
    for (const Customer& customer : mLine.customers()) {
        mCustomers[&customer] = static_cast<uint32_t>(mAnswers.customers.size());
        AnswerCustomer& made = mAnswers.customers.emplace_back();
        made.file = customer.file->path();
        SetProduct product(mLine, {&customer, nullptr, nullptr, product::kNoCountry});
        const product::ProjectParser& items = product.project().items();
        made.id = {mAnswers.keep(items.getCustomerId()),
                   mMaker.placeOf(customer.file,
                                  customer.file->find("", product::keyword::kCustomerId))};
        made.system = {written(customer.system),
                       mMaker.placeOf(customer.file, customer.systemLine)};
        made.highestIndex = items.getProjectMaxIdx();
        std::vector<std::string> projects;
        items.getProjectIniList(projects);
        for (std::string& project : projects) {
            made.projectFiles.push_back({mAnswers.keep(std::move(project)), {}});
        }
    }
}

void AnswersBuilder::addBoards() {
    std::set<std::string_view> names;
    const std::string usual = "tvconfigs/board";
    for (const Board& board : mLine.boards()) {
        const std::string_view file = written(board.file);
        // Whichever boards are looked at, a name alone is that of a board of the usual folder.
        const bool isOther = board.file != nullptr && folderOf(board.file->path()) != usual &&
                             isRegularFile(mLine.tree().host(pathIn(usual, board.name)));
        const bool isOwn = !isOther && names.insert(board.name).second;
        mAnswers.boards.push_back({isOwn ? std::string_view(board.name) : file, file});
        mBoardFiles.push_back(asProject(board.file));
    }
}

void AnswersBuilder::addCountries() {
    for (const _tv_country country : mLine.countries()) {
        if (country == product::kNoCountry) {
            continue;
        }
        mCountries.push_back(country);
        mAnswers.countries.push_back(mAnswers.keep(countryName(country)));
    }
}

void AnswersBuilder::addCountriesOfCustomers() {
    size_t number = 0;
    for (const Customer& customer : mLine.customers()) {
        AnswerCustomer& made = mAnswers.customers[number++];
        if (!customer.countries) {
            continue;
        }
        std::set<std::string_view> names;
        for (const _tv_country country : *customer.countries) {
            const auto at = std::find(mCountries.begin(), mCountries.end(), country);
            names.insert(mAnswers.countries[static_cast<size_t>(at - mCountries.begin())]);
        }
        if (names.size() < mAnswers.countries.size()) {
            made.countries = std::move(names);
        }
    }
}

void AnswersBuilder::addModel(const Model& model) {
    Pair pair;
    pair.model = static_cast<uint32_t>(mAnswers.models.size());
    pair.customer = mCustomers[model.customer];
    pair.modelFile = asProject(model.file);
    mAnswers.models.push_back(
            {model.index,
             pair.customer,
             {written(model.file), mMaker.placeOf(model.customer->system, model.line)}});
    addSets(pair);
}

void AnswersBuilder::addSets(const Pair& ofModel) {
    for (uint32_t board = 0; board < mBoardFiles.size(); ++board) {
        Pair pair = ofModel;
        pair.board = board;
        pair.boardFile = mBoardFiles[board];
        for (size_t i = 0; i < std::size(kDeciding); ++i) {
            const ReadLine* const line = pair.find(kDeciding[i].category, kDeciding[i].key);
            pair.values[i] = line != nullptr ? line->value : std::string_view();
        }
        const size_t before = mAnswers.sets.size();
        for (const CountryClass& countries : classesOf(pair.values[TV_SYSTEMS])) {
            addSetsOf(pair, countries);
        }
        // In the order of countries: their numbers are in it, and kNone stands alone.
        std::sort(mAnswers.sets.begin() + static_cast<ptrdiff_t>(before), mAnswers.sets.end(),
                  [](const AnswerSet& a, const AnswerSet& b) { return a.country < b.country; });
    }
}

void AnswersBuilder::addSetsOf(const Pair& pair, const CountryClass& countries) {
    DecidingValues present = pair.values;
    std::vector<const BroughtItem*> brought;
    for (const BroughtItem& item : countries.items) {
        // The service gives a value only to an item that the model or the board has.
        if (pair.find(item.section, item.key) == nullptr) {
            continue;
        }
        brought.push_back(&item);
        for (size_t i = 0; i < std::size(kDeciding); ++i) {
            if (item.key == kDeciding[i].key && item.section == kDeciding[i].category) {
                present[i] = item.value;
            }
        }
    }
    AnswerPieces pieces;
    pieces.items = {mMaker.project(pair.modelFile), mMaker.project(pair.boardFile),
                    mMaker.brought(brought, countries.byCountry)};
    pieces.features = mMaker.features(present[TV_CONFIG]);
    pieces.framework = mMaker.framework();
    // The service loads these before it applies the country; only the folder of AVRs is looked up
    // afterwards.
    pieces.delays =
            mMaker.delays({pair.values[PANEL], pair.values[IC], pair.values[AVR], present[AVR]});
    pieces.karaoke = mMaker.auxiliary(pair.values[KARAOKE], true);
    pieces.keys = mMaker.auxiliary(pair.values[KEYS], false);
    pieces.ddcci = mMaker.auxiliary(pair.values[DDCCI], false);
    pieces.countries = mMaker.list(present[COUNTRIES], FileFormat::COUNTRY_LIST);
    pieces.cltvCountries = mMaker.list(present[CLTV_COUNTRIES], FileFormat::COUNTRY_LIST);
    pieces.languages = mMaker.list(present[LANGUAGES], FileFormat::LANGUAGE_LIST);
    const auto [entry, isNew] =
            mPieces.try_emplace(pieces, static_cast<uint32_t>(mAnswers.pieces.size()));
    if (isNew) {
        mAnswers.pieces.push_back(pieces);
    }
    for (const uint32_t country : countries.countries) {
        AnswerSet& set = mAnswers.sets.emplace_back();
        set.model = pair.model;
        set.board = pair.board;
        set.country = country;
        set.customer = pair.customer;
        set.pieces = entry->second;
        set.plans = country == kNone ? kNone : mMaker.plans(present[PLANS], mCountries[country]);
    }
}

const std::vector<CountryClass>& AnswersBuilder::classesOf(std::string_view tvSystems) {
    const auto [entry, isNew] = mClasses.try_emplace(tvSystems);
    std::vector<CountryClass>& classes = entry->second;
    if (!isNew) {
        return classes;
    }
    std::vector<uint32_t> all;
    for (uint32_t i = 0; i < mCountries.size(); ++i) {
        all.push_back(i);
    }
    if (all.empty() || tvSystems.empty()) {
        classes.push_back({{}, kNone, all.empty() ? std::vector<uint32_t>{kNone} : all});
        return classes;
    }
    const TvSystemFiles& files = mFiles->tvSystems(mFiles->pathOf(tvSystems));
    const CountryItems items(files);
    const auto byCountry = static_cast<uint32_t>(mAnswers.placesByCountry.size());
    std::vector<AnswerPlace>& places = mAnswers.placesByCountry.emplace_back(all.size());
    std::map<std::vector<std::pair<const ReadLine*, std::string_view>>, size_t> known;
    for (const uint32_t country : all) {
        CountryBrings brings = items.of(mCountries[country]);
        std::vector<std::pair<const ReadLine*, std::string_view>> lines;
        for (BroughtItem& item : brings.items) {
            if (item.file == files.map) {
                // Of the country's own record, so that only the place tells countries apart.
                places[country] = mMaker.placeOf(item.file, item.line);
                item.line = nullptr;
            }
            lines.emplace_back(item.line, item.value);
        }
        const auto [found, isFirst] = known.try_emplace(lines, classes.size());
        if (isFirst) {
            classes.push_back({std::move(brings.items), byCountry, {}});
        }
        classes[found->second].countries.push_back(country);
    }
    return classes;
}

}  // namespace

std::unique_ptr<const LineAnswers> answersOf(const ProductLine& line, bool isOneSet) {
    auto answers = std::make_unique<LineAnswers>();
    AnswersBuilder(line, *answers).build(isOneSet);
    return answers;
}

}  // namespace mlk::tree
