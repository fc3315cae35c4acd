// What a typed stream does not say of the records that it read.
#pragma once

#include <tessio/ObjectModel/Export.h>

namespace KORVA::IO
{
/// A record whose body throws is skipped, whatever was thrown, and looks like a damaged one. This interface
/// tells where it was not the record's fault.
///
/// The library's own stream (`IID_DATAPROVIDERSTREAM`) has it. It is no component and is in no aggregate
/// table; ask the run-time type:
///
///     auto* const status = dynamic_cast<IDataProviderStreamStatus*>(stream.Get());
///
/// Null for streams of others. The result is borrowed and lives as long as the stream. Used by one thread at
/// a time, the stream's.
class TESSIO_EXPORT IDataProviderStreamStatus
{
public:
    /// Whether the body of a record that was read from this stream, or of one inside it, found no memory
    /// (`std::bad_alloc`). Then it may be whole in the file all the same.
    virtual bool HasRunOutOfMemory() const = 0;

protected:
    ~IDataProviderStreamStatus() = default;
};
} // namespace KORVA::IO
