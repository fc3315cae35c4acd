// A file's access list, beyond owner, group and all others.
#pragma once

#include "System/ErrorNumber.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace KORVA::SYSTEM
{
/// As the kernel gives and takes it: little-endian, a version, then entries of tag, rights and id.
class AccessList
{
public:
    /// The list of the file at `path`; nothing where it has none but its permissions. `error` tells what else
    /// kept it from being read.
    static std::optional<AccessList> Of(std::string const& path, ErrorNumber& error);

    /// Gives it to a file. The file's permissions follow from it.
    ErrorNumber SetTo(int descriptor) const;

    /// Takes the list of a file away. 0 also where there is none.
    static ErrorNumber RemoveFrom(int descriptor);

    /// The file's group is another one now: see `KeepAttributes`.
    void NarrowForOtherGroup();

    /// What everybody but the owner may do, whoever it is, as three bits.
    unsigned Common() const;

private:
    struct Entry
    {
        unsigned tag;
        unsigned rights;
        std::uint32_t id;
    };

    std::vector<Entry> mEntries;
};
} // namespace KORVA::SYSTEM
