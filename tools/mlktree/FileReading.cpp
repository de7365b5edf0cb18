#include "tools/mlktree/FileReading.h"

#include <stdio.h>  // NOLINT(modernize-deprecated-headers): fileno()

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <system_error>
#include <utility>
#include <vector>

#include "common/ItemStore.h"
#include "common/Paths.h"
#include "projectconfigs/BoardID.h"
#include "projectconfigs/IniProjectParser.h"
#include "projectconfigs/ProjectFileReader.h"
#include "projectconfigs/ProjectID.h"
#include "regional/FreqTableParser.h"
#include "regional/ListFile.h"
#include "regional/RegionalData.h"
#include "regional/TvSysMapCfgHolder.h"
#include "tools/mlktree/TreeProperties.h"
#include "tvconfigs/FileConfigEditor.h"

namespace mlk::tree {

namespace product = vendor::morlak::mlkconfigs::V1_0::implementation;

namespace {

product::ProjectFileReader chainReader(const Tree& tree, FileLines& lines) {
    const Partitions& partitions = tree.partitions();
    return {partitions.tvdata.c_str(), partitions.tvconfigs.c_str(), partitions.impdata.c_str(),
            &lines};
}

// The reader knows the place of the file itself.
void readCountryId(const Tree& tree, FileLines& lines) {
    product::RegionalData data([&tree] { return tree.partitions(); }, &lines);
    const TreeProperties none("", {});
    (void)product::TvSysMapCfgHolder(tree.partitions(), none, data).savedCountry();
}

/** A temporary file without a name in a folder: it goes with the program, however that ends. */
class UnnamedFile {
  public:
    /** @throw UsageError if it cannot be written */
    explicit UnnamedFile(const std::string& text) : mFile(std::tmpfile(), std::fclose) {
        if (mFile == nullptr ||
            std::fwrite(text.data(), 1, text.size(), mFile.get()) != text.size() ||
            std::fflush(mFile.get()) != 0) {
            throw UsageError("a temporary file cannot be written: " +
                             std::generic_category().message(errno));
        }
    }

    /** By this, others open it. */
    std::string path() const { return "/proc/self/fd/" + std::to_string(fileno(mFile.get())); }

  private:
    const std::unique_ptr<FILE, int (*)(FILE*)> mFile;
};

std::unique_ptr<FileLines> readFrom(const std::string& host, const Tree& tree,
                                    const std::string& path, FileFormat format) {
    auto lines = std::make_unique<FileLines>(path, format);
    std::vector<HidlFreqListItem> channels;
    const auto ignore = [](std::string_view /* entry */) {};
    switch (format) {
        case FileFormat::CUSTOMER: {
            std::string id;
            std::string system;
            chainReader(tree, *lines).parse_customer_ini(host.c_str(), id, system);
            break;
        }
        case FileFormat::SYSTEM: {
            std::string project;
            uint32_t highest = 0;
            chainReader(tree, *lines).parse_sys_ini(host.c_str(), 0, project, highest);
            break;
        }
        case FileFormat::PROJECT: {
            product::ItemStore items;
            chainReader(tree, *lines).parse_project_ini(host.c_str(), items);
            break;
        }
        case FileFormat::AUXILIARY:
            product::IniProjectParser(lines.get()).update(host.c_str());
            break;
        case FileFormat::TV_FEATURES:
            product::FileConfigEditor(nullptr, lines.get()).Update(host.c_str());
            break;
        case FileFormat::COUNTRY_LIST:
        case FileFormat::LANGUAGE_LIST:
            product::readListFile(host, ignore, lines.get());
            break;
        case FileFormat::CHANNEL_PLAN: {
            product::RegionalData data([&tree] { return tree.partitions(); }, lines.get());
            product::FreqTableParser(data).ParseFreqTable(host, channels);
            break;
        }
        case FileFormat::NONE:
        case FileFormat::OPAQUE:
        case FileFormat::CHANNEL_MAP:
        case FileFormat::TV_SYSTEMS:
        case FileFormat::COUNTRY_MAP:
        case FileFormat::CHANNEL_PLANS:
            break;
        case FileFormat::PROJECT_ID:
            (void)product::ProjectID::read(tree.partitions().impdata, lines.get());
            break;
        case FileFormat::BOARD_ID:
            (void)product::BoardID(tree.partitions().impdata, lines.get());
            break;
        case FileFormat::COUNTRY_ID:
            readCountryId(tree, *lines);
            break;
    }
    lines->finish(product::pathExists(host), std::move(channels));
    return lines;
}

}  // namespace

std::unique_ptr<FileLines> readFile(const Tree& tree, const std::string& path, FileFormat format) {
    return readFrom(tree.host(path), tree, path, format);
}

std::unique_ptr<FileLines> readText(const Tree& tree, const std::string& path, FileFormat format,
                                    const std::string& text) {
    const UnnamedFile file(text);
    return readFrom(file.path(), tree, path, format);
}

}  // namespace mlk::tree
