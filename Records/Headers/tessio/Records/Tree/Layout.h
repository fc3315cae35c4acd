// Every byte of a record file and what it is.
#pragma once

#include <tessio/Records/Tree/Place.h>
#include <tessio/Records/Tree/Reader.h>

#include <functional>

namespace KORVA::RECORDS
{
/// The beginning of a record, or a stretch of bytes.
struct LayoutRow
{
    /// The record, complete, but without what it holds; null for a stretch. Borrowed for the call.
    Node const* record = nullptr;
    /// Of a stretch: whether nothing explains these bytes.
    bool isUnexplained = false;
    int depth = 0;
    /// Of the record, or of that in which the bytes stand.
    Place place;
    /// Of a stretch; of a record its extent.
    Field field;
};

/// "class", "length", ..., "unexplained".
char const* RoleName(LayoutRow const& row);

/// Is given rows in the order of the file.
using RowSink = std::function<void(LayoutRow const&)>;

/// All rows of a file. The stretches cover every byte once.
Result<bool> Layout(Reader& reader, RowSink const& sink);

/// The rows of the record at the end of a path and of everything in it.
Result<bool> LayoutOf(Reader& reader, Path const& path, RowSink const& sink);
} // namespace KORVA::RECORDS
