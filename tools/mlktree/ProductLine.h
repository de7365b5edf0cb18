#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "regional/CountryTable.h"
#include "tools/mlktree/FileLines.h"
#include "tools/mlktree/LineContents.h"
#include "tools/mlktree/Memo.h"
#include "tools/mlktree/RegionalFiles.h"
#include "tools/mlktree/Settings.h"
#include "tools/mlktree/Sources.h"
#include "tools/mlktree/Tree.h"
#include "tools/mlktree/TreeProperties.h"

namespace mlk::tree {

/** The files of a set's identity, relative to the tree. */
inline constexpr const char* kProjectIdPath = "impdata/project_id.bin";
inline constexpr const char* kBoardIdPath = "impdata/board_id.bin";
inline constexpr const char* kCountryIdPath = "tvdata/tvsysmap/country_id.bin";

/** A customer file and the system file that it names. */
struct Customer {
    const FileLines* file = nullptr;
    const ReadLine* systemLine = nullptr; /**< the line that names the system file; null for none */
    const FileLines* system = nullptr;    /**< null if no line names one */
    /** Countries that a line of this customer alone has; only with Selection::hasAllCountries, and
     * if the line has several customers. */
    std::optional<std::vector<_tv_country>> countries;
};

/** A "Model_" line of a system file. */
struct Model {
    int32_t index = 0;
    const Customer* customer = nullptr;
    const ReadLine* line = nullptr;  /**< of the system file */
    const FileLines* file = nullptr; /**< the project file; null if the line has no path */
    bool counts = true;              /**< false if a later line has the same index */
};

/** A board that the tree has. */
struct Board {
    std::string name;                /**< file name; "none" for a set without a board file */
    const FileLines* file = nullptr; /**< null for a set without a board file */
};

/** A line that names a file. */
struct Naming {
    const FileLines* file = nullptr; /**< the file that the line stands in; null for a property */
    const ReadLine* line = nullptr;  /**< null if a rule of the service names it: audio_<hw>.ini */
};

/** An item of a set of one model and one board: the line that counts, and the one it replaces. */
struct LayeredItem {
    const FileLines* file = nullptr; /**< null if no line gives the item */
    const ReadLine* line = nullptr;
    const FileLines* replacedFile = nullptr; /**< null if the line replaces no other file's */
    const ReadLine* replacedLine = nullptr;

    explicit operator bool() const { return line != nullptr; }
};

/** A TV system file with its country map. */
struct TvSystemFiles {
    const FileLines* file = nullptr;
    const FileLines* map = nullptr; /**< null if no map is named */
    std::unique_ptr<TvSystems> systems;
};

/** A folder of channel plans. */
struct PlanFiles {
    const FileLines* map = nullptr;
    std::unique_ptr<PlanFolder> folder;
};

/** Which models, boards, customers and countries a command looks at; empty for all. */
struct Selection {
    std::optional<int32_t> model;
    std::string board;                  /**< as on the command line; "none" for no board file */
    std::vector<std::string> customers; /**< as on the command line */
    std::string country;
    /**
     * One set only: what is left out above is what the impdata and tvdata partitions say. The
     * product line then has one board at most, the lines of one model at most, and one country at
     * most.
     */
    bool isOneSet = false;
    /**
     * Whichever models and boards are looked at, the countries are those of all: the sets of a
     * model are then the same as those of a whole line.
     */
    bool hasAllCountries = false;
};

/**
 * All that a tree holds: every file that a set can use, read once by the service's own readers, and
 * how the files name each other.
 *
 * The constructor reads everything, on all cores. The object does not change afterwards, and any
 * thread may ask it.
 */
class ProductLine {
  public:
    /**
     * @param tree        must outlive the object
     * @param settings    must outlive the object
     * @param properties  must outlive the object
     * @throw UsageError if the selection names a file, model or country that does not exist
     */
    ProductLine(const Tree& tree, const Settings& settings, const TreeProperties& properties,
                const Selection& selection);
    ~ProductLine();

