#include "tools/mlktree/diff/LineDiff.h"

#include <algorithm>
#include <map>
#include <set>
#include <tuple>

#include "tools/mlktree/diff/PieceDiff.h"
#include "tools/mlktree/diff/Reach.h"

namespace mlk::tree {

namespace {

/** Who a set is: customer, model, board and country. No model and no country come first. */
using Identity = std::tuple<std::string_view, int64_t, std::string_view, std::string_view>;

Identity identityOf(const LineAnswers& line, const AnswerSet& set) {
    return {line.customers[set.customer].file,
            set.model == kNone ? INT64_MIN : int64_t{line.models[set.model].index},
            line.boards[set.board].name,
            set.country == kNone ? std::string_view() : line.countries[set.country]};
}

/** The changes of what a service tells of the customer's files. */
PieceDiff::List customerChanges(PieceDiff& pieces, const std::string& prefix,
                                const AnswerCustomer& a, const AnswerCustomer& b) {
    PieceDiff::List list;
    pieces.compareTexts(list, ChangeKind::CUSTOMER, prefix + "id", a.id, b.id);
    pieces.compareTexts(list, ChangeKind::CUSTOMER, prefix + "system file", a.system, b.system);
    const std::string highestA = std::to_string(a.highestIndex);
    const std::string highestB = std::to_string(b.highestIndex);
    pieces.compareTexts(list, ChangeKind::CUSTOMER, prefix + "highest index", {highestA, {}},
                        {highestB, {}});
    pieces.compareLists(list, ChangeKind::CUSTOMER, prefix + "project files ", a.projectFiles,
                        b.projectFiles);
    return list;
}

/** Compares all sets of two lines. */
class Comparison {
  public:
    Comparison(const LineAnswers& a, const LineAnswers& b, const SetFilter& filter)
        : mA(a), mB(b), mFilter(filter), mPieces(a, b) {}

    Difference run();

  private:
    /** What one line has and another lacks: its name, and where it stands. */
    struct Own {
        std::string name;
        AnswerEntry entry;
        SetGroup sets;
        bool isChosen;
    };

    void match();
    void compareSets();
    void compareIdentities();
    /** Adds what only one line has. */
    void addOwn(ChangeKind kind, const std::vector<Own>& a, const std::vector<Own>& b);
    void addUnmatched(const LineAnswers& line, const LineAnswers& other, bool isA);
    void addReached(uint32_t list, const std::vector<uint32_t>& positions);
    void addOwnKinds();
    std::string modelName(const LineAnswers& line, const AnswerModel& one) const;
    std::vector<Own> customersOf(const LineAnswers& line) const;
    std::vector<Own> modelsOf(const LineAnswers& line) const;
    std::vector<Own> boardsOf(const LineAnswers& line) const;
    std::vector<Own> countriesOf(const LineAnswers& line) const;
    /** The pairs that some of the lists reach. */
    std::vector<uint32_t> positionsOf(const std::vector<uint32_t>& lists) const;
    /** The changes that reach some pair, with their sets. */
    std::vector<Change> changesByReach();
    template <typename IsOf>
    std::vector<uint32_t> positionsWhere(const IsOf& isOf) const;

