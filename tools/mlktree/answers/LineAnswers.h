#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace mlk::tree {

class ProductLine;

/** The number of what is not there: a piece, a model, a file. */
inline constexpr uint32_t kNone = UINT32_MAX;

/** AnswerPlace::file of a value that each country's own record gives. */
inline constexpr uint32_t kPlaceByCountry = kNone - 1;

/** Where a value stands. */
struct AnswerPlace {
    /** Number in LineAnswers::places; kNone if no file gives the value; kPlaceByCountry. */
    uint32_t file = kNone;
    uint32_t line = 0; /**< for kPlaceByCountry: number in LineAnswers::placesByCountry */

    bool isKnown() const { return file != kNone; }
};

/** Section, with its brackets, and key of an item. */
struct AnswerName {
    std::string_view section;
    std::string_view key;
};

/** The value of an item; paths as written: "/tvconfigs/...". */
struct AnswerItem {
    uint32_t name = 0; /**< number in LineAnswers::names */
    /** Ask LineAnswers::placeOf(), because a country's item may have a place for each country. */
    AnswerPlace place = {};
    std::string_view value;
};

/** Items by name, each name once. The numbers of names are in the order of sections and keys. */
using ItemPiece = std::vector<AnswerItem>;

/** What the value of a feature is. */
enum class AnswerType { FLAG, NUMBER, TEXT };

/** A TV feature, a TV system or a framework switch. */
struct AnswerFeature {
    std::string_view method; /**< its getter: "pvrEnabled" */
    std::string_view value;  /**< "true", "false", a number, or a text */
    AnswerType type = AnswerType::FLAG;
    AnswerPlace place = {};
};

/** By method, in byte order. */
using FeaturePiece = std::vector<AnswerFeature>;

/** One of the values that a sound delay is the sum of. */
struct AnswerSummand {
    std::string_view role; /**< "panel", "IC", "hardware", "default AVR" or "AVR" */
    int32_t value = 0;
    AnswerPlace place = {}; /**< unknown if the role's file lacks the item */
};

/** A sound delay. */
struct AnswerDelay {
    /** Empty without a receiver; "ARC"; or the file of a receiver: "AVR_0EC0DE_Orlan900.ini". */
    std::string_view receiver;
    uint32_t name = 0; /**< number in LineAnswers::names */
    int32_t value = 0;
    std::vector<AnswerSummand> summands; /**< empty if read from a snapshot */
};

/** By receiver, then by name. A delay that is not here is 0. */
using DelayPiece = std::vector<AnswerDelay>;

/** An entry of a list: the name of a country, a language, a project file. */
struct AnswerEntry {
    std::string_view text;
    AnswerPlace place = {};
};

/** In the order in which the service answers them. */
using ListPiece = std::vector<AnswerEntry>;

/** A channel of a plan. */
struct AnswerChannel {
    int32_t channel = 0;
    int32_t frequency = 0; /**< kHz */
    int32_t bandwidth = 0; /**< Hz */
    std::string_view label;
    int32_t modulation = 0;
    AnswerPlace place = {};
};

/** The channels of a plan, in the order of its file. */
using ChannelPiece = std::vector<AnswerChannel>;

/** A plan of a country that has channels. */
struct AnswerPlan {
    std::string_view kind;     /**< "DTV_ANTENNA", "DTV_CABLE HRC" */
    uint32_t channels = kNone; /**< number in LineAnswers::channels */
    AnswerPlace place = {};    /**< the element of the map that names the plan */
};

/** By kind, in byte order. A kind that is not here has no channels. */
using PlanPiece = std::vector<AnswerPlan>;

/** A customer file. */
struct AnswerCustomer {
    std::string_view file; /**< relative to the tree */
    AnswerEntry id;
    AnswerEntry system; /**< path of the system file, as written; empty if none is named */
    uint32_t highestIndex = 0;
    ListPiece projectFiles; /**< what selection menus show */
    /** Those of the line's countries that a line of this customer alone has; nothing for all. */
    std::optional<std::set<std::string_view>> countries;
};

/** A model of a customer. */
struct AnswerModel {
    int32_t index = 0;
    uint32_t customer = 0;
    AnswerEntry file; /**< path as written; empty for none; the place is the "Model_" line */
};

/** A board. */
struct AnswerBoard {
    std::string_view name; /**< file name, or the path if two boards share one; "none" */
    std::string_view file; /**< path as written; empty for none */
};

/** A file that items name and that the service does not read itself: its bytes are the answer. */
struct AnswerFile {
    std::string_view path; /**< as written */
    bool exists = false;
    uint64_t size = 0;
    uint64_t hash = 0; /**< FNV-1a, 64 bits */

    bool operator==(const AnswerFile& other) const {
        return path == other.path && exists == other.exists && size == other.size &&
               hash == other.hash;
    }
};

/** How many layers of items a set can have: its model's, its board's and its country's. */
inline constexpr size_t kItemLayers = 3;