    const Tree& tree() const { return mTree; }
    const Settings& settings() const { return mSettings; }
    const TreeProperties& properties() const { return mProperties; }

    const std::vector<Customer>& customers() const { return mCustomers; }
    const std::vector<Model>& models() const { return mModels; }
    const std::vector<Board>& boards() const { return mBoards; }
    const std::vector<TvSystemFiles>& tvSystems() const { return mTvSystems; }
    const std::vector<PlanFiles>& planFolders() const { return mPlanFolders; }

    /**
     * Countries that some list or map of the tree names, in the order of their values; the selected
     * one; that of the set.
     */
    const std::vector<_tv_country>& countries() const { return mCountries; }

    /** The board file that "board_id.bin" names, relative to the tree; empty for none. */
    const std::string& boardOfSet() const { return mBoardIdPath; }

    /** True unless the selection leaves out models or boards. */
    bool isWhole() const { return mIsWhole; }

    /** models x boards x countries (at least one of each). */
    size_t setCount() const;

    /** Folders that have too many files to be searched for boards or for files of receivers, with
     * what is left out; relative to the tree. */
    const std::map<std::string, std::string>& unsearched() const { return mUnsearched; }

    /** The bytes of the files. */
    const Sources& sources() const { return mSources; }

    /** Every file that was read, by its path relative to the tree. */
    const std::map<std::string, std::unique_ptr<FileLines>, std::less<>>& files() const {
        return mFiles;
    }
    /** What the lines of the text files read: a content for each number of FileLines::contents().
     */
    const std::vector<LineContent>& contents() const { return mContents.all(); }
    /** The file that was read of that path; null if none was. */
    const FileLines* find(std::string_view path) const;

    /** The lines that name a path (relative to the tree), of readable files and others. */
    const std::vector<Naming>& namings(std::string_view path) const;
    /** Every path that a line names, with those lines. */
    const std::map<std::string, std::vector<Naming>, std::less<>>& namedPaths() const {
        return mNamings;
    }

    /** The item of a set of that model and board. */
    LayeredItem item(const Model& model, const Board& board, std::string_view section,
                     std::string_view key) const;

    /**
     * The groups of sets that use a file, in the form of Finding::sets: from the chain that names
     * it. Empty if no set uses it.
     */
    std::vector<std::string> setsOf(std::string_view path) const;

    /** What rules compute of the line and share. */
    const Memo& memo() const { return mMemo; }

  private:
    friend class ProductLineBuilder;
    friend class SetFinder;

    void indexSets();

    const Tree& mTree;
    const Settings& mSettings;
    const TreeProperties& mProperties;
    const Sources mSources;
    const bool mIsWhole;
    const Memo mMemo;
    std::map<std::string, std::unique_ptr<FileLines>, std::less<>> mFiles;
    LineContents mContents;
    std::vector<std::unique_ptr<FileLines>> mOtherReadings;  // of a path that mFiles has already
    std::vector<Customer> mCustomers;
    std::vector<Model> mModels;
    std::vector<Board> mBoards;
    std::vector<TvSystemFiles> mTvSystems;
    std::vector<PlanFiles> mPlanFolders;
    std::vector<_tv_country> mCountries;
    std::string mBoardIdPath;
    std::map<std::string, std::string> mUnsearched;  // by folder
    std::map<std::string, std::vector<Naming>, std::less<>> mNamings;
    mutable std::mutex mMutex;  // guards the one below
    mutable std::map<std::string, std::vector<std::string>, std::less<>> mSetsOf;  // when asked
    // What setsOf() looks for: the chain by the paths of its files.
    std::map<std::string_view, std::set<int32_t>> mModelsOfFile;
    std::map<std::string_view, std::string_view> mBoardOfFile;
    std::set<std::string_view> mFilesOfAll;
    std::set<int32_t> mModelIndices;
};

}  // namespace mlk::tree
