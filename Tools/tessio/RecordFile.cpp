#include "RecordFile.h"

#include "DirectoryLock.h"
#include "Document.h"
#include "Failure.h"
#include "Location.h"
#include "Outcome.h"
#include "Output.h"
#include "Values.h"
#include <tessio/ObjectModel/GUIDText.h>
#include <tessio/Records/Tree/FileOrder.h>
#include <tessio/TessIO/ClassIds.h>
#include <tessio/TessIO/IPersistentData.h>

#include <fmt/format.h>

#include <algorithm>

namespace TOOL
{
using namespace KORVA;
using IO::IDataProvider;
using IO::IDataProviderStream;

namespace
{
constexpr std::size_t kLargestFile = 2147483647;

/// The object of the first record in `content`, which is borrowed for the call alone; null when there is
/// none.
TInterfacePtr<IObject> FirstObject(Session const& session, std::span<unsigned char const> content,
                                   IDataProvider::Endian order)
{
    auto const provider = session.Create<IDataProvider>(IO::IID_IDATAPROVIDER);
    provider->InitReadOnlyMem(content.data(), static_cast<int32>(content.size()));
    provider->SetEndian(order);
    auto const reader = session.Create<IDataProviderStream>(IO::IID_DATAPROVIDERSTREAM);
    reader->Init(*provider);
    TInterfacePtr<IObject> object;
    *reader >> object.Out();
    return object;
}
} // namespace

RecordFile::RecordFile(Session const& session, std::string location, GUID const& classId, Use use)
    : mSession(session), mLocation(std::move(location))
{
    if (use != Use::kRead && IsLocal(session, mLocation))
        mDirectory = std::make_shared<DirectoryLock>(SystemPathOf(session, mLocation), mLocation);
    mIsNew = use == Use::kEditOrCreate && !Exists(session, mLocation);
    if (mIsNew)
        mObject = session.Create<IObject>(classId);
    else
        Load(classId, use);
}

void RecordFile::Load(GUID const& classId, Use use)
{
    auto stream = use == Use::kRead ? OpenToRead(mSession, mLocation) : OpenToWrite(mSession, mLocation);
    mContent = ReadWhole(mSession, *stream, mLocation);
    if (use != Use::kRead)
        mHeld = std::move(stream);
    mOrder = ValueOf(OrderOf(mContent), Quoted(mLocation) + " ");
    if (mContent.size() < static_cast<std::size_t>(KORVA::IO::kRecordHeadSize))
        throw Failure(Exit::kNotARecordFile, Quoted(mLocation) + " is not a record file");
    if (int64 const most = mSession.Bounds().bytes; static_cast<int64>(mContent.size()) > most)
        throw Failure(Exit::kLimit,
                      fmt::format("{} is {} bytes, more than {}", Quoted(mLocation), mContent.size(), most));
    ReadOptions options;
    options.order = mOrder;
    options.work.limits = mSession.Bounds();
    Node const first = ValueOf(ReadFirst(MemorySource(mContent), options));
    mFirstEnd = first.offset + first.length;
    if (ClassName(first.classId) != ClassName(classId))
        throw Failure(Exit::kNotARecordFile,
                      fmt::format("{}: the first record is of class {}, not {}", Quoted(mLocation),
                                  first.kind == Kind::kUnknownClass ? GUIDToText(first.classId)
                                                                    : ClassName(first.classId),
                                  ClassName(classId)));
    if (Node const* const fragile = use == Use::kRead ? nullptr : FirstFragile(first))
        throw Failure(Exit::kNotARecordFile,
                      fmt::format("{}: the record at offset {} would be lost ({}); nothing is changed",
                                  Quoted(mLocation), fragile->offset,
                                  !Problem(*fragile).empty() ? Problem(*fragile)
                                  : fragile->kind == Kind::kUnknownClass
                                      ? "unknown class " + GUIDToText(fragile->classId)
                                      : "unknown type of value"));
    mObject = FirstObject(mSession, mContent, mOrder);
    if (!mObject)
        throw Failure(Exit::kNotARecordFile, Quoted(mLocation) + ": the first record can't be loaded");
    // What the library would not write back as it stands (a key twice, say) an edit would lose.
    std::vector<unsigned char> const original(mContent.begin() + first.offset, mContent.begin() + mFirstEnd);
    if (use != Use::kRead && Serialized(mSession, *mObject, mOrder) != original)
        throw Failure(Exit::kNotARecordFile,
                      Quoted(mLocation) + ": the first record would not survive editing; nothing is changed");
}

void RecordFile::Save() const
{
    std::vector<unsigned char> content = Serialized(mSession, *mObject, mOrder);
    content.insert(content.end(), mContent.begin() + mFirstEnd, mContent.end());
    if (content.size() > kLargestFile)
        throw Failure(Exit::kInputOutput,
                      Quoted(mLocation) + " would be larger than 2 GiB; nothing is changed");
    // The lock is on the file that was opened; another process may have put a new one in its place meanwhile.
    bool const isThere = Exists(mSession, mLocation);
    if (mIsNew ? isThere
               : !isThere || ReadWhole(mSession, *OpenToRead(mSession, mLocation), mLocation) != mContent)
        throw Failure(Exit::kInputOutput,
                      Quoted(mLocation) + " was changed by another process; nothing is changed by this one");
    ReplaceContent(mSession, mLocation, content);
}

std::vector<unsigned char> Serialized(Session const& session, IObject const& object,
                                      IDataProvider::Endian order)
{
    auto const memory = session.Create<IDataProvider>(IO::IID_IDATAPROVIDER);
    memory->InitHandleBased(IO::kStreamReadWrite);
    memory->SetEndian(order);
    auto const stream = session.Create<IDataProviderStream>(IO::IID_DATAPROVIDERSTREAM);
    stream->Init(*memory);
    *stream << object;
    if (memory->Size() > static_cast<int64>(kLargestFile))
        throw Failure(Exit::kInputOutput, "the object would be larger than 2 GiB");
    std::vector<unsigned char> bytes(static_cast<std::size_t>(memory->Size()));
    memory->SetPosition(0, IDataProvider::kFromStart);
    int count = static_cast<int>(bytes.size());
    if (memory->Read(bytes.data(), count) != kNoError)
        throw Failure(Exit::kInputOutput, "the object can't be written");
    return bytes;
}

Bytes ValueRecord(Session const& session, std::string const& type, std::string const& text, Order order)
{
    auto const dictionary = session.Create<IDictionary>(IO::IID_DICTIONARY);
    PutValue(*dictionary, 0, type, text);
    constexpr int kCount = 4;
    constexpr int kKey = 4;
    Bytes const bytes = Serialized(session, *dictionary, order);
    // Around the value stand the dictionary's header, its count and the key, and behind it its own
    // aggregates.
    return {bytes.begin() + KORVA::IO::kRecordHeadSize + kCount + kKey, bytes.end() - kCount};
}

bool IsWrittenAsRead(Session const& session, std::span<unsigned char const> record,
                     IDataProvider::Endian order)
{
    TInterfacePtr<IObject> const object = FirstObject(session, record, order);
    return object && std::ranges::equal(Serialized(session, *object, order), record);
}

Node Describe(Session const& session, IObject const& object)
{
    if (!PersistentClass(object))
        return {};
    Bytes const bytes = Serialized(session, object, IDataProvider::kLittleEndian);
    return ValueOf(ReadFirst(MemorySource(bytes), {}));
}

std::optional<GUID> PersistentClass(IObject const& object)
{
    IObject* found = nullptr;
    if (object.QueryInterface(IO::IPERSISTENT_DATA, &found) != kNoError)
        return std::nullopt;
    return static_cast<IO::IPersistentData*>(found)->GetUID();
}
} // namespace TOOL
