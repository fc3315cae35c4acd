#include "Integration/Page.h"

#include <algorithm>
#include <cctype>
#include <regex>
#include <sstream>

namespace KORVA::TESTS
{
namespace
{
namespace fs = std::filesystem;
using Words = std::vector<std::string>;

std::string Collapsed(std::string const& text)
{
    std::istringstream words(text);
    std::string collapsed;
    for (std::string word; words >> word;)
        collapsed += (collapsed.empty() ? "" : " ") + word;
    return collapsed;
}

/// Every match of the pattern in the text.
std::vector<std::smatch> Matches(std::string const& text, std::regex const& pattern)
{
    return {std::sregex_iterator(text.begin(), text.end(), pattern), std::sregex_iterator()};
}

bool HasSourceEnding(std::string const& path)
{
    static std::regex const kEnding(R"re(.\.(h|cpp|md|cmake|tsv|jsonl)$)re");
    return std::regex_search(path, kEnding);
}

/// The path that a piece of code is, or "" for anything else. Absolute paths, URLs, what a build makes and
/// what users name are none of the project's.
std::string PathIn(std::string const& code)
{
    std::string path = code.starts_with("./") ? code.substr(2) : code;
    if (path.empty() || path.find_first_of(" *<>$\"'()?") != std::string::npos ||
        path.find("::") != std::string::npos || path.find("://") != std::string::npos ||
        path.starts_with("/") || path.starts_with(".."))
        return "";
    bool const isOfTheTree = path.find('/') != std::string::npos &&
                             (std::isupper(static_cast<unsigned char>(path[0])) || path.starts_with(".ci/"));
    if (!isOfTheTree && !HasSourceEnding(path))
        return "";
    if (path.ends_with("/"))
        path.pop_back();
    return path;
}

std::regex Pattern(std::string const& path)
{
    static std::string const kEllipsis = "\u2026";
    std::string pattern = "(.*/)?";
    for (std::size_t i = 0; i < path.size(); ++i)
    {
        if (path.compare(i, kEllipsis.size(), kEllipsis) == 0)
        {
            pattern += ".*";
            i += kEllipsis.size() - 1;
        }
        else if (path[i] == 'X' && i + 1 == path.size() && i > 0 && path[i - 1] == '/')
            pattern += "[^/]*";
        else if (path[i] == '{' || path[i] == '}')
            pattern += path[i] == '{' ? "(" : ")";
        else if (path[i] == ',')
            pattern += "|";
        else if (path[i] == '.' || path[i] == '+')
            pattern += std::string("\\") + path[i];
        else
            pattern += path[i];
    }
    return std::regex(pattern);
}

/// Whether a header knows the qualified name: the beginning as a namespace of its, the rest as words.
bool Knows(HeaderNames const& header, Words const& parts)
{
    std::string space;
    for (std::size_t i = 0; i <= parts.size(); ++i)
    {
        bool const isOpen = i == 0 ? parts[0] != "KORVA" : header.namespaces.contains(space);
        if (isOpen && std::all_of(parts.begin() + static_cast<std::ptrdiff_t>(i), parts.end(),
                                  [&header](std::string const& part) { return header.words.contains(part); }))
            return true;
        if (i < parts.size())
            space += (i == 0 ? "" : "::") + parts[i];
    }
    return false;
}
} // namespace

Words WordsOf(std::string const& text)
{
    Words words;
    static std::regex const kWord(R"(\w+)");
    for (std::smatch const& match : Matches(text, kWord))
        words.push_back(match.str());
    return words;
}

std::string Anchor(std::string_view heading)
{
    std::string anchor;
    for (char const c : heading)
    {
        auto const byte = static_cast<unsigned char>(c);
        if (c == ' ')
            anchor += '-';
        else if (std::isalnum(byte) || c == '-' || c == '_')
            anchor += static_cast<char>(std::tolower(byte));
    }
    return anchor;
}

Page::Page(std::string_view markdown)
{
    std::istringstream lines{std::string(markdown)};
    std::string all;
    std::string entry;
    bool isFenced = false;
    for (std::string line; std::getline(lines, line);)
    {
        if (line.starts_with("```"))
            isFenced = !isFenced;
        else if (!isFenced)
        {
            std::size_t const level = std::min(line.find_first_not_of('#'), line.size());
            bool const isHeading = level > 0 && level < line.size() && line[level] == ' ';
            if (isHeading)
            {
                anchors.insert(Anchor(line.substr(level + 1)));
                entry = level == 3 ? line.substr(4) : "";
                if (level == 3)
                    entries[entry];
            }
            else if (!entry.empty())
                entries[entry] += line + " ";
            all += line + "\n";
        }
    }
    text = Collapsed(all);
    static std::regex const kCode("`([^`]+)`");
    static std::regex const kLink(R"(\]\(([^)\s]+)\))");
    for (std::smatch const& match : Matches(text, kCode))
        code.push_back(match[1]);
    std::string const plain = std::regex_replace(text, kCode, "");
    for (std::smatch const& match : Matches(plain, kLink))
        links.push_back(match[1]);
}

std::set<std::string> PathsOfTheProject()
{
    fs::path const root = TESSIO_SOURCE_DIR;
    std::set<std::string> paths;
    for (auto at = fs::recursive_directory_iterator(root); at != fs::recursive_directory_iterator(); ++at)
    {
        std::string const path = at->path().lexically_relative(root).string();
        if (path == ".git" || path == "build")
            at.disable_recursion_pending();
        else
            paths.insert(path.ends_with(".in") ? path.substr(0, path.size() - 3) : path);
    }
    return paths;
}

HeaderNames::HeaderNames(std::string_view header)
{
    static std::regex const kNamespace(R"(^\s*namespace ([\w:]+))");
    std::istringstream lines{std::string(header)};
    for (std::string line; std::getline(lines, line);)
    {
        line = line.substr(0, line.find("//"));
        if (std::smatch match; std::regex_search(line, match, kNamespace))
            namespaces.insert(match[1]);
        for (std::string const& word : WordsOf(line))
            words.insert(word);
    }
}

Words UnknownPaths(Page const& page, std::set<std::string> const& paths)
{
    Words unknown;
    for (std::string const& piece : page.code)
    {
        std::string const path = PathIn(piece);
        if (path.empty())
            continue;
        std::regex const pattern = Pattern(path);
        if (std::none_of(paths.begin(), paths.end(),
                         [&pattern](std::string const& there) { return std::regex_match(there, pattern); }))
            unknown.push_back(piece);
    }
    return unknown;
}

Words BrokenLinks(Page const& page, std::string const& file, std::map<std::string, Page> const& pages,
                  std::set<std::string> const& paths)
{
    Words broken;
    for (std::string const& link : page.links)
    {
        if (link.find("://") != std::string::npos || link.starts_with("mailto:"))
            continue;
        std::size_t const hash = std::min(link.find('#'), link.size());
        std::string const target =
            hash == 0 ? file
                      : (fs::path(file).parent_path() / link.substr(0, hash)).lexically_normal().string();
        auto const other = pages.find(target);
        bool const isThere = hash == 0 || paths.contains(target.substr(0, target.find_last_not_of('/') + 1));
        bool const hasAnchor = hash == link.size() || (other != pages.end() &&
                                                       other->second.anchors.contains(link.substr(hash + 1)));
        if (!isThere || !hasAnchor)
            broken.push_back(link);
    }
    return broken;
}

Words UnknownTests(Page const& page, std::multimap<std::string, std::string> const& sources)
{
    static std::regex const kTest(R"re(`([A-Z]\w*)\.([A-Z]\w*)`(?: \(`([\w.]+)`\))?)re");
    Words unknown;
    for (std::smatch const& match : Matches(page.text, kTest))
    {
        std::regex const declared("TEST(_F|_P)?\\(\\s*" + match.str(1) + ",\\s*" + match.str(2) + "\\)");
        auto const [first, last] = sources.equal_range(match.str(3));
        if (std::none_of(first, last, [&declared](auto const& source) {
                return std::regex_search(source.second, declared);
            }))
            unknown.push_back(match.str());
    }
    return unknown;
}

Words UnknownNames(Page const& page, std::vector<HeaderNames> const& headers)
{
    static std::regex const kName(R"(\b(KORVA(::\w+)+|k[A-Z]\w*|IID_\w+|IPERSISTENT_\w+|I[A-Z]\w*(::\w+)+))");
    Words unknown;
    for (std::string const& piece : page.code)
        for (std::smatch const& match : Matches(piece, kName))
        {
            Words const parts = WordsOf(match.str());
            if (std::none_of(headers.begin(), headers.end(),
                             [&parts](HeaderNames const& header) { return Knows(header, parts); }))
                unknown.push_back(match.str());
        }
    return unknown;
}

Words UnknownTargets(Page const& page, std::set<std::string> const& buildWords)
{
    static std::regex const kTarget(R"(tessio_\w+|\w+_tests)");
    Words unknown;
    for (std::string const& piece : page.code)
        if (std::regex_match(piece, kTarget) && !buildWords.contains(piece))
            unknown.push_back(piece);
    return unknown;
}

Words UnfinishedEntries(Page const& page)
{
    Words unfinished;
    for (auto const& [heading, text] : page.entries)
    {
        for (char const* const part : {"**Why care:** ", "**Instead:** ", "**Pinned by** `"})
            if (text.find(part) == std::string::npos)
                unfinished.push_back(heading + ": no " + part);
        if (std::find(page.links.begin(), page.links.end(), "#" + Anchor(heading)) == page.links.end())
            unfinished.push_back(heading + ": not in the index");
    }
    return unfinished;
}
} // namespace KORVA::TESTS
