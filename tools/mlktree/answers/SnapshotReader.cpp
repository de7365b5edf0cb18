#include <array>
#include <limits>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>
#include <tuple>

#include "tools/common/Text.h"
#include "tools/mlktree/Tree.h"
#include "tools/mlktree/answers/NameNumbers.h"
#include "tools/mlktree/answers/Snapshot.h"

namespace mlk::tree {

namespace {

using Json = nlohmann::json;

// More than any snapshot has. Deeper texts are refused before anything works through them.
constexpr size_t kMostDepth = 32;

/** A place in the JSON text, for messages: a member or an element of what `parent` is. */
struct Where {
    const Where* parent = nullptr;
    std::string_view member = {};
    size_t index = 0;

    std::string str() const {
        const std::string before = parent != nullptr ? parent->str() : "";
        if (member.empty()) {
            return parent != nullptr ? before + "[" + std::to_string(index) + "]" : "";
        }
        return before + (before.empty() ? "" : ".") + printable(member);
    }
};

bool isTooDeep(std::string_view text) {
    size_t depth = 0;
    bool isInText = false;
    for (size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (isInText) {
            i += c == '\\' ? 1 : 0;
            isInText = c != '"';
        } else if (c == '"') {
            isInText = true;
        } else if (c == '{' || c == '[') {
            if (++depth > kMostDepth) {
                return true;
            }
        } else if (c == '}' || c == ']') {
            depth -= depth > 0 ? 1 : 0;
        }
    }
    return false;
}

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

class SnapshotReader {
  public:
    SnapshotReader(const std::string& name, LineAnswers& line) : mName(name), mLine(line) {}

    void read(std::string_view text);

  private:
    [[noreturn]] void refuse(const std::string& why) const {
        throw UsageError(printable(mName) + " is no snapshot of mlktree: " + why);
    }
    [[noreturn]] void refuse(const Where& where, const std::string& why) const {
        refuse((where.str().empty() ? "it" : where.str()) + " " + why);
    }

    // What a value must be; else the snapshot is refused.
    const Json& object(const Json& json, const Where& where) const {
        if (!json.is_object()) {
            refuse(where, "is no object");
        }
        return json;
    }
    const Json& array(const Json& json, const Where& where) const {
        if (!json.is_array()) {
            refuse(where, "is no array");
        }
        return json;
    }
    const Json& member(const Json& json, std::string_view name, const Where& where) const {
        const auto found = object(json, where).find(std::string(name));
        if (found == json.end()) {
            refuse(where, "lacks \"" + std::string(name) + "\"");
        }
        return *found;
    }
    std::string restored(const std::string& text) const {
        return mIsHidden ? restoreBytes(text) : text;
    }
    std::string_view text(const Json& json, const Where& where) const {
        if (!json.is_string()) {
            refuse(where, "is no text");
        }
        return mLine.keep(restored(json.get_ref<const std::string&>()));
    }
    int64_t number(const Json& json, const Where& where,
                   int64_t least = std::numeric_limits<int32_t>::min(),
                   int64_t most = std::numeric_limits<int32_t>::max()) const {
        const bool isHuge =
                json.is_number_unsigned() &&
                json.get<uint64_t>() > static_cast<uint64_t>(std::numeric_limits<int64_t>::max());
        if (!json.is_number_integer() || isHuge || json.get<int64_t>() < least ||
            json.get<int64_t>() > most) {
            refuse(where, "is no whole number from " + std::to_string(least) + " to " +
                                  std::to_string(most));
        }
        return json.get<int64_t>();
    }
    /** The text of a member. */
    std::string_view textIn(const Json& json, std::string_view name, const Where& where) const {
        return text(member(json, name, where), {&where, name});
    }

    /** Calls with each element of an array. */
    template <typename Read>
    void forEach(const Json& json, const Where& where, const Read& read) const {
        size_t index = 0;
        for (const Json& one : array(json, where)) {
            read(one, Where{&where, "", index++});
        }
    }
    /** Calls with each member of an object. */
    template <typename Read>
    void forMembers(const Json& json, const Where& where, const Read& read) const {
        for (const auto& [name, value] : object(json, where).items()) {
            read(std::string_view(mLine.keep(restored(name))), value, Where{&where, name});
        }
    }

