// The map from strings to strings.
#pragma once

#include <tessio/ObjectModel/TObject.h>
#include <tessio/TessIO/ClassIds.h>
#include <tessio/TessIO/IDataProviderStream.h>
#include <tessio/TessIO/IStringDictionary.h>

#include <map>

namespace KORVA::IO
{
class StringDictionary final : public TObject<IStringDictionary>
{
public:
    StringDictionary();

    void Put(STRING::CoreString const& key, STRING::CoreString const& value) override;
    bool Get(STRING::CoreString const& key, STRING::CoreString& value) const override;
    bool Has(STRING::CoreString const& key) const override;
    void Remove(STRING::CoreString const& key) override;
    void Clear() override;
    uint32 Size() const override;
    void ForEach(IForEachFunctor& functor) const override;

    static GUID const& GetClassId() { return IID_STRING_DICTIONARY; }
    /// Merges into what is there.
    IDataProviderStream& Read(IDataProviderStream& stream);
    IDataProviderStream& Write(IDataProviderStream& stream) const;

private:
    friend struct KORVA::LayoutProbe;

    std::map<STRING::CoreString, STRING::CoreString> mEntries;
};
} // namespace KORVA::IO
