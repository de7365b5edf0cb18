#include "tools/mlktree/answers/SnapshotReader.h"

#include <algorithm>

#include "tools/mlktree/Texts.h"
#include "tools/mlktree/answers/Snapshot.h"

namespace mlk::tree {

void SnapshotReader::read(std::string_view content) {
    const Json json = parse(content);
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
    readIf("countries", [this](const Json& one, const Where& at) {
        forEach(one, at, [this](const Json& country, const Where& inside) {
            countryNumber(text(country, inside));
        });
    });
    readIf("files", [this](const Json& one, const Where& at) { readFiles(one, at); });
    readIf("shared", [this](const Json& one, const Where& at) { readShared(one, at); });
    forEach(member(json, "sets", top), {&top, "sets"},
            [this](const Json& one, const Where& at) { readSet(one, at); });
    std::sort(mLine.sets.begin(), mLine.sets.end(), [](const AnswerSet& a, const AnswerSet& b) {
        return std::tie(a.customer, a.model, a.board, a.country) <
               std::tie(b.customer, b.model, b.board, b.country);
    });
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
    if (json.size() != 1 || !beginsWith(target, start) || !isNumber) {
        refuse(where, "is no reference of the form {\"$ref\":\"" + start + "0\"}");
    }
    return std::stoul(digits);
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
        const auto countries = one.find("countries");
        if (countries != one.end()) {
            std::set<std::string_view>& names = customer.countries.emplace();
            forEach(*countries, {&at, "countries"}, [&](const Json& country, const Where& inside) {
                names.insert(text(country, inside));
            });
        }
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
    set.country = countryNumber(textIn(json, "country", where));
    if (!mSets.emplace(set.customer, set.model, set.board, set.country).second) {
        refuse(where, "is a set that was there before");
    }
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

std::unique_ptr<const LineAnswers> readSnapshot(std::string_view text, const std::string& name) {
    auto line = std::make_unique<LineAnswers>();
    SnapshotReader(name, *line).read(text);
    return line;
}

}  // namespace mlk::tree