    /** The index of a reference to that kind of piece; nothing if the value is none at all. */
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

    const std::string& mName;
    LineAnswers& mLine;
    bool mIsHidden = false;
    NameNumbers mNames;
    Shared mShared;
    std::map<std::string_view, uint32_t> mCustomers;
    std::map<std::pair<uint32_t, int32_t>, uint32_t> mModels;
    std::map<std::string_view, uint32_t> mBoards;
    std::map<std::string_view, uint32_t> mCountries;
    std::set<std::tuple<uint32_t, uint32_t, uint32_t, uint32_t>> mSets;
};

void SnapshotReader::read(std::string_view text) {
    if (isTooDeep(text)) {
        refuse("its values are nested too deeply");
    }
    std::string plain;
    mIsHidden = hideByteEscapes(text, &plain);
    Json json;
    try {
        json = mIsHidden ? Json::parse(plain) : Json::parse(text);
    } catch (const Json::exception&) {
        refuse("it is no JSON");
    }
    const Where top;
    const Json& version = member(json, "version", top);
    if (!version.is_number_integer()) {
        refuse("version is no number");
    }
    if (version != kSnapshotVersion) {
        refuse("it has the version " + version.dump() + ", and this mlktree reads version " +
               std::to_string(kSnapshotVersion));
    }
    const auto readIf = [&](std::string_view name, const auto& readIt) {
        const auto found = json.find(std::string(name));
        if (found != json.end()) {
            readIt(*found, Where{&top, name});
        }
    };
    readIf("customers", [this](const Json& one, const Where& at) { readCustomers(one, at); });
    readIf("models", [this](const Json& one, const Where& at) { readModels(one, at); });
    readIf("boards", [this](const Json& one, const Where& at) { readBoards(one, at); });
    readIf("files", [this](const Json& one, const Where& at) { readFiles(one, at); });
    readIf("shared", [this](const Json& one, const Where& at) { readShared(one, at); });
    forEach(member(json, "sets", top), {&top, "sets"},
            [this](const Json& one, const Where& at) { readSet(one, at); });
    sortNames(mNames, mLine);
}

std::optional<size_t> SnapshotReader::reference(const Json& json, const char* kind,
                                                const Where& where) const {
    const auto found = json.is_object() ? json.find("$ref") : json.end();
    if (!json.is_object() || found == json.end()) {
        return std::nullopt;
    }
    const std::string start = std::string("#/shared/") + kind + "/";
    const std::string target = found->is_string() ? found->get<std::string>() : "";
    const std::string digits = target.substr(std::min(start.size(), target.size()));
    const bool isNumber = !digits.empty() && digits.size() < 10 &&
                          digits.find_first_not_of("0123456789") == std::string::npos;
    if (json.size() != 1 || target.compare(0, start.size(), start) != 0 || !isNumber) {
        refuse(where, "is no reference of the form {\"$ref\":\"" + start + "0\"}");
    }
    return std::stoul(digits);
}

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

uint32_t SnapshotReader::customerNumber(std::string_view file) {
    const auto [entry, isNew] =
            mCustomers.try_emplace(file, static_cast<uint32_t>(mLine.customers.size()));
    if (isNew) {
        mLine.customers.emplace_back().file = file;
    }
    return entry->second;
}

uint32_t SnapshotReader::modelNumber(int32_t index, uint32_t customer) {
    const auto [entry, isNew] =
            mModels.try_emplace({customer, index}, static_cast<uint32_t>(mLine.models.size()));
    if (isNew) {
        mLine.models.push_back({index, customer, {}});
    }
    return entry->second;
}

uint32_t SnapshotReader::boardNumber(std::string_view name) {
    const auto [entry, isNew] =
            mBoards.try_emplace(name, static_cast<uint32_t>(mLine.boards.size()));
    if (isNew) {
        mLine.boards.push_back({name, {}});
    }
    return entry->second;
}

uint32_t SnapshotReader::countryNumber(std::string_view name) {
    if (name.empty()) {
        return kNone;
    }
    const auto [entry, isNew] =
            mCountries.try_emplace(name, static_cast<uint32_t>(mLine.countries.size()));
    if (isNew) {
        mLine.countries.push_back(name);
    }
    return entry->second;
}

void SnapshotReader::readCustomers(const Json& json, const Where& where) {
    forEach(json, where, [this](const Json& one, const Where& at) {
        AnswerCustomer& customer = mLine.customers[customerNumber(textIn(one, "file", at))];
        customer.id.text = textIn(one, "id", at);
        customer.system.text = textIn(one, "system", at);
        customer.highestIndex =
                static_cast<uint32_t>(number(member(one, "highestIndex", at), {&at, "highestIndex"},
                                             0, std::numeric_limits<uint32_t>::max()));
        customer.projectFiles = readList(member(one, "projectFiles", at), {&at, "projectFiles"});
    });
}

void SnapshotReader::readModels(const Json& json, const Where& where) {
    forEach(json, where, [this](const Json& one, const Where& at) {
        const int64_t index = number(member(one, "model", at), {&at, "model"});
        const uint32_t customer = customerNumber(textIn(one, "customer", at));
        AnswerModel& model = mLine.models[modelNumber(static_cast<int32_t>(index), customer)];
        model.file.text = textIn(one, "file", at);
    });
}

void SnapshotReader::readBoards(const Json& json, const Where& where) {
    forEach(json, where, [this](const Json& one, const Where& at) {
        AnswerBoard& board = mLine.boards[boardNumber(textIn(one, "board", at))];
        board.file = textIn(one, "file", at);
    });
}

void SnapshotReader::readFiles(const Json& json, const Where& where) {
    forMembers(json, where, [this](std::string_view path, const Json& one, const Where& at) {
        AnswerFile& file = mLine.files.emplace_back();
        file.path = path;
        if (one.is_null()) {
            return;
        }
        file.exists = true;
        file.size = static_cast<uint64_t>(number(member(one, "size", at), {&at, "size"}, 0,
                                                 std::numeric_limits<int64_t>::max()));
        const std::string hash(textIn(one, "hash", at));
        if (hash.size() != 16 || hash.find_first_not_of("0123456789abcdef") != std::string::npos) {
            refuse({&at, "hash"}, "is no text of 16 hexadecimal digits");
        }
        file.hash = std::stoull(hash, nullptr, 16);
    });
    std::sort(mLine.files.begin(), mLine.files.end(),
              [](const AnswerFile& a, const AnswerFile& b) { return a.path < b.path; });
}

void SnapshotReader::readShared(const Json& json, const Where& where) {
    // Pieces refer only to pieces of the kinds before them, so no reference leads in a circle.
    const auto readKind = [&](const char* kind, std::vector<uint32_t>& numbers, auto& pieces,
                              const auto& readOne) {
        const auto found = object(json, where).find(kind);
        if (found != json.end()) {
            forEach(*found, {&where, kind}, [&](const Json& one, const Where& at) {
                auto made = readOne(one, at);
                numbers.push_back(static_cast<uint32_t>(pieces.size()));
                pieces.push_back(std::move(made));
            });
        }
    };
    const auto items = [this](const Json& one, const Where& at) { return readItems(one, at); };
    readKind("items", mShared.items, mLine.items, items);
    readKind("auxiliary", mShared.auxiliary, mLine.items, items);
    readKind("features", mShared.features, mLine.features,
             [this](const Json& one, const Where& at) { return readFeatures(one, at); });
    readKind("delays", mShared.delays, mLine.delays,
             [this](const Json& one, const Where& at) { return readDelays(one, at); });
    readKind("lists", mShared.lists, mLine.lists,
             [this](const Json& one, const Where& at) { return readList(one, at); });
    readKind("channels", mShared.channels, mLine.channels,
             [this](const Json& one, const Where& at) { return readChannels(one, at); });
    readKind("plans", mShared.plans, mLine.plans,
             [this](const Json& one, const Where& at) { return readPlans(one, at); });
    readKind("answers", mShared.answers, mLine.pieces,
             [this](const Json& one, const Where& at) { return readAnswers(one, at); });
}

void SnapshotReader::readSet(const Json& json, const Where& where) {
    AnswerSet set;
    set.customer = customerNumber(textIn(json, "customer", where));
    const Json& model = member(json, "model", where);
    if (!model.is_null()) {
        set.model =
                modelNumber(static_cast<int32_t>(number(model, {&where, "model"})), set.customer);
    }
    set.board = boardNumber(textIn(json, "board", where));
    set.country = countryNumber(textIn(json, "country", where));
    if (!mSets.emplace(set.customer, set.model, set.board, set.country).second) {
        refuse(where, "is a set that was there before");
    }
    const auto merge = json.find("$merge");
    if (merge == json.end()) {
        mLine.pieces.push_back(readAnswers(json, where));
        set.pieces = static_cast<uint32_t>(mLine.pieces.size() - 1);
    } else {
        const Where at{&where, "$merge"};
        if (array(*merge, at).size() != 1) {
            refuse(at, "has not one element");
        }
        const std::optional<size_t> index = reference(merge->front(), "answers", at);
        if (!index || *index >= mShared.answers.size()) {
            refuse(at, "does not refer to an element of shared.answers");
        }
        set.pieces = mShared.answers[*index];
    }
    set.plans = piece(member(json, "plans", where), "plans", mShared.plans, mLine.plans,
                      {&where, "plans"},
                      [this](const Json& one, const Where& at) { return readPlans(one, at); });
    mLine.sets.push_back(set);
}

AnswerPieces SnapshotReader::readAnswers(const Json& json, const Where& where) {
    AnswerPieces pieces;
    pieces.items = readLayers(member(json, "items", where), {&where, "items"});
    const auto featuresAt = [&](const char* name) {
        return piece(member(json, name, where), "features", mShared.features, mLine.features,
                     {&where, name},
                     [this](const Json& one, const Where& at) { return readFeatures(one, at); });
    };
    pieces.features = featuresAt("features");
    pieces.framework = featuresAt("framework");
    pieces.delays = piece(member(json, "delays", where), "delays", mShared.delays, mLine.delays,
                          {&where, "delays"},
                          [this](const Json& one, const Where& at) { return readDelays(one, at); });
    const Json& auxiliary = member(json, "auxiliary", where);
    const Where inside{&where, "auxiliary"};
    const auto auxiliaryAt = [&](const char* name) {
        return itemsAt(member(auxiliary, name, inside), "auxiliary", mShared.auxiliary,
                       {&inside, name});
    };
    pieces.karaoke = auxiliaryAt("karaoke");
    pieces.keys = auxiliaryAt("keys");
    pieces.ddcci = auxiliaryAt("ddcci");
    const auto listAt = [&](const char* name) {
        return piece(member(json, name, where), "lists", mShared.lists, mLine.lists, {&where, name},
                     [this](const Json& one, const Where& at) { return readList(one, at); });
    };
    pieces.countries = listAt("countries");
    pieces.cltvCountries = listAt("cltvCountries");
    pieces.languages = listAt("languages");
    return pieces;
}

std::array<uint32_t, kItemLayers> SnapshotReader::readLayers(const Json& json, const Where& where) {
    std::array<uint32_t, kItemLayers> layers = {kNone, kNone, kNone};
    const auto merge = object(json, where).find("$merge");
    if (merge == json.end()) {
        layers[0] = itemsAt(json, "items", mShared.items, where);
        return layers;
    }
    const Where at{&where, "$merge"};
    if (json.size() != 1 || array(*merge, at).size() > kItemLayers) {
        refuse(at, "has more than " + std::to_string(kItemLayers) +
                           " layers, or does not stand "
                           "alone");
    }
    forEach(*merge, at, [&](const Json& one, const Where& inside) {
        layers[inside.index] = itemsAt(one, "items", mShared.items, inside);
    });
    return layers;
}

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

}  // namespace

std::unique_ptr<const LineAnswers> readSnapshot(std::string_view text, const std::string& name) {
    auto line = std::make_unique<LineAnswers>();
    SnapshotReader(name, *line).read(text);
    return line;
}

}  // namespace mlk::tree
