// Record files as JSON that holds every byte, and back.
//
// Texts are strings, or {"units": "D800 0041"} where halves of surrogate pairs stand alone. Whole numbers of
// 64 bits are strings, since many readers of JSON keep 53 bits. Bytes are strings of hexadecimal digits.
// Where a file says something else than what follows from the values, or makes no sense, a record is its
// bytes: "body".
#pragma once

#include "JsonPrinter.h"
#include "Output.h"
#include "Records/Node.h"
#include "Records/RecordWriter.h"

#include <string>
#include <string_view>

namespace TOOL
{
/// One document, in pieces.
void WriteJson(JsonPrinter& json, RecordTree const& tree, ByteView content);

/// The same as lines: the head, then a document for each record, then what is left over, if anything.
std::string WriteJsonLines(RecordTree const& tree, ByteView content);

/// The bytes that a document, or lines of them, stand for. Ends the command with `source` and the reason
/// where they are not such.
Bytes ReadJson(std::string_view text, std::string const& source);

// Pieces of a document back to bytes, for checking what is written. They throw what `ReadJson` reports.

/// The content of a known class's record that holds no others.
void PutJsonLeaf(RecordWriter& writer, Json const& json, Kind kind);
void PutJsonText(RecordWriter& writer, Json const& json);
/// A typed value in a plug-in's object; no record.
void PutJsonPart(RecordWriter& writer, Json const& json);
} // namespace TOOL
