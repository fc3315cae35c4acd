// The shared library booted by a host, as in a real process.
#pragma once

#include "Support/LogCapture.h"
#include "Support/TemporaryDirectory.h"
#include <tessio/CoreRegistry/CoreRegistry.h>
#include <tessio/Host/Host.h>
#include <tessio/TessIO/IDataProviderStream.h>
#include <tessio/TessIO/IURIRegistry.h>
#include <tessio/TessIO/LibUtils.h>

#include <gtest/gtest.h>

namespace KORVA::TESTS
{
class HostTest : public ::testing::Test
{
protected:
    HostTest()
    {
        std::string error;
        host = HOST::Host::Boot(error);
        EXPECT_TRUE(host) << error;
    }

    /// The file object for a file of that name in the test's directory.
    IO::IURIFilePtr FileNamed(std::string const& name) const
    {
        IO::IURIPtr uri;
        EXPECT_EQ(IO::CreateURI(host->Registry(), uri, (directory.Path() / name).c_str()), 0);
        IO::IURIFilePtr file;
        auto const registry = COREREGISTRY::CreateObject<IO::IURIRegistry>(IO::IID_URI_REGISTRY);
        EXPECT_EQ(registry->Create(*uri, file, nullptr), 0);
        return file;
    }

    /// Makes the file and writes the objects into it, one record after the other.
    void Save(std::string const& name, std::vector<IObject const*> const& objects) const
    {
        IO::IURIFilePtr const file = FileNamed(name);
        TInterfacePtr<IO::IDataProviderStream> stream;
        ASSERT_EQ(file->Create(), 0);
        ASSERT_EQ(file->Write(stream), 0);
        for (IObject const* object : objects)
            *stream << *object;
    }

    LogCapture log;
    TemporaryDirectory directory;
    std::unique_ptr<HOST::Host> host;
};
} // namespace KORVA::TESTS
