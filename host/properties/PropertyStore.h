#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace mlk::host {

/// The system properties of one set: a folder, shared by all its processes, with one file a
/// property, named by its key and holding nothing but the value. A file is written under another
/// name and moved into place, so that a reader finds the old value or the new one, never a part.
/// There is no state in memory: objects are cheap, and any number of threads and processes may use
/// any number of them.
class PropertyStore {
  public:
    /// The store in this folder, which need not exist before the first set.
    explicit PropertyStore(std::string folder) : mFolder(std::move(folder)) {}

    /// The store of the set that the environment names now: $MLK_ROOT/data/property.
    static PropertyStore ofThisSet();

    /// Whether it may name a property: 1 to 255 letters, digits and "_.@:-", with no "." at either
    /// end and no two of them in a row.
    static bool isKey(std::string_view key);

    /// The value; nothing when there is no such property. A file that some other program spoilt
    /// costs nobody anything: of a longer one the first 91 bytes count, a NUL byte ends the value,
    /// and what is no regular file is no property.
    std::optional<std::string> get(std::string_view key) const;

    /// Sets a property, for all processes at once. The store and the folder above it are created as
    /// needed. False, and errno says why, when the key is none, the value has more than 91 bytes,
    /// the key begins with "ro." and the property exists already, or the file system refuses.
    bool set(std::string_view key, std::string_view value) const;

    /// The keys of all properties, in byte order.
    std::vector<std::string> keys() const;

  private:
    std::string pathOf(std::string_view key) const;
    int createTemporary(std::string* path) const;

    std::string mFolder;
};

}  // namespace mlk::host
