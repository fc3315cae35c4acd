// The wrapper of a plain value in a persistent dictionary.
#pragma once

#include <tessio/ObjectModel/TObject.h>
#include <tessio/TessIO/ClassIds.h>
#include <tessio/TessIO/IDataProviderStream.h>
#include <tessio/TessIO/RecordFormat.h>

namespace KORVA::IO
{
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
