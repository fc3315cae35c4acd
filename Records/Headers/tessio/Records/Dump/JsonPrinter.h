// JSON documents too large to be in memory as a whole.
#pragma once

#include <nlohmann/json_fwd.hpp>

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace KORVA::RECORDS
{
/// Members keep their order.
using Json = nlohmann::ordered_json;

/// Is given pieces of a text of some size, in order.
using TextSink = std::function<void(std::string_view)>;

/// Is given pieces of a text of some size, in order.
using TextSink = std::function<void(std::string_view)>;

/// Writes a document piece by piece, as `JsonText` lays it out, or on one line. Lines that are nested deeper
/// than anybody reads stand no further to the right, so that their number alone makes the document long.
class JsonPrinter
{
public:
    enum class Layout
    {
        kLines,
        kOneLine
    };
    explicit JsonPrinter(TextSink sink, Layout layout = Layout::kLines)
        : mSink(std::move(sink)), mLayout(layout)
    {}

    /// Begins an object or a list, as the next value.
    void BeginObject() { Begin('{'); }
    void BeginList() { Begin('['); }
    void End();
    /// In an object, before each value.
    void Key(std::string_view name);
    void Value(Json const& value);
    void Member(std::string_view name, Json const& value)
    {
        Key(name);
        Value(value);
    }
    /// All members of another object.
    void Members(Json const& object);
    /// Hands on what is left, with a line's end behind.
    void Finish();

private:
    struct Open
    {
        char end;
        bool isEmpty;
    };
    void Begin(char kind);
    void Separate();
    void NewLine();
    void Put(std::string_view text);

    TextSink mSink;
    Layout mLayout;
    std::string mText;
    std::vector<Open> mOpen;
    bool mIsAfterKey = false;
};
} // namespace KORVA::RECORDS
