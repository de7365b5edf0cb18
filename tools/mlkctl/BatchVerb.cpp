#include <optional>
#include <variant>

#include "tools/common/Json.h"
#include "tools/mlkctl/BatchLine.h"
#include "tools/mlkctl/LineInput.h"
#include "tools/mlkctl/TimeLimit.h"
#include "tools/mlkctl/Verb.h"

namespace mlk::ctl {

namespace {

constexpr const char* kHelp = R"(mlkctl batch - make many calls, a line each

Usage: mlkctl batch [--timeout SECONDS]

Reads lines from standard input, each a JSON array that names interface and method and gives the
arguments as JSON has them: texts, numbers, true and false. An enumerator may be its name or its
number. Answers each with one line, in the same order, over one connection. Answers are written
when no further complete line is waiting, so that another program may ask and listen in turns.

In a text, \udcXX (80 to ff) that is not the second half of a surrogate pair is the byte XX, in the
lines read as in those written. A line has at most 2 MiB. A line that cannot be understood, an
empty one included, is answered too, and the batch goes on. So it does when the service dies: the
call under way is "unreachable", the next line looks for the service again.

Options:
  --timeout SECONDS  how long the service may take for a line, 0 to 86400, fractions allowed;
                     default 30
  -h, --help         this text

Output:
  A line as mlkctl call prints it (mlkctl call --help), or one of
  {"error":"unreachable","message":"..."}   the service cannot be reached, died, or hangs
  {"error":"usage","message":"..."}         the line is wrong; the message says what would be right
  {"error":"no-answer","message":"..."}     the method gave no answer

Exit status:
  0  the input was read to its end, whatever the answers were
  1  the system refuses: standard input cannot be read, or standard output not written
  2  the command line is wrong

Examples:
  echo '["IMlkProjectConfigs","getConfig","[LiveTV]","TvConfig"]' | mlkctl batch
  printf '["IMlkProjectConfigs","getEQPath",%d]\n' 0 1 | mlkctl batch
)";

constexpr size_t kLongestLine = 2UL * 1024 * 1024;

const char* nameOf(ExitStatus status) {
    switch (status) {
        case ExitStatus::UNREACHABLE:
            return "unreachable";
        case ExitStatus::USAGE:
            return "usage";
        case ExitStatus::ANSWERED:
        case ExitStatus::NO_ANSWER:
            break;
    }
    return "no-answer";
}

std::string messageOf(const Failure& failure) {
    return JsonObject()
            .text("error", nameOf(failure.status()))
            .text("message", failure.what())
            .str();
}

/** Lines that were read, until they are answered. For one thread. */
class Group {
  public:
    bool isFull() const { return mAnswers.size() == kMostLines; }

    void add(LineInput::Next kind, std::string_view text) {
        try {
            if (kind == LineInput::Next::TOO_LONG) {
                throw usage("a line has at most " + std::to_string(kLongestLine) + " bytes");
            }
            const BatchLine line = parseBatchLine(text);
            const Interface& interface = interfaceOf(line.interface);
            const Method& method = interface.method(line.method);
            BoundCall call = bind(interface, method, line.arguments, Form::JSON);
            mRequests.push_back(
                    {&interface, &method, std::move(call), outsideRanges(method, line.arguments)});
            mAnswers.emplace_back();
        } catch (const Failure& failure) {
            mAnswers.emplace_back(messageOf(failure));
        }
    }

    /** Makes the calls and answers each line, in the order of the lines. */
    void answer(Environment& environment) {
        size_t line = 0;
        const auto writeKnown = [&] {
            for (; line < mAnswers.size() && mAnswers[line]; ++line) {
                environment.output.line(*mAnswers[line]);
            }
        };
        environment.services.callAll(mRequests, [&](Services::Result&& result) {
            writeKnown();
            environment.output.line(std::visit(Shown(), std::move(result)));
            ++line;
        });
        writeKnown();
        mRequests.clear();
        mAnswers.clear();
    }

  private:
    // Enough that handing a group to another thread costs little, few enough that their answers
    // need little memory.
    static constexpr size_t kMostLines = 64;

    struct Shown {
        std::string operator()(std::string&& text) const { return std::move(text); }
        std::string operator()(const Failure& failure) const { return messageOf(failure); }
    };

    std::vector<Services::Request> mRequests;
    std::vector<std::optional<std::string>> mAnswers;  // empty: that of the next request
};

class BatchVerb : public Verb {
  public:
    std::string_view name() const override { return "batch"; }
    std::string help() const override { return kHelp; }

    void addOptions(CLI::App& app) override { addTimeout(app, &mSeconds); }

    ExitStatus run(const std::vector<std::string>&, Environment& environment) override {
        environment.services.setLimit(limitOf(mSeconds));
        LineInput input(environment.input, kLongestLine);
        std::string_view line;
        Group group;
        while (true) {
            // What is waited for may come only after the answers: they are written first.
            if (!input.hasLine()) {
                group.answer(environment);
                environment.output.flush();
            }
            const LineInput::Next kind = input.next(&line);
            if (kind == LineInput::Next::END) {
                return ExitStatus::ANSWERED;
            }
            group.add(kind, line);
            if (group.isFull()) {
                group.answer(environment);
            }
        }
    }

  private:
    std::string mSeconds = kDefaultTimeout;
};

}  // namespace

std::unique_ptr<Verb> makeBatchVerb() {
    return std::make_unique<BatchVerb>();
}

}  // namespace mlk::ctl
