// Records in one line each.
#pragma once

#include <tessio/Records/Tree/Node.h>

#include <functional>
#include <string>
#include <string_view>

namespace KORVA::RECORDS
{
/// What a piece of a summary is: a class, a number or a text.
enum class Wording
{
    kName,
    kNumber,
    kText
};

/// Gives a piece its colour.
using Paint = std::function<std::string(Wording, std::string_view)>;

/// What a record is and what it holds; long values are cut.
std::string Summary(Node const& node);
std::string Summary(Node const& node, Paint const& paint);
} // namespace KORVA::RECORDS
