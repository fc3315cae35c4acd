// What the tests' plug-in offers.
#pragma once

#include <tessio/CoreString/CoreString.h>
#include <tessio/ObjectModel/Export.h>
#include <tessio/ObjectModel/IObject.h>

namespace KORVA::TESTS
{
inline constexpr GUID IID_BOOKMARK{
    0x0B7E5C11, 0x5D0E, 0x4A63, {0xB4, 0x1C, 0x2F, 0x9D, 0x08, 0xE6, 0x73, 0xA5}};
/// Two classes that hold an object; the first one keeps the length of its record in front of it.
inline constexpr GUID IID_SHELF{0x5E1F0001, 0x5D0E, 0x4A63, {0xB4, 0x1C, 0x2F, 0x9D, 0x08, 0xE6, 0x73, 0xA5}};
inline constexpr GUID IID_BOX{0xB0C50002, 0x5D0E, 0x4A63, {0xB4, 0x1C, 0x2F, 0x9D, 0x08, 0xE6, 0x73, 0xA5}};

class TESSIO_EXPORT IBookmark : public IObject
{
public:
    virtual void Set(STRING::CoreString const& title, int32 page) = 0;
    virtual STRING::CoreString Title() const = 0;
    virtual int32 Page() const = 0;
};
} // namespace KORVA::TESTS
