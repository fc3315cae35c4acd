// Every message's identity and text, in the sources and in the list, and no other way to log.
#include "Hygiene/Source.h"
#include "Support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace KORVA::TESTS
{
namespace
{
namespace fs = std::filesystem;

/// Source, signature, line, type and level, with tabs between.
using Identity = std::string;

std::vector<std::string> Fields(std::string const& line)
{
    std::vector<std::string> fields;
    std::istringstream in(line);
    for (std::string field; std::getline(in, field, '\t');)
        fields.push_back(field);
    return fields;
}

/// What is said under one identity: one message each, except that sites without a line may share theirs.
using Messages = std::set<std::string>;

/// The list: messages by identity.
std::map<Identity, Messages> ListedSites()
{
    std::map<Identity, Messages> sites;
    std::vector<std::string> const lines = LinesOf("Tests/Data/LogSites.tsv");
    EXPECT_EQ(lines.at(0), "source\tsignature\tline\ttype\tlevel\tmessage");
    for (std::size_t i = 1; i < lines.size(); ++i)
    {
        std::vector<std::string> const fields = Fields(lines[i]);
        EXPECT_EQ(fields.size(), 6u) << lines[i];
        std::string const message = fields.back();
        Identity const identity = lines[i].substr(0, lines[i].size() - message.size() - 1);
        EXPECT_TRUE(sites[identity].insert(message).second) << "twice: " << lines[i];
        EXPECT_TRUE(sites[identity].size() == 1 || fields.at(2) == "0")
            << "one line, two messages: " << lines[i];
    }
    return sites;
}

using Tokens = std::vector<Token>;

bool Is(Token const& token, std::string_view text)
{
    return token.kind != Token::kText && token.text == text;
}

/// The arguments from the opening bracket at `open` on; `close` becomes the closing one's place.
std::vector<Tokens> Arguments(Tokens const& tokens, std::size_t open, std::size_t& close)
{
    std::vector<Tokens> arguments(1);
    int depth = 0;
    for (close = open; close < tokens.size(); ++close)
    {
        Token const& token = tokens[close];
        bool const opens = Is(token, "(") || Is(token, "{") || Is(token, "[");
        bool const closes = Is(token, ")") || Is(token, "}") || Is(token, "]");
        if (closes && --depth == 0)
            return arguments;
        if (depth == 1 && Is(token, ","))
            arguments.emplace_back();
        else if (depth > 0)
            arguments.back().push_back(token);
        if (opens)
            ++depth;
    }
    return arguments;
}

struct LogCall
{
    std::string site;
    std::string message;
};

/// What one source says of logging.
struct SourceFile
{
    fs::path path;
    std::map<std::string, Identity> sites;
    std::map<std::string, int> uses;
    std::vector<LogCall> calls;

    explicit SourceFile(fs::path file) : path(std::move(file))
    {
        Tokens const tokens = TokensOf(Content(fs::path(TESSIO_SOURCE_DIR) / path));
        for (std::size_t i = 0; i + 1 < tokens.size(); ++i)
            ReadAt(tokens, i);
    }

private:
    void ReadAt(Tokens const& tokens, std::size_t& i)
    {
        if (Is(tokens[i], "constexpr"))
            ReadConstant(tokens, i);
        else if (Is(tokens[i], "Log") && Is(tokens[i + 1], "(") && !(i > 0 && Is(tokens[i - 1], "void")))
            ReadCall(tokens, i + 1);
        else if (tokens[i].kind == Token::kWord && sites.contains(tokens[i].text))
            ++uses[tokens[i].text];
    }

    void ReadConstant(Tokens const& tokens, std::size_t& i)
    {
        std::size_t at = i + 1;
        std::string const type = tokens.at(at).text;
        if (tokens.size() <= at + 5)
            return;
        std::string const name = tokens[at + 1].text;
        std::size_t close = at;
        if (type == "LogSite")
        {
            Identity identity;
            for (Tokens const& field : Arguments(tokens, at + 2, close))
                identity += (identity.empty() ? "" : "\t") + Value(field);
            // Type and level may be left out for a failure.
            if (std::count(identity.begin(), identity.end(), '\t') == 2)
                identity += "\t2\t1";
            EXPECT_TRUE(sites.emplace(name, identity).second) << path << ": " << name << " twice";
            i = close;
        }
        else if ((type == "char" || type == "wchar_t") && Is(tokens[at + 2], "["))
            mConstants[name] = tokens[at + 5].text;
        else if (type == "int" && Is(tokens[at + 2], "="))
            mConstants[name] = tokens[at + 3].text;
    }

    void ReadCall(Tokens const& tokens, std::size_t open)
    {
        std::size_t close = open;
        std::vector<Tokens> const arguments = Arguments(tokens, open, close);
        std::string message;
        for (std::size_t i = 1; i < arguments.size(); ++i)
        {
            Tokens const& part = arguments[i];
            bool const known =
                part.size() == 1 && (part[0].kind == Token::kText || mConstants.contains(part[0].text));
            message += known ? Value(part) : "{}";
        }
        calls.push_back({arguments[0].size() == 1 ? arguments[0][0].text : "", message});
    }

    std::string Value(Tokens const& tokens) const
    {
        if (tokens.size() != 1)
            return "?";
        auto const constant = mConstants.find(tokens[0].text);
        bool const named = tokens[0].kind == Token::kWord && constant != mConstants.end();
        return named ? constant->second : tokens[0].text;
    }

    std::map<std::string, std::string> mConstants;
};

std::vector<SourceFile> Sources()
{
    std::vector<SourceFile> sources;
    for (char const* const folder : {"Core", "SDK", "Companions/FileIO"})
        for (fs::path const& file : SourcesBelow(folder))
            sources.emplace_back(file);
    return sources;
}

TEST(LogSites, InTheSourcesAreThoseOfTheList)
{
    std::map<Identity, Messages> const listed = ListedSites();
    std::map<Identity, std::size_t> found;
    for (SourceFile const& source : Sources())
        for (auto const& [name, identity] : source.sites)
        {
            ++found[identity];
            EXPECT_TRUE(listed.contains(identity)) << source.path << ": not in the list:\n" << identity;
        }
    for (auto const& [identity, messages] : listed)
        EXPECT_EQ(found[identity], messages.size()) << "sites in the sources:\n" << identity;
    EXPECT_GE(found.size(), 95u);
}

TEST(LogSites, AreUsed)
{
    for (SourceFile const& source : Sources())
        for (auto const& [name, identity] : source.sites)
            EXPECT_TRUE(source.uses.contains(name)) << source.path << ": nobody logs under " << name;
}

TEST(LogSites, AreWhatEveryCallNames)
{
    for (SourceFile const& source : Sources())
    {
        if (source.path.filename() == "LogSite.h")
            continue;
        for (LogCall const& call : source.calls)
        {
            bool const passedOn = call.site.ends_with("site") || call.site.ends_with("Site");
            EXPECT_TRUE(passedOn || source.sites.contains(call.site))
                << source.path << ": Log(" << call.site << ", ...) names no row of this source";
        }
    }
}

TEST(LogSites, HaveTheMessagesOfTheList)
{
    std::map<Identity, Messages> unsaid = ListedSites();
    for (SourceFile const& source : Sources())
    {
        std::map<std::string, Messages> messages;
        Messages passedOn;
        for (LogCall const& call : source.calls)
            (source.sites.contains(call.site) ? messages[call.site] : passedOn).insert(call.message);
        for (auto const& [name, identity] : source.sites)
        {
            auto const listed = unsaid.find(identity);
            if (listed == unsaid.end())
                continue;
            // A site that no call names itself goes through a function that takes the site.
            Messages const& said = messages.contains(name) ? messages[name] : passedOn;
            auto const message = std::ranges::find_if(
                listed->second, [&said](std::string const& text) { return said.contains(text); });
            if (message == listed->second.end())
                ADD_FAILURE() << source.path << ": " << name
                              << " does not say what is left in the list for:\n"
                              << identity;
            else
                listed->second.erase(message);
            if (messages.contains(name))
            {
                EXPECT_EQ(said.size(), 1u) << source.path << ": " << name << " says several things";
            }
        }
    }
    for (auto const& [identity, messages] : unsaid)
        EXPECT_EQ(messages, Messages{}) << "nobody says:\n" << identity;
}

/// Words by which a source could log under another identity. The service is called in one place.
TEST(LogSites, AreTheOnlyWayToLog)
{
    std::set<std::string> const words{
        "__LINE__",        "__FILE__",   "__func__", "__FUNCTION__", "__PRETTY_FUNCTION__",
        "source_location", "KLogMessage"};
    std::map<std::string, int> found;
    for (char const* const folder : {"Core", "SDK"})
        for (fs::path const& file : SourcesBelow(folder))
            for (Token const& token : TokensOf(Content(fs::path(TESSIO_SOURCE_DIR) / file)))
                if (token.kind == Token::kWord && words.contains(token.text))
                    ++found[file.string() + ": " + token.text];
    EXPECT_EQ(found, (std::map<std::string, int>{
                         {"SDK/Headers/Core/LibSupport/Logger/KLoggerLibInterface.h: KLogMessage", 1},
                         {"SDK/Headers/Core/LibSupport/Logger/LogSite.h: KLogMessage", 1}}));
}
} // namespace
} // namespace KORVA::TESTS
