// A dictionary of another class than the library's.
#pragma once

#include <tessio/ObjectModel/TObject.h>
#include <tessio/TessIO/IDictionary.h>

#include <string>
#include <utility>
#include <vector>

namespace KORVA::TESTS
{
/// Every getter answers `answer`, and delivers the value set here for its type where `delivers` is true.
class ForeignDictionary final : public TObject<IDictionary>
{
public:
    ErrCode answer = 0;
    bool delivers = true;
    double number = 0;
    GUID identifier{};
    unsigned char const* bytes = nullptr;
    UniChar const* units = nullptr;
    int length = 0;
    uint32 size = 1;
    int cleared = 0;
    int puts = 0;
    /// The getters that were called, by the type they deliver, with the key.
    mutable std::vector<std::string> asked;

    ErrCode Clone(TInterfacePtr<IDictionary>&) const override { return 0; }
    void Clear() override { ++cleared; }
    void Remove(unsigned int) override {}
    void Put(unsigned int, signed char) override { ++puts; }
    void Put(unsigned int, unsigned char) override { ++puts; }
    void Put(unsigned int, short) override { ++puts; }
    void Put(unsigned int, unsigned short) override { ++puts; }
    void Put(unsigned int, int) override { ++puts; }
    void Put(unsigned int, unsigned int) override { ++puts; }
    void Put(unsigned int, long long) override { ++puts; }
    void Put(unsigned int, unsigned long long) override { ++puts; }
    void Put(unsigned int, float) override { ++puts; }
    void Put(unsigned int, double) override { ++puts; }
    void Put(unsigned int, GUID) override { ++puts; }
    void Put(unsigned int, unsigned char const*, int) override { ++puts; }
    void Put(unsigned int, UniChar const*, int) override { ++puts; }
    void Put(unsigned int, IObject*) override { ++puts; }

    ErrCode Get(unsigned int key, signed char& value) const override { return Number("S8", key, value); }
    ErrCode Get(unsigned int key, unsigned char& value) const override { return Number("U8", key, value); }
    ErrCode Get(unsigned int key, short& value) const override { return Number("S16", key, value); }
    ErrCode Get(unsigned int key, unsigned short& value) const override { return Number("U16", key, value); }
    ErrCode Get(unsigned int key, int& value) const override { return Number("S32", key, value); }
    ErrCode Get(unsigned int key, unsigned int& value) const override { return Number("U32", key, value); }
    ErrCode Get(unsigned int key, long long& value) const override { return Number("S64", key, value); }
    ErrCode Get(unsigned int key, unsigned long long& value) const override
    {
        return Number("U64", key, value);
    }
    ErrCode Get(unsigned int key, float& value) const override { return Number("FL32", key, value); }
    ErrCode Get(unsigned int key, double& value) const override { return Number("FL64", key, value); }

    ErrCode Get(unsigned int key, GUID& value) const override
    {
        Ask("GUID", key);
        if (delivers)
            value = identifier;
        return answer;
    }

    ErrCode Get(unsigned int key, unsigned char const** data, int& count) const override
    {
        Ask("CHAR", key);
        if (delivers)
        {
            *data = bytes;
            count = length;
        }
        return answer;
    }

    ErrCode Get(unsigned int key, UniChar const** data, int& count) const override
    {
        Ask("UNIC", key);
        if (delivers)
        {
            *data = units;
            count = length;
        }
        return answer;
    }

    IObject* Get(unsigned int) const override { return nullptr; }
    uint32 Size() const override { return size; }
    bool8 Equals(IDictionary const&) const override { return false; }
    bool8 SubSet(IDictionary const&) const override { return false; }
    void ForEach(IDictionaryFunctor&) const override {}

private:
    void Ask(char const* type, unsigned int key) const
    {
        asked.push_back(std::string(type) + " " + std::to_string(key));
    }

    template <class Value>
    ErrCode Number(char const* type, unsigned int key, Value& value) const
    {
        Ask(type, key);
        if (delivers)
            value = static_cast<Value>(number);
        return answer;
    }
};
} // namespace KORVA::TESTS
