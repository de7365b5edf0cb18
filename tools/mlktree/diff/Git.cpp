#include "tools/mlktree/diff/Git.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "tools/common/ChildProcess.h"
#include "tools/common/Text.h"
#include "tools/mlktree/Texts.h"
#include "tools/mlktree/Tree.h"

namespace mlk::tree {

namespace {

namespace fs = std::filesystem;

// No more than this of a repository, so that a hostile one does not fill the disk.
constexpr size_t kMostBytes = size_t{4} << 30U;

[[noreturn]] void fail(const char* what) {
    throw std::system_error(errno, std::generic_category(), what);
}

/** An open descriptor. */
class Descriptor {
  public:
    explicit Descriptor(int number) : mNumber(number) {}
    ~Descriptor() { close(); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int number() const { return mNumber; }
    void close() {
        if (mNumber >= 0) {
            (void)::close(mNumber);
        }
        mNumber = -1;
    }

  private:
    int mNumber;
};

// The environment, except for variables that would make git look or write elsewhere.
std::vector<std::string> environmentOfGit() {
    std::vector<std::string> all;
    for (char** one = environ; *one != nullptr; ++one) {
        const std::string_view text = *one;
        const bool isOfGit = beginsWith(text, "GIT_") && !beginsWith(text, "GIT_CONFIG");
        if (!isOfGit && !beginsWith(text, "LC_") && !beginsWith(text, "LANG=")) {
            all.emplace_back(text);
        }
    }
    // No messages in other languages, no lazy fetching, no lock of the index.
    for (const char* const text :
         {"LC_ALL=C", "GIT_OPTIONAL_LOCKS=0", "GIT_TERMINAL_PROMPT=0", "GIT_NO_LAZY_FETCH=1",
          "GIT_ALLOW_PROTOCOL=none", "GIT_NO_REPLACE_OBJECTS=1"}) {
        all.emplace_back(text);
    }
    return all;
}

// Programs that the repository's configuration names are of no use here.
ChildStart gitIn(const std::string& folder, const std::vector<std::string>& words,
                 const std::string& errors) {
    ChildStart start;
    start.words = {"git", "-c",  "core.fsmonitor=false", "-c", "core.hooksPath=/dev/null",
                   "-C",  folder};
    start.words.insert(start.words.end(), words.begin(), words.end());
    start.environment = environmentOfGit();
    start.errors = errors;
    return start;
}

/** A git that runs, and whose output is read. */
class Git {
  public:
    explicit Git(ChildStart start) : mChild(std::move(start)) {
        if (mChild.error() != 0) {
            throw UsageError(std::string("rev: needs the program git, which cannot be run: ") +
                             std::generic_category().message(mChild.error()));
        }
    }

    /** Reads up to size bytes; less only at the end. */
    size_t read(char* to, size_t size) {
        size_t done = 0;
        while (done < size) {
            const ssize_t count = ::read(mChild.output(), to + done, size - done);
            if (count < 0 && errno != EINTR) {
                fail("reading what git prints");
            }
            if (count == 0) {
                break;
            }
            done += static_cast<size_t>(std::max<ssize_t>(count, 0));
        }
        return done;
    }
    /** Everything that is left. */
    std::string readAll() {
        std::string all;
        char part[size_t{64} << 10U];
        for (size_t count = read(part, sizeof part); count > 0; count = read(part, sizeof part)) {
            all.append(part, count);
            if (all.size() > kMostBytes) {
                throw UsageError("rev: the repository has too many files");
            }
        }
        return all;
    }
    /** Waits for its end. Gives whether it succeeded. */
    bool succeeds() { return mChild.wait() == 0; }

