#include "tools/mlktree/report/AnswersData.h"

#include <algorithm>
#include <vector>

#include "tools/common/Json.h"

namespace mlk::tree {

namespace {

// Numbers as differences to the one before: most of them are 0 or 1 then.
class Column {
  public:
    void add(int64_t number) {
        mList.addSigned(number - mLast);
        mLast = number;
    }
    // What is not there becomes -1.
    void addId(uint32_t number) { add(number == kNone ? -1 : static_cast<int64_t>(number)); }
    std::string json() const { return mList.json(); }

  private:
    NumberList mList;
    int64_t mLast = 0;
};

class Writer {
  public:
    Writer(const ProductLine& line, const LineAnswers& answers, const FileTable& files,
           TextTable& texts)
        : mLine(line), mAnswers(answers), mFiles(files), mTexts(texts) {
        for (const std::string& path : answers.places) {
            mPlaces.push_back(static_cast<int64_t>(files.idOf(path)));
        }
    }

    std::string json() {
        JsonObject object;
        object.json("customers", customers())
                .json("models", models())
                .json("boards", boards())
                .json("countries", countries())
                .json("names", names())
                .json("placesByCountry", placesByCountry())
                .json("items", piecesOf(mAnswers.items, &Writer::items))
                .json("features", piecesOf(mAnswers.features, &Writer::features))
                .json("delays", piecesOf(mAnswers.delays, &Writer::delays))
                .json("lists", piecesOf(mAnswers.lists, &Writer::list))
                .json("channels", piecesOf(mAnswers.channels, &Writer::channels))
                .json("plans", piecesOf(mAnswers.plans, &Writer::plans))
                .json("pieces", pieces())
                .json("sets", sets());
        return object.str();
    }

  private:
    template <typename Piece>
    std::string piecesOf(const std::vector<Piece>& all, std::string (Writer::*one)(const Piece&)) {
        std::vector<std::string> list;
        list.reserve(all.size());
        for (const Piece& piece : all) {
            list.push_back((this->*one)(piece));
        }
        return jsonArray(list);
    }

    int64_t text(std::string_view text) { return static_cast<int64_t>(mTexts.idOf(text)); }
    // The position of a file; -1 if none gives the value, -2 if each country's record does.
    int64_t fileOf(const AnswerPlace& place) const {
        return !place.isKnown() ? -1 : place.file == kPlaceByCountry ? -2 : mPlaces[place.file];
    }
    // The file of a path as written; -1 for none.
    int64_t written(std::string_view path) const {
        if (path.empty()) {
            return -1;
        }
        const Tree& tree = mLine.tree();
        const size_t id = mFiles.idOf(tree.relative(tree.hostOfWritten(path)));
        return id < mFiles.size() ? static_cast<int64_t>(id) : -1;
    }

    JsonObject& place(JsonObject& object, const AnswerPlace& place) const {
        return object.number("file", fileOf(place)).number("line", place.line);
    }

    std::string customers() {
        std::vector<std::string> rows;
        for (const AnswerCustomer& customer : mAnswers.customers) {
            JsonObject object;
            const size_t file = mFiles.idOf(customer.file);
            object.number("path", static_cast<int64_t>(file))
                    .number("id", text(customer.id.text))
                    .number("system", written(customer.system.text))
                    .number("systemText", text(customer.system.text))
                    .number("highest", customer.highestIndex)
                    .json("menu", list(customer.projectFiles));
            rows.push_back(place(object, customer.system.place).str());
        }
        return jsonArray(rows);
    }

    std::string models() {
        std::vector<std::string> rows;
        for (const AnswerModel& model : mAnswers.models) {
            JsonObject object;
            object.number("index", model.index)
                    .number("customer", model.customer)
                    .number("path", written(model.file.text))
                    .number("pathText", text(model.file.text));
            rows.push_back(place(object, model.file.place).str());
        }
        return jsonArray(rows);
    }

    std::string boards() {
        std::vector<std::string> rows;
        for (const AnswerBoard& board : mAnswers.boards) {
            rows.push_back(JsonObject()
                                   .number("name", text(board.name))
                                   .number("path", written(board.file))
                                   .number("pathText", text(board.file))
                                   .str());
        }
        return jsonArray(rows);
    }

    std::string countries() {
        NumberList list;
        for (const std::string_view country : mAnswers.countries) {
            list.add(mTexts.idOf(country));
        }
        return list.json();
    }

    std::string names() {
        NumberList list;
        for (const AnswerName& name : mAnswers.names) {
            list.add(mTexts.idOf(name.section)).add(mTexts.idOf(name.key));
        }
        return list.json();
    }

    // File and line in turns, by country.
    std::string placesByCountry() const {
        std::vector<std::string> lists;
        for (const std::vector<AnswerPlace>& places : mAnswers.placesByCountry) {
            NumberList list;
            for (const AnswerPlace& place : places) {
                list.addSigned(fileOf(place)).add(place.line);
            }
            lists.push_back(list.json());
        }
        return jsonArray(lists);
    }

