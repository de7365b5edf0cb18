// Rules about the keys and values of TV feature files.

#include <algorithm>
#include <iterator>
#include <map>
#include <optional>

#include "host/text/Utf8.h"
#include "tools/mlktree/Nearest.h"
#include "tools/mlktree/Reporter.h"
#include "tools/mlktree/Texts.h"
#include "tools/mlktree/rules/Families.h"
#include "tools/mlktree/rules/MeaningValue.h"
#include "tvconfigs/TvConfigItems.h"

namespace mlk::tree {

namespace {

namespace product = vendor::morlak::mlkconfigs::V1_0::implementation;

bool isFeature(std::string_view key) {
    return std::find(featureKeys().begin(), featureKeys().end(), key) != featureKeys().end();
}

// Calls check(file, line) for each entry whose key and value are as their author wrote them.
template <typename Check>
void forEachFeature(const ProductLine& line, const Check& check) {
    for (const auto& [path, file] : line.files()) {
        if (file->format() != FileFormat::TV_FEATURES || file->isUnreadable()) {
            continue;
        }
        for (const ReadLine& read : file->lines()) {
            const bool isWhole = read.use == LineUse::ITEM && !looksLikeComment(read.text) &&
                                 trimmed(read.key) == read.key &&
                                 read.key.find('=') == std::string_view::npos &&
                                 !beginsWith(read.text, kByteOrderMark);
            if (isWhole && file->find("", read.key) == &read) {
                check(*file, read);
            }
        }
    }
}

// The feature that a key is meant for: rather one that the file lacks. Empty for none.
std::string_view featureMeantBy(const FileLines& file, std::string_view key) {
    const auto endOf = [](std::string_view name) { return name.substr(name.rfind('.') + 1); };
    for (const std::string_view feature : featureKeys()) {
        if (endOf(feature) == endOf(key)) {
            return feature;  // another beginning, or none
        }
    }
    std::vector<std::string_view> missing;
    for (const std::string_view feature : featureKeys()) {
        if (file.find("", feature) == nullptr) {
            missing.push_back(feature);
        }
    }
    for (const std::vector<std::string_view>& candidates : {missing, featureKeys()}) {
        // The long beginning that all keys share must not make very different ends alike.
        std::vector<std::string_view> near;
        for (const std::string_view candidate : candidates) {
            if (nearest(endOf(key), {endOf(candidate)}) == endOf(candidate)) {
                near.push_back(candidate);
            }
        }
        const std::string_view found = nearest(key, near);
        if (!found.empty() || near.size() == 1) {
            return found.empty() ? near.front() : found;
        }
    }
    return {};
}

void checkMisspelt(const ProductLine& line, Reporter& reporter) {
    forEachFeature(line, [&](const FileLines& file, const ReadLine& read) {
        const std::string_view right =
                isFeature(read.key) ? std::string_view() : featureMeantBy(file, read.key);
        if (!right.empty()) {
            reporter.report(placeOf(line, file, read, read.key),
                            "nobody asks for the feature " + quoted(read.key) + meant(right));
        }
    });
}

void checkUnknown(const ProductLine& line, Reporter& reporter) {
    forEachFeature(line, [&](const FileLines& file, const ReadLine& read) {
        if (!isFeature(read.key) && featureMeantBy(file, read.key).empty()) {
            reporter.report(placeOf(line, file, read, read.key),
                            "the service knows no feature " + quoted(read.key));
        }
    });
}

void checkValues(const ProductLine& line, Reporter& reporter) {
    forEachFeature(line, [&](const FileLines& file, const ReadLine& read) {
        if (trimmed(read.value) != read.value || read.value.find('#') != std::string_view::npos) {
            return;  // rules about blanks and comments report it
        }
        const std::string problem = problemOfFeature(read.key, read.value);
        if (!problem.empty()) {
            reporter.report(placeOf(line, file, read, read.value.empty() ? "=" : read.value),
                            problem);
        }
    });
}

void checkMasters(const ProductLine& line, Reporter& reporter) {
    forEachFeature(line, [&](const FileLines& file, const ReadLine& read) {
        const auto* const row =
                std::find_if(std::begin(product::kTvFlags), std::end(product::kTvFlags),
                             [&](const product::TvFlagRow& each) { return each.key == read.key; });
        const product::TvFlagRow* const master =
                row != std::end(product::kTvFlags) ? product::masterOf(*row) : nullptr;
        const ReadLine* const other = master != nullptr ? file.find("", master->key) : nullptr;
        if (read.value == "true" && other != nullptr && other->value == "false") {
            reporter.report(placeOf(line, file, read, read.value),
                            "the feature is off, because " + quoted(master->key) + " is",
                            {{placeOf(line, file, *other, other->value), "switched off here"}});
        }
    });
}

void checkComments(const ProductLine& line, Reporter& reporter) {
    for (const auto& [path, file] : line.files()) {
        if (file->format() != FileFormat::TV_FEATURES) {
            continue;
        }
        const bool hasComments =
                std::any_of(file->lines().begin(), file->lines().end(), [](const ReadLine& read) {
                    return read.use == LineUse::NOTHING && beginsWith(read.text, "#");
                });
        if (hasComments) {
            reporter.report(placeOf(*file),
                            "the file has comments, and a change of a feature writes it anew "
                            "without them");
        }
    }
}

constexpr Rule kRules[] = {
        {"misspelt-feature", Severity::ERROR, "a TV feature has nearly the name of a known one",
         "Nobody asks for the misspelt key. The feature comes from the property of the right name, "
         "and is off without one.",
         "persist.vendor.mlk.tv.enable_hdim=true", "persist.vendor.mlk.tv.enable_hdmi=true",
         checkMisspelt},
        {"unknown-feature", Severity::WARNING, "a TV feature file has a key that is no feature",
         "Nobody asks for it.", "persist.vendor.mlk.tv.colour=true",
         "persist.vendor.mlk.tv.enable_av=true", checkUnknown},
        {"feature-value", Severity::ERROR, "a TV feature has a value that does not count",
         "A flag that is neither \"true\", \"false\" nor a number is off. A system outside of its "
         "range is answered as it is, and no client expects it.",
         "persist.vendor.mlk.tv.enable_av=True\npersist.vendor.mlk.tv.dtv_system=7",
         "persist.vendor.mlk.tv.enable_av=true\npersist.vendor.mlk.tv.dtv_system=1", checkValues},
        {"feature-without-master", Severity::NOTE, "a TV feature is on and its master is off",
         "Antenna and cable are off without analogue or digital TV, captions without "
         "\"enable_cc\".",
         "persist.vendor.mlk.tv.enable_dtv=false\npersist.vendor.mlk.tv.dtv_cable=true",
         "persist.vendor.mlk.tv.enable_dtv=true\npersist.vendor.mlk.tv.dtv_cable=true",
         checkMasters},
        {"feature-comments", Severity::NOTE, "a TV feature file has comments",
         "When a client sets a feature, the service writes the file anew without its comments. "
         "Keep the annotated file elsewhere.",
         "# Sockets.\npersist.vendor.mlk.tv.enable_hdmi=true",
         "persist.vendor.mlk.tv.enable_hdmi=true", checkComments},
};

}  // namespace

RuleFamily features() {
    return {"features", "TV features", kRules, std::size(kRules)};
}

}  // namespace mlk::tree
