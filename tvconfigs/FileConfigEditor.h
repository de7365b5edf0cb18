#pragma once

#include <string>
#include <utility>
#include <vector>

#include "common/File.h"
#include "tvconfigs/ConfigEditor.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/// The TV configuration file as a store: lines of key=value.
///
/// - A line ends with a line feed; text after the last one does not count. Carriage returns are
///   dropped wherever they stand. A NUL byte ends the file.
/// - A line that begins with "#" is a comment, a line without "=" is nothing. All other lines are
///   entries: the key is what stands before the last "=", the value what stands after it. Nothing
///   is trimmed; both may be empty.
/// - A line, a comment too, has at most 1023 characters; a longer one ends the reading, with a log
///   line, and what stands before it counts.
/// - A file of more than 4 MiB, or with more than 65,536 entries, is refused as a whole, with a log
///   line: clients may name any file to be read.
///
/// The entries are kept in the order of the file, and a key may occur more than once: its first
/// entry is the one that counts. Each Set writes the whole file anew, nothing but the entries, one
/// a line, unless the file holds just that. A line of more than 1023 characters, line feed
/// included, is then written cut to these, with a NUL byte in place of the rest: whoever reads the
/// file next finds neither it nor the entries behind it.
class FileConfigEditor : public ConfigEditor {
  public:
    /// Reads the file, as Update does. At most 127 characters of `path` are used, for this and for
    /// all later writing; null is the empty path.
    explicit FileConfigEditor(const char* path);

    /// Reads a file and has its entries replace the present ones; where Set writes does not change.
    /// Only a regular file is opened. False when it cannot be opened, or not be read to its end (an
    /// error, too large, no memory), which the log tells: the present entries stay.
    bool Update(const char* path);

    /// Takes one line, without its line feed, as the last entry. False, and nothing happens, when
    /// it has no "=" or is null.
    bool UpdateList(const char* line);

    /// Gives the first entry of that key another value. False when there is none, or for null.
    bool UpdateValue(const char* key, const char* value);

    /// Writes all entries to a file, over what it held, unless it holds just these already. False
    /// when it cannot be opened; when it can but does not take all of them, a log line says so and
    /// the answer is true. See saveFile for what a crash leaves.
    bool Save(const char* path);

    /// Changes an entry and writes the file. Never adds one: false when the key has none, and the
    /// file is not touched. False too when the file cannot be written; the entry has changed then.
    bool Set(const char* key, const char* value) override;

    /// At most the first 91 characters of the value.
    bool Get(const char* key, char* value) const override;

  private:
    using Item = std::pair<std::string, std::string>;

    using Items = std::vector<Item>;

    static std::string ReadItems(File& file, Items& items);
    static bool TakeByte(char byte, std::string& line, Items& items);
    static bool AddLine(const char* line, Items& items);

    const std::string mPath;
    Items mItems;
    bool mIsStored = true;  ///< false after a Save that failed, which may have reached the file
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
