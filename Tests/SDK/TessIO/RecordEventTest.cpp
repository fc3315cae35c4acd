// The fields of an event and the numbers of its enumerations: observers are built apart from the library.
#include <tessio/TessIO/IRecordObserver.h>

#include "Support/RowName.h"

#include <gtest/gtest.h>

#include <cstddef>

namespace KORVA::TESTS
{
namespace
{
using IO::RecordChoice;
using IO::RecordDirection;
using IO::RecordEvent;
using IO::RecordOutcome;
using IO::UnknownClass;

struct Row
{
    char const* name;
    std::size_t actual;
    std::size_t expected;
};

template <class Enumerator>
constexpr std::size_t Number(Enumerator enumerator)
{
    static_assert(sizeof(Enumerator) == 4);
    return static_cast<std::size_t>(enumerator);
}

Row const kRows[] = {
    {"Size", offsetof(RecordEvent, size), 0},
    {"Direction", offsetof(RecordEvent, direction), 8},
    {"Outcome", offsetof(RecordEvent, outcome), 12},
    {"Depth", offsetof(RecordEvent, depth), 16},
    {"MoveResult", offsetof(RecordEvent, moveResult), 20},
    {"ClassId", offsetof(RecordEvent, classId), 24},
    {"Place", offsetof(RecordEvent, place), 40},
    {"Length", offsetof(RecordEvent, length), 48},
    {"Position", offsetof(RecordEvent, position), 56},
    {"Object", offsetof(RecordEvent, object), 64},
    {"Whole", sizeof(RecordEvent), 72},
    {"Reading", Number(RecordDirection::kReading), 0},
    {"Writing", Number(RecordDirection::kWriting), 1},
    {"Open", Number(RecordOutcome::kOpen), 0},
    {"Done", Number(RecordOutcome::kDone), 1},
    {"LeftOut", Number(RecordOutcome::kLeftOut), 2},
    {"OfUnknownClass", Number(RecordOutcome::kUnknownClass), 3},
    {"Kept", Number(RecordOutcome::kKept), 4},
    {"NotPersistent", Number(RecordOutcome::kNotPersistent), 5},
    {"BodyThrew", Number(RecordOutcome::kBodyThrew), 6},
    {"AggregatesThrew", Number(RecordOutcome::kAggregatesThrew), 7},
    {"TooDeep", Number(RecordOutcome::kTooDeep), 8},
    {"ReadTooLittle", Number(RecordOutcome::kReadTooLittle), 9},
    {"ReadTooMuch", Number(RecordOutcome::kReadTooMuch), 10},
    {"BadLength", Number(RecordOutcome::kBadLength), 11},
    {"CutHead", Number(RecordOutcome::kCutHead), 12},
    {"ReadInVain", Number(RecordOutcome::kReadInVain), 13},
    {"Abandoned", Number(RecordOutcome::kAbandoned), 14},
    {"LeaveOut", Number(RecordChoice::kLeaveOut), 0},
    {"GoOn", Number(RecordChoice::kGoOn), 1},
    {"BodyAlone", Number(RecordChoice::kBodyAlone), 2},
    {"Skip", Number(UnknownClass::kSkip), 0},
    {"Read", Number(UnknownClass::kRead), 1},
    {"Keep", Number(UnknownClass::kKeep), 2},
};

class RecordEventField : public ::testing::TestWithParam<Row>
{
};

TEST_P(RecordEventField, IsFixed) { EXPECT_EQ(GetParam().actual, GetParam().expected); }

INSTANTIATE_TEST_SUITE_P(Of, RecordEventField, ::testing::ValuesIn(kRows), RowName());
} // namespace
} // namespace KORVA::TESTS
