// What a dictionary holds when memory runs out, and whom it lets go of first.
#include "FreedMemory.h"
#include "Serialization.h"

#include <new>

namespace KORVA
{
namespace
{
using namespace TESTS;

class PersistentDictionaryMemoryTest : public SerializationTest
{
protected:
    TInterfacePtr<IDictionary> dictionary = MakeDictionary();
};

TEST_F(PersistentDictionaryMemoryTest, AValueThatCannotBePutIsNotKept)
{
    constexpr int kMost = 100;
    int refused = 0;
    for (bool isPut = false; !isPut && refused < kMost;)
    {
        RefusedMemory const memory(refused);
        try
        {
            dictionary->Put(5, 7);
            isPut = true;
        }
        catch (std::bad_alloc const&)
        {
            EXPECT_EQ(memory.Held(), 0) << "without its allocation " << refused;
            EXPECT_EQ(dictionary->Size(), 0u);
            ++refused;
        }
    }
    EXPECT_GE(refused, 2) << "the value, and the entry";
    EXPECT_LT(refused, kMost);
    EXPECT_EQ(dictionary->Size(), 1u);
}

/// Tells, when it dies, how many references there are to another object.
class Last final : public TObject<IObject>
{
public:
    Last(IObject& other, int32& seen) : mOther(other), mSeen(seen) {}
    ~Last() override { mSeen = References(mOther); }

private:
    IObject& mOther;
    int32& mSeen;
};

TEST_F(PersistentDictionaryMemoryTest, TheOldValueIsReleasedBeforeTheNewOneIsShared)
{
    auto const object = Make<Plain>();
    int32 seen = 0;
    TInterfacePtr<IObject> old;
    old.Adopt(new Last(*object, seen));
    dictionary->Put(5, old.Get());
    old.Reset();
    dictionary->Put(5, object.Get());
    EXPECT_EQ(seen, 1) << "only the test held it at that moment";
    EXPECT_EQ(References(*object), 2);
}
} // namespace
} // namespace KORVA
