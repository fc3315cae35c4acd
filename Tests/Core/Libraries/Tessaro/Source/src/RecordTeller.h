// An observer of the tests' own: it writes down every event, whole.
#pragma once

#include "Serialization.h"
#include <tessio/ObjectModel/GUIDText.h>
#include <tessio/TessIO/IRecordObserver.h>

#include <deque>
#include <string>
#include <vector>

namespace KORVA::TESTS
{
inline std::string OutcomeName(IO::RecordOutcome outcome)
{
    switch (outcome)
    {
    case IO::RecordOutcome::kOpen:
        return "open";
    case IO::RecordOutcome::kDone:
        return "done";
    case IO::RecordOutcome::kLeftOut:
        return "left out";
    case IO::RecordOutcome::kUnknownClass:
        return "unknown class";
    case IO::RecordOutcome::kKept:
        return "kept";
    case IO::RecordOutcome::kNotPersistent:
        return "not persistent";
    case IO::RecordOutcome::kBodyThrew:
        return "body threw";
    case IO::RecordOutcome::kAggregatesThrew:
        return "aggregates threw";
    case IO::RecordOutcome::kTooDeep:
        return "too deep";
    case IO::RecordOutcome::kReadTooLittle:
        return "too little";
    case IO::RecordOutcome::kReadTooMuch:
        return "too much";
    case IO::RecordOutcome::kBadLength:
        return "bad length";
    case IO::RecordOutcome::kCutHead:
        return "cut head";
    case IO::RecordOutcome::kReadInVain:
        return "in vain";
    case IO::RecordOutcome::kAbandoned:
        return "abandoned";
    }
    return "?";
}

inline std::string ClassName(GUID const& classId)
{
    if (classId == kScriptedId)
        return "Scripted";
    if (classId == IO::IID_DICTIONARY)
        return "Dictionary";
    if (classId == IO::IID_IDICTIONARY_VALUE)
        return "Value";
    if (classId == IO::IID_DATAPROVIDERSTREAM)
        return "Stream";
    return classId == GUID{} ? "None" : GUIDToText(classId);
}

/// "begin read Scripted depth 0 place 0 length 8 at 24 move 0 open" and " object" where there is one.
inline std::string Told(std::string const& what, IO::RecordEvent const& event)
{
    return what + (event.direction == IO::RecordDirection::kReading ? " read " : " write ") +
           ClassName(event.classId) + " depth " + std::to_string(event.depth) + " place " +
           std::to_string(event.place) + " length " + std::to_string(event.length) + " at " +
           std::to_string(event.position) + " move " + std::to_string(event.moveResult) + " " +
           OutcomeName(event.outcome) + (event.object ? " object" : "") +
           (event.size == 72 ? "" : " of size " + std::to_string(event.size));
}

/// Goes on with everything and skips unknown classes, unless the test says otherwise.
class RecordTeller final : public TObject<IO::IRecordObserver>
{
public:
    RecordTeller() { ++sAlive; }
    ~RecordTeller() override { --sAlive; }

    std::vector<std::string> told;
    /// Answers of `OnRecordBegin`, used up first.
    std::deque<IO::RecordChoice> choices;
    std::function<IO::UnknownClass(IO::RecordEvent const&, IDataProviderStream&, IObject**)> onUnknown;
    std::function<void(IO::RecordEvent const&)> onBegin;
    std::function<void(IO::RecordEvent const&)> onEnd;

    std::vector<std::string> Take() { return std::exchange(told, {}); }

    IO::RecordChoice OnRecordBegin(IO::RecordEvent const& event) override
    {
        told.push_back(Told("begin", event));
        if (onBegin)
            onBegin(event);
        if (choices.empty())
            return IO::RecordChoice::kGoOn;
        IO::RecordChoice const choice = choices.front();
        choices.pop_front();
        return choice;
    }

    void OnRecordEnd(IO::RecordEvent const& event) override
    {
        told.push_back(Told("end", event));
        if (onEnd)
            onEnd(event);
    }

    IO::UnknownClass OnUnknownClass(IO::RecordEvent const& event, IDataProviderStream& stream,
                                    IObject** object) override
    {
        told.push_back(Told("ask", event));
        return onUnknown ? onUnknown(event, stream, object) : IO::UnknownClass::kSkip;
    }

    inline static int sAlive = 0;
};

/// The library, a provider that writes down its calls, and an observer on the stream over it.
class RecordObserverTest : public SerializationTest
{
protected:
    ~RecordObserverTest() override
    {
        stream.Reset();
        teller.Reset();
        EXPECT_EQ(RecordTeller::sAlive, 0);
    }

    void Observe() { stream->Aggregate(teller.Get(), IO::IID_RECORD_OBSERVER); }

    TInterfacePtr<RecordingProvider> const provider = Make<RecordingProvider>();
    TInterfacePtr<IDataProviderStream> stream = MakeStream(*provider);
    TInterfacePtr<RecordTeller> teller = Make<RecordTeller>();
};
} // namespace KORVA::TESTS
