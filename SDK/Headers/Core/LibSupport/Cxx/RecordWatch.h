// Sees whether a record and all that is in it is written and read whole.
#pragma once

#include <tessio/Cxx/CheckedProvider.h>
#include <tessio/ObjectModel/TInterfacePtr.h>
#include <tessio/ObjectModel/TObject.h>
#include <tessio/TessIO/IRecordObserver.h>

namespace KORVA::CXX::DETAIL
{
/// Is told of one record and of those inside it, and passes on what it is told to the observer of a program.
class RecordWatch final : public TObject<IO::IRecordObserver>
{
public:
    /// Shares the provider, and the program's observer where there is one.
    RecordWatch(CheckedProvider& provider, IO::IRecordObserver* next)
    {
        mProvider.Share(&provider);
        mNext.Share(next);
    }

    /// Whether the record has ended, and nothing was wrong with it or in it. What is not persistent may be
    /// left out in writing: the log tells.
    bool IsWhole() const { return mHasEnded && !mHasLost; }
    /// How the outermost record ended; `kOpen` before.
    IO::RecordOutcome Outcome() const { return mOutcome; }

    IO::RecordChoice OnRecordBegin(IO::RecordEvent const& event) override
    {
        ++mOpen;
        IO::RecordChoice choice = IO::RecordChoice::kGoOn;
        try
        {
            if (mNext)
                choice = mNext->OnRecordBegin(event);
        }
        catch (...)
        {}
        // Nothing more is written once something is lost: objects that hold each other would go on for ever.
        bool const isInVain = event.direction == IO::RecordDirection::kWriting &&
                              (mHasLost || mProvider->WriteResult() != kNoError);
        return isInVain ? IO::RecordChoice::kLeaveOut : choice;
    }

    void OnRecordEnd(IO::RecordEvent const& event) override
    {
        mHasLost = mHasLost || !CameOut(event);
        if (--mOpen == 0)
        {
            mHasEnded = true;
            mOutcome = event.outcome;
        }
        if (mNext)
            mNext->OnRecordEnd(event);
    }

    IO::UnknownClass OnUnknownClass(IO::RecordEvent const& event, IO::IDataProviderStream& stream,
                                    IObject** object) override
    {
        return mNext ? mNext->OnUnknownClass(event, stream, object) : IO::UnknownClass::kSkip;
    }

private:
    static bool CameOut(IO::RecordEvent const& event)
    {
        if (event.moveResult != kNoError)
            return false;
        switch (event.outcome)
        {
        case IO::RecordOutcome::kDone:
        case IO::RecordOutcome::kKept:
            return true;
        case IO::RecordOutcome::kNotPersistent:
            return event.direction == IO::RecordDirection::kWriting;
        default:
            return false;
        }
    }

    TInterfacePtr<CheckedProvider> mProvider;
    TInterfacePtr<IO::IRecordObserver> mNext;
    int mOpen = 0;
    bool mHasEnded = false;
    bool mHasLost = false;
    IO::RecordOutcome mOutcome = IO::RecordOutcome::kOpen;
};
} // namespace KORVA::CXX::DETAIL
