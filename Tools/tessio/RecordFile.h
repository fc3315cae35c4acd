// A file whose first record is edited through the library.
#pragma once

#include "Names.h"
#include "Session.h"
#include <tessio/Records/Tree/Node.h>
#include <tessio/TessIO/IDataProviderStream.h>

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace TOOL
{
class DirectoryLock;

/// Loads the first record of a file as an object, and writes it back among the other records, which keep
/// their bytes. While it is open for editing, others can't open the file for writing, and other runs of the
/// tool wait.
class RecordFile
{
public:
    enum class Use
    {
        kRead,
        /// The file must be there.
        kEdit,
        /// A new object is made when the file is not there.
        kEditOrCreate
    };

    /// Ends the command when the first record is of another class, or, for editing, holds anything that would
    /// be lost.
    RecordFile(Session const& session, std::string location, GUID const& classId, Use use);

    /// The byte order that a new file gets.
    void SetOrder(KORVA::IO::IDataProvider::Endian order) { mOrder = order; }

    bool IsNew() const { return mIsNew; }
    KORVA::IObject& Object() const { return *mObject; }

    /// Replaces the file by one with the object as it is now.
    void Save() const;

private:
    void Load(GUID const& classId, Use use);

    /// Keeps other runs of the tool from editing files of the same directory meanwhile.

    Session const& mSession;
    std::string mLocation;
    std::shared_ptr<DirectoryLock> mDirectory;
    bool mIsNew = false;
    KORVA::IO::IDataProvider::Endian mOrder = KORVA::IO::IDataProvider::kLittleEndian;
    KORVA::TInterfacePtr<KORVA::IO::IDataProviderStream> mHeld;
    std::vector<unsigned char> mContent;
    KORVA::int64 mFirstEnd = 0;
    KORVA::TInterfacePtr<KORVA::IObject> mObject;
};

/// The record of an object, as the library writes it.
std::vector<unsigned char> Serialized(Session const& session, KORVA::IObject const& object,
                                      KORVA::IO::IDataProvider::Endian order);

/// A value's record: `text` read as `type`, as `PutValue` takes them.
std::vector<unsigned char> ValueRecord(Session const& session, std::string const& type,
                                       std::string const& text, KORVA::IO::IDataProvider::Endian order);

/// Whether the library makes an object of the record and writes these very bytes of it again.
bool IsWrittenAsRead(Session const& session, std::span<unsigned char const> record,
                     KORVA::IO::IDataProvider::Endian order);

/// The structure of an object's record.
Node Describe(Session const& session, KORVA::IObject const& object);

/// The class id under which an object persists; nothing when it doesn't.
std::optional<GUID> PersistentClass(KORVA::IObject const& object);
} // namespace TOOL
