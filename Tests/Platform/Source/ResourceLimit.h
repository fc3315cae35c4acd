// Lets the system refuse more of a resource.
#pragma once

#include <sys/resource.h>

#include <stdexcept>

namespace KORVA::TESTS
{
/// While it lives the process's soft limit of the resource is `limit`.
class ResourceLimit
{
public:
    ResourceLimit(int resource, rlim_t limit) : mResource(resource)
    {
        getrlimit(Resource(), &mBefore);
        rlimit lowered = mBefore;
        lowered.rlim_cur = limit;
        if (setrlimit(Resource(), &lowered) != 0)
            throw std::runtime_error("the resource can't be limited");
    }
    ResourceLimit(ResourceLimit const&) = delete;
    ResourceLimit& operator=(ResourceLimit const&) = delete;
    ~ResourceLimit() { setrlimit(Resource(), &mBefore); }

private:
    __rlimit_resource Resource() const { return static_cast<__rlimit_resource>(mResource); }

    int mResource;
    rlimit mBefore{};
};

/// While it lives no descriptor can be opened or duplicated.
class NoNewDescriptors
{
    ResourceLimit mLimit{RLIMIT_NOFILE, 0};
};
} // namespace KORVA::TESTS
