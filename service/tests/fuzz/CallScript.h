#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/hidl/tests/RawClient.h"

namespace mlk::fuzzing {

/**
 * Calls of the three services as a fuzzing engine can write them. A well-formed call needs only a
 * few bytes, so that most inputs reach a method; malformed calls are possible too.
 *
 * An input is a list of calls, of which the first kMostCalls count; a call is these bytes:
 *
 *     service     which of kServices
 *     method      position in codesOf(service); after its end: the next four bytes are the code
 *     flags       ONEWAY, OTHER_INTERFACE, and how many descriptors the header claims too many
 *     count       of bytes of numbers, then these
 *     count       of objects, then each: its kind and what the kind has
 *                   TEXT    a text
 *                   KEY     two texts, as a ProjectConfigKey has them
 *                   BUFFER  place, and a text that is its content
 *                   HANDLE  place, count of descriptors, count of numbers
 *                   BINDER  nothing
 *                   NOTHING place: a null object
 *
 * A text is its length in one byte and its bytes. A "$" at its beginning stands for the folder of
 * the set. A place is a parent and an offset in it, of one byte each; parent 255 means no parent.
 */
struct CallScript {
    enum Flag : uint8_t { ONEWAY = 1, OTHER_INTERFACE = 2, MISSING_DESCRIPTORS = 4 };
    enum Kind : uint8_t { TEXT, KEY, BUFFER, HANDLE, BINDER, NOTHING, KINDS };
    static constexpr uint8_t kNoParent = 255;
    static constexpr size_t kMostCalls = 10;
};

/** The services' interfaces, in the order of a script's numbers. */
const std::vector<std::string>& services();

/** Transaction codes of a service: its methods, then those of every interface. */
const std::vector<uint32_t>& codesOf(size_t service);

/** One call as it is sent. */
struct ScriptedCall {
    size_t service;
    bool isOneway;
    bool isWhole;  // all descriptors that it claims come with it
    test::RawMessage message;
};

/** Takes calls out of a script, one after the other. */
class ScriptReader {
  public:
    /** `root` is what "$" stands for; `descriptors` are sent with handles and binders, in turn. */
    ScriptReader(const uint8_t* data, size_t size, std::string root, std::vector<int> descriptors);

    /** Nothing at the end. */
    std::optional<ScriptedCall> next();

  private:
    struct Place {
        uint8_t parent;
        uint8_t offset;
    };
    uint8_t byte();
    std::string text();
    Place place();
    void addObject(test::RawMessage& message);
    void addText(test::RawMessage& message, size_t parent, uint64_t offset,
                 const std::string& text) const;
    void passDescriptor(test::RawMessage& message);

    std::string_view mRest;
    size_t mCalls = 0;
    const std::string mRoot;
    const std::vector<int> mDescriptors;
};

/** Writes calls into a script. */
class ScriptWriter {
  public:
    /** `method` is a position in codesOf(service). */
    void call(size_t service, size_t method, uint8_t flags, const std::vector<uint8_t>& numbers,
              size_t objects);
    void text(std::string_view text);
    void byte(size_t value) { mBytes += static_cast<char>(value); }

    const std::string& bytes() const { return mBytes; }

  private:
    std::string mBytes;
};

}  // namespace mlk::fuzzing
