#include "tools/mlktree/tests/ToldAnswers.h"

#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

#include "common/Decimal.h"
#include "frameworkconfigs/FrameworkItems.h"
#include "host/testing/Process.h"
#include "projectconfigs/KnownItems.h"
#include "projectconfigs/ProjectParser.h"
#include "regional/CountryTable.h"
#include "regional/FreqTableParser.h"
#include "regional/RegionalData.h"
#include "tools/mlktree/answers/NamedFiles.h"
#include "tools/mlktree/set/SetProduct.h"
#include "tools/mlktree/tests/ToldTexts.h"
#include "tvconfigs/TvConfigItems.h"

namespace mlk::tree {

namespace product = vendor::morlak::mlkconfigs::V1_0::implementation;
namespace fs = std::filesystem;

using ::android::hardware::hidl_enum_range;

namespace {

using Names = std::set<std::pair<std::string, std::string>>;

std::string trimmedEnd(const std::string& text) {
    return text.substr(0, text.find_last_not_of(" \r") + 1);
}

// Every section with every key of the text files of a folder: more than they have as items.
void addNames(const fs::path& folder, Names& names) {
    std::error_code error;
    for (const auto& entry : fs::recursive_directory_iterator(folder, error)) {
        if (!entry.is_regular_file(error) || entry.path().extension() != ".ini") {
            continue;
        }
        std::ifstream file(entry.path());
        std::vector<std::string> sections = {""};
        for (std::string line; std::getline(file, line);) {
            const size_t begin = std::min(line.find_first_not_of('='), line.size());
            if (!line.empty() && line.front() == '[') {
                // As its author means it, and as the rest of the line may spoil it.
                const std::string whole = line.substr(0, line.find('#'));
                sections = {line.substr(0, line.find(']') + 1), whole, trimmedEnd(whole)};
            } else if (line.find('=', begin) != std::string::npos) {
                for (const std::string& section : sections) {
                    names.emplace(section,
                                  trimmedEnd(line.substr(begin, line.find('=', begin) - begin)));
                }
            }
        }
    }
}

std::string namesOf(const std::vector<_tv_country>& countries) {
    const product::NameTable table = product::countryNames();
    std::string text;
    for (const _tv_country country : countries) {
        std::string name;
        table.firstNameOf(country, name);
        text += name + "\n";
    }
    return text;
}

/** Asks the objects of one set. */
class Asking {
  public:
    Asking(const ProductLine& line, const SetChoice& choice)
        : mLine(line), mChoice(choice), mProduct(line, choice) {}

    Told all(bool hasReceivers) {
        addItems();
        addFeatures();
        addDelays(hasReceivers);
        addAuxiliary();
        addRegion();
        return std::move(mTold);
    }

  private:
    // A path of this machine as the files have it.
    std::string written(const std::string& value) const {
        const Partitions& partitions = mLine.tree().partitions();
        for (const auto& [folder, name] :
             {std::pair{partitions.tvconfigs, "/tvconfigs"},
              std::pair{partitions.tvdata, "/tvdata"}, std::pair{partitions.impdata, "/impdata"}}) {
            if (value.compare(0, folder.size(), folder) == 0) {
                return name + value.substr(folder.size());
            }
        }
        return value;
    }

    void addItems() {
        const product::ProjectParser& items = mProduct.project().items();
        std::ostringstream dump;
        items.dump(dump);
        std::istringstream lines(dump.str());
        std::set<std::string> sections;
        static constexpr std::pair<std::string_view, const char*> kPaths[] = {
                {"  Sys ini file: ", "customer system file"},
                {"  Project ini file: ", "model file"},
                {"  Board ini file: ", "board file"},
        };
        for (std::string line; std::getline(lines, line);) {
            for (const auto& [start, name] : kPaths) {
                if (line.compare(0, start.size(), start) == 0) {
                    add(mTold, name, written(line.substr(start.size())));
                }
            }
            // "    SECTION:KEY=VALUE"; a section or a key may have a colon.
            for (size_t end = line.find(':');
                 line.compare(0, 4, "    ") == 0 && end < line.find('=');
                 end = line.find(':', end + 1)) {
                sections.insert(line.substr(4, end - 4));
            }
        }
        for (const std::string& section : sections) {
            for (const auto& [key, value] : items.getInfosByCategory(section)) {
                const std::string path = written(value);
                mTold["item " + nameOf(section, key)] = path;
                if (isInPartition(path) && mayNameFile({section, key})) {
                    const std::vector<uint8_t> bytes = product::ProjectParser::getTvFile(value);
                    mTold["file " + path] =
                            product::ProjectParser::isFileExist(value)
                                    ? "exists " + std::string(bytes.begin(), bytes.end())
                                    : "missing";
                }
            }
        }
        mTold["customer id"] = items.getCustomerId();
        mTold["customer highest index"] = std::to_string(items.getProjectMaxIdx());
        std::vector<std::string> list;
        items.getProjectIniList(list);
        for (const std::string& entry : list) {
            mTold["customer project files"] += entry + "\n";
        }
    }

