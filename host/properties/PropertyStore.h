#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace mlk::host {

/**
 * The system properties of one set: a folder that all its processes share, with one file for each
 * property, named after its key and containing only the value. A file is written under another name
 * and moved into place, so that a reader finds the old value or the new one, never a part. Objects
 * have no state in memory: they are cheap, and any number of threads and processes may use any
 * number of them.
 */
class PropertyStore {
  public:
    /** The store in this folder; the first set() creates the folder. */
    explicit PropertyStore(std::string folder) : mFolder(std::move(folder)) {}

    /** The store of the set that the environment names now: $MLK_ROOT/data/property. */
    static PropertyStore ofThisSet();

    /**
     * Whether a text is a valid key: 1 to 255 letters, digits and "_.@:-", without "." at either
     * end and without two in a row.
     */
    static bool isKey(std::string_view key);

    /**
     * Returns the value; nothing when the property does not exist. Tolerates files that another
     * program damaged: only the first 91 bytes count, a NUL byte ends the value, and anything but a
     * regular file is not a property.
     */
    std::optional<std::string> get(std::string_view key) const;

    /**
     * Sets a property for all processes at once. Creates the store and the folder above it as
     * needed. False, with errno set, when the key is invalid, the value is longer than 91 bytes,
     * the key begins with "ro." and the property exists already, or the file system refuses.
     */
    bool set(std::string_view key, std::string_view value) const;

    /** The keys of all properties, in byte order. */
    std::vector<std::string> keys() const;

  private:
    std::string pathOf(std::string_view key) const;
    int createTemporary(std::string* path) const;

    std::string mFolder;
};

}  // namespace mlk::host
