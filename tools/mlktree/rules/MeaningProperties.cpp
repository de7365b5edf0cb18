// Rules about system properties.

#include <sys/stat.h>

#include <algorithm>
#include <iterator>
#include <string>

#include "common/Paths.h"
#include "frameworkconfigs/FrameworkItems.h"
#include "projectconfigs/KnownProperties.h"
#include "projectconfigs/SoundDelays.h"
#include "tools/mlktree/FolderFiles.h"
#include "tools/mlktree/Reporter.h"
#include "tools/mlktree/Texts.h"
#include "tools/mlktree/rules/Families.h"
#include "tools/mlktree/rules/Meaning.h"
#include "tools/mlktree/rules/MeaningValue.h"
#include "tools/mlktree/rules/NearFiles.h"
#include "tvconfigs/TvConfigItems.h"

namespace mlk::tree {

namespace {

namespace product = vendor::morlak::mlkconfigs::V1_0::implementation;

const std::vector<std::string_view>& knownProperties() {
    static const std::vector<std::string_view> keys = [] {
        std::vector<std::string_view> all;
        for (const product::FrameworkItemRow& row : product::kFrameworkItems) {
            if (row.property != nullptr) {
                all.emplace_back(row.property);
            }
        }
        for (const product::KnownProperty& row : product::kKnownProperties) {
            all.emplace_back(row.key);
        }
        all.insert(all.end(), featureKeys().begin(), featureKeys().end());
        return all;
    }();
    return keys;
}

bool isKnownProperty(std::string_view key) {
    const std::vector<std::string_view>& known = knownProperties();
    return std::find(known.begin(), known.end(), key) != known.end();
}

// The property's file and its first line; no line for a value of --prop, which the file does not
// have.
Place placeOf(const ProductLine& line, const std::string& key) {
    const size_t first = line.properties().isGiven(key) ? 0 : 1;
    return {"data/property/" + key, first, first};
}

// Where the engineer types: the file, or the option.
std::string origin(const ProductLine& line, const std::string& key) {
    return line.properties().isGiven(key) ? "--prop " + key + ": " : "";
}

bool endsInLineEnd(std::string_view value) {
    return !value.empty() && (value.back() == '\n' || value.back() == '\r');
}

std::string problemOfProperty(const std::string& key, const std::string& value) {
    for (const product::FrameworkItemRow& row : product::kFrameworkItems) {
        if (row.property != nullptr && key == row.property) {
            std::string problem = problemOf(typeOf(row.kind), value);
            if (!problem.empty()) {
                return problem;
            }
        }
    }
    for (const product::KnownProperty& row : product::kKnownProperties) {
        if (key == row.key) {
            return problemOf(row.type, value);
        }
    }
    return problemOfFeature(key, value);
}

// The bytes of a property's file; those of a value that --prop gives.
size_t sizeOf(const ProductLine& line, const std::string& key) {
    struct stat info {};
    return stat(line.tree().host("data/property/" + key).c_str(), &info) == 0 &&
                           !line.properties().isGiven(key)
                   ? static_cast<size_t>(info.st_size)
                   : 0;
}

// The properties to look at.
std::vector<std::string> keysOf(const ProductLine& line) {
    std::vector<std::string> keys = line.properties().keys();
    if (keys.size() > kMostProperties) {
        keys.erase(std::remove_if(keys.begin(), keys.end(),
                                  [](const std::string& key) { return !isKnownProperty(key); }),
                   keys.end());
    }
    return keys;
}

void checkValues(const ProductLine& line, Reporter& reporter) {
    for (const std::string& key : keysOf(line)) {
        const std::string value = line.properties().get(key.c_str());
        std::string problem =
                endsInLineEnd(value) || value.empty() ? "" : problemOfProperty(key, value);
        if (sizeOf(line, key) > kLongestProperty) {
            problem = "a value has at most " + std::to_string(kLongestProperty) +
                      " bytes; the file has " + std::to_string(sizeOf(line, key)) +
                      ", and the rest does not count";
        }
        if (!problem.empty()) {
            reporter.reportIn({"all"}, placeOf(line, key), origin(line, key) + problem);
        }
    }
}

void checkLineEnds(const ProductLine& line, Reporter& reporter) {
    for (const std::string& key : keysOf(line)) {
        const std::string value = line.properties().get(key.c_str());
        if (!endsInLineEnd(value)) {
            continue;
        }
        const std::string_view text =
                std::string_view(value).substr(0, value.find_last_not_of("\r\n") + 1);
        Place place = placeOf(line, key);
        if (place.line != 0) {
            // A value may have line ends in its middle, too; the place is that of the last one.
            place.line += static_cast<size_t>(std::count(text.begin(), text.end(), '\n'));
            place.column = text.size() - (text.rfind('\n') + 1) + 1;
        }
        reporter.reportIn({"all"}, place,
                          origin(line, key) + "the line end belongs to the value; write " +
                                  quoted(text) + " without one");
    }
}

void checkNames(const ProductLine& line, Reporter& reporter) {
    const std::vector<std::string> keys = keysOf(line);
    std::vector<std::string_view> candidates;
    for (const std::string_view known : knownProperties()) {
        if (std::find(keys.begin(), keys.end(), known) == keys.end()) {
            candidates.push_back(known);
        }
    }
    for (const std::string& key : keys) {
        const bool isOurs = beginsWith(key, "persist.vendor.mlk.") ||
                            beginsWith(key, "vendor.mlk.") || beginsWith(key, "ro.");
        const std::string_view right =
                isOurs && !isKnownProperty(key) ? nearestName(key, candidates) : std::string_view();
        if (!right.empty()) {
            reporter.reportIn({"all"}, placeOf(line, key),
                              origin(line, key) + "nobody asks for " + quoted(key) + "; is " +
                                      quoted(right) + " meant?");
        }
    }
}

bool hasDelays(const ProductLine& line) {
    const std::vector<ItemFile>& files = itemTableOf(line).files;
    return std::any_of(files.begin(), files.end(), [](const ItemFile& item) {
        return item.file->find(product::item::kPanelAudio.category,
                               product::item::kPanelAudio.key) != nullptr;
    });
}

void checkHardware(const ProductLine& line, Reporter& reporter) {
    const std::string key = product::property::kHardware;
    if (!line.properties().isKnown() || !hasDelays(line)) {
        return;
    }
    const std::string hardware = line.properties().get(key.c_str());
    if (hardware.empty()) {
        const auto names = [&](const std::string& known) {
            return !isKnownProperty(known) &&
                   nearestName(known, {product::property::kHardware}) == key;
        };
        const std::vector<std::string> keys = keysOf(line);
        if (std::none_of(keys.begin(), keys.end(), names)) {
            reporter.reportIn({"all"}, {"data/property/" + key, 0, 0},
                              "no such property, so that no audio file of the hardware is read");
        }
        return;
    }
    const std::string path = std::string("tvconfigs") + product::kHardwareAudioFolder +
                             product::kHardwareAudioPrefix + hardware + product::kAudioFileEnd;
    if (!endsInLineEnd(hardware) && !product::pathExists(line.tree().host(path))) {
        const std::string host = line.tree().host(path);
        NearFiles near(line.tree());
        std::string other = near.inAnotherCase(host);
        other = other.empty() ? near.nearFile(host) : other;
        std::vector<Related> related;
        if (!other.empty()) {
            related.push_back({{line.tree().relative(other), 0, 0}, "this file exists"});
        }
        reporter.reportIn({"all"}, placeOf(line, key),
                          origin(line, key) + "there is no file /" + path +
                                  (other.empty() ? "" : "; there is " + line.tree().written(other)),
                          std::move(related));
    }
}

constexpr Rule kRules[] = {
        {"property-value", Severity::ERROR, "a property has a value that does not count",
         "A value that is no switch or no number counts as missing, and the set behaves as if it "
         "had no such property.",
         "persist.vendor.mlk.enstr is \"True\"", "persist.vendor.mlk.enstr is \"1\"", checkValues},
        {"property-line-end", Severity::ERROR, "a property's file ends in a line feed",
         "The file's content is the value. With a line feed it is no switch, and the hardware has "
         "another name.",
         "echo skerry > data/property/ro.hardware", "printf skerry > data/property/ro.hardware",
         checkLineEnds},
        {"misspelt-property", Severity::WARNING, "a property has nearly the name of a known one",
         "Nobody asks for the misspelt one, and the known one is missing.",
         "persist.vendor.mlk.en_str", "persist.vendor.mlk.enstr", checkNames},
        {"hardware-audio", Severity::WARNING, "the hardware has no name or no audio file",
         "The delays of the hardware's own audio file are missing from every sum.",
         "ro.hardware is \"skery\"      (the file is audio_skerry.ini)",
         "ro.hardware is \"skerry\"", checkHardware},
};

}  // namespace

RuleFamily properties() {
    return {"properties", "System properties", kRules, std::size(kRules)};
}

}  // namespace mlk::tree
