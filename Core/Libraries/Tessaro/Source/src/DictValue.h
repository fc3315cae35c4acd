// The wrapper of a plain value in a persistent dictionary.
#pragma once

#include <tessio/ObjectModel/TObject.h>
#include <tessio/TessIO/ClassIds.h>
#include <tessio/TessIO/IDataProviderStream.h>

namespace KORVA::IO
{
/// The type of a value: four characters, the first one the most significant byte. The 8-bit tags end in "VL"
/// and the wider ones in "V" after the width; both are in files and stay.
enum class ValueTag : uint32
{
    kNone = 0x554E4E54,   // UNNT
    kInt8 = 0x5338564C,   // S8VL
    kUInt8 = 0x5538564C,  // U8VL
    kInt16 = 0x53313656,  // S16V
    kUInt16 = 0x55313656, // U16V
    kInt32 = 0x53333256,  // S32V
    kUInt32 = 0x55333256, // U32V
    kInt64 = 0x53363456,  // S64V
    kUInt64 = 0x55363456, // U64V
    kFloat = 0x464C3332,  // FL32
    kDouble = 0x464C3634, // FL64
    kGUID = 0x47554944,   // GUID
    kBytes = 0x43484152,  // CHAR
    kUnits = 0x554E4943   // UNIC
};

/// Immutable but for `Read`. A number is kept both as an integer and as a double, so that it can be fetched
/// as any number type; identifiers and buffers are kept as bytes.
class DictValue final : public TObject<IObject>
{
public:
    DictValue();
    explicit DictValue(signed char value);
    explicit DictValue(unsigned char value);
    explicit DictValue(short value);
    explicit DictValue(unsigned short value);
    explicit DictValue(int value);
    explicit DictValue(unsigned int value);
    explicit DictValue(long long value);
    explicit DictValue(unsigned long long value);
    explicit DictValue(float value);
    explicit DictValue(double value);
    explicit DictValue(GUID const& value);
    /// Copies `length` bytes.
    DictValue(unsigned char const* data, int length);
    /// Copies `count` UTF-16 units.
    DictValue(UniChar const* data, int count);

    /// Answers `IID_IDICTIONARY_VALUE` with itself.
    ErrCode QueryInterface(GUID const& iid, IObject** out) const override;

    static GUID const& GetClassId() { return IID_IDICTIONARY_VALUE; }
    IDataProviderStream& Read(IDataProviderStream& stream);
    IDataProviderStream& Write(IDataProviderStream& stream) const;

private:
    friend class PersistentDictionary;
    friend class ValueMatcher;
    friend struct KORVA::LayoutProbe;

    DictValue(ValueTag tag, uint64 integer, double floating);
    DictValue(ValueTag tag, void const* data, int length);
    ~DictValue() override;

    bool IsNumber() const;
    /// Replaces the buffer with `length` bytes read from the stream's provider, or with those that were
    /// there.
    void ReadBuffer(IDataProviderStream& stream, int length);

    ValueTag mTag;
    uint64 mInteger = 0;
    double mFloating = 0;
    /// From the C allocator; null for numbers. At least 16 bytes for an identifier.
    void* mBuffer = nullptr;
    /// As many bytes as were given, or came.
    int32 mBufferLength = 0;
};
} // namespace KORVA::IO
