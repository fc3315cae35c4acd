// The typed stream, and the object records on it.
#pragma once

#include <tessio/ObjectModel/TObject.h>
#include <tessio/TessIO/IDataProviderStream.h>
#include <tessio/TessIO/IDataProviderStreamStatus.h>
#include <tessio/TessIO/IRecordObserver.h>

namespace KORVA::IO
{
class DataProviderStream : public TObject<IDataProviderStream>, public IDataProviderStreamStatus
{
public:
    DataProviderStream() = default;
    /// Shares the provider.
    explicit DataProviderStream(IDataProvider& provider);

    /// They keep in mind whether there is an observer, so that a record need not look for it.
    ///@{
    void Aggregate(IObject* object, GUID iid) override;
    void UnAggregate(GUID const& iid) override;
    void ClearAggregates() override;
    ///@}

    ErrCode Init(IDataProvider& provider) override;
    TInterfacePtr<IDataProvider> GetDataProvider() const override;

    DataProviderStream& operator>>(signed char& value) override;
    DataProviderStream& operator>>(unsigned char& value) override;
    DataProviderStream& operator>>(short& value) override;
    DataProviderStream& operator>>(unsigned short& value) override;
    DataProviderStream& operator>>(int& value) override;
    DataProviderStream& operator>>(unsigned int& value) override;
    DataProviderStream& operator>>(long long& value) override;
    DataProviderStream& operator>>(unsigned long long& value) override;
    DataProviderStream& operator>>(bool& value) override;
    DataProviderStream& operator>>(float& value) override;
    DataProviderStream& operator>>(double& value) override;
    DataProviderStream& operator>>(STRING::CoreString& value) override;
    DataProviderStream& operator>>(IObject** result) override;
    DataProviderStream& operator>>(GUID& value) override;

    DataProviderStream& operator<<(signed char value) override;
    DataProviderStream& operator<<(unsigned char value) override;
    DataProviderStream& operator<<(STRING::CoreString const& value) override;
    DataProviderStream& operator<<(short value) override;
    DataProviderStream& operator<<(unsigned short value) override;
    DataProviderStream& operator<<(int value) override;
    DataProviderStream& operator<<(unsigned int value) override;
    DataProviderStream& operator<<(long long value) override;
    DataProviderStream& operator<<(unsigned long long value) override;
    DataProviderStream& operator<<(float value) override;
    DataProviderStream& operator<<(double value) override;
    DataProviderStream& operator<<(bool value) override;
    DataProviderStream& operator<<(IObject const& object) override;
    DataProviderStream& operator<<(GUID const& value) override;

    OperationId Write(void const* data, int count) override;
    OperationId Read(void* data, int& count) override;

    bool HasRunOutOfMemory() const override { return mHasRunOutOfMemory; }

protected:
    ~DataProviderStream() override = default;

private:
    friend struct KORVA::LayoutProbe;

    template <class Number>
    DataProviderStream& WriteNumber(Number value);
    template <class Number>
    DataProviderStream& ReadNumber(Number& value);

    void FindObserver();

    TInterfacePtr<IDataProvider> mProvider;
    /// In the aggregate table, or null.
    IRecordObserver* mObserver = nullptr;
    bool mHasRunOutOfMemory = false;
};
} // namespace KORVA::IO
