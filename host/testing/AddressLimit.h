#pragma once

#include <malloc.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cerrno>
#include <fstream>
#include <system_error>

namespace mlk::testing {

/**
 * While it lives, this process can get at most `more` bytes of address space beyond what it has.
 * Not for sanitizers, which end the process when memory runs out. Throws std::system_error.
 */
class AddressLimit {
  public:
    explicit AddressLimit(rlim_t more) {
        (void)malloc_trim(0);  // free memory would do for much
        rlim_t pages = 0;
        if (!(std::ifstream("/proc/self/statm") >> pages) || getrlimit(RLIMIT_AS, &mFormer) != 0) {
            throw std::system_error(errno, std::generic_category(), "the present size");
        }
        rlimit limit = mFormer;
        limit.rlim_cur = pages * static_cast<rlim_t>(sysconf(_SC_PAGESIZE)) + more;
        if (setrlimit(RLIMIT_AS, &limit) != 0) {
            throw std::system_error(errno, std::generic_category(), "a limit of the address space");
        }
    }
    ~AddressLimit() { (void)setrlimit(RLIMIT_AS, &mFormer); }
    AddressLimit(const AddressLimit&) = delete;
    AddressLimit& operator=(const AddressLimit&) = delete;

  private:
    rlimit mFormer{};
};

}  // namespace mlk::testing
