#include "StringDictionary.h"

#include "ReadingEffort.h"
#include "Registration.h"
#include <tessio/ObjectModel/ClassFactory.h>
#include <tessio/TessIO/PersistentData.h>

namespace KORVA::IO
{
namespace
{
using STRING::CoreString;

class StringDictionaryFactory final
    : public TClassFactory<Makes<&New<StringDictionary>, IID_STRING_DICTIONARY>>
{
};
} // namespace

int RegisterStringDictionaryFactory(COREREGISTRY::ICoreRegistry* registry)
{
    return COREREGISTRY::RegisterNewFactory<StringDictionaryFactory>(registry);
}

StringDictionary::StringDictionary() { SetupPersistence(*this); }

void StringDictionary::Put(CoreString const& key, CoreString const& value)
{
    mEntries.insert_or_assign(key, value);
}

bool StringDictionary::Get(CoreString const& key, CoreString& value) const
{
    auto const found = mEntries.find(key);
    if (found == mEntries.end())
        return false;
    value = found->second;
    return true;
}

bool StringDictionary::Has(CoreString const& key) const { return mEntries.find(key) != mEntries.end(); }

void StringDictionary::Remove(CoreString const& key) { mEntries.erase(key); }

void StringDictionary::Clear() { mEntries.clear(); }

uint32 StringDictionary::Size() const { return static_cast<uint32>(mEntries.size()); }

void StringDictionary::ForEach(IForEachFunctor& functor) const
{
    for (auto const& [key, value] : mEntries)
        functor.OnEntry(key, value);
}

IDataProviderStream& StringDictionary::Write(IDataProviderStream& stream) const
{
    stream << Size();
    for (auto const& [key, value] : mEntries)
        stream << key << value;
    return stream;
}

IDataProviderStream& StringDictionary::Read(IDataProviderStream& stream)
{
    uint32 count = 0;
    stream >> count;
    TInterfacePtr<IDataProvider> const provider = stream.GetDataProvider();
    for (uint32 i = 0; i < count && provider; ++i)
    {
        int64 const before = provider->GetPosition();
        ReadingEffort::Reach(*provider, before);
        CoreString key;
        CoreString value;
        stream >> key >> value;
        Put(key, value);
        // Nothing was there to read, so nothing more will come, whatever a damaged count says.
        if (provider->GetPosition() == before || ReadingEffort::EndsHere(*provider))
            break;
    }
    return stream;
}
} // namespace KORVA::IO
