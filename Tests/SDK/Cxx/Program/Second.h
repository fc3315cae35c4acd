// The other half of a program in two sources.
#pragma once

#include <filesystem>
#include <string>

/// What is in the dictionary of that file.
std::string Second(std::filesystem::path const& path);
