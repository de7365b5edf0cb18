#pragma once

#include <string>
#include <utility>
#include <vector>

#include "common/File.h"
#include "common/ReadObserver.h"
#include "tvconfigs/ConfigEditor.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/**
 * The TV feature file as a store: lines of key=value.
 *
 * - A line ends with a line feed; text after the last line feed does not count. Carriage returns
 *   are dropped wherever they are. A NUL byte ends the file.
 * - A line that begins with "#" is a comment. A line without "=" is ignored. All other lines are
 *   entries: the key is the text before the last "=", the value the text after it. Nothing is
 *   trimmed; both may be empty.
 * - A line, or a comment, has at most 1023 characters. A longer one ends the reading with a log
 *   line; the entries before it count.
 * - A file of more than 4 MiB, or with more than 65,536 entries, is refused with a log line:
 *   clients may name any file to be read.
 *
 * The entries keep the order of the file. A key may occur more than once: its first entry counts.
 * Each Set() writes the entries, and nothing else, one a line, unless the file holds just that. An
 * entry of more than 1023 characters, line feed included, is cut to these when it is written, and a
 * NUL byte takes the place of the rest: the next reader finds neither it nor the entries after it.
 */
class FileConfigEditor : public ConfigEditor {
  public:
    /**
     * Reads the file, as Update() does.
     *
     * @param path      the file that is read and later written. At most 127 characters of it are
     *                  used; null is the empty path
     * @param observer  hears of every line that is read; must outlive the object; null for none
     */
    explicit FileConfigEditor(const char* path, ReadObserver* observer = nullptr);

    /** Key and value of each entry, in their order. */
    using Item = std::pair<std::string, std::string>;
    using Items = std::vector<Item>;

    /**
     * Replaces the entries by those of a file. Set() goes on writing to the file of the
     * constructor.
     *
     * @param path  a regular file; null is the empty path
     * @param former  if not null, gets the former entries, for restore()
     * @return false, with the entries unchanged and the reason in the log, if the file cannot be
     *         opened or not be read to its end: after an error, if it is too large, or if memory
     *         runs out
     */
    bool Update(const char* path, Items* former = nullptr);

    /** Takes back an Update(). The next Set() writes these entries, whatever the file holds. */
    void restore(Items former) noexcept { mItems = std::move(former); }

    /**
     * Appends the entry of one line, which has no line feed.
     *
     * @return false, with nothing changed, if the line has no "=" or is null
     */
    bool UpdateList(const char* line);

    /** Changes the first entry of the key. @return false if no entry has the key, or for null */
    bool UpdateValue(const char* key, const char* value);

    /**
     * Overwrites a file with all entries, unless it already holds just these. See saveFile() for
     * what a crash leaves.
     *
     * @return false if the file cannot be opened. A file that can be opened but not written whole
     *         gives true and a log line
     */
    bool Save(const char* path);

    /**
     * Changes an entry and writes the file. Never adds an entry. If memory runs out, the entry
     * stays as it was.
     *
     * @return false if the key has no entry, with the file untouched; false, too, if the file
     * cannot be opened, but with the entry changed
     */
    bool Set(const char* key, const char* value) override;

    /** Copies at most the first 91 characters of the value. */
    bool Get(const char* key, char* value) const override;

  private:
    class Lines;

    static std::string ReadItems(File& file, Items& items, Lines lines);
    static bool TakeByte(char byte, std::string& line, Items& items, Lines& lines);
    static bool AddLine(const char* line, Items& items);

    const std::string mPath;
    ReadObserver* const mObserver;
    Items mItems;
    bool mIsStored = true;  // false after a Save() that failed: the file may hold part of it
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
