// What only the fields of the buffered provider tell.
#include "BufferedDataProvider.h"
#include "WatchedProvider.h"

#include <gtest/gtest.h>

namespace KORVA
{
/// The one friend that may look at fields.
struct LayoutProbe
{
    using Provider = IO::BufferedDataProvider;
    static IO::IDataProvider const* Wrapped(Provider const& provider) { return provider.mProvider.Get(); }
    static int32 Mode(Provider const& provider) { return provider.mMode; }
    static Provider::Buffer const& Buffer(Provider const& provider) { return provider.mBuffer; }
};

namespace TESTS
{
namespace
{
using IO::BufferedDataProvider;
using Probe = LayoutProbe;

TEST(BufferedFieldsTest, OfANewObjectAreEmpty)
{
    TInterfacePtr<BufferedDataProvider> provider;
    provider.Adopt(new BufferedDataProvider);
    EXPECT_EQ(Probe::Wrapped(*provider), nullptr);
    EXPECT_EQ(Probe::Mode(*provider), 0);
    BufferedDataProvider::Buffer const& buffer = Probe::Buffer(*provider);
    EXPECT_FALSE(buffer.mData);
    EXPECT_EQ(buffer.mCursor, 0);
    EXPECT_EQ(buffer.mLength, 0);
    EXPECT_EQ(buffer.mStart, 0);
}

TEST(BufferedFieldsTest, OtherSizeAllocatesOnlyWhereSomethingIsBuffered)
{
    TInterfacePtr<WatchedProvider> wrapped;
    wrapped.Adopt(new WatchedProvider);
    TInterfacePtr<BufferedDataProvider> provider;
    provider.Adopt(new BufferedDataProvider);
    BufferedDataProvider::Buffer const& buffer = Probe::Buffer(*provider);

    EXPECT_EQ(provider->Init(*wrapped, 8, IO::kBufferNothing), 2);
    EXPECT_EQ(Probe::Mode(*provider), 0);
    std::byte const* const block = buffer.mData.get();
    EXPECT_NE(block, nullptr);
    provider->SetBufferSize(100'000);
    EXPECT_EQ(buffer.mData.get(), block);

    EXPECT_EQ(provider->Init(*wrapped, 8, IO::kBufferWrites), 2);
    EXPECT_EQ(Probe::Wrapped(*provider), wrapped.Get());
    EXPECT_EQ(Probe::Mode(*provider), 2);
    EXPECT_EQ(provider->Write("abc", 3), 0);
    EXPECT_EQ(buffer.mCursor, 3);
    EXPECT_EQ(buffer.mLength, 3);
    provider->SetBufferSize(100'000);
    EXPECT_EQ(buffer.mCursor, 0);
    EXPECT_EQ(buffer.mLength, 0);
}
} // namespace
} // namespace TESTS
} // namespace KORVA
