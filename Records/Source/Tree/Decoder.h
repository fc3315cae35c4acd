// The bytes of one record at a time.
#pragma once

#include "Tree/Window.h"
#include <tessio/Records/Tree/Reader.h>

#include <fmt/format.h>

#include <set>

namespace KORVA::RECORDS
{
/// Thrown inside a record where its bytes stop making sense; costs the rest of that record.
struct Broken
{
    char const* code;
    int64 offset;
    std::string words;
};

/// Reads what records say themselves, from where `MoveTo` set it.
class Decoder
{
public:
    Decoder(Source const& source, ReadOptions options) : mWindow(source), mOptions(std::move(options)) {}

    ReadOptions const& Options() const { return mOptions; }
    int64 Size() const { return mWindow.Size(); }
    int64 Position() const { return mPosition; }
    void MoveTo(int64 position) { mPosition = position; }
    /// Who is told of fields from now on; may be empty.
    void SetSink(FieldSink sink) { mSink = std::move(sink); }

    /// Counts a record or text entry, for whoever limits them, and says how far reading has come.
    void Count(int64 offset);
    /// Raises an error for a record that is nested too deep for the limits.
    void CheckDepth(int64 offset, int depth) const;

    /// A record's head, whose holder ends at `limit` and is called so in messages. At least a header must be
    /// there.
    Node Head(int64 offset, int64 limit, char const* holder, Label label, int depth);
    /// What the body says that holds no other records, or of a dictionary nothing; the position is behind it.
    void Leaf(Node& node, int64 end);
    /// A key and a text.
    Node TextEntry(Node& holder, int64 end);

    void Need(int64 bytes, int64 end, char const* what) const;
    template <class N>
    N Read(int64 end, Role role, char const* name, char const* what);
    GUID ReadId(int64 end, Role role, char const* name, char const* what);
    void Tell(int64 offset, int64 length, Role role, std::string name, std::string value);
    static void Note(Node& node, Severity severity, char const* code, int64 offset, std::string words);
    ByteView At(int64 offset, int64 length)
    {
        return {mWindow.At(offset, length), static_cast<std::size_t>(length)};
    }

private:
    STRING::CoreString ReadString(Node& node, int64 end, Role role, char const* name);
    void Relative(Node& node, int64 end);
    void PlainValue(Node& node, int64 end);
    void Number(Value& value, int64 end);
    void Buffer(Node& node, int64 end);
    void Object(Node& node, int64 end);

    Window mWindow;
    ReadOptions mOptions;
    FieldSink mSink;
    int64 mPosition = 0;
    int64 mRecords = 0;
};

template <class N>
N Decoder::Read(int64 end, Role role, char const* name, char const* what)
{
    Need(sizeof(N), end, what);
    auto const number = Load<N>(mWindow.At(mPosition, sizeof(N)), mOptions.order);
    if (mSink)
        Tell(mPosition, sizeof(N), role, name, fmt::format("{}", number));
    mPosition += static_cast<int64>(sizeof(N));
    return number;
}
} // namespace KORVA::RECORDS
