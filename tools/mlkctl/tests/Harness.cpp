#include "tools/mlkctl/tests/Harness.h"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <sstream>

#include "tools/mlkctl/CommandLine.h"

namespace mlk::ctl {

namespace {

// A file in memory, which never makes its writer wait.
class MemoryFile {
  public:
    MemoryFile() : mFile(memfd_create("stream", MFD_CLOEXEC)) {}
    ~MemoryFile() { close(mFile); }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    int descriptor() const { return mFile; }

    void fill(const std::string& text) const {
        EXPECT_EQ(pwrite(mFile, text.data(), text.size(), 0), static_cast<ssize_t>(text.size()));
    }

    std::string text() const {
        std::string all;
        std::array<char, 4096> piece;
        while (true) {
            const ssize_t got =
                    pread(mFile, piece.data(), piece.size(), static_cast<off_t>(all.size()));
            if (got <= 0) {
                return all;
            }
            all.append(piece.data(), static_cast<size_t>(got));
        }
    }

  private:
    int mFile;
};

}  // namespace

Outcome runMlkctl(const std::vector<std::string>& words, Services& services,
                  const std::string& input) {
    const MemoryFile in;
    const MemoryFile out;
    in.fill(input);
    Output output(out.descriptor());
    std::ostringstream errors;
    Environment environment{in.descriptor(), output, errors, services};
    const ExitStatus status = runCommandLine(words, environment);
    return {static_cast<int>(status), out.text(), errors.str()};
}

Outcome runMlkctl(const std::vector<std::string>& words, Script& script, const std::string& input,
                  const std::set<std::string>& missing) {
    Services services(finderOf(script, missing));
    return runMlkctl(words, services, input);
}

Services::Finder finderOf(Script& script, const std::set<std::string>& missing) {
    return [&script, missing](const Interface& interface) -> ::android::sp<IBase> {
        if (missing.count(std::string(interface.name)) != 0) {
            return nullptr;
        }
        if (&interface == &projectInterface()) {
            return makeFakeProject(script);
        }
        if (&interface == &tvInterface()) {
            return makeFakeTv(script);
        }
        return makeFakeFramework(script);
    };
}

}  // namespace mlk::ctl
