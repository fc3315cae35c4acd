// Records as JSON.
#pragma once

#include <tessio/Records/Dump/JsonPrinter.h>
#include <tessio/Records/Format/Words.h>
#include <tessio/Records/Tree/Reader.h>

#include <string>

namespace KORVA::RECORDS
{
/// What the tree shows of a record and everything in it. `label` replaces the record's own.
Json ToJson(Node const& node, std::string const& path, std::string const& label);
Json ToJson(Node const& node, std::string const& path);

/// The same of a record in a file, piece by piece, as the next value. The node need not hold what it holds in
/// the file.
Result<bool> WriteNode(JsonPrinter& json, Reader& reader, Node node, std::string path);

/// All records of a file as values of a list. Gives the place where the last one ends.
Result<int64> WriteNodes(JsonPrinter& json, Reader& reader);

/// {"severity": "error", "code": "length-too-large", "offset": 0, "path": "/0", "words": "..."}
Json ToJson(Finding const& finding, std::string const& path);
} // namespace KORVA::RECORDS
