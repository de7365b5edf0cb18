// What the model of answers tells, in the form of Told.
#include <algorithm>
#include <fstream>
#include <sstream>

#include "regional/CountryTable.h"
#include "tools/mlktree/tests/ToldAnswers.h"
#include "tools/mlktree/tests/ToldTexts.h"

namespace mlk::tree {

namespace product = vendor::morlak::mlkconfigs::V1_0::implementation;

namespace {

void addFeatures(Told& told, const char* kind, const FeaturePiece& piece) {
    for (const AnswerFeature& feature : piece) {
        told[std::string(kind) + " " + std::string(feature.method)] = std::string(feature.value);
    }
}

std::string textOf(const ListPiece& piece) {
    std::string text;
    for (const AnswerEntry& entry : piece) {
        text += std::string(entry.text) + "\n";
    }
    return text;
}

std::string bytesOf(const Tree& tree, std::string_view path) {
    std::ifstream file(tree.hostOfWritten(path), std::ios::binary);
    std::ostringstream bytes;
    bytes << file.rdbuf();
    return bytes.str();
}

}  // namespace

Told toldBy(const LineAnswers& line, const AnswerSet& set) {
    const AnswerPieces& pieces = line.pieces[set.pieces];
    Told told;
    for (const AnswerItem* const item : line.itemsOf(pieces)) {
        const AnswerName& name = line.names[item->name];
        told["item " + nameOf(name.section, name.key)] = std::string(item->value);
    }
    addFeatures(told, "feature", line.featurePiece(pieces.features));
    addFeatures(told, "framework", line.featurePiece(pieces.framework));
    for (const AnswerDelay& delay : line.delayPiece(pieces.delays)) {
        const AnswerName& name = line.names[delay.name];
        add(told, "delay " + nameOf(name.section, name.key) + " " + std::string(delay.receiver),
            std::to_string(delay.value), "0");
    }
    for (const auto& [kind, piece] :
         {std::pair{"karaoke", pieces.karaoke}, std::pair{"keys", pieces.keys},
          std::pair{"ddcci", pieces.ddcci}}) {
        for (const AnswerItem& item : line.itemPiece(piece)) {
            const AnswerName& name = line.names[item.name];
            add(told, std::string("auxiliary ") + kind + " " + nameOf(name.section, name.key),
                std::string(item.value), piece == pieces.karaoke ? "0" : "");
        }
    }
    add(told, "country countries", textOf(line.listPiece(pieces.countries)));
    add(told, "country cltvCountries", textOf(line.listPiece(pieces.cltvCountries)));
    add(told, "language languages", textOf(line.listPiece(pieces.languages)));
    for (const AnswerPlan& plan : line.planPiece(set.plans)) {
        std::string channels;
        for (const AnswerChannel& channel : line.channelPiece(plan.channels)) {
            channels += textOf(channel.channel, channel.frequency, channel.bandwidth,
                               std::string(channel.label), channel.modulation);
        }
        told["plan " + std::string(plan.kind)] = channels;
    }
    const AnswerCustomer& customer = line.customers[set.customer];
    told["customer id"] = std::string(customer.id.text);
    told["customer highest index"] = std::to_string(customer.highestIndex);
    add(told, "customer system file", std::string(customer.system.text));
    add(told, "board file", std::string(line.boards[set.board].file));
    if (set.model != kNone) {
        add(told, "model file", std::string(line.models[set.model].file.text));
    }
    if (!customer.projectFiles.empty()) {
        told["customer project files"] = textOf(customer.projectFiles);
    }
    return told;
}

std::set<std::string> differing(const Told& a, const Told& b) {
    std::set<std::string> asked;
    for (const auto& [one, other] : {std::pair{&a, &b}, std::pair{&b, &a}}) {
        for (const auto& [name, value] : *one) {
            const auto found = other->find(name);
            const bool isThere = found != other->end();
            if (isThere ? found->second != value : name.compare(0, 5, "file ") != 0) {
                asked.insert(name);
            }
        }
    }
    return asked;
}

Told filesTold(const LineAnswers& line, const Tree& tree, const Told& told) {
    Told files;
    for (const AnswerFile& file : line.files) {
        for (const auto& [name, value] : told) {
            if (value == file.path && name.compare(0, 5, "item ") == 0) {
                files["file " + value] =
                        file.exists ? "exists " + bytesOf(tree, file.path) : "missing";
            }
        }
    }
    return files;
}

SetChoice choiceOf(const ProductLine& line, const LineAnswers& answers, const AnswerSet& set) {
    SetChoice choice;
    choice.customer = &line.customers()[set.customer];
    choice.board = &line.boards()[set.board];
    size_t number = 0;
    for (const Model& model : line.models()) {
        if (model.counts && number++ == set.model) {
            choice.model = &model;
        }
    }
    if (set.country != kNone) {
        const std::string name(answers.countries[set.country]);
        choice.country = _tv_country{*product::countryNames().find(name)};
    }
    return choice;
}

}  // namespace mlk::tree
