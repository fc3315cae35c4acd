// Where a test meets its plug-ins: what they call from inside their factories.
#pragma once

#include <tessio/ObjectModel/Export.h>
#include <tessio/ObjectModel/IObject.h>

namespace KORVA::TESTS
{
/// Class ids of what a test registers for its plug-ins.
inline constexpr GUID IID_MEETING{0x7E57C1A6, 0, 0, {}};

class TESSIO_EXPORT IMeeting : public IObject
{
public:
    /// Called by a plug-in's factory before it answers.
    virtual void Meet() = 0;
};

/// Class ids of the plug-ins. By the last number their factories make an object at once, meet the test first,
/// or meet it and make nothing.
inline constexpr GUID ClassOf(std::uint16_t plugIn, std::uint16_t way)
{
    return {0x7E57C1A5, plugIn, way, {}};
}
inline constexpr std::uint16_t kAtOnce = 0;
inline constexpr std::uint16_t kAfterMeeting = 1;
inline constexpr std::uint16_t kMeetingOnly = 2;
} // namespace KORVA::TESTS
