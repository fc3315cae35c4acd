// What the project's pages say of its files, tests and names, and whether it is so.
#pragma once

#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace KORVA::TESTS
{
/// A page of Markdown, without its fenced blocks.
struct Page
{
    explicit Page(std::string_view markdown);

    /// The text in one line, single blanks between words.
    std::string text;
    /// What stands in backticks.
    std::vector<std::string> code;
    /// The targets of links.
    std::vector<std::string> links;
    /// The names under which its headings can be linked to.
    std::set<std::string> anchors;
    /// The text below each heading of the third level, by the heading.
    std::map<std::string, std::string> entries;
};

/// The name under which a heading can be linked to.
std::string Anchor(std::string_view heading);

/// Every file and folder of the project, relative to its root; what a template makes counts as there.
std::set<std::string> PathsOfTheProject();

/// Every word in a text.
std::vector<std::string> WordsOf(std::string const& text);

/// What a header of the SDK declares or uses, comments left out.
struct HeaderNames
{
    explicit HeaderNames(std::string_view header);

    std::set<std::string> namespaces;
    std::set<std::string> words;
};

// Each of these gives what is wrong, in words; nothing when all is well.

/// Files and folders named in backticks that are not there. A path may begin anywhere in the tree; an
/// ellipsis stands for anything, and so does a last component X; braces hold alternatives.
std::vector<std::string> UnknownPaths(Page const& page, std::set<std::string> const& paths);

/// Links that lead nowhere; `file` is the page's own path in the project.
std::vector<std::string> BrokenLinks(Page const& page, std::string const& file,
                                     std::map<std::string, Page> const& pages,
                                     std::set<std::string> const& paths);

/// Quoted tests that no source of the name behind them has: `Suite.Name` (`File.cpp`). `sources` are pairs of
/// file name and content.
std::vector<std::string> UnknownTests(Page const& page,
                                      std::multimap<std::string, std::string> const& sources);

/// Names KORVA::..., k..., IID_..., IPERSISTENT_... and I...::... in backticks that no header has.
std::vector<std::string> UnknownNames(Page const& page, std::vector<HeaderNames> const& headers);

/// Targets in backticks, tessio_... and ..._tests, that are no words of the build files.
std::vector<std::string> UnknownTargets(Page const& page, std::set<std::string> const& buildWords);

/// Entries that don't say why a caller cares, what to do instead and what pins them, or that the index lacks.
std::vector<std::string> UnfinishedEntries(Page const& page);
} // namespace KORVA::TESTS
