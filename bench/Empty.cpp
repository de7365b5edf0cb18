// The limit for the service's start: a program with the same libraries that reports readiness in
// the same way, by an entry in the runtime folder, and waits.

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

int main() {
    const char* const folder = getenv("MLK_RUNTIME_DIR");
    if (folder == nullptr) {
        return 1;
    }
    if (open((std::string(folder) + "/empty").c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600) < 0) {
        return 1;
    }
    pause();
    return 0;
}
