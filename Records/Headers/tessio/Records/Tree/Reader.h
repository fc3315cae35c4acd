// From the bytes of a file to its records, one at a time.
#pragma once

#include <tessio/Records/Format/Result.h>
#include <tessio/Records/Format/Work.h>
#include <tessio/Records/Tree/Path.h>
#include <tessio/Records/Tree/Source.h>

#include <functional>
#include <memory>
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

/// Is told of fields, in the order of the file.
using FieldSink = std::function<void(Field)>;

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

struct ReadOptions
{
    Order order = IO::IDataProvider::kLittleEndian;
    Work work;
    /// Borrowed; null where nobody knows classes of plug-ins.
    ClassReader const* classes = nullptr;
};

class Cursor;

/// Reads records where they are asked for, and passes all others by their lengths. What can't be made sense
/// of is named in the nodes; operations fail only where the source can't be read, a limit is passed, or the
/// caller wants to end. Used by one thread at a time.
class Reader
{
public:
    /// Borrows the source, and what `options` borrow.
    Reader(Source const& source, ReadOptions options);
    Reader(Reader const&) = delete;
    Reader& operator=(Reader const&) = delete;
    ~Reader();

    /// The records of the file, from the first one on.
    Cursor Records();

    /// What a node holds, from the first on: entries, or records among the parts of a plug-in's object, then
    /// aggregates.
    Cursor Children(Node const& holder);

    /// Reads what a node says itself: its value, the number of what it holds, and what is wrong with it. A
    /// node that a cursor gave has only what its head says. Does nothing for one that is complete.
    Result<bool> Complete(Node& node);

    /// The node at the end of a path, complete, with its label; or how far the path leads: the words follow
    /// the name of the file. Of a key that is there twice the last one is found, as the library reads it.
    Result<Node> Find(Path const& path);

    /// Tells the fields of a complete node's head and of its own value. What it holds tells its own; the
    /// cursor through it tells counts, keys, text entries and the parts of objects.
    Result<bool> TellFields(Node const& node, FieldSink const& sink);

    /// A node with all that it holds.
    Result<Node> Tree(Node node);

    /// Bytes of the file, all of which must be there.
    Result<Bytes> BytesAt(int64 offset, int64 length);

    Order GetOrder() const;
    int64 Size() const;

private:
    friend class Cursor;
    class Implementation;
    std::unique_ptr<Implementation> mImplementation;
};

/// Goes through what a node holds, or through the records of a file. Borrows the reader; several may go on in
/// turn.
class Cursor
{
public:
    Cursor(Cursor&&) noexcept;
    Cursor& operator=(Cursor&&) = delete;
    ~Cursor();

    /// Tells the fields between the records too: counts, keys, interface ids.
    void Tell(FieldSink sink);

    /// Makes `node` the next one, as far as its head tells; false at the end. String entries are complete.
    Result<bool> Next(Node& node);

    /// Where the next one would begin; at the end, where the last one ended.
    int64 Position() const;

private:
    friend class Reader;
    class Passage;
    explicit Cursor(std::unique_ptr<Passage> passage);
    std::unique_ptr<Passage> mPassage;
};

/// The first record of a source, with everything in it. Fails with `ErrorCode::kNoRecords` where none is
/// there.
Result<Node> ReadFirst(Source const& source, ReadOptions const& options);

/// Reads the structure of a whole file.
Result<RecordTree> ReadTree(Source const& source, ReadOptions const& options);

/// What a walk shows: a record or text entry, complete, and the path to it. Answers whether to go into it.
using Visit = std::function<bool(Node const& node, std::string const& path)>;

/// Shows every record and text entry of a file, holders first, in the order of the file. Gives the place
/// where the last record ends.
Result<int64> Walk(Reader& reader, Visit const& visit);

/// The same for a node and what it holds; `path` leads to the node.
Result<bool> Walk(Reader& reader, Node node, std::string path, Visit const& visit);

/// The path to the innermost record around an offset; empty where it is in none.
Result<Path> PathAt(Reader& reader, int64 offset);

/// Where the last record of a file ends.
Result<int64> EndOfRecords(Reader& reader);

/// What is left over behind the last record, which ends at `end`; nothing where nothing is.
std::optional<Finding> LeftOver(int64 end, int64 size);

/// A part's value for people; long ones are cut. `bytes` are the part's.
std::string ShownPart(ByteView bytes, Part const& part, Order order);

/// The units of a string part.
STRING::CoreString TextOfPart(ByteView bytes, Part const& part, Order order);
} // namespace KORVA::RECORDS
