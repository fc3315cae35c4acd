// The pointer that holds components.
#include <tessio/ObjectModel/TInterfacePtr.h>

#include "SDK/Tracked.h"
#include <tessio/ObjectModel/IClassFactory.h>

#include <gtest/gtest.h>

#include <type_traits>

namespace KORVA::TESTS
{
namespace
{
using Pointer = TInterfacePtr<IObject>;

static_assert(std::has_virtual_destructor_v<Pointer>);
static_assert(std::is_nothrow_move_constructible_v<Pointer>);
static_assert(std::is_nothrow_move_assignable_v<Pointer>);
static_assert(!std::is_convertible_v<IObject*, Pointer>, "the way in must be named");
static_assert(!std::is_constructible_v<Pointer, IObject*>, "the way in must be named");
static_assert(!std::is_convertible_v<Pointer, bool>);

class TInterfacePtrTest : public ::testing::Test
{
protected:
    Tracked* New(char const* name) { return new Tracked(name, events); }

    Events Take() { return std::exchange(events, {}); }

    Events events;
};

TEST_F(TInterfacePtrTest, IsEmptyAtFirst)
{
    Pointer const pointer;
    EXPECT_EQ(pointer.Get(), nullptr);
    EXPECT_FALSE(pointer);
}

TEST_F(TInterfacePtrTest, AdoptTakesTheCreatingReference)
{
    Tracked* const object = New("a");
    {
        Pointer pointer;
        pointer.Adopt(object);
        EXPECT_EQ(Take(), Events());
        EXPECT_EQ(pointer.Get(), object);
        EXPECT_EQ(pointer.operator->(), object);
        EXPECT_EQ(&*pointer, object);
        EXPECT_TRUE(pointer);
    }
    EXPECT_EQ(Take(), (Events{"-a", "~a"}));
}

TEST_F(TInterfacePtrTest, AdoptReleasesWhatWasHeld)
{
    Pointer pointer;
    pointer.Adopt(New("a"));
    pointer.Adopt(New("b"));
    EXPECT_EQ(Take(), (Events{"-a", "~a"}));
    pointer.Adopt(nullptr);
    EXPECT_EQ(Take(), (Events{"-b", "~b"}));
    EXPECT_FALSE(pointer);
}

TEST_F(TInterfacePtrTest, ShareTakesAReferenceOfItsOwn)
{
    Tracked* const object = New("a");
    {
        Pointer pointer;
        pointer.Share(object);
        EXPECT_EQ(Take(), Events{"+a"});
    }
    EXPECT_EQ(Take(), Events{"-a"});
    EXPECT_EQ(object->Release(), 0);
}

TEST_F(TInterfacePtrTest, ShareTakesTheNewBeforeItReleasesTheOld)
{
    Pointer pointer;
    pointer.Adopt(New("a"));
    Tracked* const next = New("b");
    pointer.Share(next);
    EXPECT_EQ(Take(), (Events{"+b", "-a", "~a"}));
    next->Release();
    Take();
    pointer.Share(nullptr);
    EXPECT_EQ(Take(), (Events{"-b", "~b"}));
    EXPECT_FALSE(pointer);
}

TEST_F(TInterfacePtrTest, ShareOfTheObjectHeldKeepsItAlive)
{
    Pointer pointer;
    pointer.Adopt(New("a"));
    pointer.Share(pointer.Get());
    EXPECT_EQ(Take(), (Events{"+a", "-a"}));
    ASSERT_TRUE(pointer);
    EXPECT_EQ(CountOf(*pointer), 1);
}

TEST_F(TInterfacePtrTest, ResetReleasesOnce)
{
    Pointer pointer;
    pointer.Adopt(New("a"));
    pointer.Reset();
    EXPECT_EQ(Take(), (Events{"-a", "~a"}));
    EXPECT_FALSE(pointer);
    pointer.Reset();
    EXPECT_EQ(Take(), Events());
}

TEST_F(TInterfacePtrTest, DetachHandsTheReferenceOver)
{
    Pointer pointer;
    pointer.Adopt(New("a"));
    IObject* const object = pointer.Detach();
    EXPECT_FALSE(pointer);
    EXPECT_EQ(Take(), Events());
    EXPECT_EQ(pointer.Detach(), nullptr);
    EXPECT_EQ(object->Release(), 0);
}

TEST_F(TInterfacePtrTest, CopySharesTheObject)
{
    Pointer pointer;
    pointer.Adopt(New("a"));
    {
        Pointer const copy = pointer;
        EXPECT_EQ(copy.Get(), pointer.Get());
        EXPECT_EQ(Take(), Events{"+a"});
    }
    EXPECT_EQ(Take(), Events{"-a"});
    Pointer other;
    other.Adopt(New("b"));
    other = pointer;
    EXPECT_EQ(Take(), (Events{"+a", "-b", "~b"}));
    EXPECT_EQ(other.Get(), pointer.Get());
    other = Pointer();
    EXPECT_EQ(Take(), Events{"-a"});
    Pointer const copyOfNone = other;
    EXPECT_FALSE(copyOfNone);
}

TEST_F(TInterfacePtrTest, MoveHandsTheReferenceOver)
{
    Tracked* const object = New("a");
    Pointer pointer;
    pointer.Adopt(object);
    Pointer moved = std::move(pointer);
    EXPECT_EQ(moved.Get(), object);
    EXPECT_EQ(pointer.Get(), nullptr);
    EXPECT_EQ(Take(), Events());
    Pointer other;
    other.Adopt(New("b"));
    other = std::move(moved);
    EXPECT_EQ(Take(), (Events{"-b", "~b"}));
    EXPECT_EQ(other.Get(), object);
    EXPECT_EQ(moved.Get(), nullptr);
}

TEST_F(TInterfacePtrTest, AssignmentToItselfKeepsTheObject)
{
    Pointer pointer;
    Tracked* const object = New("a");
    pointer.Adopt(object);
    Pointer& alias = pointer;
    pointer = alias;
    ASSERT_EQ(pointer.Get(), object);
    EXPECT_EQ(CountOf(*pointer), 1);
    pointer = std::move(alias);
    ASSERT_EQ(pointer.Get(), object);
    EXPECT_EQ(CountOf(*pointer), 1);
}

TEST_F(TInterfacePtrTest, AssignmentAmongHoldersOfOneObjectKeepsItAlive)
{
    Pointer pointer;
    pointer.Adopt(New("a"));
    Pointer other = pointer;
    pointer = other;
    pointer = std::move(other);
    ASSERT_TRUE(pointer);
    EXPECT_EQ(CountOf(*pointer), 1);
}

/// Gives out the object it was made with, or null.
class Giver final : public TObject<IClassFactory>
{
public:
    explicit Giver(IObject* object) : mObject(object) {}
    ErrCode CreateInstance(GUID const&, IObject** out) override
    {
        *out = std::exchange(mObject, nullptr);
        return *out ? 0 : -1004;
    }

private:
    IObject* mObject;
};

TEST_F(TInterfacePtrTest, OutAdoptsWhatACreatingCallGives)
{
    Tracked* const object = New("a");
    TInterfacePtr<IClassFactory> factory;
    factory.Adopt(new Giver(object));
    Pointer pointer;
    pointer.Adopt(New("before"));
    EXPECT_EQ(factory->CreateInstance(GUID{}, pointer.Out()), 0);
    EXPECT_EQ(pointer.Get(), object);
    EXPECT_EQ(Take(), (Events{"-before", "~before"}));
    EXPECT_EQ(CountOf(*pointer), 1);
    EXPECT_EQ(factory->CreateInstance(GUID{}, pointer.Out()), -1004);
    EXPECT_FALSE(pointer) << "a call that gives nothing empties the pointer";
}

/// What each way of letting an object go does first: the pointer must be empty when the object dies.
class EmptyBeforeRelease : public TInterfacePtrTest
{
protected:
    void Hold()
    {
        pointer.Adopt(new Tracked("a", events, [this] { seen.push_back(pointer.Get()); }));
    }

