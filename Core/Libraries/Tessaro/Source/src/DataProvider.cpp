#include "DataProvider.h"

#include "DataProviderStream.h"
#include "ReadOnlyDataProvider.h"
#include "Registration.h"
#include <tessio/Logger/LogSite.h>
#include <tessio/TessIO/ClassIds.h>
#include <tessio/TessIO/ResultCodes.h>

namespace KORVA::IO
{
namespace
{
constexpr char kSource[] = "Core/Libraries/Tessaro/Source/src/DataProvider";
constexpr char kInitReadOnlyMem[] =
    "virtual ErrCode KORVA::IO::DataProvider::InitReadOnlyMem(const void *, int32)";

constexpr LogSite kSiteNullMemory{kSource, kInitReadOnlyMem, 149};
constexpr LogSite kSiteIllegalSize{kSource, kInitReadOnlyMem, 153};
constexpr LogSite kSiteInitFailed{
    kSource, "virtual HRESULT KORVA::IO::DataProvider::Init(KORVA::IO::IURI &, KORVA::IO::IReporter *)", 164};
constexpr LogSite kSiteWrite{kSource,
                             "virtual OperationId KORVA::IO::DataProvider::Write(const void *, size_t)", 180};
constexpr LogSite kSiteRead{kSource, "virtual OperationId KORVA::IO::DataProvider::Read(void *, int32 &)",
                            189};
constexpr LogSite kSiteSize{kSource, "virtual int64 KORVA::IO::DataProvider::Size() const", 201};
constexpr LogSite kSiteSetSize{kSource, "virtual ErrCode KORVA::IO::DataProvider::SetSize(int64)", 210};
constexpr LogSite kSiteSetPosition{
    kSource, "virtual ErrCode KORVA::IO::DataProvider::SetPosition(int64, IDataProvider::Offset)", 220};
constexpr LogSite kSiteGetPosition{kSource, "virtual int64 KORVA::IO::DataProvider::GetPosition() const",
                                   230};

/// Logs under `site` that there is no provider yet, and answers what the operation then answers.
ErrCode NotInitialized(LogSite const& site)
{
    Log(site, L"Attempting to use a non-initialized data provider");
    return kNotInitialized;
}

IObject* NewNativeDataProvider() { return new DataProvider(IDataProvider::kLittleEndian); }

class DataProviderFactory final
    : public TClassFactory<Makes<&NewNativeDataProvider, IID_IDATAPROVIDER>,
                           Makes<&New<DataProviderStream>, IID_DATAPROVIDERSTREAM>>
{
};
} // namespace

int RegisterDataProviderFactory(COREREGISTRY::ICoreRegistry* registry)
{
    return COREREGISTRY::RegisterNewFactory<DataProviderFactory>(registry);
}

DataProvider::DataProvider(Endian endian) : mEndian(endian == kNativeEndian ? kLittleEndian : endian) {}

DataProvider::~DataProvider() { delete mImpl; }

void DataProvider::InitHandleBased(int mode) { mImpl = CreateHandleDataProvider(mode); }

ErrCode DataProvider::InitReadOnlyMem(void const* data, int32 size)
{
    if (!data)
    {
        Log(kSiteNullMemory, L"Illegal NULL ptr");
        return kIllegalArgument;
    }
    if (size < 1)
    {
        Log(kSiteIllegalSize, L"Illegal size");
        return kIllegalArgument;
    }
    mImpl = new ReadOnlyDataProvider(data, size);
    return kNoError;
}

ErrCode DataProvider::InitURIBased(IURI& uri, int mode, IReporter* reporter)
{
    return CreateFileBasedDataProvider(uri, mode, this, mImpl, reporter);
}

HRESULT DataProvider::Init(IURI& uri, IReporter* reporter)
{
    IURIDataProvider& self = *this;
    if (self.InitURIBased(uri, kStreamRead, reporter) != kNoError)
    {
        Log(kSiteInitFailed, L"InitURIBased failed.");
        return kURIInitFailed;
    }
    return kNoError;
}

OperationId DataProvider::Write(void const* data, std::size_t count)
{
    return mImpl ? mImpl->Write(data, count) : NotInitialized(kSiteWrite);
}

OperationId DataProvider::Read(void* buffer, int32& count)
{
    return mImpl ? mImpl->Read(buffer, count) : NotInitialized(kSiteRead);
}

int64 DataProvider::Size() const
{
    int64 size = 0;
    if (mImpl)
        static_cast<void>(mImpl->GetSize(size));
    else
        NotInitialized(kSiteSize);
    return size;
}

ErrCode DataProvider::SetSize(int64 size)
{
    return mImpl ? mImpl->SetSize(size) : NotInitialized(kSiteSetSize);
}

ErrCode DataProvider::SetPosition(int64 offset, Offset origin)
{
    return mImpl ? mImpl->SetPosition(offset, origin) : NotInitialized(kSiteSetPosition);
}

int64 DataProvider::GetPosition() const
{
    if (mImpl)
        return mImpl->GetPosition();
    NotInitialized(kSiteGetPosition);
    return 0;
}

IDataProvider::Endian DataProvider::GetEndian() const { return mEndian; }

bool DataProvider::IsNative() const { return mEndian == kLittleEndian; }

void DataProvider::SetEndian(Endian endian) { mEndian = endian; }

bool DataProvider::AtEnd() { return GetPosition() >= Size(); }

ErrCode DataProvider::Flush() { return kNoError; }

bool DataProvider::GetAutoFlush() { return true; }

void DataProvider::SetAutoFlush(bool) {}

int64 DataProvider::GetLostBytes() const { return mImpl ? mImpl->GetLostBytes() : 0; }

int32 DataProvider::GetSystemError() const { return mImpl ? mImpl->GetSystemError() : 0; }

ErrCode DataProvider::WriteOut() { return mImpl ? mImpl->WriteOut() : kNotInitialized; }

ErrCode DataProvider::FlushToDevice() { return mImpl ? mImpl->FlushToDevice() : kNotInitialized; }
} // namespace KORVA::IO
