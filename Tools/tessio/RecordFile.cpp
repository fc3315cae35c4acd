#include "RecordFile.h"

#include "Failure.h"
#include "Location.h"
#include "ObjectModel/GUIDText.h"
#include "TessIO/ClassIds.h"
#include "TessIO/IPersistentData.h"

#include <fmt/format.h>

namespace TOOL
{
using namespace KORVA;
using IO::IDataProvider;
using IO::IDataProviderStream;

RecordFile::RecordFile(Session const& session, std::string location, GUID const& classId, Use use)
    : mSession(session), mLocation(std::move(location))
{
    mIsNew = use == Use::kEditOrCreate && !FileOf(session, mLocation)->Exists();
    if (mIsNew)
        mObject = session.Create<IObject>(classId);
    else
        Load(classId, use);
}

void RecordFile::Load(GUID const& classId, Use use)
{
    auto stream = use == Use::kRead ? OpenToRead(mSession, mLocation) : OpenToWrite(mSession, mLocation);
    mContent = ReadWhole(*stream, mLocation);
    if (use != Use::kRead)
        mHeld = std::move(stream);
    mOrder = OrderOf(mSession, mContent, mLocation);
    RecordTree const tree = ReadTree(mSession, mContent, mOrder);
    Node const& first = tree.records.front();
    mFirstEnd = first.offset + first.length;
    if (ClassName(first.classId) != ClassName(classId))
        throw Failure(Exit::kNotARecordFile,
                      fmt::format("{}: the first record is of class {}, not {}", Quoted(mLocation),
                                  first.kind == Node::Kind::kUnknownClass ? GUIDToText(first.classId)
                                                                          : ClassName(first.classId),
                                  ClassName(classId)));
    if (Node const* const fragile = use == Use::kRead ? nullptr : FirstFragile(first))
        throw Failure(Exit::kNotARecordFile,
                      fmt::format("{}: the record at offset {} would be lost ({}); nothing is changed",
                                  Quoted(mLocation), fragile->offset,
                                  !fragile->problem.empty() ? fragile->problem
                                  : fragile->kind == Node::Kind::kUnknownClass
                                      ? "unknown class " + GUIDToText(fragile->classId)
                                      : "unknown type of value"));
    auto const provider = mSession.Create<IDataProvider>(IO::IID_IDATAPROVIDER);
    provider->InitReadOnlyMem(mContent.data(), static_cast<int32>(mContent.size()));
    provider->SetEndian(mOrder);
    auto const reader = mSession.Create<IDataProviderStream>(IO::IID_DATAPROVIDERSTREAM);
    reader->Init(*provider);
    *reader >> mObject.Out();
    if (!mObject)
        throw Failure(Exit::kNotARecordFile, Quoted(mLocation) + ": the first record can't be loaded");
}

void RecordFile::Save() const
{
    std::vector<unsigned char> content = Serialized(mSession, *mObject, mOrder);
    content.insert(content.end(), mContent.begin() + mFirstEnd, mContent.end());
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
    std::vector<unsigned char> bytes(static_cast<std::size_t>(memory->Size()));
    memory->SetPosition(0, IDataProvider::kFromStart);
    int count = static_cast<int>(bytes.size());
    if (memory->Read(bytes.data(), count) != kNoError)
        throw Failure(Exit::kInputOutput, "the object can't be written");
    return bytes;
}

Node Describe(Session const& session, IObject const& object)
{
    if (!PersistentClass(object))
        return {};
    return ReadTree(session, Serialized(session, object, IDataProvider::kLittleEndian),
                    IDataProvider::kLittleEndian)
        .records.front();
}

std::optional<GUID> PersistentClass(IObject const& object)
{
    IObject* found = nullptr;
    if (object.QueryInterface(IO::IPERSISTENT_DATA, &found) != kNoError)
        return std::nullopt;
    return static_cast<IO::IPersistentData*>(found)->GetUID();
}
} // namespace TOOL
