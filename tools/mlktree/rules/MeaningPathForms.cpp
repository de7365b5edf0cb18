// Rules about paths that cannot lead to a file of the partitions, or that their reader does not
// take.

#include <sys/stat.h>

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "common/FileLimits.h"
#include "common/Paths.h"
#include "projectconfigs/KnownItems.h"
#include "projectconfigs/SoundDelays.h"
#include "tools/mlktree/FolderFiles.h"
#include "tools/mlktree/Reporter.h"
#include "tools/mlktree/Texts.h"
#include "tools/mlktree/rules/Families.h"
#include "tools/mlktree/rules/MeaningPath.h"
#include "tools/mlktree/rules/Regional.h"

namespace mlk::tree {

namespace {

namespace product = vendor::morlak::mlkconfigs::V1_0::implementation;

// Calls check(path relative to the tree, naming) for each line whose value is a path of that form,
// as written; once, even if its path stands for several files.
template <typename Check>
void forEachPathOf(const ProductLine& line, PathForm form, const Check& check) {
    std::set<const ReadLine*> seen;
    for (const auto& [path, namings] : line.namedPaths()) {
        const ReadLine* last = nullptr;  // most lines that name a file have the same value
        bool isOfForm = false;
        for (const Naming& naming : namings) {
            if (!isWholePath(naming) || naming.line->value.empty()) {
                continue;
            }
            // What a value of board_id.bin means is another matter.
            const bool isBoardId = naming.file->format() == FileFormat::BOARD_ID;
            if (last == nullptr || isBoardId || naming.line->value != last->value) {
                const std::string value = pathIn(naming);
                isOfForm = !value.empty() && formOf(value) == form;
                last = isBoardId ? nullptr : naming.line;
            }
            if (isOfForm && !hasBlankInElement(*naming.line) && seen.insert(naming.line).second) {
                check(path, naming);
            }
        }
    }
}

void reportAt(const ProductLine& line, Reporter& reporter, const Naming& naming,
              std::string message) {
    reporter.report(placeOf(line, *naming.file, *naming.line, naming.line->value),
                    std::move(message));
}

// What is to say about a path with backslashes.
std::string backslashes(const std::string& value) {
    const std::string right = pathInside(value);
    return "a \"\\\" separates no folders; write " + (right.empty() ? "\"/\"" : quoted(right));
}

// How a path that begins with no "/" is meant; empty if that cannot be told.
std::string meantBy(const ProductLine& line, const std::string& value) {
    if (formOf("/" + value) == PathForm::INSIDE) {
        return "/" + value;
    }
    std::string inside = pathInside(value);
    if (!inside.empty()) {
        const bool isInApostrophes = value.front() == '\'' && value.back() == '\'';
        return isInApostrophes ? inside.substr(0, inside.size() - 1) : inside;
    }
    const size_t begin = value.find_first_not_of("./~");
    const std::string rest = begin != std::string::npos ? value.substr(begin) : "";
    return !rest.empty() && product::pathExists(line.tree().host("tvconfigs/" + rest))
                   ? "/tvconfigs/" + rest
                   : "";
}

void checkPrefixes(const ProductLine& line, Reporter& reporter) {
    forEachPathOf(line, PathForm::BESIDE, [&](const std::string& path, const Naming& naming) {
        const std::string value = pathIn(naming);
        if (product::pathExists(line.tree().host(path))) {
            return;
        }
        if (value.find('\\') != std::string::npos) {
            reportAt(line, reporter, naming, backslashes("/" + value));
            return;
        }
        const size_t begin = value.find_first_not_of('/') - 1;
        const std::string folder = value.substr(0, value.find('/', begin + 1));
        if (begin > 0) {
            reportAt(line, reporter, naming,
                     quoted(folder) + " is no partition; write " + quoted(value.substr(begin)));
            return;
        }
        const std::string partition(partitionMeantBy(value));
        const bool isReplaced = beginsWith(folder, partition);
        reportAt(line, reporter, naming,
                 quoted(folder) + " is no partition" +
                         (isReplaced ? ": a \"/\" is missing after \"" + partition + "\""
                                     : "; is \"" + partition + "\" meant?"));
    });
}

void checkRelative(const ProductLine& line, Reporter& reporter) {
    forEachPathOf(line, PathForm::RELATIVE, [&](const std::string&, const Naming& naming) {
        const std::string value = pathIn(naming);
        const bool isBoard = naming.file->format() == FileFormat::BOARD_ID;
        if (isBoard && value.find('/') == std::string::npos) {
            return;
        }
        if (value.find('\\') != std::string::npos) {
            reportAt(line, reporter, naming, backslashes("/" + value));
            return;
        }
        const std::string meant = meantBy(line, value);
        reportAt(line, reporter, naming,
                 "a path begins with \"/tvconfigs\", \"/tvdata\" or \"/impdata\"" +
                         (meant.empty() ? "" : "; write " + quoted(meant)));
    });
}

void checkMountPoints(const ProductLine& line, Reporter& reporter) {
    forEachPathOf(line, PathForm::OUTSIDE, [&](const std::string& path, const Naming& naming) {
        const std::string value = pathIn(naming);
        const std::string inside = pathInside(value);
        if (leavesPartition(value)) {
            reportAt(line, reporter, naming,
                     "\"..\" leads out of the partition, and where to is a matter of the set" +
                             (inside.empty() ? "" : "; write " + quoted(inside)));
        } else if (!inside.empty() && !product::pathExists(line.tree().host(path))) {
            reportAt(line, reporter, naming,
                     "the path has the mount point of a partition, which is a matter of the set; "
                     "write " +
                             quoted(inside));
        }
    });
}

void checkOutside(const ProductLine& line, Reporter& reporter) {
    forEachPathOf(line, PathForm::OUTSIDE, [&](const std::string&, const Naming& naming) {
        const std::string value = pathIn(naming);
        if (pathInside(value).empty() && !leavesPartition(value) && isOfService(naming)) {
            reportAt(line, reporter, naming,
                     "the path leads out of the partitions, and whether the file exists is not "
                     "checked");
        }
    });
}

bool isItem(const Naming& naming, const product::ConfigKey& name) {
    return naming.line->section == name.category && naming.line->key == name.key;
}

// Why the reader of the item does not take the path; empty if it does.
std::string problemOfLength(const ProductLine& line, const std::string& path,
                            const Naming& naming) {
    const std::string written = line.tree().written(line.tree().host(path));
    const auto* const known = product::findKnownItem({naming.line->section, naming.line->key});
    if (isItem(naming, product::item::kAvrAudio) && written.size() >= product::kAvrPathSize) {
        return "the path of an AVR's file has fewer than " + std::to_string(product::kAvrPathSize) +
               " bytes, this one " + std::to_string(written.size());
    }
    if (known != nullptr && known->names == FileFormat::AUXILIARY) {
        const std::string_view name = product::fileNameOf(naming.line->value);
        return name.size() >= product::kFileNameSize
                       ? "the name of the file has fewer than " +
                                 std::to_string(product::kFileNameSize) + " bytes, this one " +
                                 std::to_string(name.size())
                       : "";
    }
    const bool isFeatures = (known != nullptr && known->names == FileFormat::TV_FEATURES) ||
                            naming.file->format() == FileFormat::COUNTRY_MAP;
    return isFeatures && written.size() >= product::kFeaturePathSize
                   ? "the path of a TV feature file has at most " +
                             std::to_string(product::kFeaturePathSize - 1) + " bytes, this one " +
                             std::to_string(written.size())
                   : "";
}

void checkLengths(const ProductLine& line, Reporter& reporter) {
    constexpr size_t kShortestLimit =
            std::min({product::kAvrPathSize, product::kFileNameSize, product::kFeaturePathSize});
    for (const auto& [path, namings] : line.namedPaths()) {
        const size_t size = line.tree().written(line.tree().host(path)).size();
        for (const Naming& naming : namings) {
            if (naming.file == nullptr || naming.line == nullptr ||
                std::max(size, naming.line->value.size()) < kShortestLimit) {
                continue;
            }
            const std::string problem = problemOfLength(line, path, naming);
            if (problem.empty()) {
                continue;
            }
            const bool isOther =
                    product::fileNameOf(path) != product::fileNameOf(naming.line->value);
            std::vector<Related> related;
            if (isOther) {
                related.push_back({{path, 0, 0}, "a file that is found by this path"});
            }
            reporter.report(placeOf(line, *naming.file, *naming.line, naming.line->value), problem,
                            std::move(related));
        }
    }
}

// Tells of files whether they lie in the partitions when all links are followed.
class Links {
  public:
    explicit Links(const Partitions& partitions) {
        for (const std::string& folder :
             {partitions.tvconfigs, partitions.tvdata, partitions.impdata}) {
            mPartitions.push_back(target(folder));
        }
    }

