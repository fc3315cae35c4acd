// One reading of a file's records.
#pragma once

#include <tessio/Records/Tree/Decoder.h>

#include <fmt/format.h>

#include <set>

namespace KORVA::RECORDS
{
/// Thrown inside a record where its bytes stop making sense; costs the rest of that record.
struct Broken
{
    char const* code;
    KORVA::int64 offset;
    std::string words;
};

/// Reads records from their bytes, one at a time.
class Decoder
{
public:
    Decoder(ByteView content, DecodeOptions const& options) : mContent(content), mOptions(options) {}

    Node Record(KORVA::int64 offset, KORVA::int64 limit, char const* holder, Label label, int depth);
    std::optional<Node> ByContent(KORVA::int64 offset, KORVA::int64 limit);
    std::optional<KORVA::int64> BodyEnd(KORVA::int64 offset, KORVA::int64 limit);
    std::optional<SoundRecord> Sound(KORVA::int64 offset, KnownClass const& known);

private:
    void Count(KORVA::int64 offset);
    bool ReadHeader(Node& node, KORVA::int64 limit, char const* holder);
    void ReadContent(Node& node, KORVA::int64 end, int depth);
    void Body(Node& node, KORVA::int64 end, int depth);
    void Dictionary(Node& node, KORVA::int64 end, int depth);
    std::size_t StringEntriesAhead(KORVA::uint32 count, KORVA::int64 end) const;
    void Strings(Node& node, KORVA::int64 end);
    void CheckOrder(Node& node, Node const& entry, std::set<KORVA::STRING::CoreString>& seen);
    void Relative(Node& node, KORVA::int64 end);
    void PlainValue(Node& node, KORVA::int64 end);
    void Number(Value& value, KORVA::int64 end);
    void Buffer(Node& node, KORVA::int64 end);
    void Object(Node& node, ReadBody const& body, int depth);
    void Aggregates(Node& node, KORVA::int64 end, int depth);
    void PassNested(KORVA::int64 end);
    void Nested(std::vector<Node>& nodes, Label label, KORVA::int64 end, int depth);

    void Need(KORVA::int64 bytes, KORVA::int64 end, char const* what) const;
    template <class N>
    N Read(KORVA::int64 end, Role role, char const* name, char const* what);
    GUID ReadId(KORVA::int64 end, Role role, char const* name, char const* what);
    KORVA::STRING::CoreString ReadString(Node& node, KORVA::int64 end, Role role, char const* name);
    void Tell(KORVA::int64 offset, KORVA::int64 length, Role role, std::string name, std::string value);
    void Note(Node& node, Severity severity, char const* code, KORVA::int64 offset, std::string words);

    ByteView mContent;
    DecodeOptions const& mOptions;
    KORVA::int64 mPosition = 0;
    KORVA::int64 mRecords = 0;
    /// What the class of the first record is taken for, when not what its id says.
    KnownClass const* mAs = nullptr;
    /// How deep the records are nested that were looked up.
    int mHeight = 0;
};

template <class N>
N Decoder::Read(KORVA::int64 end, Role role, char const* name, char const* what)
{
    Need(sizeof(N), end, what);
    auto const number = Load<N>(mContent.data() + mPosition, mOptions.order);
    if (mOptions.fields)
        Tell(mPosition, sizeof(N), role, name, fmt::format("{}", number));
    mPosition += static_cast<KORVA::int64>(sizeof(N));
    return number;
}
} // namespace KORVA::RECORDS
