// Unloading plug-ins that are in use.
#include "Companions/Host/IMeeting.h"
#include "Support/LogCapture.h"
#include "Support/RowName.h"
#include <tessio/CoreRegistry/CoreRegistry.h>
#include <tessio/Host/Host.h>
#include <tessio/ObjectModel/TObject.h>

#include <gtest/gtest.h>

#include <dlfcn.h>

#include <atomic>
#include <functional>
#include <future>
#include <thread>

namespace KORVA::TESTS
{
namespace
{
using COREREGISTRY::CreateObject;

constexpr char kFile[] = TESSIO_BINARY_DIR "/lib/libTestPlugInFirst.so";
constexpr GUID kThing = ClassOf(0, kAtOnce);

bool IsInMemory(std::string const& file)
{
    void* const handle = dlopen(file.c_str(), RTLD_LAZY | RTLD_NOLOAD);
    if (handle)
        dlclose(handle);
    return handle != nullptr;
}

/// Makes meetings that do what the test wants.
class Meetings final : public TObject<IClassFactory>
{
public:
    ErrCode CreateInstance(GUID const& classId, IObject** out) override
    {
        *out = classId == IID_MEETING ? new Meeting(*this) : nullptr;
        return *out ? kNoError : kIdNotFound;
    }

    std::function<void()> onMeeting;

private:
    class Meeting final : public TObject<IMeeting>
    {
    public:
        explicit Meeting(Meetings& meetings) : mMeetings(meetings) {}
        void Meet() override { mMeetings.onMeeting(); }

    private:
        Meetings& mMeetings;
    };
};

class UnloadTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        host = HOST::Host::Boot(error);
        ASSERT_TRUE(host) << error;
        meetings.Adopt(new Meetings);
        host->Registry()->RegisterFactory(meetings.Get());
        ASSERT_TRUE(host->LoadPlugIn(kFile, error)) << error;
    }

    bool Unloads() { return host->UnloadPlugIn(kFile, error); }

    LogCapture log;
    std::string error;
    TInterfacePtr<Meetings> meetings;
    std::unique_ptr<HOST::Host> host;
};

TEST_F(UnloadTest, TakesTheCodeOutOfMemory)
{
    EXPECT_TRUE(IsInMemory(kFile));
    EXPECT_TRUE(Unloads());
    EXPECT_EQ(error, "");
    EXPECT_FALSE(IsInMemory(kFile));
    EXPECT_FALSE(CreateObject<IObject>(kThing));
}

TEST_F(UnloadTest, IsRefusedWhileObjectsAreInUse)
{
    auto first = CreateObject<IObject>(kThing);
    auto second = CreateObject<IObject>(kThing);
    EXPECT_FALSE(Unloads());
    EXPECT_EQ(error,
              std::string(kFile) + ": not unloaded: 2 objects of its classes are in use; release them first");
    first.Reset();
    EXPECT_FALSE(Unloads());
    EXPECT_EQ(error,
              std::string(kFile) + ": not unloaded: 1 object of its classes is in use; release it first");
    EXPECT_TRUE(CreateObject<IObject>(kThing)) << "a refusal changes nothing";
    second.Reset();
    EXPECT_TRUE(Unloads());
    EXPECT_EQ(error, "");
    EXPECT_FALSE(IsInMemory(kFile));
}

TEST_F(UnloadTest, IsRefusedFromInsideItsOwnFactory)
{
    int asked = 0;
    meetings->onMeeting = [&] {
        ++asked;
        EXPECT_FALSE(Unloads());
    };
    EXPECT_TRUE(CreateObject<IObject>(ClassOf(0, kAfterMeeting)));
    EXPECT_EQ(asked, 1);
    EXPECT_EQ(error, std::string(kFile) +
                         ": not unloaded: one of its own factories asks for it, whose code would go; "
                         "ask when the factory has returned");
    EXPECT_TRUE(Unloads()) << error;
    EXPECT_FALSE(IsInMemory(kFile));
}

struct InsideRow
{
    char const* name;
    /// How the thread that is inside comes out.
    std::uint16_t way;
    bool isUnloaded;
};

/// While another thread is inside the factory.
class UnloadFromUnder : public UnloadTest, public ::testing::WithParamInterface<InsideRow>
{
};

