#include "Bookmark.h"

#include <tessio/CoreRegistry/CoreRegistry.h>
#include <tessio/TessIO/PersistentData.h>
#include <tessio/TessIO/RecordFormat.h>
#include <tessio/TessIO/ResultCodes.h>

#include <algorithm>

namespace BOOKMARKS
{
namespace
{
using namespace KORVA;
using COREREGISTRY::CreateObject;
using IO::IDataProvider;
using IO::IDataProviderStream;

//! [member]
/// The two lengths before a member.
constexpr int64 kLengths = 2 * sizeof(int64);

/// Writes the record of an object (none for null) behind its length. The length stands there twice, the
/// second time with all bits turned, so that a reader knows a damaged one from a good one.
void WriteMember(IDataProviderStream& stream, IObject const* object)
{
    TInterfacePtr<IDataProvider> const provider = stream.GetDataProvider();
    int64 const start = provider->GetPosition();
    stream << int64{0} << int64{0};
    if (object)
        stream << *object;
    int64 const end = provider->GetPosition();
    int64 const length = end - start - kLengths;
    provider->SetPosition(start, IDataProvider::kFromStart);
    stream << length << ~length;
    provider->SetPosition(end, IDataProvider::kFromStart);
}

/// Whether a record follows, by the two lengths in front of it. Where one of them says that there is none,
/// and the other that there is, one is damaged: a record that is there has a length of its own.
bool HasRecord(IDataProviderStream& stream, int64 length, int64 second)
{
    if ((length == 0) == (second == 0))
        return length != 0;
    TInterfacePtr<IDataProvider> const provider = stream.GetDataProvider();
    int64 const start = provider->GetPosition();
    GUID classId{};
    int64 own = -1;
    stream >> classId >> own;
    provider->SetPosition(start, IDataProvider::kFromStart);
    return own == std::max(length, second) - IO::kRecordHeadSize;
}

/// The object that a record was made of, if it is of the class that is wanted here. Whatever the record held,
/// the stream stands behind it afterwards: a damaged length of the record itself is of no consequence, and
/// where one in front of it is damaged the record's own does.
template <class I>
TInterfacePtr<I> ReadMember(IDataProviderStream& stream, GUID const& classId)
{
    TInterfacePtr<IDataProvider> const provider = stream.GetDataProvider();
    int64 length = 0;
    int64 turned = 0;
    stream >> length >> turned;
    int64 const start = provider->GetPosition();
    TInterfacePtr<IObject> object;
    if (HasRecord(stream, length, ~turned))
        stream >> object.Out();
    // Two that agree may still have been made up by somebody.
    if (length == ~turned && length >= 0 && length <= provider->Size() - start)
        provider->SetPosition(start + length, IDataProvider::kFromStart);
    TInterfacePtr<I> member;
    IObject* persistence = nullptr;
    if (object && object->QueryInterface(IO::IPERSISTENT_DATA, &persistence) == kNoError &&
        static_cast<IO::IPersistentData*>(persistence)->GetUID() == classId)
        member.Adopt(static_cast<I*>(object.Detach()));
    return member;
}
//! [member]
} // namespace

Bookmark::Bookmark() : mRemarks(CreateObject<IDictionary>(IO::IID_DICTIONARY))
{
    IO::SetupPersistence(*this);
}

ErrCode Bookmark::GetPath(STRING::CoreString& path) const
{
    FILE_SYS::IDir* directory = nullptr;
    if (mPlace)
        mPlace->GetBaseDir(&directory);
    STRING::CoreString found;
    if (!directory || directory->GetPath(1, found) != kNoError)
        return IO::kFileNotFound;
    // One that was read knows its directory and the way from there, and no more.
    path = mPlace->GetRelPath().empty() ? found : found + u"/" + mPlace->GetRelPath();
    return kNoError;
}

//! [body]
IDataProviderStream& Bookmark::Write(IDataProviderStream& stream) const
{
    stream << mDate;
    WriteMember(stream, mPlace.Get());
    WriteMember(stream, mRemarks.Get());
    // Last, because nothing tells where a text with a damaged length ends.
    return stream << mTitle;
}

IDataProviderStream& Bookmark::Read(IDataProviderStream& stream)
{
    stream >> mDate;
    mPlace = ReadMember<IO::IRelativeURI>(stream, IO::IID_IRELATIVE_URI);
    auto remarks = ReadMember<IDictionary>(stream, IO::IID_DICTIONARY);
    if (remarks)
        mRemarks = std::move(remarks);
    return stream >> mTitle;
}
//! [body]
} // namespace BOOKMARKS
