// What the tests of the file provider share.
#pragma once

#include "Support/Library.h"
#include "Support/TemporaryDirectory.h"
#include <tessio/CoreRegistry/CoreRegistry.h>
#include <tessio/ObjectModel/TObject.h>
#include <tessio/TessIO/ClassIds.h>
#include <tessio/TessIO/IReporter.h>
#include <tessio/TessIO/IURIDataProvider.h>

#include <filesystem>
#include <ostream>
#include <string>
#include <vector>

namespace KORVA::TESTS
{
/// What one call of a reporter said.
struct Reported
{
    IO::IURI* uri;
    OperationId result;
    ErrCode detail;

    friend bool operator==(Reported const&, Reported const&) = default;
};

inline std::ostream& operator<<(std::ostream& out, Reported const& reported)
{
    return out << "(" << reported.uri << ", " << reported.result << ", " << reported.detail << ")";
}

class RecordingReporter final : public TObject<IO::IReporter>
{
public:
    void Report(IO::IURI* uri, OperationId result, ErrCode detail) override
    {
        reports.push_back({uri, result, detail});
    }

    std::vector<Reported> reports;
};

inline TInterfacePtr<RecordingReporter> MakeReporter()
{
    TInterfacePtr<RecordingReporter> reporter;
    reporter.Adopt(new RecordingReporter);
    return reporter;
}

/// How many references there are.
inline int32 ReferencesTo(IObject& object)
{
    object.AddRef();
    return object.Release();
}

/// The process's open descriptors that lead to the file.
inline std::vector<int> DescriptorsOf(std::filesystem::path const& path)
{
    std::vector<int> descriptors;
    for (auto const& entry : std::filesystem::directory_iterator("/proc/self/fd"))
    {
        std::error_code gone;
        if (std::filesystem::read_symlink(entry.path(), gone) == path)
            descriptors.push_back(std::stoi(entry.path().filename()));
    }
    return descriptors;
}

class FileProviderTest : public LibraryTest
{
protected:
    using Provider = TInterfacePtr<IO::IURIDataProvider>;

    static Provider MakeFacade()
    {
        return COREREGISTRY::CreateObject<IO::IURIDataProvider>(IO::IID_IDATAPROVIDER);
    }

    /// A facade over the file.
    static Provider Open(std::filesystem::path const& path, int mode, IO::IReporter* reporter = nullptr)
    {
        Provider facade = MakeFacade();
        EXPECT_EQ(facade->InitURIBased(*MakeURI(path), mode, reporter), 0);
        return facade;
    }

    /// What `InitURIBased` answers; nothing stays open.
    static ErrCode TryToOpen(std::filesystem::path const& path, int mode)
    {
        return MakeFacade()->InitURIBased(*MakeURI(path), mode, nullptr);
    }

    static Logged OpenFailed(std::filesystem::path const& path)
    {
        return {kFileSource, kOpenFile, 367, "open failed to open the path \"" + path.string() + "\"."};
    }

    static Logged NoStream(std::filesystem::path const& path)
    {
        return {kFileSource, kOpenFile, 349,
                "NSFileHandle failed to initialize with the file descriptor for path \"" + path.string() +
                    "\"."};
    }

    static constexpr char kFileSource[] = "Core/Libraries/Tessaro/Source/src/Mac/MFileDataProvider";
    static constexpr char kOpenFile[] = "ErrCode KORVA::IO::FileDataProvider::OpenFile(StreamMode)";

    TemporaryDirectory mDirectory;
};

template <class Row>
class FileProviderTestWith : public FileProviderTest, public ::testing::WithParamInterface<Row>
{
};
} // namespace KORVA::TESTS
