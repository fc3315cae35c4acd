// How the classes of plug-ins read their bodies.
#pragma once

#include "Names.h"
#include "Session.h"
#include <tessio/Records/Tree/Reader.h>

namespace TOOL
{
/// Makes an object of a plug-in's class, lets it read a body from memory, and notes what it asks its stream
/// for: so its parts and their types are known, though not what they mean.
class PlugInClasses final : public ClassReader
{
public:
    explicit PlugInClasses(Session const& session) : mSession(session) {}

    std::optional<ReadBody> Read(GUID const& classId, ByteView body, KORVA::int64 offset,
                                 Order order) const override;
    bool Makes(GUID const& classId) const override;

private:
    Session const& mSession;
};
} // namespace TOOL
