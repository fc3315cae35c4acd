#include <tessio/CoreString/StringTokenizer.h>

namespace KORVA::STRING
{
StringTokenizer::StringTokenizer(CoreString const& text, CoreString const& delimiters, int)
{
    std::size_t begin = 0;
    for (std::size_t i = 0; i <= text.size(); ++i)
    {
        if (i < text.size() && delimiters.find(text[i]) == CoreString::npos)
            continue;
        if (i > begin)
            mTokens.push_back(text.substr(begin, i - begin));
        begin = i + 1;
    }
}

int32 StringTokenizer::NumTokens() const { return static_cast<int32>(mTokens.size()); }

CoreString StringTokenizer::Get(int32 index) const
{
    return index >= 0 && index < NumTokens() ? mTokens[static_cast<std::size_t>(index)] : CoreString();
}
} // namespace KORVA::STRING
