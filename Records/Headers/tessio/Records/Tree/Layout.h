// Every byte of a record file and what it is.
#pragma once

#include <tessio/Records/Tree/Decoder.h>
#include <tessio/Records/Tree/Place.h>
#include <tessio/Records/Tree/Summary.h>

#include <string>
#include <vector>

namespace KORVA::RECORDS
{
/// The beginning of a record, or a stretch of bytes.
struct LayoutRow
{
    bool isRecord = false;
    /// Of a stretch: whether nothing explains these bytes.
    bool isUnexplained = false;
    int depth = 0;
    /// Of the record, or of that in which the bytes stand.
    Place place;
    /// Of a record: its extent, and in `value` its summary.
    Field field;
    /// Of a record: what was noticed about it.
    std::vector<Finding> findings;
};

char const* RoleName(LayoutRow const& row);

/// All rows in the order of the file. The stretches cover every byte once. `paint` gives summaries their
/// colours.
Result<std::vector<LayoutRow>> LayoutOf(ByteView content, DecodeOptions options, Paint const& paint = {});
} // namespace KORVA::RECORDS
