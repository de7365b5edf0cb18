#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tools/common/TextSink.h"

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

/**
 * Writes an object whose last member is a long array, with a line for each of its values:
 *
 *     JsonLines rows(JsonObject().number("version", 1), "rows", sink);
 *     rows.add(JsonObject().text("name", "a").str());
 *     rows.end();
 */
class JsonLines {
  public:
    /**
     * @param head  the members before the array, one at least
     * @param name  of the array
     * @param sink  must outlive the object
     */
    JsonLines(const JsonObject& head, std::string_view name, const TextSink& sink);

    /** @param value  JSON */
    void add(std::string_view value);
    /** Ends array, object and line. Called once, after the last value. */
    void end();

  private:
    const TextSink& mSink;
    bool mIsEmpty = true;
};

/** An array of texts. */
std::string jsonTexts(const std::vector<std::string>& texts);

}  // namespace mlk
