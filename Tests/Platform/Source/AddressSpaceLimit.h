// Lets memory run out.
#pragma once

#include <sys/resource.h>
#include <unistd.h>

#include <fstream>
#include <stdexcept>

namespace KORVA::TESTS
{
/// While it lives the process can map so much more than it has, 64 MiB by default, and no more.
class AddressSpaceLimit
{
public:
    explicit AddressSpaceLimit(rlim_t more = rlim_t{64} << 20)
    {
        rlim_t pages = 0;
        std::ifstream("/proc/self/statm") >> pages;
        getrlimit(RLIMIT_AS, &mBefore);
        rlimit limit = mBefore;
        limit.rlim_cur = pages * static_cast<rlim_t>(sysconf(_SC_PAGESIZE)) + more;
        if (pages == 0 || setrlimit(RLIMIT_AS, &limit) != 0)
            throw std::runtime_error("the address space can't be limited");
    }
    AddressSpaceLimit(AddressSpaceLimit const&) = delete;
    AddressSpaceLimit& operator=(AddressSpaceLimit const&) = delete;
    ~AddressSpaceLimit() { setrlimit(RLIMIT_AS, &mBefore); }

private:
    rlimit mBefore{};
};
} // namespace KORVA::TESTS
