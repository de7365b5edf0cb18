#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "common/ConfigKey.h"
#include "regional/CountryTable.h"
#include "tools/mlktree/FileLines.h"
#include "tools/mlktree/ProductLine.h"

namespace mlk::tree {

using vendor::morlak::mlkconfigs::V1_0::implementation::_tv_country;
using vendor::morlak::mlkconfigs::V1_0::implementation::ConfigKey;
using vendor::morlak::mlkconfigs::V1_0::implementation::kNoCountry;

class SetProduct;

/** One set of a product line. What is null or kNoCountry, the set does not have. */
struct SetChoice {
    const Customer* customer = nullptr;
    const Model* model = nullptr;
    const Board* board = nullptr;
    _tv_country country = kNoCountry;
};

/** The set of a product line that has only one (Selection::isOneSet). */
SetChoice onlySetOf(const ProductLine& line);

/** "model=2,board=skerry_b2.ini,country=GERMANY", without the parts that the set does not have. */
std::string nameOf(const SetChoice& choice);

/** Whose line gives a value. A later one replaces the values of those before. */
enum class Layer { MODEL, BOARD, COUNTRY };

/** "model", "board" or "country". */
std::string_view nameOf(Layer layer);

/** A value of an item, and the line that gives it. */
struct Origin {
    std::string_view value; /**< cleaned; paths as written: "/tvconfigs/..." */
    const FileLines* file = nullptr;
    const ReadLine* line = nullptr;
    Layer layer = Layer::MODEL;
};

/** An item of a set with all lines that give it a value; views belong to the product line. */
struct SetItem {
    std::string_view section; /**< with brackets, as the file has it */
    std::string_view key;
    std::vector<Origin> history; /**< at least one; each value replaces the one before it */

    const Origin& current() const { return history.back(); }
};

/**
 * What one set is: each item with the lines that it comes from.
 *
 * Made from the lines of a product line, without reading a file again. The country's TV system and
 * TV feature file are those that the service's own class gives. Everything else that a set answers
 * is computed by product(). The product line must outlive the object. One thread at a time.
 */
class SetModel {
  public:
    /** Items by section and key, in byte order. */
    using Items = std::map<std::pair<std::string_view, std::string_view>, SetItem>;

    SetModel(const ProductLine& line, const SetChoice& choice);
    ~SetModel();
    SetModel(const SetModel&) = delete;
    SetModel& operator=(const SetModel&) = delete;

    const ProductLine& line() const { return mLine; }
    const SetChoice& choice() const { return mChoice; }

    const Items& items() const { return mItems; }
    /** The item of that name, or null. */
    const SetItem* find(std::string_view section, std::string_view key) const;
    /** The value of an item, as written; empty if there is no such item. */
    std::string_view valueOf(const ConfigKey& name) const;
    /**
     * The value that an item has before the country is applied. The service loads audio, karaoke,
     * key and DDC/CI files by it.
     */
    std::string_view startValueOf(const ConfigKey& name) const;

    /** The TV system file and its map; null if the set names none. */
    const TvSystemFiles* tvSystems() const { return mTvSystems; }
    /** The TV system of the country; empty for none. */
    const std::string& tvSystem() const { return mTvSystem; }
    /** The element that begins the country's record in the map; null if it has none. */
    const ReadLine* countryRecord() const { return mRecord; }
    /** The lines by which the country brings items, those that the service ignores included. */
    const std::vector<SetItem>& countryItems() const { return mCountryItems; }

    /** The file that a value names, relative to the tree. */
    std::string pathOf(std::string_view value) const;

    /** The product's own objects for this set; made when they are first asked for. */
    SetProduct& product() const;

  private:
    void addLines(const FileLines* file, Layer layer);
    void findCountry();
    void applyCountry();

    const ProductLine& mLine;
    const SetChoice mChoice;
    Items mItems;
    std::unique_ptr<FileLines> mOwnModel;  // if the line has read the file in another format
    std::unique_ptr<FileLines> mOwnBoard;
    const TvSystemFiles* mTvSystems = nullptr;
    std::string mTvSystem;
    const ReadLine* mRecord = nullptr;
    std::vector<SetItem> mCountryItems;
    mutable std::unique_ptr<SetProduct> mProduct;
};

}  // namespace mlk::tree