/**
 * The pieces that a set answers with, except for its plans: numbers in the tables of LineAnswers.
 * Sets of one model and board mostly share one of these with many countries.
 */
struct AnswerPieces {
    /** The layers of items: an item of a later layer replaces those before it. */
    std::array<uint32_t, kItemLayers> items = {kNone, kNone, kNone};
    uint32_t features = kNone;
    uint32_t framework = kNone;
    uint32_t delays = kNone;
    uint32_t karaoke = kNone; /**< its values are numbers; what is not here is 0 */
    uint32_t keys = kNone;
    uint32_t ddcci = kNone;
    uint32_t countries = kNone;
    uint32_t cltvCountries = kNone;
    uint32_t languages = kNone;

    bool operator==(const AnswerPieces& other) const;
    /** Any order, for maps. */
    bool operator<(const AnswerPieces& other) const;
};

/** One set: who it is, and its pieces. */
struct AnswerSet {
    uint32_t model = kNone;   /**< kNone for a set without a model */
    uint32_t board = 0;       /**< number in LineAnswers::boards */
    uint32_t country = kNone; /**< number in LineAnswers::countries; kNone for no country */
    uint32_t customer = 0;    /**< number in LineAnswers::customers */
    uint32_t pieces = 0;      /**< number in LineAnswers::pieces */
    uint32_t plans = kNone;   /**< number in LineAnswers::plans */
};

/**
 * What every set of a product line answers, in shared pieces, as after a start of the service.
 *
 * Each piece is computed once for what it depends on, and a set is a tuple of the numbers of its
 * pieces: a line of 100,000 sets costs little more than its files. A number kNone stands for an
 * empty piece. Sets are in the order of models, boards and countries.
 *
 * Made by answersOf() from a product line, or by readSnapshot(), then without places. It does not
 * change afterwards: any thread may read it.
 */
struct LineAnswers {
    LineAnswers() = default;
    LineAnswers(const LineAnswers&) = delete;
    LineAnswers& operator=(const LineAnswers&) = delete;

    std::vector<std::string> places; /**< the files that have values, relative to the tree */
    /** For items that each country's record gives: the place for each country. */
    std::vector<std::vector<AnswerPlace>> placesByCountry;
    std::vector<AnswerName> names; /**< in the order of sections, then keys, by their bytes */

    std::vector<AnswerCustomer> customers;
    std::vector<AnswerModel> models; /**< by customer, then in the order of the system file */
    std::vector<AnswerBoard> boards;
    std::vector<std::string_view> countries; /**< in the order of their values */
    std::vector<AnswerFile> files;           /**< by path */

    std::vector<ItemPiece> items; /**< also of karaoke, keys and DDC/CI */
    std::vector<FeaturePiece> features;
    std::vector<DelayPiece> delays;
    std::vector<ListPiece> lists;
    std::vector<ChannelPiece> channels;
    std::vector<PlanPiece> plans;
    std::vector<AnswerPieces> pieces;
    std::vector<AnswerSet> sets;

    /** Number of a name; kNone if no piece has it. */
    uint32_t find(std::string_view section, std::string_view key) const;

    /** The item of a set by the number of its name; null if the set has none. */
    const AnswerItem* item(const AnswerPieces& set, uint32_t name) const;

    /** All items of a set by name: those that count. */
    std::vector<const AnswerItem*> itemsOf(const AnswerPieces& set) const;

    /** A piece of one of the tables above; an empty one for kNone. */
    const ItemPiece& itemPiece(uint32_t number) const;
    const FeaturePiece& featurePiece(uint32_t number) const;
    const DelayPiece& delayPiece(uint32_t number) const;
    const ListPiece& listPiece(uint32_t number) const;
    const ChannelPiece& channelPiece(uint32_t number) const;
    const PlanPiece& planPiece(uint32_t number) const;

    /** The place of an item of a set; never kPlaceByCountry. */
    AnswerPlace placeOf(const AnswerItem& item, const AnswerSet& set) const;

    /** Path of the file of a place, relative to the tree; empty if the place is unknown. */
    std::string_view pathOf(const AnswerPlace& place) const;

    /** Keeps a text as long as the object. */
    std::string_view keep(std::string text) { return texts.emplace_back(std::move(text)); }

    std::deque<std::string> texts;                   /**< what keep() keeps */
    std::vector<std::shared_ptr<const void>> owners; /**< of texts that the pieces show */
};

/**
 * Computes what the sets of a product line answer, on all cores.
 *
 * @param line      must outlive the answers, which show its texts
 * @param isOneSet  the line is of one set (Selection::isOneSet), which may have no model
 */
std::unique_ptr<const LineAnswers> answersOf(const ProductLine& line, bool isOneSet = false);

/** "model=2,board=b1.ini,country=GERMANY"; the customer if the line has several. */
std::string nameOf(const LineAnswers& line, const AnswerSet& set);

}  // namespace mlk::tree
