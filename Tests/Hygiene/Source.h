// Reading the project's own sources.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace KORVA::TESTS
{
/// Every .h and .cpp below the folder, relative to the project's root, sorted. Empty when there is no such
/// folder.
std::vector<std::filesystem::path> SourcesBelow(std::filesystem::path const& folder);

/// The lines of a file that is named relative to the project's root.
std::vector<std::string> LinesOf(std::filesystem::path const& file);

struct Token
{
    enum Kind
    {
        kWord,
        /// A string literal; its text is what it stands for, neighbours joined.
        kText,
        /// Any other character.
        kMark
    };

    Kind kind;
    std::string text;
};

/// The tokens of a C++ text, without comments and preprocessor lines. Numbers are words.
std::vector<Token> TokensOf(std::string_view code);
} // namespace KORVA::TESTS
