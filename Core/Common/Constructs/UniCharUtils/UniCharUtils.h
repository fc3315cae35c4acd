// Helpers for zero-terminated texts of UTF-16 units.
#pragma once

#include "Platform/MutableString.h"
#include <tessio/ObjectModel/Types.h>

#include <memory>
#include <string>

namespace KORVA
{
// Lengths, counts and limits are UTF-16 units. A null argument is logged and answered with null or 0, unless
// said otherwise; nothing else is checked: targets must have room, and must not overlap sources.

/// A new text with the bytes of `text` as they are, sign-extended: what is not ASCII becomes a unit from FF80
/// to FFFF and not the character it stands for. The caller owns the array (`delete[]`).
UniChar* UniStrCreate(char const* text);

int32 UniStrLen(UniChar const* text);

/// 0 when equal; else the difference, `a` minus `b`, of the first units that differ.
int32 UniStrCmp(UniChar const* a, UniChar const* b);
/// The same over at most `n` units. A limit below 1 is logged and answered with 0, unless both are one array.
int32 UniStrnCmp(UniChar const* a, UniChar const* b, int32 n);

/// Gives `dst`.
UniChar* UniStrCpy(UniChar* dst, UniChar const* src);
/// Copies at most `n` units, the terminator among them: where the source has `n` units or more, the copy is
/// not terminated. Does not look for null arguments. Gives `dst`.
UniChar* UniStrnCpy(UniChar* dst, UniChar const* src, int32 n);

/// Gives `dst`.
UniChar* UniStrCat(UniChar* dst, UniChar const* src);
/// Appends at most `n` units and a terminator: `dst` needs room for `n` + 1 more. A limit below 1 changes
/// nothing. Gives `dst`.
UniChar* UniStrnCat(UniChar* dst, UniChar const* src, int32 n);

// The low byte of every unit. Null is not looked for.

std::string GetStringFromUniStr(UniChar const* text);
/// What stands behind the last dot, in ASCII capitals; without a dot the whole text as it is.
std::string GetExtFromUniStr(UniChar const* text);
/// The text without the one character behind its last dot, in ASCII capitals: "photo.jpeg" gives "PHOTO.PEG".
/// Without a dot the whole text as it is. Not a way to a file's name.
std::string GetFileNameFromUniStr(UniChar const* text);

/// A growing text that hands out copies of itself as units and as Mac Roman bytes. One thread at a time.
class CFMutableStringWrapper
{
public:
    CFMutableStringWrapper() = default;
    /// Mac Roman.
    explicit CFMutableStringWrapper(char const* text);
    explicit CFMutableStringWrapper(UniChar const* text);
    CFMutableStringWrapper(CFMutableStringWrapper const&) = delete;
    CFMutableStringWrapper& operator=(CFMutableStringWrapper const&) = delete;

    /// Mac Roman.
    void Append(char const* text);
    void Append(UniChar const* text);

    /// The units, not terminated. Borrowed until the next call that follows an `Append`.
    UniChar const* uni_str();
    /// The text as Mac Roman, terminated, `?` for what that lacks. Borrowed likewise.
    char const* c_str();
    /// How many units `uni_str` gives.
    int32 length() const;

private:
    friend struct LayoutProbe;

    /// Makes both copies anew when the text has grown since.
    void Regenerate();

    std::unique_ptr<PLATFORM::MutableString> mString = std::make_unique<PLATFORM::MutableString>();
    std::unique_ptr<UniChar[]> mUniCopy;
    std::unique_ptr<char[]> mCCopy;
    bool8 mDirty = true;
};
} // namespace KORVA
