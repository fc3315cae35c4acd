// Records as JSON.
#pragma once

#include <tessio/Records/Dump/JsonPrinter.h>
#include <tessio/Records/Format/Words.h>
#include <tessio/Records/Tree/Node.h>

#include <string>

namespace KORVA::RECORDS
{
/// What the tree shows of a record and everything in it. `label` replaces the record's own.
Json ToJson(Node const& node, std::string const& path, std::string const& label);
Json ToJson(Node const& node, std::string const& path);

/// The same, piece by piece, as the next value: for trees that may be large.
void WriteNode(JsonPrinter& json, Node const& node, std::string path);

/// {"severity": "error", "code": "length-too-large", "offset": 0, "path": "/0", "words": "..."}
Json ToJson(Finding const& finding, std::string const& path);
} // namespace KORVA::RECORDS
