#include <algorithm>
#include <iterator>

#include "tools/mlktree/answers/NamedFiles.h"
#include "tools/mlktree/answers/PieceWriter.h"
#include "tools/mlktree/answers/Snapshot.h"
#include "tools/mlktree/answers/SnapshotUses.h"

namespace mlk::tree {

namespace {

constexpr size_t kEnoughToWrite = size_t{1} << 16U;

bool differInCountryOnly(const AnswerSet& a, const AnswerSet& b) {
    return a.model == b.model && a.board == b.board && a.customer == b.customer;
}

/** Writes the pieces of a line. A line of the file is a section, a list, or what refers to them. */
class SnapshotWriter : private PieceWriter {
  public:
    SnapshotWriter(const LineAnswers& line, const TextSink& sink)
        : PieceWriter(line), mUses(line), mSink(sink) {}

    void write() {
        mOut += "{\"version\":" + std::to_string(kSnapshotVersion) + ",\n";
        writeCustomers();
        writeModels();
        writeBoards();
        name("countries");
        writeTexts(mLine.countries);
        mOut += ",\n";
        writeFiles();
        writeShared();
        writeSets();
        mOut += "}\n";
        mSink(mOut);
    }

  private:
    void flush() {
        if (mOut.size() >= kEnoughToWrite) {
            mSink(mOut);
            mOut.clear();
        }
    }

    /** `"member":[` and a line for each. */
    template <typename List, typename Write>
    void writeEach(std::string_view member, const List& list, const Write& write) {
        name(member);
        mOut += '[';
        bool isFirst = true;
        for (const auto& one : list) {
            mOut += isFirst ? "\n" : ",\n";
            isFirst = false;
            write(one);
            flush();
        }
        mOut += isFirst ? "]" : "\n]";
    }

    /** A piece in its place, or a reference to it. */
    template <typename Write>
    void place(const char* kind, const PieceUses& uses, uint32_t piece, const Write& write) {
        if (piece != kNone && uses.isShared(piece)) {
            mOut.append("{\"$ref\":\"#/shared/").append(kind).append("/");
            number(uses.numberOf(piece));
            mOut += "\"}";
        } else {
            write();
        }
    }

    void writeCustomers();
    void writeModels();
    void writeBoards();
    void writeFiles();
    void writeShared();
    void writeSets();
    std::string startOf(const AnswerSet& set) const;
    std::vector<std::string> countryTexts() const;
    void writeAnswers(const AnswerPieces& pieces);
    void writeLayers(const AnswerPieces& pieces);
    void writeAuxiliary(const AnswerPieces& pieces);
    void writePlans(const PlanPiece& piece);
    bool isKaraoke(uint32_t piece) const;

