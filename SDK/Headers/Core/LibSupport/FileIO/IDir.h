// The file-system library's directory object.
#pragma once

#include <tessio/CoreString/CoreString.h>
#include <tessio/FileIO/IFile.h>
#include <tessio/ObjectModel/Export.h>
#include <tessio/ObjectModel/IObject.h>
#include <tessio/ObjectModel/TInterfacePtr.h>

namespace KORVA::FILE_SYS
{
/// A directory named by its path, whether it exists or not. Never changes; may be asked from any thread.
class TESSIO_EXPORT IDir : public IObject
{
public:
    /// Sets `path` to the absolute path, `/` between components and none at the end (but for the root).
    /// `flag` is 1; nothing else is defined. 0.
    virtual ErrCode GetPath(int flag, STRING::CoreString& path) const = 0;
};

/// Holds a directory.
using IDirPtr = TInterfacePtr<IDir>;
} // namespace KORVA::FILE_SYS
