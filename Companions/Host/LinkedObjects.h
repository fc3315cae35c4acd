// Libraries that are linked into the program and need not be loaded.
#pragma once

#include <span>
#include <string_view>

namespace KORVA::HOST
{
struct LinkedFunction
{
    /// Of the library that it stands in where libraries are shared: the name that a host asks for.
    std::string_view file;
    std::string_view name;
    /// To be cast back to what it is.
    void (*function)();
};

/// The functions that a host calls in libraries of this program; empty where all libraries are shared. The
/// build chooses the source: NothingLinked.cpp or LinkedObjects.cpp.
std::span<LinkedFunction const> LinkedFunctions();
} // namespace KORVA::HOST
