#include <tessio/Records/Dump/JsonPrinter.h>

#include <nlohmann/json.hpp>

#include <algorithm>

namespace KORVA::RECORDS
{
namespace
{
constexpr std::size_t kPiece = std::size_t{64} << 10;
constexpr std::size_t kDeepestIndent = 64;
} // namespace

void JsonPrinter::Put(std::string_view text)
{
    mText += text;
    if (mText.size() < kPiece)
        return;
    mSink(mText);
    mText.clear();
}

void JsonPrinter::NewLine()
{
    if (mLayout == Layout::kOneLine)
        return;
    mText += '\n';
    mText.append(2 * std::min(mOpen.size(), kDeepestIndent), ' ');
}

/// Before a value in a list, or a key.
void JsonPrinter::Separate()
{
    if (mIsAfterKey)
    {
        mIsAfterKey = false;
        return;
    }
    if (mOpen.empty())
        return;
    if (!mOpen.back().isEmpty)
        mText += ',';
    mOpen.back().isEmpty = false;
    NewLine();
}

void JsonPrinter::Begin(char kind)
{
    Separate();
    Put({&kind, 1});
    mOpen.push_back({kind == '{' ? '}' : ']', true});
}

void JsonPrinter::End()
{
    Open const open = mOpen.back();
    mOpen.pop_back();
    if (!open.isEmpty)
        NewLine();
    Put({&open.end, 1});
}

void JsonPrinter::Key(std::string_view name)
{
    Separate();
    Put(Json(name).dump() + (mLayout == Layout::kOneLine ? ":" : ": "));
    mIsAfterKey = true;
}

void JsonPrinter::Value(Json const& value)
{
    if (value.is_object() && !value.empty())
    {
        BeginObject();
        Members(value);
        return End();
    }
    if (value.is_array() && !value.empty())
    {
        BeginList();
        for (Json const& item : value)
            Value(item);
        return End();
    }
    Separate();
    Put(value.dump(-1, ' ', false, Json::error_handler_t::replace));
}

void JsonPrinter::Members(Json const& object)
{
    for (auto const& [name, value] : object.items())
        Member(name, value);
}

void JsonPrinter::Finish()
{
    mSink(mText + "\n");
    mText.clear();
}
} // namespace KORVA::RECORDS
