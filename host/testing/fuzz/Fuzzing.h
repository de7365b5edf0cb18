#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/**
 * Runs one input; a fuzz engine calls it, and each fuzzer defines it. Wrong behaviour ends the
 * process (see require()); the result is always 0.
 */
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

/**
 * Shared by the fuzzers of all components. A fuzzer is one source file that defines
 * LLVMFuzzerTestOneInput; cmake/Fuzzers.cmake builds it. Before the first input the log is
 * discarded (its messages are still formatted), and temporary folders are created in memory if the
 * system allows it.
 */
namespace mlk::fuzzing {

/**
 * The files that one input consists of. In the input a line "--8<--" stands between one file and
 * the next, so that inputs are made, and read, with a text editor:
 *
 *     CUSTOMER_ID=1
 *     --8<--
 *     Model_1=/tvconfigs/model/A.ini
 */
class Files {
  public:
    /** The last of `count` files takes the rest of the input, including further separators. */
    Files(const uint8_t* data, size_t size, size_t count);

    /** False when the input ends before that file, which then does not exist. */
    bool has(size_t index) const { return index < mTexts.size(); }

    /** The file's text; empty when it does not exist. */
    const std::string& text(size_t index) const { return has(index) ? mTexts[index] : mNone; }

    /** Writes the file to that path; removes the path when the file does not exist. */
    void put(size_t index, const std::string& path) const;

  private:
    const std::string mNone;
    std::vector<std::string> mTexts;
};

/** Splits the text at the separators into at most `count` texts; the last one takes the rest. */
std::vector<std::string> split(std::string_view text, std::string_view separator, size_t count);

/** Replaces the content of a file. Ends the process on failure. */
void writeFile(const std::string& path, std::string_view text);

/** Returns the whole file; ends the process when it cannot be read. */
std::string readFile(const std::string& path);

/** Ends the process, which an engine takes for a finding, unless the rule holds. */
void require(bool holds, std::string_view rule);

/** The same for two texts that must be equal; prints both when they differ. */
void requireEqual(std::string_view what, std::string_view actual, std::string_view expected);

/** The text with everything except printable ASCII as "\xNN". */
std::string printable(std::string_view text);

}  // namespace mlk::fuzzing
