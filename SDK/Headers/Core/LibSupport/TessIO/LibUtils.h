// Inline helpers of the library.
#pragma once

#include <tessio/Logger/LogSite.h>
#include <tessio/ObjectModel/IClassFactory.h>
#include <tessio/TessIO/ClassIds.h>
#include <tessio/TessIO/IURI.h>
#include <tessio/TessIO/ResultCodes.h>

namespace KORVA::IO
{
/// Where `CreateURI` logs.
///@{
inline constexpr LogSite kSiteCreateURINoObject{
    "../../../../SDK/Headers/Core/LibSupport/TessIO/LibUtils",
    "ErrCode KORVA::IO::CreateURI(KORVA::IClassFactory *, IURIPtr &, const STRING::CoreString &)", 470};
inline constexpr LogSite kSiteCreateURINoFactory{
    "../../../../SDK/Headers/Core/LibSupport/TessIO/LibUtils",
    "ErrCode KORVA::IO::CreateURI(KORVA::IClassFactory *, IURIPtr &, const STRING::CoreString &)", 476};
///@}

/// Creates a URI through `factory` (the component registry, say) and initialises it with `location`.
/// 0 and the URI in `uri`, which adopts it (releasing what it held); 12 (logged) and `uri` unchanged when
/// `factory` is null or creates nothing.
inline ErrCode CreateURI(IClassFactory* factory, IURIPtr& uri, STRING::CoreString const& location)
{
    if (!factory)
    {
        Log(kSiteCreateURINoFactory, L"Attempted to use a library util without a factory pointer");
        return kNoObject;
    }
    IObject* object = nullptr;
    static_cast<void>(factory->CreateInstance(IID_IURI, &object));
    if (!object)
    {
        Log(kSiteCreateURINoObject, L"Factory could not create an IURI object.");
        return kNoObject;
    }
    uri.Adopt(static_cast<IURI*>(object));
    uri->Init(location);
    return kNoError;
}
} // namespace KORVA::IO