  private:
    ChildProcess mChild;
};

/** A file of a revision. */
struct Entry {
    std::string path;
    std::string object;
    bool isLink = false;
    bool isExecutable = false;
};

// True for a path that stays in its folder.
bool isInside(const std::string& path) {
    if (path.empty() || path.front() == '/') {
        return false;
    }
    for (size_t begin = 0; begin <= path.size();) {
        const size_t end = std::min(path.find('/', begin), path.size());
        const std::string_view part = std::string_view(path).substr(begin, end - begin);
        if (part.empty() || part == "." || part == "..") {
            return false;
        }
        begin = end + 1;
    }
    return true;
}

void write(const std::string& path, const std::string& text, mode_t mode) {
    const Descriptor file(
            open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode));
    size_t done = 0;
    while (file.number() >= 0 && done < text.size()) {
        const ssize_t count = ::write(file.number(), text.data() + done, text.size() - done);
        if (count < 0 && errno != EINTR) {
            break;
        }
        done += static_cast<size_t>(std::max<ssize_t>(count, 0));
    }
    if (file.number() < 0 || done < text.size()) {
        fail(path.c_str());
    }
}

/** Reads the revision of one folder. */
class Extraction {
  public:
    Extraction(const std::string& folder, const std::string& revision)
        : mSource(folder), mRevision(revision), mTo(std::make_unique<TemporaryFolder>()) {}

    std::unique_ptr<TemporaryFolder> run() {
        findRevision();
        listEntries();
        readEntries();
        // Links come last: nothing is written through one.
        for (const auto& [path, target] : mLinks) {
            makeFolders(path);
        }
        for (const auto& [path, target] : mLinks) {
            if (symlink(target.c_str(), path.c_str()) != 0) {
                fail(path.c_str());
            }
        }
        return std::move(mTo);
    }

  private:
    std::string errors() const { return mTo->path() + "/errors"; }

    // What git has complained about.
    std::string complaint() const {
        const Descriptor file(open(errors().c_str(), O_RDONLY | O_CLOEXEC));
        char text[500];
        const ssize_t count = file.number() >= 0 ? ::read(file.number(), text, sizeof text) : 0;
        std::string line(text, static_cast<size_t>(std::max<ssize_t>(count, 0)));
        line = line.substr(0, line.find('\n'));
        return line.empty() ? "" : ": " + printable(line);
    }

    void findRevision() {
        Git inside(gitIn(mSource, {"rev-parse", "--git-dir"}, errors()));
        (void)inside.readAll();
        if (!inside.succeeds()) {
            throw UsageError("rev: " + printable(mSource) +
                             " lies in no repository that git reads" + complaint());
        }
        // The revision is one word that git cannot take for an option.
        Git git(gitIn(
                mSource,
                {"rev-parse", "--verify", "--quiet", "--end-of-options", mRevision + "^{commit}"},
                errors()));
        mCommit = git.readAll();
        mCommit.erase(std::min(mCommit.find('\n'), mCommit.size()));
        if (!git.succeeds() || mCommit.empty() ||
            mCommit.find_first_not_of("0123456789abcdef") != std::string::npos) {
            throw UsageError("rev:" + printable(mRevision) + ": the repository of " +
                             printable(mSource) + " has no such revision");
        }
    }

    void listEntries() {
        Git git(gitIn(mSource, {"ls-tree", "-r", "-z", mCommit}, errors()));
        const std::string list = git.readAll();
        if (!git.succeeds()) {
            throw UsageError("rev:" + printable(mRevision) + " cannot be read" + complaint());
        }
        // "100644 blob 0123... \tpath", each with a NUL after it.
        for (size_t begin = 0; begin < list.size();) {
            const size_t end = std::min(list.find('\0', begin), list.size());
            const std::string line = list.substr(begin, end - begin);
            begin = end + 1;
            const size_t tab = line.find('\t');
            const size_t blank = line.find(" blob ");
            if (tab == std::string::npos || blank == std::string::npos || blank > tab) {
                continue;
            }
            Entry entry;
            entry.path = line.substr(tab + 1);
            entry.object = line.substr(blank + 6, tab - blank - 6);
            entry.isLink = beginsWith(line, "120");
            entry.isExecutable = beginsWith(line, "100755");
            if (!isInside(entry.path)) {
                throw UsageError("rev:" + printable(mRevision) + " has a file outside of its " +
                                 "folder: " + printable(entry.path));
            }
            mEntries.push_back(std::move(entry));
        }
        if (mEntries.empty()) {
            throw UsageError("rev:" + printable(mRevision) + " has no files in " +
                             printable(mSource));
        }
    }

