// From the bytes of a file to its records.
#pragma once

#include <tessio/Records/Format/Result.h>
#include <tessio/Records/Format/Work.h>
#include <tessio/Records/Tree/Node.h>

#include <map>
#include <optional>

namespace KORVA::RECORDS
{
/// What a stretch of bytes is, for whoever shows them.
enum class Role
{
    kClass,
    kLength,
    kCount,
    kKey,
    kTag,
    kValue,
    /// Of a class or type that nobody knows.
    kOpaque
};

/// A stretch of bytes with a meaning.
struct Field
{
    int64 offset = 0;
    int64 length = 0;
    Role role = Role::kValue;
    std::string name;
    std::string value;
};

/// Is told of every field, in the order of the file.
class FieldSink
{
public:
    virtual ~FieldSink() = default;
    virtual void OnRecord(int64 offset, Label const& label, int depth) = 0;
    virtual void OnField(Field field) = 0;
    virtual void OnRecordEnd(Node const& node) = 0;
};

/// What a plug-in's class read of a body.
struct ReadBody
{
    std::vector<Part> parts;
    /// How many bytes it took.
    int64 length = 0;
};

/// Knows the classes of plug-ins.
class ClassReader
{
public:
    virtual ~ClassReader() = default;
    /// Lets the class read `body`, which begins at `offset` of the file. Nothing when no plug-in makes it, or
    /// when what it reads can't be followed.
    virtual std::optional<ReadBody> Read(GUID const& classId, ByteView body, int64 offset,
                                         Order order) const = 0;
    /// Whether the registry makes objects of the class.
    virtual bool Makes(GUID const& classId) const = 0;
};

/// A record of a known class that makes sense to its last byte.
struct SoundRecord
{
    int64 end = 0;
    /// How many records deep others are nested in it.
    int height = 0;
    /// Where the texts end that it begins with; no record can be in them. 0 where there are none.
    int64 textEnd = 0;
    /// Whether there is nothing in it to warn of, the order of keys aside.
    bool isUsual = true;
};

/// By their offsets.
using SoundRecords = std::map<int64, SoundRecord>;

/// Records whose class ids are damaged, by their offsets: the ids that they should have.
using MisnamedRecords = std::map<int64, GUID>;

struct DecodeOptions
{
    Order order = IO::IDataProvider::kLittleEndian;
    Work work;
    FieldSink* fields = nullptr;
    ClassReader const* classes = nullptr;
    /// All that begin behind the record that is read. Those in it are then looked up instead of read once
    /// more, and no content is kept.
    SoundRecords const* sound = nullptr;
    /// What holds one of these is damaged. Needed with `sound`.
    MisnamedRecords const* misnamed = nullptr;
    /// Counts on what was read before; each reading counts from nothing without it.
    int64* count = nullptr;
};

/// Reads the structure of a whole file. What can't be made sense of is named in the nodes; fails only where a
/// limit is passed or the caller wants to end.
Result<RecordTree> Decode(ByteView content, DecodeOptions const& options);

/// Reads the record at `offset`, which must end by `limit`; at least a header must be there.
Result<Node> DecodeRecord(ByteView content, int64 offset, int64 limit, DecodeOptions const& options);

/// Reads a record of a known class as if its length were not known: it ends where its content does. Nothing
/// when the class is not known or the content makes no sense.
std::optional<Node> DecodeByContent(ByteView content, int64 offset, int64 limit,
                                    DecodeOptions const& options);

/// Where the content of the known class's record at `offset` ends, and the number of its aggregates should
/// stand. Nothing when the content makes no sense or reaches beyond `limit`.
std::optional<int64> EndOfBody(ByteView content, int64 offset, int64 limit, DecodeOptions const& options);

/// The record at `offset`, when it is sound as one of that class, whatever its class id says. At least a
/// header must be there.
std::optional<SoundRecord> SoundRecordAt(ByteView content, int64 offset, KnownClass const& known,
                                         DecodeOptions const& options);

/// A part's value for people; long ones are cut.
std::string ShownPart(ByteView content, Part const& part, Order order);

/// The units of a string part.
STRING::CoreString TextOfPart(ByteView content, Part const& part, Order order);

/// The length of a record's header: class id and length.
constexpr int64 kHeader = 24;
/// Lengths beyond are not believed by the library.
constexpr int64 kLargestLength = 2147483647;
/// Records nested deeper are not read by the library.
constexpr int kDeepest = 1000;
} // namespace KORVA::RECORDS
