// Between URIs and the system's own references to files.
#pragma once

#include "Platform/FileReference.h"
#include <tessio/TessIO/IURI.h>

namespace KORVA::IO
{
using PLATFORM::CFURLRef;
using PLATFORM::FSRef;

// All of these go through the file-system path: local files only. Every failure is logged. A URI made here is
// initialised with the path as `IURI::Init` takes it: what follows a last `?` is no part of its path. A path
// with a null character ends there.

/// A URI of the file that `url`, borrowed, names, in `uri`, which adopts it. 0; 14 when the URL has no
/// file-system path. What `uri` held is released in any case, and it is null after a failure, also after one
/// of the component registry, which is answered with 0.
ErrCode CFURLToIURI(CFURLRef url, IURIPtr& uri);

/// The same for a file reference; 14, and `uri` unchanged, when it does not resolve.
ErrCode FSRefToIURI(FSRef const& ref, IURIPtr& uri);

/// A URL of the path of `uri`, borrowed, in `*url`; the caller owns it. What `*url` held is released, so it
/// must be null or a URL. 0; 13 null argument; 14 when the path makes no URL, and `*url` is null then.
ErrCode IURICreateCFURL(IURI const* uri, CFURLRef* url);

/// A reference to the file that `uri`, borrowed, names. 0; 13 null argument; 14 when nothing is there, or the
/// code of `IURICreateCFURL`; `*ref` is unchanged on failure. A name that is not found is tried again
/// decomposed (Unicode form D).
ErrCode IURIGetFSRef(IURI const* uri, FSRef* ref);
} // namespace KORVA::IO