    void readEntries() {
        std::string objects;
        for (const Entry& entry : mEntries) {
            objects += entry.object + "\n";
        }
        ChildStart reading = gitIn(mSource, {"cat-file", "--batch"}, errors());
        reading.input = mTo->path() + "/objects";
        write(reading.input, objects, 0600);
        fs::create_directory(mTo->path() + kExtractedTree);
        Git git(std::move(reading));
        size_t total = 0;
        for (const Entry& entry : mEntries) {
            // "OBJECT blob SIZE\n", the bytes, "\n".
            std::string head;
            for (char c = 0; git.read(&c, 1) == 1 && c != '\n' && head.size() < 200;) {
                head += c;
            }
            size_t size = 0;
            const std::string start = entry.object + " blob ";
            const char* const end = head.data() + head.size();
            const bool isBlob = beginsWith(head, start) &&
                                std::from_chars(head.data() + start.size(), end, size).ptr == end;
            total += size;
            if (!isBlob || total > kMostBytes || total < size) {
                throw UsageError("rev:" + printable(mRevision) + ": the repository does not give " +
                                 printable(entry.path) + complaint());
            }
            std::string bytes(size + 1, '\0');
            if (git.read(bytes.data(), bytes.size()) != bytes.size()) {
                throw UsageError("rev:" + printable(mRevision) + ": git ended early" + complaint());
            }
            bytes.pop_back();
            const std::string path = mTo->path() + kExtractedTree + "/" + entry.path;
            if (entry.isLink) {
                mLinks.emplace_back(path, bytes);
            } else {
                makeFolders(path);
                write(path, bytes, entry.isExecutable ? 0700 : 0600);
            }
        }
    }

    static void makeFolders(const std::string& path) {
        fs::create_directories(fs::path(path).parent_path());
    }

    const std::string mSource;
    const std::string mRevision;
    std::unique_ptr<TemporaryFolder> mTo;
    std::string mCommit;
    std::vector<Entry> mEntries;
    std::vector<std::pair<std::string, std::string>> mLinks;
};

}  // namespace

TemporaryFolder::TemporaryFolder() {
    const char* const folder = std::getenv("TMPDIR");
    mPath = std::string(folder != nullptr && *folder == '/' ? folder : "/tmp") + "/mlktree-XXXXXX";
    if (mkdtemp(mPath.data()) == nullptr) {
        fail(mPath.c_str());
    }
    startGuard();
}

void TemporaryFolder::startGuard() {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) {
        return;
    }
    // A group of its own: Ctrl-C of a terminal does not reach it. Nothing that waits for the end of
    // this program's output waits for it.
    posix_spawnattr_t attributes;
    posix_spawn_file_actions_t actions;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP);
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[0], STDIN_FILENO);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    std::string words[] = {"sh", "-c", "read -r end; exec rm -rf -- \"$0\"", mPath};
    char* const pointers[] = {words[0].data(), words[1].data(), words[2].data(), words[3].data(),
                              nullptr};
    if (posix_spawn(&mGuard, "/bin/sh", &actions, &attributes, pointers, environ) != 0) {
        mGuard = -1;
    }
    posix_spawn_file_actions_destroy(&actions);
    posix_spawnattr_destroy(&attributes);
    (void)close(ends[0]);
    mGuardPipe = ends[1];
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    fs::remove_all(mPath, ignored);
    if (mGuardPipe >= 0) {
        (void)close(mGuardPipe);
    }
    while (mGuard > 0 && waitpid(mGuard, nullptr, 0) < 0 && errno == EINTR) {
    }
}

std::unique_ptr<TemporaryFolder> extractRevision(const std::string& folder,
                                                 const std::string& revision) {
    return Extraction(folder, revision).run();
}

}  // namespace mlk::tree
