#include <unistd.h>

#include <array>
#include <cerrno>
#include <string>
#include <system_error>

#include "tools/mlkctl/Dump.h"
#include "tools/mlkctl/TimeLimit.h"
#include "tools/mlkctl/Verb.h"

namespace mlk::ctl {

namespace {

constexpr const char* kHelp = R"(mlkctl dump - the diagnostic dump

Usage: mlkctl dump [--timeout SECONDS]

Asks IMlkProjectConfigs for its diagnostic dump: the items of the selected project as the service
has them in memory, and the audio configuration files it has read.

Options:
  --timeout SECONDS  how long the service may take, 0 to 86400, fractions allowed; default 30
  -h, --help         this text

Output:
  The dump, byte for byte as the service wrote it; on a terminal, with control characters but
  newline and tab escaped.

Exit status:
  0  done
  1  the service cannot be reached, died while it wrote, or took too long
  2  the command line is wrong
  3  the service wrote nothing

Example:
  mlkctl dump | less
)";

[[noreturn]] void throwErrno(const char* what) {
    throw std::system_error(errno, std::generic_category(), what);
}

// Returns the number of bytes.
size_t copy(int file, Output& output) {
    std::array<char, 64UL * 1024> piece;
    size_t done = 0;
    std::string shown;  // for a terminal, which must not get parts of a character
    while (true) {
        // The position of the descriptor is where the service stopped writing.
        const ssize_t got = TEMP_FAILURE_RETRY(
                pread(file, piece.data(), piece.size(), static_cast<off_t>(done)));
        if (got < 0) {
            throwErrno("the dump");
        }
        if (got == 0) {
            break;
        }
        if (output.isTerminal()) {
            shown.append(piece.data(), static_cast<size_t>(got));
        } else {
            output.bytes({piece.data(), static_cast<size_t>(got)});
        }
        done += static_cast<size_t>(got);
    }
    output.bytes(shown);
    return done;
}

class DumpVerb : public Verb {
  public:
    std::string_view name() const override { return "dump"; }
    std::string help() const override { return kHelp; }

    void addOptions(CLI::App& app) override { addTimeout(app, &mSeconds); }

    ExitStatus run(const std::vector<std::string>&, Environment& environment) override {
        environment.services.setLimit(limitOf(mSeconds));
        const auto file = dumpInto(environment.services);
        if (copy(file.get(), environment.output) == 0) {
            throw Failure(ExitStatus::NO_ANSWER, "the service wrote no dump");
        }
        return ExitStatus::ANSWERED;
    }

  private:
    std::string mSeconds = kDefaultTimeout;
};

}  // namespace

std::unique_ptr<Verb> makeDumpVerb() {
    return std::make_unique<DumpVerb>();
}

}  // namespace mlk::ctl
