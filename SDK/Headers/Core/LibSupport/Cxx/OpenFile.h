// A file that is open to be written, and whether everything arrived.
#pragma once

#include <tessio/Cxx/DataProvider.h>
#include <tessio/Logger/LogSite.h>
#include <tessio/TessIO/IDataProviderStatus.h>

#include <string>
#include <utility>

namespace KORVA::CXX::DETAIL
{
inline constexpr LogSite kSiteLost{"../../../../SDK/Headers/Core/LibSupport/Cxx/OpenFile",
                                   "KORVA::CXX::DETAIL::OpenFile::~OpenFile()", 0};

/// What all copies of a stream on one open file share. A provider holds bytes back and answers 0 for them;
/// with the last copy goes the last one who could ask what became of them.
class OpenFile
{
public:
    /// `subject` is the file as messages name it.
    OpenFile(DataProvider provider, std::string subject)
        : mProvider(std::move(provider)), mSubject(std::move(subject))
    {}
    OpenFile(OpenFile const&) = delete;
    OpenFile& operator=(OpenFile const&) = delete;

    /// Logs how many bytes are lost that `Flush` did not tell of.
    ~OpenFile()
    {
        try
        {
            auto* const status = Status();
            if (!status)
                return;
            static_cast<void>(status->WriteOut());
            if (status->GetLostBytes() > mToldBytes)
                Log(kSiteLost, L"Bytes written to ", STRING::CoreString(std::string_view(mSubject)),
                    L" that are lost: ", status->GetLostBytes());
        }
        catch (...)
        {
            // Nobody is left to hear of a log that has no memory.
        }
    }

    /// See `DataProvider::Flush`.
    Result<void> Flush()
    {
        Result<void> flushed = mProvider.Flush(mSubject);
        if (auto const* const status = Status())
            mToldBytes = status->GetLostBytes();
        return flushed;
    }

private:
    IO::IDataProviderStatus* Status() const { return dynamic_cast<IO::IDataProviderStatus*>(&*mProvider); }

    DataProvider mProvider;
    std::string mSubject;
    int64 mToldBytes = 0;
};
} // namespace KORVA::CXX::DETAIL
