// What a SIGKILL at any moment leaves of the TV feature file. docs/tvconfigs.md shows what
// these tests print.

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <iostream>
#include <new>
#include <random>
#include <set>
#include <sstream>
#include <string>

#include "host/testing/LogCapture.h"
#include "host/testing/Sanitizers.h"
#include "host/testing/TempDir.h"
#include "tvconfigs/FileConfigEditor.h"
#include "tvconfigs/testing/SlowEditor.h"
#include "tvconfigs/tests/EditorTexts.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

using ::mlk::testing::LogCapture;
using ::mlk::testing::TempDir;
using Count = std::atomic<uint64_t>;

/**
 * A sequence of changes to a file. All entries start with the first value. The changes give them
 * the second value, one after the other, then the first value again, and so on.
 */
struct Changes {
    size_t entries;
    const char* first;
    const char* second;

    static std::string key(size_t entry) {
        return "persist.vendor.mlk.tv.feature_" + std::to_string(entry);
    }
    std::string valueAfter(uint64_t changes, size_t entry) const {
        const uint64_t rounds = (changes + entries - 1 - entry) / entries;
        return rounds % 2 == 0 ? first : second;
    }
    std::string fileAfter(uint64_t changes) const {
        std::string text;
        for (size_t entry = 0; entry < entries; ++entry) {
            text += key(entry) + '=' + valueAfter(changes, entry) + '\n';
        }
        return text;
    }
};

/** Counts the changes of another process; survives that process. */
class SharedCount {
  public:
    SharedCount()
        : mMemory(mmap(nullptr, sizeof(Count), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS,
                       -1, 0)),
          mCount(new (mMemory) Count(0)) {}
    ~SharedCount() { munmap(mMemory, sizeof(Count)); }
    SharedCount(const SharedCount&) = delete;
    SharedCount& operator=(const SharedCount&) = delete;
    Count& operator*() { return *mCount; }

  private:
    void* mMemory;
    Count* mCount;
};

/** How often each outcome was found. */
struct Found {
    int before = 0;  /**< all entries, as before the change that the kill interrupted */
    int after = 0;   /**< all entries, as after that change */
    int neither = 0; /**< something else */
    int damaged = 0; /**< of these: more than two unchanged lines are lost */
    int empty = 0;   /**< of these: without any entry */
};

std::set<std::string> linesOf(const std::string& text) {
    std::istringstream stream(text);
    std::set<std::string> lines;
    for (std::string line; std::getline(stream, line);) {
        lines.insert(line);
    }
    return lines;
}

/** The number of lines that the change leaves alone and that were not found. */
size_t lostLines(const std::string& found, const std::string& before, const std::string& after) {
    const std::set<std::string> lines = linesOf(found);
    const std::set<std::string> old = linesOf(before);
    size_t lost = 0;
    for (const std::string& line : linesOf(after)) {
        lost += old.count(line) != 0 && lines.count(line) == 0 ? 1U : 0U;
    }
    return lost;
}

/** Starts a process that makes changes and kills it at a random moment, `rounds` times. */
Found killSome(int rounds, const Changes& changes, bool slow) {
    Found found;
    std::mt19937 random(1);
    std::uniform_int_distribution<int> microseconds(0, 2000);
    const LogCapture log;
    const TempDir dir;
    for (int round = 0; round < rounds; ++round) {
        const std::string path = dir.write("tv.config", changes.fileAfter(0));
        SharedCount count;
        FileConfigEditor editor(path.c_str());
        SlowEditor slowEditor;
        slowEditor.update(path);
        const pid_t child = fork();
        if (child == 0) {
            prctl(PR_SET_PDEATHSIG, SIGKILL);
            for (uint64_t change = 0;; ++change) {
                const size_t entry = change % changes.entries;
                const std::string value = changes.valueAfter(change + 1, entry);
                if (slow) {
                    slowEditor.updateValue(Changes::key(entry), value);
                    slowEditor.save(path);
                } else {
                    editor.Set(Changes::key(entry).c_str(), value.c_str());
                }
                ++*count;
            }
        }
        while (*count == 0) {
        }
        const auto moment =
                std::chrono::steady_clock::now() + std::chrono::microseconds(microseconds(random));
        while (std::chrono::steady_clock::now() < moment) {
        }
        ::kill(child, SIGKILL);
        waitpid(child, nullptr, 0);

        FileConfigEditor reader(path.c_str());
        const std::string entries = entriesOf(reader);
        if (entries == changes.fileAfter(*count)) {
            ++found.before;
        } else if (entries == changes.fileAfter(*count + 1)) {
            ++found.after;
        } else {
            ++found.neither;
            found.empty += entries.empty() ? 1 : 0;
            const size_t lost =
                    lostLines(entries, changes.fileAfter(*count), changes.fileAfter(*count + 1));
            found.damaged += lost > 2 ? 1 : 0;
        }
    }
    return found;
}

void tell(const char* what, const Changes& changes, const Found& found) {
    std::cout << what << ", " << changes.first << " and " << changes.second << ": " << found.before
              << " old, " << found.after << " new, " << found.neither << " neither, "
              << found.damaged << " of them damaged, " << found.empty << " empty\n";
}

constexpr int kRounds = ::mlk::testing::kSanitized ? 25 : 100;
// Files of 1 KiB and of 80 KiB. The values "1" and "0" have the same length.
constexpr Changes kUsual[] = {{28, "true", "false"}, {28, "1", "0"}};
constexpr Changes kHuge[] = {{2000, "true", "false"}, {2000, "1", "0"}};

TEST(KillTest, LeavesTheOldEntriesOrTheNew) {
    for (const Changes& changes : kUsual) {
        const Found found = killSome(kRounds, changes, false);
        tell("a file of 1 KiB", changes, found);
        EXPECT_EQ(found.neither, 0);
    }
}

TEST(KillTest, OfAHugeFileLeavesAMixture) {
    for (const Changes& changes : kHuge) {
        const Found found = killSome(kRounds, changes, false);
        tell("a file of 80 KiB", changes, found);
        EXPECT_EQ(found.damaged, 0);
    }
}

// Shows what overwriting in place avoids, and that this test would notice it.
TEST(KillTest, HadTheFileBeenEmptiedFirst) {
    const Found usual = killSome(kRounds, kUsual[0], true);
    tell("a file of 1 KiB, emptied and written", kUsual[0], usual);
    EXPECT_GT(usual.empty, 0);
    const Found huge = killSome(kRounds, kHuge[0], true);
    tell("a file of 80 KiB, emptied and written", kHuge[0], huge);
    EXPECT_GT(huge.damaged, 0);
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
