// How a host follows, and stops, long copies.
#pragma once

#include <tessio/ObjectModel/Export.h>
#include <tessio/ObjectModel/IObject.h>

namespace KORVA::FILE_SYS
{
/// Class id under which a host registers its own `ICopyProgress`. `IFile::CopyTo` asks the registry for one
/// at the start of each copy and goes on without when there is none.
inline constexpr GUID IID_COPY_PROGRESS{
    0x6B1E54D0, 0x29C7, 0x4E0B, {0x9A, 0x4F, 0x0D, 0x7C, 0x15, 0xE2, 0x83, 0x66}};

/// Hears of the copies of `IFile::CopyTo`.
class TESSIO_EXPORT ICopyProgress : public IObject
{
public:
    /// Called on the copying thread, after each piece and once at the end, with the bytes done and in all.
    /// False stops the copy: the target stays as it was.
    virtual bool OnCopied(uint64 done, uint64 total) = 0;
};
} // namespace KORVA::FILE_SYS
