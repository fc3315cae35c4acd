// Where the data providers differ: a row of the conformance suite for each.
#pragma once

#include "Support/LogCapture.h"
#include <tessio/TessIO/IBufferedDataProvider.h>

#include <optional>
#include <vector>

namespace KORVA::TESTS
{
inline constexpr char kProviderContent[] = "0123456789";

/// A result and the messages that go with it.
struct Outcome
{
    int32 result = 0;
    std::vector<Logged> logged = {};
};

enum class ProviderKind
{
    kReadOnlyMemory,
    kMemoryHandle,
    kFile
};

/// What a provider over the ten bytes of `kProviderContent`, positioned at 4, answers.
struct ProviderRow
{
    char const* name;
    ProviderKind kind;
    bool writable;
    bool resizable;

    // Reading.
    OperationId cutShort;  ///< Some bytes, but fewer than asked for.
    OperationId noneLeft;  ///< Bytes asked for, none there.
    Outcome nothingToNull; ///< No bytes, to a null buffer.

    // Moving.
    int64 end;                 ///< Where `kFromEnd` with 0 leads.
    int64 threeFromEnd;        ///< Where `kFromEnd` with 3 leads.
    std::optional<int64> last; ///< The last position that is allowed; none where all are.
    Outcome beyondLast;        ///< One further.
    Outcome beforeStart;       ///< `kFromStart` with -1.
    Outcome backTooFar;        ///< `kFromCurrent` with -5.
    Outcome unknownOrigin;

    // Writing. What is not writable answers every write and every size as it does these.
    Outcome write;
    Outcome writeNothing;
    Outcome writeNothingFromNull;
    Outcome setSize;
    Outcome setSizeZero;
    int64 sizeAfterZero;
    Outcome setSizeNegative;

    // With a buffer of a few bytes in front.
    std::optional<IO::BufferMode> buffer = {};
    bool readable = true;
    bool endsEarly = false;       ///< `AtEnd` as soon as the last bytes have been fetched.
    bool holdsBack = false;       ///< `Size` and `AtEnd` do not count what has not been flushed.
    int64 afterUnknownOrigin = 4; ///< Where an unknown origin with 1 leads.
    bool keepsAutoFlush = false;  ///< As last set.
};

std::vector<ProviderRow> ProviderRows();
/// Those of them that can be read from.
std::vector<ProviderRow> ReadableProviderRows();
/// Those of them that can be written to.
std::vector<ProviderRow> WritableProviderRows();
} // namespace KORVA::TESTS
