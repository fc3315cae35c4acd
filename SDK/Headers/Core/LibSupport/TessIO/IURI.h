// The name of a resource.
#pragma once

#include <tessio/CoreString/CoreString.h>
#include <tessio/ObjectModel/Export.h>
#include <tessio/ObjectModel/IObject.h>
#include <tessio/ObjectModel/TInterfacePtr.h>

namespace KORVA::IO
{
/// Class id `IID_IURI`. An object is filled by one thread and may then be read by several.
///
/// Nothing here reports an error: a text that makes no URL leaves the object without one, and every getter
/// then gives an empty text or 0. A getter also gives an empty text for a part whose percent escapes are not
/// well-formed UTF-8.
class TESSIO_EXPORT IURI : public IObject
{
public:
    /// Names a resource by anything a person would write: a URL, a POSIX path, a Windows drive or network
    /// path, a colon-separated path, a bare name. The text is normalised, composed (Unicode form C) and
    /// percent-escaped, `%` and `#` included, and then taken as a URL (RFC 1808 generation, with path
    /// parameters). An empty text changes nothing.
    virtual void Init(STRING::CoreString const& location) = 0;

    /// Takes `relative` against `base`. Unlike `Init` this takes the text exactly as it is: it must be
    /// escaped already. Changes nothing when `base` is not of class `URI`.
    virtual void InitRelative(IURI const& base, STRING::CoreString const& relative) = 0;

    /// As they stand in the URL, without what separates them.
    ///@{
    virtual STRING::CoreString GetScheme() const = 0;
    virtual STRING::CoreString GetHost() const = 0;
    ///@}
    /// 0 when there is none.
    virtual uint32 GetPortNumber() const = 0;
    /// Unescaped, without a trailing separator, path parameters included. The last `?` of a URL separates
    /// the query; what stands before it, further `?`s included, belongs to the path.
    virtual STRING::CoreString GetPath() const = 0;
    /// Unescaped. Begins with `?` only where the URL has more than one, the counterpart of `GetPath`.
    virtual STRING::CoreString GetQuery() const = 0;
    /// The whole resolved text, unescaped; empty for a class that has none.
    virtual STRING::CoreString GetAbsoluteString() const = 0;
    /// The last component of the path, with `/` for each `:`. A trailing separator of the path stays.
    virtual void GetName(STRING::CoreString& name) const = 0;
    /// Same class, same URL text and same base. Case and escapes matter. What decides is the class on the
    /// left, but for one case: where the right side is declared as a class that overrides this, and not as an
    /// `IURI`, `a == b` calls the operator of `b`, since the language also looks at the two the other way
    /// round. Write `a == static_cast<IURI const&>(b)` there.
    virtual bool operator==(IURI const& other) const = 0;
};

/// Holds a URI.
using IURIPtr = TInterfacePtr<IURI>;
} // namespace KORVA::IO