    std::string items(const ItemPiece& piece) {
        Column names;
        Column values;
        Column files;
        Column lines;
        for (const AnswerItem& item : piece) {
            names.add(item.name);
            values.add(text(item.value));
            files.add(fileOf(item.place));
            lines.add(item.place.line);
        }
        return JsonObject()
                .json("name", names.json())
                .json("value", values.json())
                .json("file", files.json())
                .json("line", lines.json())
                .str();
    }

    std::string features(const FeaturePiece& piece) {
        std::vector<std::string> rows;
        for (const AnswerFeature& feature : piece) {
            NumberList row;
            row.addSigned(text(feature.method))
                    .addSigned(text(feature.value))
                    .addSigned(fileOf(feature.place))
                    .add(feature.place.line);
            rows.push_back(row.json());
        }
        return jsonArray(rows);
    }

    std::string delays(const DelayPiece& piece) {
        std::vector<std::string> rows;
        for (const AnswerDelay& delay : piece) {
            NumberList summands;
            for (const AnswerSummand& summand : delay.summands) {
                summands.addSigned(text(summand.role))
                        .addSigned(summand.value)
                        .addSigned(fileOf(summand.place))
                        .add(summand.place.line);
            }
            rows.push_back("[" + std::to_string(text(delay.receiver)) + "," +
                           std::to_string(delay.name) + "," + std::to_string(delay.value) + "," +
                           summands.json() + "]");
        }
        return jsonArray(rows);
    }

    std::string list(const ListPiece& piece) {
        NumberList list;
        for (const AnswerEntry& entry : piece) {
            list.addSigned(text(entry.text)).addSigned(fileOf(entry.place)).add(entry.place.line);
        }
        return list.json();
    }

    std::string channels(const ChannelPiece& piece) {
        std::vector<std::string> rows;
        for (const AnswerChannel& channel : piece) {
            NumberList row;
            row.addSigned(channel.channel)
                    .addSigned(channel.frequency)
                    .addSigned(channel.bandwidth)
                    .addSigned(text(channel.label))
                    .addSigned(channel.modulation)
                    .addSigned(fileOf(channel.place))
                    .add(channel.place.line);
            rows.push_back(row.json());
        }
        return jsonArray(rows);
    }

    std::string plans(const PlanPiece& piece) {
        std::vector<std::string> rows;
        for (const AnswerPlan& plan : piece) {
            NumberList row;
            row.addSigned(text(plan.kind))
                    .add(plan.channels)
                    .addSigned(fileOf(plan.place))
                    .add(plan.place.line);
            rows.push_back(row.json());
        }
        return jsonArray(rows);
    }

    std::string pieces() const {
        struct Part {
            const char* name;
            uint32_t AnswerPieces::*member;
        };
        constexpr Part kParts[] = {
                {"features", &AnswerPieces::features},
                {"framework", &AnswerPieces::framework},
                {"delays", &AnswerPieces::delays},
                {"karaoke", &AnswerPieces::karaoke},
                {"keys", &AnswerPieces::keys},
                {"ddcci", &AnswerPieces::ddcci},
                {"countries", &AnswerPieces::countries},
                {"cltvCountries", &AnswerPieces::cltvCountries},
                {"languages", &AnswerPieces::languages},
        };
        JsonObject object;
        constexpr const char* kLayers[kItemLayers] = {"model", "board", "country"};
        for (size_t layer = 0; layer < kItemLayers; ++layer) {
            Column column;
            for (const AnswerPieces& pieces : mAnswers.pieces) {
                column.addId(pieces.items[layer]);
            }
            object.json(kLayers[layer], column.json());
        }
        for (const Part& part : kParts) {
            Column column;
            for (const AnswerPieces& pieces : mAnswers.pieces) {
                column.addId(pieces.*part.member);
            }
            object.json(part.name, column.json());
        }
        return object.str();
    }

    std::string sets() const {
        struct Part {
            const char* name;
            uint32_t AnswerSet::*member;
        };
        constexpr Part kParts[] = {
                {"model", &AnswerSet::model},     {"board", &AnswerSet::board},
                {"country", &AnswerSet::country}, {"customer", &AnswerSet::customer},
                {"pieces", &AnswerSet::pieces},   {"plans", &AnswerSet::plans},
        };
        JsonObject object;
        for (const Part& part : kParts) {
            Column column;
            for (const AnswerSet& set : mAnswers.sets) {
                column.addId(set.*part.member);
            }
            object.json(part.name, column.json());
        }
        return object.str();
    }

    const ProductLine& mLine;
    const LineAnswers& mAnswers;
    const FileTable& mFiles;
    TextTable& mTexts;
    std::vector<int64_t> mPlaces;
};

}  // namespace

std::string answersJson(const ProductLine& line, const LineAnswers& answers, const FileTable& files,
                        TextTable& texts) {
    return Writer(line, answers, files, texts).json();
}

}  // namespace mlk::tree
