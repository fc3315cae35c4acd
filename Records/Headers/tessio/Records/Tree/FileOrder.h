// Which byte order a file is in.
#pragma once

#include <tessio/Records/Format/Bytes.h>
#include <tessio/Records/Format/Result.h>

#include <optional>

namespace KORVA::RECORDS
{
/// The byte order in which `content` is a record file; nothing when it is none in either.
std::optional<Order> FindOrder(ByteView content);

/// The order of a file's first record or else of most records that can be made out in it. Fails with
/// `ErrorCode::kNoRecords` where there are none; the words follow the name of the file.
Result<Order> OrderOf(ByteView content);
} // namespace KORVA::RECORDS