TEST_P(UnloadFromUnder, WaitsForIt)
{
    std::promise<void> isInside;
    std::promise<void> mayGoOn;
    std::atomic<bool> hasReturned = false;
    meetings->onMeeting = [&] {
        isInside.set_value();
        mayGoOn.get_future().wait();
        // Who is inside is served until it comes out.
        EXPECT_TRUE(CreateObject<IObject>(kThing));
        EXPECT_FALSE(hasReturned);
    };
    TInterfacePtr<IObject> made;
    std::thread inside([&] { made = CreateObject<IObject>(ClassOf(0, GetParam().way)); });
    isInside.get_future().wait();
    // Nobody else is, once unloading has begun.
    std::thread watcher([&] {
        while (CreateObject<IObject>(kThing))
            std::this_thread::yield();
        EXPECT_FALSE(hasReturned);
        mayGoOn.set_value();
    });
    bool const isUnloaded = Unloads();
    hasReturned = true;
    watcher.join();
    inside.join();
    EXPECT_EQ(isUnloaded, GetParam().isUnloaded) << error;
    EXPECT_EQ(IsInMemory(kFile), !isUnloaded);
    EXPECT_EQ(!CreateObject<IObject>(kThing), isUnloaded);
    made.Reset();
    EXPECT_EQ(Unloads(), !isUnloaded) << error;
    EXPECT_FALSE(IsInMemory(kFile));
}

InsideRow const kInside[] = {{"WithoutAnObject", kMeetingOnly, true}, {"WithAnObject", kAfterMeeting, false}};

INSTANTIATE_TEST_SUITE_P(Threads, UnloadFromUnder, ::testing::ValuesIn(kInside), RowName());

/// Threads that create and release all the time never meet code that is gone.
TEST_F(UnloadTest, GoesWithCreationOnOtherThreads)
{
    std::atomic<bool> isOver = false;
    std::vector<std::thread> threads;
    for (int i = 0; i < 3; ++i)
        threads.emplace_back([&isOver] {
            while (!isOver)
                CreateObject<IObject>(kThing);
        });
    int unloaded = 0;
    for (int tries = 0; tries < 300 || unloaded < 20; ++tries)
    {
        if (!Unloads())
        {
            EXPECT_NE(error.find(" in use; release "), std::string::npos) << error;
            continue;
        }
        EXPECT_EQ(error, "");
        ++unloaded;
        ASSERT_TRUE(host->LoadPlugIn(kFile, error)) << error;
    }
    isOver = true;
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_TRUE(Unloads()) << error;
    EXPECT_FALSE(IsInMemory(kFile));
}

struct StayingRow
{
    char const* name;
    std::string file;
    std::uint16_t number;
    char const* reason;
};

/// Plug-ins whose code can't go. They are shut down, and no more asked.
class UnloadOfWhatStays : public UnloadTest, public ::testing::WithParamInterface<StayingRow>
{
};

TEST_P(UnloadOfWhatStays, SaysWhy)
{
    auto const& [name, file, number, reason] = GetParam();
    for (int i = 0; i < 2; ++i)
    {
        ASSERT_TRUE(host->LoadPlugIn(file, error)) << error;
        EXPECT_TRUE(CreateObject<IObject>(ClassOf(number, kAtOnce)));
        EXPECT_TRUE(host->UnloadPlugIn(file, error));
        if (i == 0)
        {
            EXPECT_EQ(error, file + ": shut down, but its code stays in memory: " + reason);
        }
        EXPECT_FALSE(CreateObject<IObject>(ClassOf(number, kAtOnce)));
        EXPECT_TRUE(IsInMemory(file));
    }
    host.reset();
    EXPECT_TRUE(IsInMemory(file));
}

StayingRow const kStaying[] = {
    {"WithAnObjectLeft", TESSIO_BINARY_DIR "/lib/libTestPlugInLeaving.so", 3,
     "1 object of its classes is left"},
    {"WithAFactoryLeft", TESSIO_BINARY_DIR "/lib/libTestPlugInForgetful.so", 4,
     "1 object of its classes is left"},
    {"WithoutANumber", TESSIO_BINARY_DIR "/lib/libTestPlugInSilent.so", 5,
     "it has no function KorvaPlugInObjects to say whether its objects are gone"},
};

INSTANTIATE_TEST_SUITE_P(Reasons, UnloadOfWhatStays, ::testing::ValuesIn(kStaying), RowName());

/// What one host left in memory for objects that were held, another one takes out.
TEST_F(UnloadTest, TakesOutWhatAnotherHostLeft)
{
    auto object = CreateObject<IObject>(kThing);
    host.reset();
    EXPECT_TRUE(IsInMemory(kFile));
    object.Reset();
    host = HOST::Host::Boot(error);
    ASSERT_TRUE(host) << error;
    ASSERT_TRUE(host->LoadPlugIn(kFile, error)) << error;
    EXPECT_TRUE(Unloads());
    EXPECT_EQ(error, "");
    EXPECT_FALSE(IsInMemory(kFile));
}
} // namespace
} // namespace KORVA::TESTS
