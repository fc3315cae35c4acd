#include "PersistentDictionary.h"

#include "DictValue.h"
#include "ReadingEffort.h"
#include "Registration.h"
#include <tessio/Logger/LogSite.h>
#include <tessio/ObjectModel/ClassFactory.h>
#include <tessio/TessIO/PersistentData.h>
#include <tessio/TessIO/RecordFormat.h>
#include <tessio/TessIO/ResultCodes.h>

#include <cstring>

namespace KORVA::IO
{
namespace
{
constexpr char kSource[] = "Core/Libraries/Tessaro/Source/src/PersistentDictionary";
constexpr char kPutBytes[] =
    "virtual void KORVA::IO::PersistentDictionary::Put(uint32, const uchar *, int32)";
constexpr char kPutUnits[] =
    "virtual void KORVA::IO::PersistentDictionary::Put(uint32, const UniChar *, int32)";

constexpr LogSite kSiteSameValue{
    kSource, "virtual void KORVA::IO::PersistentDictionary::Put(uint32, KORVA::IObject *)", 354};
constexpr LogSite kSiteNullBytes{kSource, kPutBytes, 376};
constexpr LogSite kSiteBytesSize{kSource, kPutBytes, 380};
constexpr LogSite kSiteNullUnits{kSource, kPutUnits, 388};
constexpr LogSite kSiteUnitsSize{kSource, kPutUnits, 392};

constexpr ErrCode kNoPlainValue = -1;

/// Whether a buffer can be put; logs why not.
bool IsBuffer(void const* data, int length, LogSite const& nullSite, LogSite const& sizeSite)
{
    if (!data)
    {
        Log(nullSite, L"You cannot Put a NULL buffer into a dictionary");
        return false;
    }
    if (length <= 0)
    {
        Log(sizeSite, L"You cannot put a buffer of size ", length, L" into a dictionary.");
        return false;
    }
    return true;
}

class PersisentDictionaryFactory final
    : public TClassFactory<Makes<&New<PersistentDictionary>, IID_PERSISTENT_DICTIONARY, IID_DICTIONARY>,
                           Makes<&New<DictValue>, IID_IDICTIONARY_VALUE>>
{
};
} // namespace

int RegisterPersisentDictionaryFactory(COREREGISTRY::ICoreRegistry* registry)
{
    return COREREGISTRY::RegisterNewFactory<PersisentDictionaryFactory>(registry);
}

PersistentDictionary::PersistentDictionary() { SetupPersistence(*this); }

PersistentDictionary::~PersistentDictionary() { PersistentDictionary::Clear(); }

ErrCode PersistentDictionary::QueryInterface(GUID const& iid, IObject** out) const
{
    if (!(iid == IID_DICTIONARY))
        return TObject::QueryInterface(iid, out);
    if (out)
        *out = const_cast<PersistentDictionary*>(this);
    return kNoError;
}

ErrCode PersistentDictionary::Clone(TInterfacePtr<IDictionary>& target) const
{
    if (target)
    {
        target->Clear();
        if (!dynamic_cast<PersistentDictionary*>(target.Get()))
            return kNoError;
    }
    else
        target.Adopt(new PersistentDictionary);
    for (auto const& [key, value] : mEntries)
        target->Put(key, value);
    return kNoError;
}

void PersistentDictionary::Clear()
{
    for (auto const& [key, value] : mEntries)
        value->Release();
    mEntries.clear();
}

void PersistentDictionary::Remove(unsigned int key)
{
    auto const found = mEntries.find(key);
    if (found == mEntries.end())
        return;
    found->second->Release();
    mEntries.erase(found);
}

void PersistentDictionary::Put(unsigned int key, IObject* value)
{
    auto const found = mEntries.find(key);
    if (found == mEntries.end())
    {
        if (!value)
            return;
        mEntries.emplace(key, value);
        value->AddRef();
        return;
    }
    if (found->second == value)
    {
        Log(kSiteSameValue, L"Putting the same value in the dictionary.");
        return;
    }
    found->second->Release();
    if (!value)
    {
        mEntries.erase(found);
        return;
    }
    found->second = value;
    value->AddRef();
}

void PersistentDictionary::Wrap(unsigned int key, DictValue* value)
{
    // Putting may throw, where memory has run out.
    TInterfacePtr<IObject> held;
    held.Adopt(value);
    IDictionary& self = *this;
    self.Put(key, held.Get());
}

void PersistentDictionary::Put(unsigned int key, signed char value) { Wrap(key, new DictValue(value)); }

void PersistentDictionary::Put(unsigned int key, unsigned char value) { Wrap(key, new DictValue(value)); }

void PersistentDictionary::Put(unsigned int key, short value) { Wrap(key, new DictValue(value)); }

void PersistentDictionary::Put(unsigned int key, unsigned short value) { Wrap(key, new DictValue(value)); }

void PersistentDictionary::Put(unsigned int key, int value) { Wrap(key, new DictValue(value)); }

void PersistentDictionary::Put(unsigned int key, unsigned int value) { Wrap(key, new DictValue(value)); }

void PersistentDictionary::Put(unsigned int key, long long value) { Wrap(key, new DictValue(value)); }

void PersistentDictionary::Put(unsigned int key, unsigned long long value)
{
    Wrap(key, new DictValue(value));
}

void PersistentDictionary::Put(unsigned int key, float value) { Wrap(key, new DictValue(value)); }

void PersistentDictionary::Put(unsigned int key, double value) { Wrap(key, new DictValue(value)); }

void PersistentDictionary::Put(unsigned int key, GUID value) { Wrap(key, new DictValue(value)); }

void PersistentDictionary::Put(unsigned int key, unsigned char const* data, int length)
{
    if (IsBuffer(data, length, kSiteNullBytes, kSiteBytesSize))
        Wrap(key, new DictValue(data, length));
}

void PersistentDictionary::Put(unsigned int key, UniChar const* data, int count)
{
    if (IsBuffer(data, count, kSiteNullUnits, kSiteUnitsSize))
        Wrap(key, new DictValue(data, count));
}

DictValue const* PersistentDictionary::Find(unsigned int key) const
{
    auto const found = mEntries.find(key);
    if (found == mEntries.end())
        return nullptr;
    IObject* value = nullptr;
    if (found->second->QueryInterface(IID_IDICTIONARY_VALUE, &value) != kNoError)
        return nullptr;
    // A file can aggregate an object of any class under any id.
    return dynamic_cast<DictValue const*>(value);
}

template <class Number>
ErrCode PersistentDictionary::GetInteger(unsigned int key, Number& value) const
{
    DictValue const* const found = Find(key);
    if (!found)
        return kNoPlainValue;
    value = static_cast<Number>(found->mInteger);
    return kNoError;
}

template <class Number>
ErrCode PersistentDictionary::GetFloating(unsigned int key, Number& value) const
{
    DictValue const* const found = Find(key);
    if (!found)
        return kNoPlainValue;
    value = static_cast<Number>(found->mFloating);
    return kNoError;
}

ErrCode PersistentDictionary::Get(unsigned int key, signed char& value) const
{
    return GetInteger(key, value);
}

ErrCode PersistentDictionary::Get(unsigned int key, unsigned char& value) const
{
    return GetInteger(key, value);
}

ErrCode PersistentDictionary::Get(unsigned int key, short& value) const { return GetInteger(key, value); }

ErrCode PersistentDictionary::Get(unsigned int key, unsigned short& value) const
{
    return GetInteger(key, value);
}

ErrCode PersistentDictionary::Get(unsigned int key, int& value) const { return GetInteger(key, value); }

ErrCode PersistentDictionary::Get(unsigned int key, unsigned int& value) const
{
    return GetInteger(key, value);
}

ErrCode PersistentDictionary::Get(unsigned int key, long long& value) const { return GetInteger(key, value); }

ErrCode PersistentDictionary::Get(unsigned int key, unsigned long long& value) const
{
    return GetInteger(key, value);
}

ErrCode PersistentDictionary::Get(unsigned int key, float& value) const { return GetFloating(key, value); }

ErrCode PersistentDictionary::Get(unsigned int key, double& value) const { return GetFloating(key, value); }

ErrCode PersistentDictionary::Get(unsigned int key, GUID& value) const
{
    DictValue const* const found = Find(key);
    if (!found)
        return kNoPlainValue;
    if (found->mTag != ValueTag::kGUID)
        return kWrongType;
    // A value read from a cut file has fewer bytes; those that are missing are zero.
    GUID result{};
    std::memcpy(&result, found->mBuffer, static_cast<std::size_t>(found->mBufferLength));
    value = result;
    return kNoError;
}

ErrCode PersistentDictionary::Get(unsigned int key, unsigned char const** data, int& length) const
{
    DictValue const* const found = Find(key);
    if (!found)
        return kNoPlainValue;
    length = found->mBufferLength;
    if (found->mTag != ValueTag::kBytes)
        return kWrongType;
    *data = static_cast<unsigned char const*>(found->mBuffer);
    return kNoError;
}

ErrCode PersistentDictionary::Get(unsigned int key, UniChar const** data, int& count) const
{
    DictValue const* const found = Find(key);
    if (!found)
        return kNoPlainValue;
    count = found->mBufferLength / static_cast<int>(sizeof(UniChar));
    if (found->mTag != ValueTag::kUnits)
        return kWrongType;
    *data = static_cast<UniChar const*>(found->mBuffer);
    return kNoError;
}

IObject* PersistentDictionary::Get(unsigned int key) const
{
    auto const found = mEntries.find(key);
    return found == mEntries.end() ? nullptr : found->second;
}

uint32 PersistentDictionary::Size() const { return static_cast<uint32>(mEntries.size()); }

void PersistentDictionary::ForEach(IDictionaryFunctor& functor) const
{
    for (auto const& [key, value] : mEntries)
        if (functor.OnEntry(key, value))
            return;
}

IDataProviderStream& PersistentDictionary::Write(IDataProviderStream& stream) const
{
    TInterfacePtr<IDataProvider> const provider = stream.GetDataProvider();
    if (!provider)
        return stream;
    int64 const countAt = provider->GetPosition();
    stream << uint32{0};
    uint32 count = 0;
    for (auto const& [key, value] : mEntries)
    {
        IObject* persistence = nullptr;
        if (value->QueryInterface(IPERSISTENT_DATA, &persistence) != kNoError)
            continue;
        stream << key << *static_cast<IPersistentData*>(persistence)->GetObj();
        ++count;
    }
    int64 const end = provider->GetPosition();
    static_cast<void>(provider->SetPosition(countAt, IDataProvider::kFromStart));
    stream << count;
    static_cast<void>(provider->SetPosition(end, IDataProvider::kFromStart));
    return stream;
}

IDataProviderStream& PersistentDictionary::Read(IDataProviderStream& stream)
{
    Clear();
    uint32 count = 0;
    stream >> count;
    TInterfacePtr<IDataProvider> const provider = stream.GetDataProvider();
    for (uint32 i = 0; i < count && provider; ++i)
    {
        int64 const before = provider->GetPosition();
        ReadingEffort::Reach(*provider, before);
        unsigned int key = 0;
        TInterfacePtr<IObject> value;
        stream >> key;
        ReadingEffort::CountBytes(*provider, kEntryKeySize);
        stream >> value.Out();
        if (value)
        {
            IDictionary& self = *this;
            self.Put(key, value.Get());
        }
        // Nothing was there to read, so nothing more will come, whatever a damaged count says.
        if (provider->GetPosition() == before || ReadingEffort::EndsHere(*provider))
            break;
    }
    return stream;
}
} // namespace KORVA::IO