    const SnapshotUses mUses;
    const TextSink& mSink;
};

void SnapshotWriter::writeCustomers() {
    writeEach("customers", mLine.customers, [this](const AnswerCustomer& customer) {
        mOut += "{\"file\":";
        text(customer.file);
        mOut += ",\"id\":";
        text(customer.id.text);
        mOut += ",\"system\":";
        text(customer.system.text);
        mOut += ",\"highestIndex\":" + std::to_string(customer.highestIndex);
        mOut += ",\"projectFiles\":";
        writeList(customer.projectFiles);
        if (customer.countries.has_value()) {
            mOut += ',';
            name("countries");
            std::vector<std::string_view> countries;
            std::copy_if(mLine.countries.begin(), mLine.countries.end(),
                         std::back_inserter(countries), [&](std::string_view country) {
                             return customer.countries->count(country) > 0;
                         });
            writeTexts(countries);
        }
        mOut += '}';
    });
    mOut += ",\n";
}

void SnapshotWriter::writeModels() {
    writeEach("models", mLine.models, [this](const AnswerModel& model) {
        mOut += "{\"model\":" + std::to_string(model.index) + ",\"customer\":";
        text(mLine.customers[model.customer].file);
        mOut += ",\"file\":";
        text(model.file.text);
        mOut += '}';
    });
    mOut += ",\n";
}

void SnapshotWriter::writeBoards() {
    writeEach("boards", mLine.boards, [this](const AnswerBoard& board) {
        mOut += "{\"board\":";
        text(board.name);
        mOut += ",\"file\":";
        text(board.file);
        mOut += '}';
    });
    mOut += ",\n";
}

void SnapshotWriter::writeFiles() {
    name("files");
    mOut += '{';
    bool isFirst = true;
    for (const AnswerFile& file : mLine.files) {
        mOut += isFirst ? "\n" : ",\n";
        isFirst = false;
        name(file.path);
        if (file.exists) {
            mOut += "{\"size\":" + std::to_string(file.size) + ",\"hash\":\"" + hexOf(file.hash) +
                    "\"}";
        } else {
            mOut += "null";
        }
        flush();
    }
    mOut += isFirst ? "},\n" : "\n},\n";
}

// True for a piece whose values are numbers.
bool SnapshotWriter::isKaraoke(uint32_t piece) const {
    return std::any_of(mLine.pieces.begin(), mLine.pieces.end(),
                       [piece](const AnswerPieces& one) { return one.karaoke == piece; });
}

void SnapshotWriter::writeShared() {
    name("shared");
    mOut += '{';
    bool isFirst = true;
    const auto add = [&](const char* kind, const PieceUses& uses, const auto& write) {
        if (uses.shared().empty()) {
            return;
        }
        mOut += isFirst ? "\n" : ",\n";
        isFirst = false;
        writeEach(kind, uses.shared(), write);
    };
    add("items", mUses.items,
        [this](uint32_t piece) { writeItems(pointersTo(mLine.items[piece]), false); });
    add("auxiliary", mUses.auxiliary,
        [this](uint32_t piece) { writeItems(pointersTo(mLine.items[piece]), isKaraoke(piece)); });
    add("features", mUses.features,
        [this](uint32_t piece) { writeFeatures(mLine.features[piece]); });
    add("delays", mUses.delays, [this](uint32_t piece) { writeDelays(mLine.delays[piece]); });
    add("lists", mUses.lists, [this](uint32_t piece) { writeList(mLine.lists[piece]); });
    add("channels", mUses.channels,
        [this](uint32_t piece) { writeChannels(mLine.channels[piece]); });
    add("plans", mUses.plans, [this](uint32_t piece) { writePlans(mLine.plans[piece]); });
    add("answers", mUses.answers, [this](uint32_t piece) {
        mOut += '{';
        writeAnswers(mLine.pieces[piece]);
        mOut += '}';
    });
    mOut += isFirst ? "},\n" : "\n},\n";
}

// A line may have 100,000 sets: the names that many of them repeat are escaped once.
void SnapshotWriter::writeSets() {
    const std::vector<std::string> countries = countryTexts();
    const AnswerSet* before = nullptr;
    std::string start;
    writeEach("sets", mLine.sets, [&](const AnswerSet& set) {
        if (before == nullptr || !differInCountryOnly(set, *before)) {
            start = startOf(set);
        }
        before = &set;
        mOut += start;
        mOut += set.country == kNone ? countries.back() : countries[set.country];
        if (mUses.answers.isShared(set.pieces)) {
            mOut += "\"$merge\":[{\"$ref\":\"#/shared/answers/";
            number(mUses.answers.numberOf(set.pieces));
            mOut += "\"}]";
        } else {
            writeAnswers(mLine.pieces[set.pieces]);
        }
        mOut += ",\"plans\":";
        const uint32_t plans = mUses.plansOf(set);
        place("plans", mUses.plans, plans, [&] { writePlans(mLine.planPiece(plans)); });
        mOut += '}';
    });
}

// The members of a set that say who it is, up to its country's name.
std::string SnapshotWriter::startOf(const AnswerSet& set) const {
    std::string start = "{\"model\":";
    start += set.model == kNone ? "null" : std::to_string(mLine.models[set.model].index);
    start += ",\"board\":";
    appendJsonString(start, mLine.boards[set.board].name);
    start += ",\"customer\":";
    appendJsonString(start, mLine.customers[set.customer].file);
    start += ",\"country\":";
    return start;
}

// The names of all countries and, last, of no country, each as a set has it, with the comma.
std::vector<std::string> SnapshotWriter::countryTexts() const {
    std::vector<std::string> texts;
    for (const std::string_view country : mLine.countries) {
        texts.push_back(jsonString(country) + ',');
    }
    texts.push_back(jsonString("") + ',');
    return texts;
}

void SnapshotWriter::writeAnswers(const AnswerPieces& pieces) {
    mOut += "\"items\":";
    writeLayers(pieces);
    for (const auto& [member, piece] : {std::pair{",\"features\":", pieces.features},
                                        std::pair{",\"framework\":", pieces.framework}}) {
        mOut += member;
        place("features", mUses.features, piece,
              [&, number = piece] { writeFeatures(mLine.featurePiece(number)); });
    }
    mOut += ",\"delays\":";
    place("delays", mUses.delays, pieces.delays,
          [&] { writeDelays(mLine.delayPiece(pieces.delays)); });
    mOut += ",\"auxiliary\":";
    writeAuxiliary(pieces);
    for (const auto& [member, piece] : {std::pair{",\"countries\":", pieces.countries},
                                        std::pair{",\"cltvCountries\":", pieces.cltvCountries},
                                        std::pair{",\"languages\":", pieces.languages}}) {
        mOut += member;
        place("lists", mUses.lists, piece,
              [&, number = piece] { writeList(mLine.listPiece(number)); });
    }
}

// Layers stay apart if one of them stands elsewhere.
void SnapshotWriter::writeLayers(const AnswerPieces& pieces) {
    std::vector<uint32_t> layers;
    bool isShared = false;
    for (const uint32_t layer : pieces.items) {
        if (layer != kNone && !mLine.items[layer].empty()) {
            layers.push_back(layer);
            isShared |= mUses.items.isShared(layer);
        }
    }
    const auto write = [&](uint32_t layer) {
        place("items", mUses.items, layer,
              [&] { writeItems(pointersTo(mLine.items[layer]), false); });
    };
    if (!isShared) {
        writeItems(mLine.itemsOf(pieces), false);
    } else if (layers.size() == 1) {
        write(layers.front());
    } else {
        mOut += "{\"$merge\":[";
        // A layer may be there twice: a board may have the file of its model.
        for (size_t i = 0; i < layers.size(); ++i) {
            mOut += i == 0 ? "" : ",";
            write(layers[i]);
        }
        mOut += "]}";
    }
}

void SnapshotWriter::writeAuxiliary(const AnswerPieces& pieces) {
    mOut += "{\"karaoke\":";
    place("auxiliary", mUses.auxiliary, pieces.karaoke,
          [&] { writeItems(pointersTo(mLine.itemPiece(pieces.karaoke)), true); });
    mOut += ",\"keys\":";
    place("auxiliary", mUses.auxiliary, pieces.keys,
          [&] { writeItems(pointersTo(mLine.itemPiece(pieces.keys)), false); });
    mOut += ",\"ddcci\":";
    place("auxiliary", mUses.auxiliary, pieces.ddcci,
          [&] { writeItems(pointersTo(mLine.itemPiece(pieces.ddcci)), false); });
    mOut += '}';
}

void SnapshotWriter::writePlans(const PlanPiece& piece) {
    mOut += '{';
    for (const AnswerPlan& plan : piece) {
        mOut += &plan == &piece.front() ? "" : ",";
        name(plan.kind);
        place("channels", mUses.channels, plan.channels,
              [&] { writeChannels(mLine.channelPiece(plan.channels)); });
    }
    mOut += '}';
}

}  // namespace

void writeSnapshot(const LineAnswers& line, const TextSink& sink) {
    SnapshotWriter(line, sink).write();
}

}  // namespace mlk::tree
