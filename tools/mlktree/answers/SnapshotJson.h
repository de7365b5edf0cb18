#pragma once

#include <cstdint>
#include <limits>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "tools/mlktree/answers/LineAnswers.h"

namespace mlk::tree {

/** A place in the JSON text, for messages: a member or an element of what `parent` is. */
struct Where {
    const Where* parent = nullptr;
    std::string_view member = {};
    size_t index = 0;

    /** "sets[3].model"; empty for the top. */
    std::string str() const;
};

/** The values of a snapshot; each function refuses what is not as it must be. */
class SnapshotJson {
  public:
    using Json = nlohmann::json;

    /**
     * @param name  of the file, for messages; must outlive the object
     * @param line  keeps the texts; must outlive the object
     */
    SnapshotJson(const std::string& name, LineAnswers& line) : mName(name), mLine(line) {}

  protected:
    /** The value of a text. @throw UsageError as the other functions do */
    Json parse(std::string_view text);

    [[noreturn]] void refuse(const std::string& why) const;
    [[noreturn]] void refuse(const Where& where, const std::string& why) const;

    // What a value must be; else the snapshot is refused.
    const Json& object(const Json& json, const Where& where) const;
    const Json& array(const Json& json, const Where& where) const;
    const Json& member(const Json& json, std::string_view name, const Where& where) const;
    std::string_view text(const Json& json, const Where& where) const;
    int64_t number(const Json& json, const Where& where,
                   int64_t least = std::numeric_limits<int32_t>::min(),
                   int64_t most = std::numeric_limits<int32_t>::max()) const;
    /** The text of a member. */
    std::string_view textIn(const Json& json, std::string_view name, const Where& where) const {
        return text(member(json, name, where), {&where, name});
    }

    /** Calls with each element of an array. */
    template <typename Read>
    void forEach(const Json& json, const Where& where, const Read& read) const {
        size_t index = 0;
        for (const Json& one : array(json, where)) {
            read(one, Where{&where, "", index++});
        }
    }
    /** Calls with each member of an object. */
    template <typename Read>
    void forMembers(const Json& json, const Where& where, const Read& read) const {
        for (const auto& [name, value] : object(json, where).items()) {
            read(std::string_view(mLine.keep(restored(name))), value, Where{&where, name});
        }
    }

  private:
    std::string restored(const std::string& text) const;

    const std::string& mName;
    bool mIsHidden = false;

  protected:
    LineAnswers& mLine;
};

}  // namespace mlk::tree