    std::vector<IObject*> seen;
    Pointer pointer;
};

TEST_F(EmptyBeforeRelease, Reset)
{
    Hold();
    pointer.Reset();
    EXPECT_EQ(seen, std::vector<IObject*>{nullptr});
}

TEST_F(EmptyBeforeRelease, Adopt)
{
    Hold();
    pointer.Adopt(New("b"));
    EXPECT_EQ(seen, std::vector<IObject*>{nullptr});
}

TEST_F(EmptyBeforeRelease, Share)
{
    Hold();
    Pointer other;
    other.Adopt(New("b"));
    pointer.Share(other.Get());
    EXPECT_EQ(seen, std::vector<IObject*>{nullptr});
}

TEST_F(EmptyBeforeRelease, MoveAssignment)
{
    Hold();
    Pointer other;
    other.Adopt(New("b"));
    pointer = std::move(other);
    EXPECT_EQ(seen, std::vector<IObject*>{nullptr});
}

TEST_F(EmptyBeforeRelease, AnObjectThatResetsItsHolderDiesOnce)
{
    pointer.Adopt(new Tracked("a", events, [this] { pointer.Reset(); }));
    pointer.Reset();
    EXPECT_EQ(Take(), (Events{"-a", "~a"}));
}

TEST_F(EmptyBeforeRelease, Destruction)
{
    std::vector<IObject*> holders;
    {
        Pointer dying;
        dying.Adopt(new Tracked("a", events, [&] { holders.push_back(dying.Get()); }));
    }
    EXPECT_EQ(holders, std::vector<IObject*>{nullptr});
}
} // namespace
} // namespace KORVA::TESTS
