#include "Outcome.h"

namespace TOOL
{
Exit ExitOf(ErrorCode code)
{
    switch (code)
    {
    case ErrorCode::kNotFound:
        return Exit::kNotFound;
    case ErrorCode::kImpossible:
        return Exit::kUsage;
    case ErrorCode::kNoRecords:
    case ErrorCode::kDamaged:
        return Exit::kNotARecordFile;
    case ErrorCode::kBeyondLimit:
        return Exit::kLimit;
    case ErrorCode::kReadFailed:
    case ErrorCode::kTooLarge:
    case ErrorCode::kBadDump:
    case ErrorCode::kCancelled:
        break;
    }
    return Exit::kInputOutput;
}
} // namespace TOOL