    const LineAnswers& mA;
    const LineAnswers& mB;
    const bool mIsOfMany = mA.customers.size() > 1 || mB.customers.size() > 1;  // customers
    const SetFilter& mFilter;
    PieceDiff mPieces;
    std::vector<SetPair> mPairs;
    std::vector<uint32_t> mNumbers;                 // of the sets of mPairs in mA
    std::vector<std::vector<uint32_t>> mPositions;  // by list: the pairs that it reaches
    std::vector<Change> mOwn;
};

void Comparison::match() {
    std::map<Identity, const AnswerSet*> ofB;
    for (const AnswerSet& set : mB.sets) {
        if (mFilter.fits(mB, set)) {
            ofB.emplace(identityOf(mB, set), &set);
        }
    }
    for (uint32_t i = 0; i < mA.sets.size(); ++i) {
        const auto found =
                mFilter.fits(mA, mA.sets[i]) ? ofB.find(identityOf(mA, mA.sets[i])) : ofB.end();
        if (found != ofB.end()) {
            mPairs.push_back({&mA.sets[i], found->second});
            mNumbers.push_back(i);
        }
    }
}

void Comparison::addReached(uint32_t list, const std::vector<uint32_t>& positions) {
    if (list == kNone) {
        return;
    }
    mPositions.resize(std::max<size_t>(mPositions.size(), list + 1));
    std::vector<uint32_t>& reached = mPositions[list];
    reached.insert(reached.end(), positions.begin(), positions.end());
}

void Comparison::compareSets() {
    for (uint32_t position = 0; position < mPairs.size(); ++position) {
        for (const uint32_t list : mPieces.listsOf(mPairs[position])) {
            addReached(list, {position});
        }
    }
}

template <typename IsOf>
std::vector<uint32_t> Comparison::positionsWhere(const IsOf& isOf) const {
    std::vector<uint32_t> positions;
    for (uint32_t i = 0; i < mPairs.size(); ++i) {
        if (isOf(*mPairs[i].a)) {
            positions.push_back(i);
        }
    }
    return positions;
}

// What identities that both lines have are: customers, files of models and boards.
void Comparison::compareIdentities() {
    const auto add = [this](PieceDiff::List list, const auto& isOf) {
        const uint32_t number = mPieces.keep(std::move(list));
        if (number != kNone) {
            addReached(number, positionsWhere(isOf));
        }
    };
    for (uint32_t a = 0; a < mA.customers.size(); ++a) {
        for (const AnswerCustomer& other : mB.customers) {
            const AnswerCustomer& one = mA.customers[a];
            if (one.file == other.file && mFilter.fits(one)) {
                const std::string prefix =
                        mA.customers.size() > 1 ? std::string(one.file) + " " : std::string();
                add(customerChanges(mPieces, prefix, one, other),
                    [a](const AnswerSet& set) { return set.customer == a; });
            }
        }
    }
    std::set<uint32_t> models;
    std::set<uint32_t> boards;
    for (const SetPair& pair : mPairs) {
        const uint32_t model = pair.a->model;
        if (model != kNone && models.insert(model).second) {
            PieceDiff::List list;
            mPieces.compareTexts(list, ChangeKind::MODEL,
                                 "file of model " + std::to_string(mA.models[model].index),
                                 mA.models[model].file, mB.models[pair.b->model].file);
            add(std::move(list), [model](const AnswerSet& set) { return set.model == model; });
        }
        const uint32_t board = pair.a->board;
        if (boards.insert(board).second) {
            const AnswerBoard& one = mA.boards[board];
            PieceDiff::List list;
            mPieces.compareTexts(list, ChangeKind::BOARD, "file of board " + std::string(one.name),
                                 {one.file, {}}, {mB.boards[pair.b->board].file, {}});
            add(std::move(list), [board](const AnswerSet& set) { return set.board == board; });
        }
    }
}

void Comparison::addOwn(ChangeKind kind, const std::vector<Own>& a, const std::vector<Own>& b) {
    const auto add = [&](const LineAnswers& line, const std::vector<Own>& mine,
                         const std::vector<Own>& theirs, auto side) {
        for (const Own& one : mine) {
            const bool isThere = std::any_of(theirs.begin(), theirs.end(), [&](const Own& other) {
                return other.isChosen && other.name == one.name;
            });
            if (!isThere && one.isChosen) {
                Change& change = mOwn.emplace_back();
                change.kind = kind;
                change.name = one.name;
                change.*side = ChangeSide{std::string(one.entry.text),
                                          std::string(line.pathOf(one.entry.place)),
                                          one.entry.place.isKnown() ? one.entry.place.line : 0};
                change.sets = {one.sets};
            }
        }
    };
    add(mA, a, b, &Change::a);
    add(mB, b, a, &Change::b);
}

// Sets that one line lacks although it has their model, board and country.
void Comparison::addUnmatched(const LineAnswers& line, const LineAnswers& other, bool isA) {
    std::set<Identity> theirs;
    std::set<std::pair<std::string_view, int64_t>> models;
    std::set<std::string_view> boards;
    std::set<std::string_view> countries;
    for (const AnswerSet& set : other.sets) {
        const Identity identity = identityOf(other, set);
        theirs.insert(identity);
        models.emplace(std::get<0>(identity), std::get<1>(identity));
        boards.insert(std::get<2>(identity));
        countries.insert(std::get<3>(identity));
    }
    for (const AnswerSet& set : line.sets) {
        const Identity identity = identityOf(line, set);
        const auto& [customer, model, board, country] = identity;
        if (mFilter.fits(line, set) && theirs.count(identity) == 0 &&
            models.count({customer, model}) > 0 && boards.count(board) > 0 &&
            countries.count(country) > 0) {
            Change& change = mOwn.emplace_back();
            change.kind = ChangeKind::MODEL;
            change.name = nameOf(line, set);
            (isA ? change.a : change.b) = ChangeSide{"a set", "", 0};
        }
    }
}

std::string Comparison::modelName(const LineAnswers& line, const AnswerModel& one) const {
    return std::to_string(one.index) +
           (mIsOfMany ? " of " + std::string(line.customers[one.customer].file) : "");
}

std::vector<Comparison::Own> Comparison::customersOf(const LineAnswers& line) const {
    std::vector<Own> all;
    for (const AnswerCustomer& one : line.customers) {
        all.push_back({std::string(one.file), one.id, {}, mFilter.fits(one)});
    }
    for (const AnswerModel& one : line.models) {
        if (mIsOfMany) {
            all[one.customer].sets.models.push_back(modelName(line, one));
        }
    }
    return all;
}

std::vector<Comparison::Own> Comparison::modelsOf(const LineAnswers& line) const {
    std::vector<Own> all;
    for (const AnswerModel& one : line.models) {
        const std::string name = modelName(line, one);
        all.push_back({"model " + name,
                       one.file,
                       {{name}, {}, {}},
                       mFilter.fits(one) && mFilter.fits(line.customers[one.customer])});
    }
    return all;
}

std::vector<Comparison::Own> Comparison::boardsOf(const LineAnswers& line) const {
    std::vector<Own> all;
    for (const AnswerBoard& one : line.boards) {
        const std::string name(one.name);
        all.push_back({"board " + name, {one.file, {}}, {{}, {name}, {}}, mFilter.fits(one)});
    }
    return all;
}

std::vector<Comparison::Own> Comparison::countriesOf(const LineAnswers& line) const {
    std::vector<Own> all;
    for (const std::string_view one : line.countries) {
        all.push_back({"country " + std::string(one),
                       {one, {}},
                       {{}, {}, {std::string(one)}},
                       mFilter.fitsCountry(line, one)});
    }
    return all;
}

void Comparison::addOwnKinds() {
    addOwn(ChangeKind::CUSTOMER, customersOf(mA), customersOf(mB));
    addOwn(ChangeKind::MODEL, modelsOf(mA), modelsOf(mB));
    addOwn(ChangeKind::BOARD, boardsOf(mA), boardsOf(mB));
    // Those of customers that only one line has go with them.
    const bool hasBoth = mFilter.fitsSomeCustomer(mA) && mFilter.fitsSomeCustomer(mB);
    if (hasBoth) {
        addOwn(ChangeKind::COUNTRY, countriesOf(mA), countriesOf(mB));
    }
}

std::vector<uint32_t> Comparison::positionsOf(const std::vector<uint32_t>& lists) const {
    std::vector<uint32_t> positions;
    for (const uint32_t list : lists) {
        positions.insert(positions.end(), mPositions[list].begin(), mPositions[list].end());
    }
    std::sort(positions.begin(), positions.end());
    positions.erase(std::unique(positions.begin(), positions.end()), positions.end());
    return positions;
}

std::vector<Change> Comparison::changesByReach() {
    // Which lists a change stands in: those reach its sets. Most changes stand in few.
    std::vector<std::vector<uint32_t>> listsOf(mPieces.changes().size());
    for (uint32_t list = 0; list < mPositions.size(); ++list) {
        for (const uint32_t change : mPieces.lists()[list]) {
            listsOf[change].push_back(list);
        }
    }
    const Reach reach(mA, mNumbers);
    std::map<std::vector<uint32_t>, std::vector<SetGroup>> groups;
    std::vector<Change> changes;
    for (size_t i = 0; i < listsOf.size(); ++i) {
        if (listsOf[i].empty()) {
            continue;
        }
        const auto [known, isNew] = groups.try_emplace(listsOf[i]);
        if (isNew) {
            known->second = reach.groupsOf(positionsOf(listsOf[i]));
        }
        Change& change = changes.emplace_back(std::move(mPieces.changes()[i]));
        change.sets = known->second;
    }
    return changes;
}

Difference Comparison::run() {
    match();
    compareIdentities();
    compareSets();
    addOwnKinds();
    addUnmatched(mA, mB, true);
    addUnmatched(mB, mA, false);
    Difference difference;
    difference.changes = changesByReach();
    std::move(mOwn.begin(), mOwn.end(), std::back_inserter(difference.changes));
    return difference;
}

// Numbers in names are in the order of their values: channel 9 comes before channel 10.
bool isBefore(std::string_view a, std::string_view b) {
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    while (!a.empty() && !b.empty()) {
        size_t digitsA = 0;
        size_t digitsB = 0;
        while (digitsA < a.size() && isDigit(a[digitsA])) {
            ++digitsA;
        }
        while (digitsB < b.size() && isDigit(b[digitsB])) {
            ++digitsB;
        }
        if (digitsA > 0 && digitsB > 0 && digitsA != digitsB) {
            return digitsA < digitsB;
        }
        const size_t length = digitsA > 0 && digitsB > 0 ? digitsA : 1;
        const int order = a.substr(0, length).compare(b.substr(0, length));
        if (order != 0) {
            return order < 0;
        }
        a.remove_prefix(length);
        b.remove_prefix(length);
    }
    return a.size() < b.size();
}

void sortChanges(std::vector<Change>& changes) {
    const auto valuesOf = [](const Change& change) {
        const auto valueOf = [](const std::optional<ChangeSide>& side) {
            return side ? std::string_view(side->value) : std::string_view();
        };
        return std::pair(valueOf(change.a), valueOf(change.b));
    };
    std::stable_sort(changes.begin(), changes.end(), [&](const Change& x, const Change& y) {
        if (x.kind != y.kind) {
            return x.kind < y.kind;
        }
        return x.name != y.name ? isBefore(x.name, y.name) : valuesOf(x) < valuesOf(y);
    });
}

}  // namespace

Difference diffLines(const LineAnswers& a, const LineAnswers& b, const SetFilter& filter) {
    Difference difference = Comparison(a, b, filter).run();
    sortChanges(difference.changes);
    return difference;
}

Difference diffSets(const LineAnswers& a, const AnswerSet& ofA, const LineAnswers& b,
                    const AnswerSet& ofB) {
    PieceDiff pieces(a, b);
    std::set<uint32_t> numbers;
    for (const uint32_t list : pieces.listsOf({&ofA, &ofB})) {
        numbers.insert(pieces.lists()[list].begin(), pieces.lists()[list].end());
    }
    const PieceDiff::List ofCustomer =
            customerChanges(pieces, "", a.customers[ofA.customer], b.customers[ofB.customer]);
    numbers.insert(ofCustomer.begin(), ofCustomer.end());
    Difference difference;
    difference.isOfSets = true;
    for (const uint32_t number : numbers) {
        difference.changes.push_back(std::move(pieces.changes()[number]));
    }
    sortChanges(difference.changes);
    return difference;
}

}  // namespace mlk::tree
