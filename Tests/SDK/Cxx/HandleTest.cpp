// Owning handles.
#include <tessio/Cxx/Handle.h>

#include "SDK/Cxx/Note.h"
#include "SDK/Tracked.h"
#include "Support/Library.h"
#include <tessio/Cxx/Dictionary.h>

namespace KORVA::TESTS
{
namespace
{
using CXX::Handle;
using CXX::Object;

class CxxHandle : public LibraryTest
{
protected:
    CxxHandle() { COREREGISTRY::RegisterNewFactory<NoteFactory>(Registry()); }
};

TEST(CxxHandleCounts, AreThoseOfItsCopies)
{
    Events events;
    TInterfacePtr<IObject> pointer;
    pointer.Adopt(new Tracked("a", events));
    {
        Object first(std::move(pointer));
        Object second = first;
        EXPECT_EQ(events, (Events{"+a"}));
        Object third = std::move(first);
        EXPECT_FALSE(first);
        EXPECT_TRUE(third);
        EXPECT_TRUE(third.IsSame(second));
    }
    EXPECT_EQ(events, (Events{"+a", "-a", "-a", "~a"}));
}

TEST(CxxHandleCounts, SharingTakesAReference)
{
    Events events;
    TInterfacePtr<Tracked> owner;
    owner.Adopt(new Tracked("a", events));
    {
        Object const shared(static_cast<IObject&>(*owner));
        EXPECT_EQ(shared.Pointer().Get(), owner.Get());
    }
    EXPECT_EQ(events, (Events{"+a", "-a"}));
}

TEST_F(CxxHandle, CreatesByClass)
{
    auto note = CXX::Create<Handle<INote>>(IID_NOTE);
    ASSERT_TRUE(note);
    (*note)->Set(7, Fault::kNone);
    EXPECT_EQ((*note)->Number(), 7);
    EXPECT_EQ(CountOf(**note), 1);
    EXPECT_EQ(CXX::Create<Handle<INote>>(IO::IID_DICTIONARY).error().Code(), 2024);
    EXPECT_EQ(CXX::Create<Object>(GUID{}).error().Code(), 12);
}

TEST_F(CxxHandle, IsUsedAsWhatTheObjectIs)
{
    Object const object = CXX::Create<Object>(IID_NOTE).value();
    Handle<INote> const note = CXX::As<Handle<INote>>(object).value();
    EXPECT_TRUE(note.IsSame(object));
    EXPECT_EQ(CountOf(*note), 2);
    EXPECT_TRUE(CXX::As<Object>(note));
    EXPECT_EQ(CXX::As<CXX::Dictionary>(object).error().Code(), 2024);
    EXPECT_EQ(CountOf(*note), 2);
}

TEST_F(CxxHandle, TellsTheClassOfWhatIsPersistent)
{
    EXPECT_EQ(CXX::ClassIdOf(MakeNote(1)).value(), IID_NOTE);
    EXPECT_EQ(CXX::ClassIdOf(CXX::Dictionary::Create().value()).value(), IO::IID_DICTIONARY);
    EXPECT_EQ(CXX::ClassIdOf(CXX::Create<Object>(IID_MUTE).value()).error().Code(), 2011);
}

static_assert(CXX::HandleType<CXX::Dictionary> && CXX::HandleType<Handle<INote>>);
static_assert(!CXX::HandleType<INote> && !CXX::HandleType<int> && !CXX::HandleType<TInterfacePtr<INote>>);
static_assert(!std::is_convertible_v<TInterfacePtr<INote>, Handle<INote>>);
static_assert(!std::is_default_constructible_v<Handle<INote>>);
} // namespace
} // namespace KORVA::TESTS
