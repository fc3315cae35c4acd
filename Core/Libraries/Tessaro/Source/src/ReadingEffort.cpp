#include "ReadingEffort.h"

#include <tessio/Logger/LogSite.h>
#include <tessio/TessIO/IDataProvider.h>
#include <tessio/TessIO/RecordFormat.h>

#include <algorithm>
#include <stdexcept>

namespace KORVA::IO
{
namespace
{
constexpr LogSite kSiteNoMore{
    "Core/Libraries/Tessaro/Source/src/DataProviderStream",
    "virtual KORVA::IO::DataProviderStream &KORVA::IO::DataProviderStream::operator>>(KORVA::IObject **)", 0};

/// What any file may cost beyond its own bytes, however small it is.
constexpr int64 kFreeBytes = int64{1} << 20;
/// Messages about records behind the ends of others, for one allowance.
constexpr int kMostMessages = 900;

[[noreturn]] void Refuse() { throw std::length_error("too much is read from behind the ends of records"); }
} // namespace

thread_local ReadingEffort::Account ReadingEffort::sAccount;

void ReadingEffort::Account::Pass(int64 position)
{
    readBehind += std::max<int64>(0, position - std::max(end, at));
    // Backwards too: where a record claims to end behind the data, the provider stays in front.
    at = position;
}

bool ReadingEffort::Account::IsUsedUp()
{
    if (readBehind <= kFreeBytes)
        return false;
    if (allowance < 0)
        allowance = kFreeBytes + std::max<int64>(0, provider->Size());
    return readBehind > allowance;
}

ReadingEffort::Account* ReadingEffort::AccountOf(IDataProvider const& provider)
{
    return sAccount.isOpen && sAccount.provider == &provider ? &sAccount : nullptr;
}

void ReadingEffort::Reach(IDataProvider const& provider, int64 position)
{
    if (Account* const account = AccountOf(provider))
        account->Pass(position);
}

void ReadingEffort::CountBytes(IDataProvider const& provider, int64 count)
{
    if (Account* const account = AccountOf(provider))
        account->Pass(account->at + count);
}

void ReadingEffort::ExpectBytes(IDataProvider const& provider, int64 count)
{
    Account* const account = AccountOf(provider);
    if (!account || account->at + count <= account->end)
        return;
    // A body may have set the position back by itself.
    account->at = provider.GetPosition();
    if (account->at + count > account->end && account->IsUsedUp())
        Refuse();
}

bool ReadingEffort::EndsHere(IDataProvider const& provider)
{
    Account* const account = AccountOf(provider);
    return account && account->at > account->end && account->IsUsedUp();
}

ReadingEffort::Record::Record(IDataProvider const& provider)
    : mProvider(provider), mIsOutermost(AccountOf(provider) == nullptr)
{
    if (!mIsOutermost)
    {
        mEndAround = sAccount.end;
        mIsBehind = sAccount.at >= sAccount.end;
    }
}

ReadingEffort::Record::~Record()
{
    if (!mHasHeader)
        return;
    // Whatever the body did, the stream goes on at the record's end.
    sAccount.at = mEnd;
    sAccount.end = mEndAround;
    if (!mIsOutermost)
        return;
    sAccount.isOpen = false;
    if (mAround.isOpen)
        sAccount = mAround;
}

void ReadingEffort::Record::HasNoLength()
{
    if (!mIsOutermost)
        sAccount.Pass(sAccount.at + kRecordHeadSize);
}

void ReadingEffort::Record::HasHeader(int64 position, int64 end)
{
    mHasHeader = true;
    mEnd = end;
    if (mIsOutermost)
    {
        if (sAccount.isOpen)
            mAround = sAccount;
        bool const goesOn = !sAccount.isOpen && sAccount.provider == &mProvider && position > sAccount.start;
        if (!goesOn)
            sAccount = Account{&mProvider};
        sAccount.isOpen = true;
        sAccount.start = position;
        sAccount.at = position;
        sAccount.last = end;
    }
    else
    {
        mIsBehind = position - kRecordHeadSize >= mEndAround;
        sAccount.Pass(position);
    }
    sAccount.end = std::min(mEndAround, end);
}

void ReadingEffort::Record::BeginBody() const
{
    // Asked anew: making the object may have moved the provider.
    if (mIsOutermost)
        sAccount.start = mProvider.GetPosition();
    sAccount.Pass(mProvider.GetPosition());
    if (mIsBehind && sAccount.IsUsedUp())
        Refuse();
}

bool ReadingEffort::Record::IsWorthAMessage() const
{
    bool const endsBehind = mHasHeader && mEnd > mEndAround;
    return (!mIsBehind && !endsBehind) || IsWorthASecondMessage();
}

bool ReadingEffort::Record::LeadsToItsEnd() const
{
    return mIsOutermost || mEnd <= sAccount.last || sAccount.messages <= kMostMessages;
}

bool ReadingEffort::Record::IsWorthASecondMessage() const
{
    if (sAccount.messages > kMostMessages)
        return false;
    if (++sAccount.messages <= kMostMessages)
        return true;
    Log(kSiteNoMore,
        L"Too many records are read from where none can be, or claim to end there. Further messages "
        L"about such records are left out.");
    return false;
}
} // namespace KORVA::IO
