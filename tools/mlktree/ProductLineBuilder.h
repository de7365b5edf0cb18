#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/mlktree/ProductLine.h"

namespace mlk::tree {

/**
 * Follows the chain of a tree's files and reads each of them once.
 *
 * Works in waves: all files that are known by then are read on all cores, then their lines are
 * searched for further files.
 */
class ProductLineBuilder {
  public:
    ProductLineBuilder(ProductLine& line, const Selection& selection)
        : mLine(line), mSelection(selection) {}

    /** Fills the product line. @throw UsageError, see ProductLine */
    void build();

  private:
    using Request = std::pair<std::string, FileFormat>;  // path relative to the tree
    using NamingLists = std::vector<std::vector<Naming>*>;

    void readIdentity();
    void findCustomers();
    void findModels();
    void findBoards();
    /** Follows "board_id.bin" to its file. Returns true if it says that the set has no board. */
    bool followBoardId();
    /** The file that the command line selects, relative to the tree. @throw UsageError */
    std::string boardOfOption() const;
    /** The files that "board_id.bin" names and that the folders of boards have. */
    std::set<std::string> boardsOfTree();
    void readProjects();
    void followItems();
    void followTvSystems();
    void followPlans();
    void findCountries();
    void selectCountry();
    void findAllCountries();
    std::optional<int32_t> selectedModel() const;
    _tv_country countryOfSet() const;

    const FileLines* fileOf(const std::string& path) const { return mLine.find(path); }
    /** The INI files of a folder of the tree; a folder that is too large is remembered. */
    std::vector<std::string> iniFilesIn(const std::string& folder, size_t most, const char* what);
    /** The file as a file of that format; read anew if it was read in another one first. */
    const FileLines* fileAs(const std::string& path, FileFormat format);
    /** Remembers that a line names a path. */
    void name(const std::string& path, const FileLines* file, const ReadLine* line);
    /** The lists of those who name a file, to which an item belongs; the same for all lines that
     * read alike. Asks for the files that the service reads. */
    NamingLists namingListsOf(const ReadLine& line);
    void ask(const std::string& path, FileFormat format) { mRequests.emplace_back(path, format); }
    void readRequests();
    /** Keeps a file that was read otherwise than by a request. */
    const FileLines* keep(std::unique_ptr<FileLines> file);
    std::string pathOf(std::string_view value) const;

    ProductLine& mLine;
    const Selection& mSelection;
    std::vector<Request> mRequests;
    std::vector<std::string> mCustomerWords;  // of the command line, for each customer
    std::vector<std::string> mTvSystemPaths;
    std::vector<std::string> mPlanFolders;
    std::map<Request, const FileLines*> mReadAnew;
};

}  // namespace mlk::tree