    void addFeatures() {
        const product::TvFeatures& features = mProduct.features();
        for (const product::TvSystemRow& row : product::kTvSystems) {
            mTold["feature " + std::string(row.method)] = std::to_string(features.get(row));
        }
        for (const product::TvFlagRow& row : product::kTvFlags) {
            mTold["feature " + std::string(row.method)] = features.get(row) ? "true" : "false";
        }
        for (size_t i = 0; i < std::size(product::kFrameworkItems); ++i) {
            const product::FrameworkItemRow& row = product::kFrameworkItems[i];
            const int32_t value = mProduct.switches().get(i);
            const bool isNumber = row.kind == product::FrameworkItemKind::NUMBER;
            const bool isText = row.kind == product::FrameworkItemKind::TEXT;
            mTold["framework " + std::string(row.method)] = isText       ? ""
                                                            : isNumber   ? std::to_string(value)
                                                            : value != 0 ? "true"
                                                                         : "false";
        }
    }

    void addDelays(bool hasReceivers) {
        product::SoundDelays& sounds = mProduct.project().sounds();
        Names names;
        addNames(mLine.tree().host("tvconfigs/audio"), names);
        addNames(mLine.tree().host("tvconfigs/sound"), names);
        const auto ask = [&](const std::string& receiver, bool isArc) {
            for (const auto& [section, key] : names) {
                add(mTold, "delay " + nameOf(section, key) + " " + receiver,
                    std::to_string(sounds.delay({section, key}, isArc)), "0");
            }
        };
        ask("", false);
        ask("ARC", true);
        if (!hasReceivers) {
            return;
        }
        const std::string path = mProduct.project().items().getInfo(product::item::kAvrAudio);
        const fs::path folder = fs::path(path).parent_path();
        std::error_code error;
        for (const auto& entry : fs::directory_iterator(folder, error)) {
            const std::string name = entry.path().filename().string();
            const size_t split = name.find('_', 5);
            const bool isAvr = name.compare(0, 4, "AVR_") == 0 && split != std::string::npos &&
                               name.size() > split + 5 &&
                               name.compare(name.size() - 4, 4, ".ini") == 0;
            if (isAvr) {
                // A set of its own for each: files stay loaded.
                SetProduct own(mLine, mChoice);
                product::SoundDelays& mine = own.project().sounds();
                mine.trySetAvrVendorId(name.substr(4, split - 4));
                mine.trySetAvrOSDName(name.substr(split + 1, name.size() - 4 - split - 1));
                for (const auto& [section, key] : names) {
                    add(mTold, "delay " + nameOf(section, key) + " " + name,
                        std::to_string(mine.delay({section, key}, true)), "0");
                }
            }
        }
    }

    void addAuxiliary() {
        product::ProjectSet& set = mProduct.project();
        Names names;
        for (const char* folder : {"karaoke", "keys", "ddcci"}) {
            addNames(mLine.tree().host(std::string("tvconfigs/") + folder), names);
        }
        for (const auto& [section, key] : names) {
            const std::string name = nameOf(section, key);
            const int32_t number = product::parseDecimal(set.karaoke().lookUp({section, key}));
            add(mTold, "auxiliary karaoke " + name, std::to_string(number), "0");
            add(mTold, "auxiliary keys " + name, set.globalKeys().lookUp({section, key}));
            add(mTold, "auxiliary ddcci " + name, set.customerDdcci().lookUp({section, key}));
        }
    }

    void addRegion() {
        const product::Region& region = mProduct.project().region();
        add(mTold, "country countries", namesOf(region.countries()));
        add(mTold, "country cltvCountries", namesOf(region.cltvCountries()));
        std::string languages;
        for (const std::string& language : region.languages()) {
            languages += language + "\n";
        }
        add(mTold, "language languages", languages);
        const std::string folder = mProduct.project().items().getInfo(product::item::kChannelPlans);
        for (const auto type : hidl_enum_range<FreqTableType>()) {
            const bool isCable =
                    type == FreqTableType::DTV_CABLE || type == FreqTableType::ATV_CABLE;
            for (const auto cable : hidl_enum_range<AtscCableType>()) {
                if (!isCable && cable != AtscCableType::AUTO) {
                    continue;
                }
                std::string channels;
                // The service keeps names that it does not know: what one plan has changes the
                // answers of the next ones. Each of these is the first.
                product::RegionalData data([this] { return mLine.tree().partitions(); });
                std::vector<HidlFreqListItem> items;
                product::FreqTableParser(data).GetTableList(folder, mChoice.country, type, cable,
                                                            items);
                for (const HidlFreqListItem& item : items) {
                    const std::string label(item.label.data(),
                                            item.label.data() + item.label.size());
                    channels += textOf(item.channel, item.frequency, item.bandwidth, label.c_str(),
                                       item.modulation);
                }
                add(mTold, "plan " + toString(type) + (isCable ? " " + toString(cable) : ""),
                    channels);
            }
        }
    }

    const ProductLine& mLine;
    const SetChoice mChoice;
    SetProduct mProduct;
    Told mTold;
};

}  // namespace

std::string samplePath() {
    return testing::sourceDir() + "/samples/partitions";
}

Told toldByProduct(const ProductLine& line, const SetChoice& choice, bool hasReceivers) {
    return Asking(line, choice).all(hasReceivers);
}

}  // namespace mlk::tree
