#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "tools/mlktree/ProductLine.h"
#include "tools/mlktree/report/TextTable.h"

namespace mlk::tree {

/** A file of the tree as the report tells of it. */
struct ReportedFile {
    std::string path;                 /**< relative to the tree */
    std::string kind;                 /**< "channel plan", "file that a set hands out" */
    const FileLines* lines = nullptr; /**< null for a file that the service does not read */
    bool exists = false;
    bool isUnused = false; /**< nothing names it */
    bool hasText = false;  /**< the report has its lines */
    uint64_t bytes = 0;
};

/**
 * The files of a report: those that were read, those that a line names, and those that nothing
 * names. Another part of the report names a file by its position in this table, which is ordered by
 * path. Does not change after the constructor.
 */
class FileTable {
  public:
    /** Of a larger file the report has no lines. */
    static constexpr uint64_t kMostBytesOfFile = uint64_t{2} << 20U;
    /** Of a longer line the report has the beginning. */
    static constexpr size_t kMostBytesOfLine = 2000;

    /**
     * @param line   must outlive the object
     * @param found  further files with lines: those that findings stand in
     */
    FileTable(const ProductLine& line, const std::vector<std::string>& found);

    /** The position of a file; size() if the table lacks the path. */
    size_t idOf(std::string_view path) const;
    size_t size() const { return mFiles.size(); }
    const std::vector<ReportedFile>& files() const { return mFiles; }

    /** All files with their lines, and the lines that name them, as JSON. */
    std::string json(TextTable& texts) const;

  private:
    std::string jsonOf(const ReportedFile& file, TextTable& texts) const;

    const ProductLine& mLine;
    std::vector<ReportedFile> mFiles;
    std::map<std::string_view, size_t> mIds;
};

}  // namespace mlk::tree
