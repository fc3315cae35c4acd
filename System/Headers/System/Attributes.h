// What a file has beside its content, and how a new file takes it over without opening it to anybody else.
#pragma once

#include "System/ErrorNumber.h"

#include <string>
#include <vector>

namespace KORVA::SYSTEM
{
/// What could not be kept, each in words that fit behind "its ": "owner", "group", "access list",
/// "extended attribute user.name".
using NotKept = std::vector<std::string>;

/// Gives the new file `to` the permissions of `from`, its owner and group, its access list and its extended
/// attributes, as far as the user may. Where something can't be kept, nobody may do more with `to` than with
/// `from`:
///
/// - another group: what only one of the group, named groups and all others might do, none of them may;
/// - no access list: what not everybody on it might do, neither the group nor all others may.
///
/// Set-user and set-group bits, and what the system grants a program by an extended attribute, are never
/// taken over; neither are signatures of the content. An access list that `to` got from its directory goes.
///
/// `to` must be the caller's own, open for writing and for its user alone. `from` need only be a reference.
/// On failure `to` is still for its user alone.
ErrorNumber KeepAttributes(int from, int to, NotKept& notKept);

/// Gives a copy the permissions and the access list of its source, but no owner, no group and no extended
/// attributes: what the source's group may do, the copy's group may, as with any copy. Otherwise the same.
ErrorNumber CopyPermissions(int from, int to, NotKept& notKept);
} // namespace KORVA::SYSTEM
