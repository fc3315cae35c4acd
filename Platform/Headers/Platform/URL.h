// The platform's URL object.
#pragma once

#include "Platform/Ref.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace KORVA::PLATFORM
{
class URL;
using URLRef = Ref<URL const>;

/// An immutable URL of the generation that has path parameters (RFC 1808), resolved against its base much as
/// RFC 3986 section 5.2 says. Safe to read from any thread.
///
/// Where it differs from RFC 3986: a scheme may begin with a digit, `+`, `-` or `.`; a scheme not followed by
/// `/` makes the whole text opaque; dot segments collapse only when a relative path is merged with a base
/// path, and surplus `..` stay; a resolved text always has `//` and the base's authority, even an empty one.
class URL final : public Counted
{
public:
    /// Takes `text` against `base`, if there is one and the text has no scheme of its own. Null when the text
    /// holds a character that may not stand in a URL; an escaped text always makes one.
    static URLRef FromString(std::u16string_view text, URLRef const& base = {});

    /// The `file` URL of a POSIX path. Null for an empty path or one that is not well-formed.
    static URLRef FromFilePath(std::u16string_view path, bool isDirectory);

    /// The `file` URL of a colon-separated path, which begins with the name of a volume. Volumes have no
    /// names in paths on this system, so this is null for any path.
    static URLRef FromColonPath(std::u16string_view path);

    // Parts are absent when the URL has none, or when a part that is decoded can't be.
    std::optional<std::u16string> Scheme() const;
    /// Decoded, without the brackets of an address.
    std::optional<std::u16string> Host() const;
    std::optional<std::int32_t> Port() const;
    /// Decoded, without a trailing separator.
    std::optional<std::u16string> Path() const;
    /// What follows the first `;` of the path, escaped.
    std::optional<std::u16string> ParameterString() const;
    /// Escaped.
    std::optional<std::u16string> Query() const;
    /// The whole resolved text, escaped.
    std::optional<std::u16string> AbsoluteString() const;

    /// The same text and equal bases: case, default ports, escapes and dots all matter. So does whether the
    /// URL names a directory, which `FromFilePath` is told and a text shows by its end.
    bool IsEqual(URL const& other) const;

    /// The parts of one text, before any resolution; escaped as they stand in it.
    struct Parts
    {
        std::optional<std::string> scheme;
        bool opaque = false;
        std::optional<std::string> authority;
        std::optional<std::string> path;
        std::optional<std::string> parameters;
        std::optional<std::string> query;
        std::optional<std::string> fragment;
    };

private:
    friend class Ref<URL const>;

    URL() = default;
    ~URL() = default;

    /// Becomes the URL of a text without a base.
    void Take(std::string const& text, Parts const& own);

    std::string mText;
    std::string mAbsolute;
    URLRef mBase;
    /// Own authority, or the base's where the text has none.
    std::optional<std::string> mAuthority;
    std::optional<std::string> mScheme;
    std::optional<std::string> mPath;
    std::optional<std::string> mParameters;
    std::optional<std::string> mQuery;
    bool mNamesDirectory = false;
};
} // namespace KORVA::PLATFORM
