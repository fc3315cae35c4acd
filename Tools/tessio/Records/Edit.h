// Changes to one place of a record file that leave every other byte as it is.
#pragma once

#include "Records/Document.h"
#include "Records/Path.h"

#include <functional>
#include <string>

namespace TOOL
{
/// Whether the class of a record reads it, and would write these very bytes of what it read.
using ObjectProof = std::function<bool(ByteView record, Order order)>;

/// The file with `content` in the place that the path names: a record or, of a string dictionary, a text
/// entry (`StringEntry`). The last component may be new; what holds it must be there. Lengths and counts
/// around it are put right. Ends the command where that is damaged, or is of a class that nobody here knows.
/// A plug-in's object may keep lengths of what it holds, of which nobody else knows: where the edit changes
/// the length of its body, the command ends unless `proof` says that the class reads the result.
Bytes WithPlaced(Document const& document, std::string const& path, ByteView content,
                 ObjectProof const& proof = {});

/// The file without what the path names, under the same conditions.
Bytes WithoutPlace(Document const& document, std::string const& path, ObjectProof const& proof = {});

/// Key and text as a string dictionary holds them.
Bytes StringEntry(KORVA::STRING::CoreString const& key, KORVA::STRING::CoreString const& text, Order order);

/// A value's record: `text` read as `type`, as `PutValue` takes them.
Bytes ValueRecord(Session const& session, std::string const& type, std::string const& text, Order order);

/// The same records in the other order. Ends the command when there are any whose bytes nobody here can turn
/// round.
Bytes Turned(Document const& document, Order order);
} // namespace TOOL
