// Writes docs/items.md to standard output.

#include <cstdio>
#include <string>

#include "tools/items/ItemsPage.h"

int main() {
    const std::string page = mlk::itemsPage();
    return fwrite(page.data(), 1, page.size(), stdout) == page.size() && fflush(stdout) == 0 ? 0
                                                                                             : 1;
}
