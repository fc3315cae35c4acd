// The map from numbers to values and objects.
#pragma once

#include <tessio/ObjectModel/TObject.h>
#include <tessio/TessIO/ClassIds.h>
#include <tessio/TessIO/IDataProviderStream.h>
#include <tessio/TessIO/IDictionary.h>

#include <map>

namespace KORVA::IO
{
class DictValue;

class PersistentDictionary final : public TObject<IDictionary>
{
public:
    PersistentDictionary();

    /// Answers `IID_DICTIONARY` with itself.
    ErrCode QueryInterface(GUID const& iid, IObject** out) const override;

    ErrCode Clone(TInterfacePtr<IDictionary>& target) const override;
    void Clear() override;
    void Remove(unsigned int key) override;

    void Put(unsigned int key, signed char value) override;
    void Put(unsigned int key, unsigned char value) override;
    void Put(unsigned int key, short value) override;
    void Put(unsigned int key, unsigned short value) override;
    void Put(unsigned int key, int value) override;
    void Put(unsigned int key, unsigned int value) override;
    void Put(unsigned int key, long long value) override;
    void Put(unsigned int key, unsigned long long value) override;
    void Put(unsigned int key, float value) override;
    void Put(unsigned int key, double value) override;
    void Put(unsigned int key, GUID value) override;
    void Put(unsigned int key, unsigned char const* data, int length) override;
    void Put(unsigned int key, UniChar const* data, int count) override;
    void Put(unsigned int key, IObject* value) override;

    ErrCode Get(unsigned int key, signed char& value) const override;
    ErrCode Get(unsigned int key, unsigned char& value) const override;
    ErrCode Get(unsigned int key, short& value) const override;
    ErrCode Get(unsigned int key, unsigned short& value) const override;
    ErrCode Get(unsigned int key, int& value) const override;
    ErrCode Get(unsigned int key, unsigned int& value) const override;
    ErrCode Get(unsigned int key, long long& value) const override;
    ErrCode Get(unsigned int key, unsigned long long& value) const override;
    ErrCode Get(unsigned int key, float& value) const override;
    ErrCode Get(unsigned int key, double& value) const override;
    ErrCode Get(unsigned int key, GUID& value) const override;
    ErrCode Get(unsigned int key, unsigned char const** data, int& length) const override;
    ErrCode Get(unsigned int key, UniChar const** data, int& count) const override;
    IObject* Get(unsigned int key) const override;

    uint32 Size() const override;
    bool8 Equals(IDictionary const& other) const override;
    bool8 SubSet(IDictionary const& other) const override;
    void ForEach(IDictionaryFunctor& functor) const override;

    static GUID const& GetClassId() { return IID_DICTIONARY; }
    /// Replaces the content.
    IDataProviderStream& Read(IDataProviderStream& stream);
    IDataProviderStream& Write(IDataProviderStream& stream) const;

private:
    friend struct KORVA::LayoutProbe;

    ~PersistentDictionary() override;

    void Wrap(unsigned int key, DictValue* value);
    /// The plain value under the key, or null when there is none or another kind of object.
    DictValue const* Find(unsigned int key) const;
    template <class Number>
    ErrCode GetInteger(unsigned int key, Number& value) const;
    template <class Number>
    ErrCode GetFloating(unsigned int key, Number& value) const;

    std::map<unsigned int, IObject*> mEntries;
};
} // namespace KORVA::IO
