// For the source of a plug-in that has its entry points: lets hosts unload it.
#pragma once

#include <tessio/ObjectModel/TObject.h>

/// How many objects live whose classes, derived from `TObject`, are compiled into this plug-in; its factories
/// are among them. `Host::UnloadPlugIn` asks: it refuses while there are more than there were when
/// `KorvaPlugInInit` came back, and takes the code out of memory when none are left after
/// `KorvaPlugInShutdown`. Without this function, code stays in memory for as long as the process lives. Safe
/// from any thread.
extern "C" [[gnu::visibility("default"), gnu::used]] inline KORVA::int32 KorvaPlugInObjects()
{
    return KORVA::sLiveObjects.load(std::memory_order_acquire);
}
