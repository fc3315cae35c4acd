#include "Hygiene/Source.h"

#include "Support/TemporaryDirectory.h"

#include <algorithm>
#include <cctype>
#include <sstream>
#include <utility>

namespace KORVA::TESTS
{
namespace
{
namespace fs = std::filesystem;

bool IsWordCharacter(char c) { return std::isalnum(static_cast<unsigned char>(c)) || c == '_'; }

class Lexer
{
public:
    explicit Lexer(std::string_view code) : mCode(code) {}

    std::vector<Token> Run()
    {
        while (mAt < mCode.size())
            Step();
        return std::move(mTokens);
    }

private:
    bool At(std::string_view text) const { return mCode.substr(mAt, text.size()) == text; }

    void SkipTo(std::string_view end)
    {
        std::size_t const found = mCode.find(end, mAt);
        mAt = found == std::string_view::npos ? mCode.size() : found + end.size();
    }

    void Step()
    {
        char const c = mCode[mAt];
        if (At("//"))
            SkipTo("\n");
        else if (At("/*"))
            SkipTo("*/");
        else if (c == '\n' || std::isspace(static_cast<unsigned char>(c)))
        {
            mLineStart = mLineStart || c == '\n';
            ++mAt;
            return;
        }
        else if (c == '#' && mLineStart)
            SkipTo("\n");
        else if (c == '"')
            Text();
        else if (c == '\'')
            Quoted('\'');
        else if (IsWordCharacter(c))
            Word();
        else
        {
            mTokens.push_back({Token::kMark, std::string(1, c)});
            ++mAt;
        }
        mLineStart = mAt > 0 && mCode[mAt - 1] == '\n';
    }

    void Word()
    {
        std::size_t const begin = mAt;
        bool const number = std::isdigit(static_cast<unsigned char>(mCode[mAt]));
        // A number may be grouped: 1'000.
        while (mAt < mCode.size() && (IsWordCharacter(mCode[mAt]) || (number && mCode[mAt] == '\'')))
            ++mAt;
        std::string word(mCode.substr(begin, mAt - begin));
        bool const prefix = word == "L" || word == "u" || word == "U" || word == "u8";
        if (prefix && mAt < mCode.size() && mCode[mAt] == '"')
            Text();
        else
            mTokens.push_back({Token::kWord, std::move(word)});
    }

    std::string Quoted(char quote)
    {
        std::string text;
        for (++mAt; mAt < mCode.size() && mCode[mAt] != quote; ++mAt)
        {
            if (mCode[mAt] == '\\')
                ++mAt;
            text += mCode[mAt];
        }
        ++mAt;
        return text;
    }

    void Text()
    {
        std::string text = Quoted('"');
        if (!mTokens.empty() && mTokens.back().kind == Token::kText)
            mTokens.back().text += text;
        else
            mTokens.push_back({Token::kText, std::move(text)});
    }

    std::string_view mCode;
    std::size_t mAt = 0;
    bool mLineStart = true;
    std::vector<Token> mTokens;
};
} // namespace

std::vector<fs::path> SourcesBelow(fs::path const& folder)
{
    fs::path const root = TESSIO_SOURCE_DIR;
    std::vector<fs::path> files;
    if (!fs::exists(root / folder))
        return files;
    for (auto const& entry : fs::recursive_directory_iterator(root / folder))
    {
        fs::path const extension = entry.path().extension();
        if (entry.is_regular_file() && (extension == ".h" || extension == ".cpp"))
            files.push_back(entry.path().lexically_relative(root));
    }
    std::sort(files.begin(), files.end());
    return files;
}

std::vector<std::string> LinesOf(fs::path const& file)
{
    std::istringstream in(Content(fs::path(TESSIO_SOURCE_DIR) / file));
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);)
        lines.push_back(std::move(line));
    return lines;
}

std::vector<Token> TokensOf(std::string_view code) { return Lexer(code).Run(); }
} // namespace KORVA::TESTS
