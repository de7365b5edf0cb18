#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace mlk {

/**
 * Writes a JSON object, its members in the order in which they are added:
 *
 *     JsonObject().text("file", path).number("line", 3).str()
 *
 * Texts are written as jsonString() writes them.
 */
class JsonObject {
  public:
    JsonObject& text(std::string_view name, std::string_view value);
    JsonObject& number(std::string_view name, int64_t value);
    JsonObject& flag(std::string_view name, bool value);
    /** @param value  JSON, for example another object */
    JsonObject& json(std::string_view name, std::string_view value);

    /** The object so far. */
    std::string str() const { return mText + "}"; }

  private:
    std::string mText = "{";
};

/** An array of values that are JSON already. */
std::string jsonArray(const std::vector<std::string>& values);

/** The same with a line for each value. */
std::string jsonLines(const std::vector<std::string>& values);

/** An array of texts. */
std::string jsonTexts(const std::vector<std::string>& texts);

}  // namespace mlk
