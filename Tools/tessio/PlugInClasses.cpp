#include "PlugInClasses.h"

#include <tessio/ObjectModel/TObject.h>
#include <tessio/TessIO/ClassIds.h>
#include <tessio/TessIO/IDataProviderStream.h>
#include <tessio/TessIO/IPersistentData.h>

#include <limits>

namespace TOOL
{
namespace
{
using namespace KORVA;
using IO::IDataProvider;
using IO::IDataProviderStream;
using STRING::CoreString;

/// Hands everything to the library's stream and notes where the position was before and after.
class NotingStream final : public TObject<IDataProviderStream>
{
public:
    NotingStream(IDataProvider& provider, IDataProviderStream& stream, ByteView body, Order order)
        : mProvider(provider), mStream(stream), mBody(body), mOrder(order)
    {}

    ErrCode Init(IDataProvider&) override { return kNoError; }
    TInterfacePtr<IDataProvider> GetDataProvider() const override { return mStream.GetDataProvider(); }

    IDataProviderStream& operator>>(signed char& value) override { return Note("int8", value); }
    IDataProviderStream& operator>>(unsigned char& value) override { return Note("uint8", value); }
    IDataProviderStream& operator>>(short& value) override { return Note("int16", value); }
    IDataProviderStream& operator>>(unsigned short& value) override { return Note("uint16", value); }
    IDataProviderStream& operator>>(int& value) override { return Note("int32", value); }
    IDataProviderStream& operator>>(unsigned int& value) override { return Note("uint32", value); }
    IDataProviderStream& operator>>(long long& value) override { return Note("int64", value); }
    IDataProviderStream& operator>>(unsigned long long& value) override { return Note("uint64", value); }
    IDataProviderStream& operator>>(bool& value) override { return Note("bool", value); }
    IDataProviderStream& operator>>(float& value) override { return Note("float", value); }
    IDataProviderStream& operator>>(double& value) override { return Note("double", value); }
    IDataProviderStream& operator>>(CoreString& value) override { return Note("string", value); }
    IDataProviderStream& operator>>(IObject** value) override { return Note("record", value); }
    IDataProviderStream& operator>>(GUID& value) override { return Note("guid", value); }

    // Nobody writes while reading; what does is not followed.
    IDataProviderStream& operator<<(signed char) override { return Lost(); }
    IDataProviderStream& operator<<(unsigned char) override { return Lost(); }
    IDataProviderStream& operator<<(CoreString const&) override { return Lost(); }
    IDataProviderStream& operator<<(short) override { return Lost(); }
    IDataProviderStream& operator<<(unsigned short) override { return Lost(); }
    IDataProviderStream& operator<<(int) override { return Lost(); }
    IDataProviderStream& operator<<(unsigned int) override { return Lost(); }
    IDataProviderStream& operator<<(long long) override { return Lost(); }
    IDataProviderStream& operator<<(unsigned long long) override { return Lost(); }
    IDataProviderStream& operator<<(float) override { return Lost(); }
    IDataProviderStream& operator<<(double) override { return Lost(); }
    IDataProviderStream& operator<<(bool) override { return Lost(); }
    IDataProviderStream& operator<<(IObject const&) override { return Lost(); }
    IDataProviderStream& operator<<(GUID const&) override { return Lost(); }
    OperationId Write(void const*, int) override
    {
        mFollowed = false;
        return kIllegalArgument;
    }
    OperationId Read(void* data, int& count) override
    {
        // What goes past the stream is found as a gap; so is this.
        return mStream.Read(data, count);
    }

    /// Everything up to `end` of the body, from its start. Nothing when it could not be followed.
    std::optional<ReadBody> Parts(int64 offset)
    {
        int64 const end = mProvider.GetPosition();
        Gap(end);
        if (!mFollowed)
            return std::nullopt;
        for (Part& part : mParts)
            part.offset += offset;
        return ReadBody{std::move(mParts), end};
    }

private:
    /// What was read past the typed operators, straight from the provider.
    void Gap(int64 to)
    {
        if (to < mEnd)
            mFollowed = false;
        if (to > mEnd)
            mParts.push_back({"bytes", mEnd, to - mEnd});
    }

    template <class T>
    IDataProviderStream& Note(char const* type, T& value)
    {
        int64 const start = mProvider.GetPosition();
        Gap(start);
        mStream >> value;
        mEnd = mProvider.GetPosition();
        if (mEnd > start)
            mParts.push_back({IsWhole(type, start) ? type : "bytes", start, mEnd - start});
        return *this;
    }

    /// Whether the bytes from `start` to the position are just what the type is written as.
    bool IsWhole(std::string_view type, int64 start) const
    {
        auto const length = mEnd - start;
        unsigned char const* const from = mBody.data() + start;
        if (type == "record")
            return length >= KORVA::IO::kRecordHeadSize;
        if (type == "bool")
            return length == 1 && *from <= 1;
        if (type == "string")
            return length >= 4 && length % 2 == 0 && Load<int32>(from, mOrder) == length - 4;
        return length == (type.ends_with("8")                       ? 1
                          : type.ends_with("16")                    ? 2
                          : type.ends_with("32") || type == "float" ? 4
                          : type == "guid"                          ? 16
                                                                    : 8);
    }

    IDataProviderStream& Lost()
    {
        mFollowed = false;
        return *this;
    }

    IDataProvider& mProvider;
    IDataProviderStream& mStream;
    ByteView mBody;
    Order mOrder;
    std::vector<Part> mParts;
    int64 mEnd = 0;
    bool mFollowed = true;
};

IO::IPersistentData* PersistenceOf(IObject const& object)
{
    IObject* found = nullptr;
    if (object.QueryInterface(IO::IPERSISTENT_DATA, &found) != kNoError)
        return nullptr;
    return dynamic_cast<IO::IPersistentData*>(found);
}
} // namespace

bool PlugInClasses::Makes(GUID const& classId) const
{
    return static_cast<bool>(COREREGISTRY::CreateObject<IObject>(classId));
}

std::optional<ReadBody> PlugInClasses::Read(GUID const& classId, ByteView body, int64 offset,
                                            Order order) const
{
    auto const object = COREREGISTRY::CreateObject<IObject>(classId);
    IO::IPersistentData* const persistence = object ? PersistenceOf(*object) : nullptr;
    if (!persistence || body.empty() ||
        body.size() > static_cast<std::size_t>(std::numeric_limits<int32>::max()))
        return std::nullopt;
    auto const provider = mSession.Create<IDataProvider>(IO::IID_IDATAPROVIDER);
    if (provider->InitReadOnlyMem(body.data(), static_cast<int32>(body.size())) != kNoError)
        return std::nullopt;
    provider->SetEndian(order);
    auto const stream = mSession.Create<IDataProviderStream>(IO::IID_DATAPROVIDERSTREAM);
    stream->Init(*provider);
    TInterfacePtr<NotingStream> noting;
    noting.Adopt(new NotingStream(*provider, *stream, body, order));
    try
    {
        persistence->Read(*noting);
    }
    catch (...)
    {
        // The reader of files takes it the same way: the body made no sense to its class.
        return std::nullopt;
    }
    return noting->Parts(offset);
}
} // namespace TOOL
