#include "Support/Library.h"

#include <tessio/TessIO/ClassIds.h>
#include <tessio/TessIO/TessIO.h>

extern "C" int KorvaPlugInInit(KORVA::COREREGISTRY::ICoreRegistry*);
extern "C" int KorvaPlugInShutdown(KORVA::COREREGISTRY::ICoreRegistry*);

namespace KORVA::TESTS
{
using COREREGISTRY::CreateObject;

LibraryTest::LibraryTest()
{
    mRegistry.Adopt(COREREGISTRY::CreateCoreRegistry());
    COREREGISTRY::InstallCoreRegistry(mRegistry.Get());
    KorvaPlugInInit(mRegistry.Get());
    IO::Init(mRegistry.Get());
}

LibraryTest::~LibraryTest()
{
    KorvaPlugInShutdown(mRegistry.Get());
    COREREGISTRY::InstallCoreRegistry(nullptr);
}

IO::IURIPtr LibraryTest::MakeURI(std::string const& location)
{
    auto uri = CreateObject<IO::IURI>(IO::IID_IURI);
    uri->Init(STRING::CoreString(std::string_view(location)));
    return uri;
}

TInterfacePtr<IO::IDataProvider> LibraryTest::MakeMemory()
{
    auto provider = CreateObject<IO::IDataProvider>(IO::IID_IDATAPROVIDER);
    provider->InitHandleBased(IO::kStreamReadWrite);
    return provider;
}

TInterfacePtr<IO::IDataProvider> LibraryTest::MakeMemory(Bytes const& content)
{
    auto provider = MakeMemory();
    EXPECT_EQ(provider->Write(content.data(), content.size()), 0);
    EXPECT_EQ(provider->SetPosition(0, IO::IDataProvider::kFromStart), 0);
    return provider;
}

TInterfacePtr<IO::IDataProviderStream> LibraryTest::MakeStream(IO::IDataProvider& provider)
{
    auto stream = CreateObject<IO::IDataProviderStream>(IO::IID_DATAPROVIDERSTREAM);
    EXPECT_EQ(stream->Init(provider), 0);
    return stream;
}

Bytes LibraryTest::BytesOf(IO::IDataProvider& provider)
{
    int64 const position = provider.GetPosition();
    Bytes content(static_cast<std::size_t>(provider.Size()));
    auto count = static_cast<int32>(content.size());
    EXPECT_EQ(provider.SetPosition(0, IO::IDataProvider::kFromStart), 0);
    EXPECT_EQ(provider.Read(content.data(), count), 0);
    EXPECT_EQ(static_cast<std::size_t>(count), content.size());
    EXPECT_EQ(provider.SetPosition(position, IO::IDataProvider::kFromStart), 0);
    return content;
}
} // namespace KORVA::TESTS