    bool leadOut(const std::string& host) {
        struct stat info {};
        if (lstat(host.c_str(), &info) != 0) {
            return false;
        }
        if (S_ISLNK(info.st_mode)) {
            return isOutside(target(host));
        }
        const auto [folder, isNew] = mFolders.try_emplace(folderOf(host));
        if (isNew) {
            folder->second = isOutside(target(folder->first));
        }
        return folder->second;
    }

  private:
    // Where a path leads; empty if to nothing.
    static std::string target(const std::string& path) {
        const std::unique_ptr<char, void (*)(void*)> real(realpath(path.c_str(), nullptr), free);
        return real != nullptr ? real.get() : "";
    }

    bool isOutside(const std::string& path) const {
        return !path.empty() &&
               std::none_of(mPartitions.begin(), mPartitions.end(), [&](const std::string& folder) {
                   return path == folder || beginsWith(path, folder + "/");
               });
    }

    std::vector<std::string> mPartitions;
    std::map<std::string, bool> mFolders;
};

void checkLinks(const ProductLine& line, Reporter& reporter) {
    constexpr size_t kMostSingle = 3;
    Links links(line.tree().partitions());
    std::vector<std::string> out;
    bool hasInside = false;
    for (const auto& [path, namings] : line.namedPaths()) {
        const std::string host = line.tree().host(path);
        if (formOf("/" + path) != PathForm::INSIDE || !product::pathExists(host)) {
            continue;
        }
        if (links.leadOut(host)) {
            out.push_back(path);
        } else {
            hasInside = true;
        }
    }
    if (!hasInside) {
        return;  // a build tool made the tree of links
    }
    for (size_t i = 0; i < (out.size() > kMostSingle ? 1 : out.size()); ++i) {
        reporter.report({out[i], 0, 0},
                        "links lead out of the partitions, so that a set does not have the file" +
                                (out.size() > kMostSingle
                                         ? "; nor does it have " + std::to_string(out.size() - 1) +
                                                   " others"
                                         : std::string()));
    }
}

constexpr Rule kRules[] = {
        {"partition-prefix", Severity::ERROR, "a path begins with nearly the name of a partition",
         "The service replaces the name of a partition at the start of a path, whether or not a "
         "\"/\" follows: \"/tvdataX/a\" becomes the mount point of tvdata and \"X/a\". Other "
         "folders of that kind do not exist.",
         "TvChannelDatabasePath = /tvdatachannels/eu.db",
         "TvChannelDatabasePath = /tvdata/channels/eu.db", checkPrefixes},
        {"relative-path", Severity::WARNING, "a path does not begin with a \"/\"",
         "The service replaces no partition name in it, and looks for the file in the folder in "
         "which it was started. Files for audio, karaoke, keys and DDC/CI need a folder in their "
         "path.",
         "AUDIO_CONFIG_PATH = tvconfigs/audio/panel.ini",
         "AUDIO_CONFIG_PATH = /tvconfigs/audio/panel.ini", checkRelative},
        {"mount-point", Severity::WARNING,
         "a path has the mount point of a partition, or leads out of one",
         "The service replaces the name of a partition at the start of a path only. Another path "
         "holds on the computer or the set of its author, if at all.",
         "COUNTRY_PATH = /vendor/tvconfigs/country/eu.txt",
         "COUNTRY_PATH = /tvconfigs/country/eu.txt", checkMountPoints},
        {"outside-path", Severity::NOTE, "a path leads out of the partitions",
         "A file of the system image changes with another image, and the checker does not see it.",
         "BootAnimation FileName = /vendor/media/boot.zip",
         "BootAnimation FileName = /tvconfigs/bootanimation/boot.zip", checkOutside},
        {"outside-link", Severity::WARNING, "a link leads out of the partitions",
         "The image of a partition has the link and not what it leads to. A tree in which all "
         "files "
         "are such links, as some build tools make it, has no such finding.",
         "tvconfigs/panel/ssc.ini -> /home/anna/ssc.ini", "tvconfigs/panel/ssc.ini, a file",
         checkLinks},
        {"long-path", Severity::ERROR, "a path or a file name is longer than its reader takes",
         "The service does not use the file: TV feature files have paths of at most 127 bytes, "
         "files of AVRs paths, and audio, karaoke, key and DDC/CI files names, of fewer than 128.",
         "a file name of 130 letters", "a file name of 20 letters", checkLengths},
};

}  // namespace

RuleFamily pathForms() {
    return {"path-forms", "Paths", kRules, std::size(kRules)};
}

}  // namespace mlk::tree
