// Changes to one place of a record file that leave every other byte as it is.
#pragma once

#include <tessio/Records/Format/Result.h>
#include <tessio/Records/Tree/Reader.h>

#include <functional>
#include <string>

namespace KORVA::RECORDS
{
/// What is edited. All of it is borrowed.
struct Original
{
    ByteView content;
    /// What was read from the content.
    RecordTree const& tree;
    /// How messages call the file.
    std::string const& name;
};

/// Whether the class of a record reads it, and would write these very bytes of what it read.
using ObjectProof = std::function<bool(ByteView record, Order order)>;

/// The file with `content` in the place that the path names: a record or, of a string dictionary, a text
/// entry (`StringEntry`). The last component may be new; what holds it must be there. Lengths and counts
/// around it are put right. Fails where that is damaged, or is of a class that nobody here knows.
/// A plug-in's object may keep lengths of what it holds, of which nobody else knows: where the edit changes
/// the length of its body, it fails unless `proof` says that the class reads the result.
Result<Bytes> WithPlaced(Original const& original, Path const& path, ByteView content,
                         ObjectProof const& proof = {});

/// The file without what the path names, under the same conditions.
Result<Bytes> WithoutPlace(Original const& original, Path const& path, ObjectProof const& proof = {});

/// Key and text as a string dictionary holds them.
Bytes StringEntry(STRING::CoreString const& key, STRING::CoreString const& text, Order order);

/// The same records in another order, of which `name` is how messages call the file. Fails when there are any
/// whose bytes nobody here can turn round.
Result<Bytes> WithOrder(Reader& reader, std::string const& name, Order order);
} // namespace KORVA::RECORDS
