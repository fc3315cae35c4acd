// Record files as JSON that holds every byte, and back.
//
// Texts are strings, or {"units": "D800 0041"} where halves of surrogate pairs stand alone. Whole numbers of
// 64 bits are strings, since many readers of JSON keep 53 bits. Bytes are strings of hexadecimal digits.
// Where a file says something else than what follows from the values, or makes no sense, a record is its
// bytes: "body".
#pragma once

#include <tessio/Records/Dump/JsonPrinter.h>
#include <tessio/Records/Format/Result.h>
#include <tessio/Records/Tree/Reader.h>

#include <string>
#include <string_view>

namespace KORVA::RECORDS
{
/// One document, in pieces.
Result<bool> WriteJson(JsonPrinter& json, Reader& reader);

/// The same as lines: the head, then a document for each record, then what is left over, if anything.
Result<bool> WriteJsonLines(Reader& reader, TextSink const& sink);

/// The bytes that a document, or lines of them, stand for. Fails where they are no dump.
Result<Bytes> ReadJson(std::string_view text);
} // namespace KORVA::RECORDS
