// A buffered provider over a watched one.
#pragma once

#include "Support/Library.h"
#include "WatchedProvider.h"
#include <tessio/TessIO/ClassIds.h>
#include <tessio/TessIO/IBufferedDataProvider.h>

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace KORVA::TESTS
{
using IO::IBufferedDataProvider;
using IO::IDataProvider;

inline constexpr char kBufferedSource[] = "Core/Libraries/Tessaro/Source/src/BufferedDataProvider";
inline constexpr char kNoBufferText[] = "Buffered data provider without a buffer?";

inline std::vector<Logged> WriteRefused()
{
    return {{kBufferedSource,
             "virtual OperationId KORVA::IO::BufferedDataProvider::Write(const void *, size_t)", 248,
             "Write to read only Buffered data provider."}};
}

inline std::vector<Logged> ReadRefused()
{
    return {{kBufferedSource, "virtual OperationId KORVA::IO::BufferedDataProvider::Read(void *, int32 &)",
             303, "Read from write only Buffered data provider."}};
}

inline std::vector<Logged> NoPositionToTell()
{
    return {{kBufferedSource, "virtual int64 KORVA::IO::BufferedDataProvider::GetPosition() const", 170,
             kNoBufferText}};
}

inline std::vector<Logged> NoPositionToSet()
{
    return {{kBufferedSource,
             "virtual ErrCode KORVA::IO::BufferedDataProvider::SetPosition(int64, "
             "KORVA::IO::IDataProvider::Offset)",
             355, kNoBufferText}};
}

/// Where an expectation stands in its test.
struct Place
{
    char const* file;
    int line;

    static Place Here(char const* file = __builtin_FILE(), int line = __builtin_LINE())
    {
        return {file, line};
    }
};

/// Each expectation names the calls that reach the wrapped provider, all of them and in order.
class BufferedTest : public LibraryTest
{
protected:
    BufferedTest() { wrapped.Adopt(new WatchedProvider); }

    /// What `Init` calls is of no interest here.
    void Wrap(IO::BufferMode mode, int size, std::string content = {}, int64 position = 0)
    {
        wrapped->bytes = std::move(content);
        wrapped->position = position;
        buffered = COREREGISTRY::CreateObject<IBufferedDataProvider>(IO::IID_BUFFERED_DATAPROVIDER);
        EXPECT_EQ(buffered->Init(*wrapped, size, mode), 2) << "the reference count of what is wrapped";
        static_cast<void>(TakeCalls());
    }

    Calls TakeCalls() { return std::exchange(*wrapped->calls, {}); }

    void ExpectCalls(Calls const& expected, Place place = Place::Here())
    {
        ::testing::ScopedTrace const trace(place.file, place.line, "expected here");
        EXPECT_EQ(TakeCalls(), expected);
    }

    void ExpectWrite(std::string const& text, Calls const& expected, OperationId result = 0,
                     Place place = Place::Here())
    {
        ::testing::ScopedTrace const trace(place.file, place.line, "expected here");
        EXPECT_EQ(buffered->Write(text.data(), text.size()), result);
        EXPECT_EQ(TakeCalls(), expected);
    }

    /// Asks for `wanted` bytes and gets `text`; the caller's memory behind it stays untouched.
    void ExpectRead(int32 wanted, std::string const& text, Calls const& expected, OperationId result = 0,
                    Place place = Place::Here())
    {
        ::testing::ScopedTrace const trace(place.file, place.line, "expected here");
        std::string found(static_cast<std::size_t>(wanted) + 2, '*');
        int32 count = wanted;
        EXPECT_EQ(buffered->Read(found.data(), count), result);
        EXPECT_EQ(count, static_cast<int32>(text.size()));
        EXPECT_EQ(found, text + std::string(found.size() - text.size(), '*'));
        EXPECT_EQ(TakeCalls(), expected);
    }

    void ExpectMove(int64 offset, int from, Calls const& expected, ErrCode result = 0,
                    Place place = Place::Here())
    {
        ::testing::ScopedTrace const trace(place.file, place.line, "expected here");
        EXPECT_EQ(buffered->SetPosition(offset, static_cast<IDataProvider::Offset>(from)), result);
        EXPECT_EQ(TakeCalls(), expected);
    }

    void ExpectPosition(int64 position, Calls const& expected, Place place = Place::Here())
    {
        ::testing::ScopedTrace const trace(place.file, place.line, "expected here");
        EXPECT_EQ(buffered->GetPosition(), position);
        EXPECT_EQ(TakeCalls(), expected);
    }

    void ExpectFlush(Calls const& expected, ErrCode result = 0, Place place = Place::Here())
    {
        ::testing::ScopedTrace const trace(place.file, place.line, "expected here");
        EXPECT_EQ(buffered->Flush(), result);
        EXPECT_EQ(TakeCalls(), expected);
    }

    TInterfacePtr<WatchedProvider> wrapped;
    TInterfacePtr<IBufferedDataProvider> buffered;
};
} // namespace KORVA::TESTS
