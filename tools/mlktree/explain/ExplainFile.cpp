// `mlktree explain file PATH`: who names a file, and what it is to the service.

#include <algorithm>
#include <set>

#include "common/Paths.h"
#include "regional/RegionalNames.h"
#include "tools/common/Json.h"
#include "tools/common/Text.h"
#include "tools/mlktree/Texts.h"
#include "tools/mlktree/explain/Explain.h"
#include "tools/mlktree/set/SetCountry.h"

namespace mlk::tree {

namespace product = vendor::morlak::mlkconfigs::V1_0::implementation;

namespace {

/** Files that are read because of their names. */
struct FixedFile {
    std::string_view path;
    std::string_view what;
};

constexpr FixedFile kFixedFiles[] = {
        {"tvconfigs/customer.ini", "the service reads it first"},
        {"impdata/project_id.bin", "has the index of the set's model"},
        {"impdata/board_id.bin", "has the path of the set's board file"},
        {"tvdata/tvsysmap/country_id.bin", "has the country that the set has saved"},
        {"mlktree.toml", "has the settings of mlktree; the service does not know it"},
};

std::string_view fixedUse(const std::string& path) {
    for (const FixedFile& row : kFixedFiles) {
        if (row.path == path) {
            return row.what;
        }
    }
    return beginsWith(path, "data/property/") ? "is a system property" : "";
}

/** What is known of a file. */
struct FileFacts {
    std::string path;
    bool exists = false;
    std::string format;  // "" for a file that the service does not read
    bool isRead = false;
    std::vector<Naming> namings;
    std::vector<std::string> sets;
    std::vector<std::string> countries;
    std::string_view use;  // of a file that no line names
};

// The countries whose element, or TV system, names the file.
void addCountries(const ProductLine& line, const Naming& naming, std::set<std::string>& names) {
    const FileFormat format = naming.file->format();
    if (naming.line == nullptr || naming.line->owner.empty()) {
        return;
    }
    if (format == FileFormat::COUNTRY_MAP || format == FileFormat::CHANNEL_MAP) {
        names.emplace(naming.line->owner);
        return;
    }
    for (const TvSystemFiles& files : line.tvSystems()) {
        if (files.file != naming.file) {
            continue;
        }
        for (const _tv_country country : line.countries()) {
            if (files.systems->systemOf(country) == naming.line->owner) {
                names.insert(countryName(country));
            }
        }
    }
}

FileFacts factsOf(const ProductLine& line, const std::string& path) {
    FileFacts facts;
    facts.path = path;
    facts.exists = product::pathExists(line.tree().host(path));
    if (const FileLines* const file = line.find(path)) {
        const bool isOpaque =
                file->format() == FileFormat::OPAQUE || file->format() == FileFormat::NONE;
        facts.format = isOpaque ? "" : std::string(nameOf(file->format()));
        facts.isRead = !isOpaque && file->exists() && !file->isUnreadable();
    }
    facts.sets = line.setsOf(path);
    std::set<std::string> countries;
    for (const Naming& naming : line.namings(path)) {
        facts.namings.push_back(naming);
        if (naming.file != nullptr) {
            addCountries(line, naming, countries);
        }
    }
    facts.countries.assign(countries.begin(), countries.end());
    facts.use = fixedUse(path);
    for (const Board& board : line.boards()) {
        if (board.file != nullptr && board.file->path() == path && facts.namings.empty()) {
            facts.use = "is a board file that board_id.bin may name";
        }
    }
    return facts;
}

std::string namingJson(const Naming& naming) {
    JsonObject json;
    json.text("file", naming.file != nullptr ? naming.file->path() : "");
    json.number("line", naming.line != nullptr ? static_cast<int64_t>(naming.line->number) : 0);
    json.text("section", naming.line != nullptr ? naming.line->section : "");
    json.text("key", naming.line != nullptr ? naming.line->key : "");
    json.text("value", naming.line != nullptr ? naming.line->value : "");
    return json.str();
}

std::string jsonOf(const FileFacts& facts) {
    std::vector<std::string> namings;
    for (const Naming& naming : facts.namings) {
        namings.push_back(namingJson(naming));
    }
    return JsonObject()
                   .text("file", facts.path)
                   .flag("exists", facts.exists)
                   .text("format", facts.format)
                   .flag("read", facts.isRead)
                   .json("namedBy", jsonArray(namings))
                   .json("sets", jsonTexts(facts.sets))
                   .json("countries", jsonTexts(facts.countries))
                   .str() +
           "\n";
}

std::string namingText(const Naming& naming) {
    if (naming.file == nullptr) {
        return "the service itself, by a rule or by impdata";
    }
    std::string text = naming.file->path();
    if (naming.line != nullptr) {
        text = placeText(naming.file->path(), naming.line->number) + ": ";
        text += naming.line->owner.empty() ? "" : std::string(naming.line->owner) + " ";
        text += naming.line->section.empty() ? "" : std::string(naming.line->section) + " ";
        text += naming.line->key;
    }
    return text;
}

Page pageOf(const ProductLine& line, const FileFacts& facts, const Request& request) {
    Page page(line, request.isColoured);
    page.title(facts.path + (facts.exists ? "" : " (missing)"));
    page.row("format",
             !facts.format.empty()   ? facts.format + (facts.isRead   ? ", which the service reads"
                                                       : facts.exists ? ", which cannot be read"
                                                                      : "")
             : facts.namings.empty() ? "unknown"
                                     : "any: the service hands out its path, or its bytes");
    for (const Naming& naming : facts.namings) {
        page.row("named by", namingText(naming));
    }
    if (facts.namings.empty()) {
        page.row("named by", facts.use.empty() ? "nothing: no set uses it" : "nothing");
    }
    if (!facts.use.empty()) {
        page.row("use", facts.use);
    }
    for (const std::string& group : facts.sets) {
        page.row("sets", group);
    }
    if (!facts.countries.empty()) {
        page.row("countries", joined(facts.countries));
    }
    return page;
}

// The path that probably was meant, by its last part.
std::string hintFor(const ProductLine& line, const std::string& path) {
    std::vector<std::string_view> paths;
    for (const auto& [one, namings] : line.namedPaths()) {
        paths.push_back(one);
    }
    for (const auto& [one, file] : line.files()) {
        paths.push_back(one);
    }
    std::string hint = suggestionOf(path, paths);
    if (!hint.empty()) {
        return hint;
    }
    const std::string name(product::fileNameOf(path));
    for (const std::string_view one : paths) {
        if (product::fileNameOf(one) == name) {
            return "; did you mean " + std::string(one) + "?";
        }
    }
    return "";
}

}  // namespace

Explanation explainFile(const ProductLine& line, const Request& request) {
    const Tree& tree = line.tree();
    const std::string path = tree.relative(tree.hostOfArgument(request.question.name));
    const FileFacts facts = factsOf(line, path);
    if (!facts.exists && facts.namings.empty()) {
        throw NotFound("there is no file " + path + ", and no line names it" + hintFor(line, path));
    }
    return {pageOf(line, facts, request).take(), jsonOf(facts)};
}

}  // namespace mlk::tree
