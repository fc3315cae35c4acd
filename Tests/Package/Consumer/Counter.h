// What the plug-in adds: a counter, known by its class id.
#pragma once

#include <tessio/ObjectModel/Export.h>
#include <tessio/ObjectModel/IObject.h>

namespace CONSUMER
{
inline constexpr GUID IID_COUNTER{
    0x5A0C4B1E, 0x93D2, 0x4E77, {0x8C, 0x11, 0x2F, 0x60, 0xB4, 0x0D, 0x9A, 0xE3}};

class TESSIO_EXPORT ICounter : public KORVA::IObject
{
public:
    /// The number of words of `text`, counted with the companions of the host.
    virtual int Words(char const* text) const = 0;
};
} // namespace CONSUMER
