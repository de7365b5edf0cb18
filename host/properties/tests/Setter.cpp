// Sets properties as its command line says, for tests with several processes:
//   Setter KEY VALUE COUNT    sets it COUNT times once a line was read, then tells how often that
//   worked
#include <cutils/properties.h>

#include <cstdio>
#include <cstdlib>

int main(int argc, char** argv) {
    if (argc != 4) {
        return 2;
    }
    std::puts("ready");
    std::fflush(stdout);
    std::getchar();
    int done = 0;
    for (int count = std::atoi(argv[3]); count > 0; --count) {
        done += property_set(argv[1], argv[2]) == 0 ? 1 : 0;
    }
    std::printf("%d\n", done);
    return 0;
}
