// The library booted inside a test.
#pragma once

#include "Support/Bytes.h"
#include "Support/LogCapture.h"
#include "Support/RowName.h"
#include <tessio/CoreRegistry/CoreRegistry.h>
#include <tessio/TessIO/IDataProvider.h>
#include <tessio/TessIO/IDataProviderStream.h>
#include <tessio/TessIO/IURI.h>

#include <gtest/gtest.h>

#include <string>

namespace KORVA::TESTS
{
/// A registry of its own for each test, with the file-system companion and the library registered, and every
/// log message captured. A test that leaves messages in `log` fails.
class LibraryTest : public ::testing::Test
{
protected:
    LibraryTest();
    ~LibraryTest() override;

    COREREGISTRY::ICoreRegistry* Registry() const { return mRegistry.Get(); }

    /// A URI initialised with `location` (UTF-8).
    static IO::IURIPtr MakeURI(std::string const& location);

    /// A facade over a new memory block in mode 2.
    static TInterfacePtr<IO::IDataProvider> MakeMemory();
    /// A facade over a copy of the bytes, in a memory block, positioned at the start.
    static TInterfacePtr<IO::IDataProvider> MakeMemory(Bytes const& content);
    /// A stream over the provider.
    static TInterfacePtr<IO::IDataProviderStream> MakeStream(IO::IDataProvider& provider);
    /// Everything in the provider; its position is left where it was.
    static Bytes BytesOf(IO::IDataProvider& provider);

    LogCapture log;

private:
    TInterfacePtr<COREREGISTRY::ICoreRegistry> mRegistry;
};

/// The same for table-driven tests: `using RowTest = LibraryTestWith<Row>;`.
template <class Row>
class LibraryTestWith : public LibraryTest, public ::testing::WithParamInterface<Row>
{
};
} // namespace KORVA::TESTS
