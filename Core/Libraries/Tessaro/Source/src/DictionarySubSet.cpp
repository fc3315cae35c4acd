// Comparison of persistent dictionaries, by value and across number types.
#include "DictValue.h"
#include "PersistentDictionary.h"
#include <tessio/Logger/LogSite.h>
#include <tessio/TessIO/IPersistentData.h>
#include <tessio/TessIO/ResultCodes.h>

#include <cstring>

namespace KORVA::IO
{
namespace
{
constexpr char kSource[] = "Core/Libraries/Tessaro/Source/src/PersistentDictionary";
constexpr char kSubSet[] =
    "virtual bool8 KORVA::IO::PersistentDictionary::SubSet(const KORVA::IDictionary &) const";

constexpr LogSite kSitePersistentObject{kSource, kSubSet, 623};
constexpr LogSite kSiteArbitraryObject{kSource, kSubSet, 626};
} // namespace

/// Compares plain values with those under the same keys of another dictionary, fetched through its getters,
/// which convert numbers.
class ValueMatcher
{
public:
    explicit ValueMatcher(IDictionary const& other) : mOther(other) {}

    bool Matches(unsigned int key, DictValue const& value) const
    {
        switch (value.mTag)
        {
        case ValueTag::kInt8:
            return Integer<signed char>(key, value);
        case ValueTag::kUInt8:
            return Integer<unsigned char>(key, value);
        case ValueTag::kInt16:
            return Integer<short>(key, value);
        case ValueTag::kUInt16:
            return Integer<unsigned short>(key, value);
        case ValueTag::kInt32:
            return Integer<int>(key, value);
        case ValueTag::kUInt32:
            return Integer<unsigned int>(key, value);
        case ValueTag::kInt64:
            return Integer<long long>(key, value);
        case ValueTag::kUInt64:
            return Integer<unsigned long long>(key, value);
        case ValueTag::kFloat:
            return Floating<float>(key, value);
        case ValueTag::kDouble:
            return Floating<double>(key, value);
        case ValueTag::kGUID:
            return Identifier(key, value);
        case ValueTag::kBytes:
            return Buffer<unsigned char>(key, value);
        case ValueTag::kUnits:
            return Buffer<UniChar>(key, value);
        case ValueTag::kNone:
            return false;
        }
        return true;
    }

private:
    template <class Number>
    bool Integer(unsigned int key, DictValue const& value) const
    {
        Number fetched{};
        return mOther.Get(key, fetched) != kAbsent && static_cast<Number>(value.mInteger) == fetched;
    }

    template <class Number>
    bool Floating(unsigned int key, DictValue const& value) const
    {
        Number fetched{};
        // A NaN equals nothing, itself included.
        return mOther.Get(key, fetched) != kAbsent && static_cast<Number>(value.mFloating) == fetched;
    }

    bool Identifier(unsigned int key, DictValue const& value) const
    {
        GUID own{};
        GUID fetched{};
        std::memcpy(&own, value.mBuffer, static_cast<std::size_t>(value.mBufferLength));
        return IsFetched(mOther.Get(key, fetched)) && own == fetched;
    }

    template <class Element>
    bool Buffer(unsigned int key, DictValue const& value) const
    {
        Element const* fetched = nullptr;
        int count = 0;
        int const own = value.mBufferLength / static_cast<int>(sizeof(Element));
        if (!IsFetched(mOther.Get(key, &fetched, count)) || count != own)
            return false;
        return own == 0 || (fetched && std::memcmp(value.mBuffer, fetched,
                                                   static_cast<std::size_t>(own) * sizeof(Element)) == 0);
    }

    static constexpr ErrCode kAbsent = -1;

    /// Whether a getter of identifiers or buffers has something to compare. Numbers of another type are
    /// converted; these are not.
    static bool IsFetched(ErrCode code) { return code != kAbsent && code != kWrongType; }

    IDictionary const& mOther;
};

bool8 PersistentDictionary::Equals(IDictionary const& other) const
{
    return Size() == other.Size() && SubSet(other);
}

bool8 PersistentDictionary::SubSet(IDictionary const& other) const
{
    if (&other == this || mEntries.empty())
        return true;
    ValueMatcher const matcher(other);
    for (auto const& [key, value] : mEntries)
    {
        IObject* found = nullptr;
        if (value->QueryInterface(IPERSISTENT_DATA, &found) != kNoError)
        {
            Log(kSiteArbitraryObject, L"We don't support subsetting of arbitrary objects yet");
            continue;
        }
        auto const* const persistence = static_cast<IPersistentData const*>(found);
        auto const* const plain = persistence->GetUID() == IID_IDICTIONARY_VALUE
                                      ? dynamic_cast<DictValue const*>(persistence->GetObj())
                                      : nullptr;
        if (!plain)
        {
            Log(kSitePersistentObject, L"We don't support subsetting of persistent objects yet");
            continue;
        }
        if (!matcher.Matches(key, *plain))
            return false;
    }
    return true;
}
} // namespace KORVA::IO
