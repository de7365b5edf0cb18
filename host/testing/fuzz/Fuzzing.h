#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// What a fuzz engine calls for each of its inputs; each fuzzer defines it. A wrong behaviour ends
/// the process, see require(); the result is always 0.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

/// What the fuzzers of all rooms share. A fuzzer is one source file that defines
/// LLVMFuzzerTestOneInput; cmake/Fuzzers.cmake makes a program of it. Before the first input the
/// log is sent nowhere (its messages are still formatted), and temporary folders are made in memory
/// where the system allows it.
namespace mlk::fuzzing {

/// The files that one input consists of. In the input a line "--8<--" stands between one file and
/// the next, so that inputs are made, and read, with a text editor:
///
///     CUSTOMER_ID=1
///     --8<--
///     Model_1=/tvconfigs/model/A.ini
class Files {
  public:
    /// What follows the last line that parts two of `count` files belongs to the last one.
    Files(const uint8_t* data, size_t size, size_t count);

    /// False when the input ends before that file: it does not exist then.
    bool has(size_t index) const { return index < mTexts.size(); }

    /// The file's text; empty when it does not exist.
    const std::string& text(size_t index) const { return has(index) ? mTexts[index] : mNone; }

    /// Writes the file to that path, or removes what is there when it does not exist.
    void put(size_t index, const std::string& path) const;

  private:
    const std::string mNone;
    std::vector<std::string> mTexts;
};

/// The texts between the separators, at most `count` of them; the last one has all the rest.
std::vector<std::string> split(std::string_view text, std::string_view separator, size_t count);

/// Makes the text the whole content of a file. Ends the process when that fails.
void writeFile(const std::string& path, std::string_view text);

/// The whole file; ends the process when it cannot be read.
std::string readFile(const std::string& path);

/// Ends the process, which is what an engine takes for a finding, unless the rule holds.
void require(bool holds, std::string_view rule);

/// The same for two texts that have to be equal; both are printed when they are not.
void requireEqual(std::string_view what, std::string_view actual, std::string_view expected);

/// The text with everything but printable ASCII as "\xNN".
std::string printable(std::string_view text);

}  // namespace mlk::fuzzing
