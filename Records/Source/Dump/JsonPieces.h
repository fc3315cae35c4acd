// Pieces of a JSON dump back to bytes, for checking what is written. They throw what `ReadJson` reports.
#pragma once

#include <tessio/Records/Dump/JsonPrinter.h>
#include <tessio/Records/Format/Classes.h>
#include <tessio/Records/Format/RecordWriter.h>

namespace KORVA::RECORDS
{
/// The content of a known class's record that holds no others.
void PutJsonLeaf(RecordWriter& writer, Json const& json, Kind kind);
void PutJsonText(RecordWriter& writer, Json const& json);
/// A typed value in a plug-in's object; no record.
void PutJsonPart(RecordWriter& writer, Json const& json);
} // namespace KORVA::RECORDS
