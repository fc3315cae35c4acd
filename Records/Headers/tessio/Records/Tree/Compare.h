// What two record files say differently.
#pragma once

#include <tessio/Records/Tree/Node.h>

#include <string>
#include <vector>

namespace KORVA::RECORDS
{
struct Difference
{
    enum class Type
    {
        kRemoved,
        kAdded,
        kChanged
    };

    Type type = Type::kChanged;
    std::string path;
    /// In one line each, without colours.
    std::string a;
    std::string b;
};

struct Side
{
    RecordTree const& tree;
    ByteView content;
};

/// Compares by paths, in the order of A. Values are equal when type and content are, whatever the byte order;
/// records of classes that nobody knows when their bytes are. With `subset` what only B holds does not count.
std::vector<Difference> Compare(Side const& a, Side const& b, bool subset);
} // namespace KORVA::RECORDS
