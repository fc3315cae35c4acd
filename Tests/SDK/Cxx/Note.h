// A persistent class that does to a record whatever a test wants.
#pragma once

#include <tessio/CoreRegistry/ICoreRegistry.h>
#include <tessio/Cxx/Handle.h>
#include <tessio/ObjectModel/ClassFactory.h>
#include <tessio/ObjectModel/Export.h>
#include <tessio/TessIO/IDataProviderStream.h>
#include <tessio/TessIO/PersistentData.h>

#include <new>
#include <stdexcept>

namespace KORVA::TESTS
{
inline constexpr GUID IID_NOTE{0x5A1C3E77, 0x90B2, 0x4D1F, {0xA0, 0x3B, 0x6C, 0x11, 0xD4, 0x52, 0x88, 0x0E}};
/// A class that is not persistent.
inline constexpr GUID IID_MUTE{0x5A1C3E78, 0x90B2, 0x4D1F, {0xA0, 0x3B, 0x6C, 0x11, 0xD4, 0x52, 0x88, 0x0E}};

/// What goes wrong with a note.
enum class Fault : int
{
    kNone,
    kThrowsInWrite,
    kThrowsInRead,
    kReadsTooMuch,
    kReadsTooLittle,
    kFindsNoMemoryInRead
};

class TESSIO_EXPORT INote : public IObject
{
public:
    virtual void Set(int number, Fault fault) = 0;
    virtual int Number() const = 0;
};

class Note final : public TObject<INote>
{
public:
    Note() { IO::SetupPersistence(*this); }

    void Set(int number, Fault fault) override
    {
        mNumber = number;
        mFault = fault;
    }
    int Number() const override { return mNumber; }

    static GUID const& GetClassId() { return IID_NOTE; }

    IO::IDataProviderStream& Read(IO::IDataProviderStream& stream)
    {
        int fault = 0;
        stream >> fault;
        if (fault == static_cast<int>(Fault::kReadsTooLittle))
            return stream;
        stream >> mNumber;
        if (fault == static_cast<int>(Fault::kThrowsInRead))
            throw std::runtime_error("a note that can't be read");
        if (fault == static_cast<int>(Fault::kFindsNoMemoryInRead))
            throw std::bad_alloc();
        long long more = 0;
        if (fault == static_cast<int>(Fault::kReadsTooMuch))
            stream >> more;
        return stream;
    }

    IO::IDataProviderStream& Write(IO::IDataProviderStream& stream) const
    {
        stream << static_cast<int>(mFault);
        if (mFault == Fault::kThrowsInWrite)
            throw std::runtime_error("a note that can't be written");
        return stream << mNumber;
    }

private:
    int mNumber = 0;
    Fault mFault = Fault::kNone;
};

class Mute final : public TObject<IObject>
{
};

using NoteFactory = TClassFactory<Makes<&New<Note>, IID_NOTE>, Makes<&New<Mute>, IID_MUTE>>;

/// A note that the caller owns.
inline CXX::Handle<INote> MakeNote(int number, Fault fault = Fault::kNone)
{
    TInterfacePtr<INote> note;
    note.Adopt(new Note);
    note->Set(number, fault);
    return CXX::Handle<INote>(std::move(note));
}
} // namespace KORVA::TESTS
