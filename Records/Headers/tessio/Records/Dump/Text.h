// Record files as text that people can read, change and turn back into the same bytes.
//
//     tessio-dump 1 little-endian
//     PersistentDictionary {
//       1: int32 7
//       2: text "Grüße" with { {11111111-2222-3333-4444-555555555555}: none }
//       3: record {00000000-0000-0000-0000-000000000001} { 0a 0b }
//     }
//
// Lengths and counts are not written: they follow from what is there. Where a file says something else, or
// where its bytes make no sense, they stand as they are.
#pragma once

#include <tessio/Records/Dump/JsonPrinter.h>
#include <tessio/Records/Format/Result.h>
#include <tessio/Records/Tree/Reader.h>

#include <string>
#include <string_view>

namespace KORVA::RECORDS
{
/// Every byte of the file in words, piece by piece.
Result<bool> WriteText(Reader& reader, TextSink const& sink);

/// The bytes that a text stands for. Fails where it is no dump, with the place in the text as the offset.
Result<Bytes> ReadText(std::string_view text);

/// The number of the line, from 1, in which that offset of a text stands.
int64 LineAt(std::string_view text, int64 offset);
} // namespace KORVA::RECORDS
