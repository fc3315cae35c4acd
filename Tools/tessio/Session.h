// The host that a command runs in.
#pragma once

#include "Access.h"
#include "Common.h"
#include "System/Descriptor.h"
#include <tessio/CoreRegistry/CoreRegistry.h>
#include <tessio/Host/Host.h>
#include <tessio/Logger/KLoggerLibInterface.h>

#include <memory>
#include <utility>
#include <vector>

namespace TOOL
{
/// Boots the library for one run of the tool.
class Session final : private KORVA::KLogSink
{
public:
    /// Loads the plug-ins that were named. With `verbose`, the library's own messages go to standard error
    /// too. `user` is who asks servers; empty for nobody.
    explicit Session(Common const& common, std::string const& user = {});
    Session(Session const&) = delete;
    Session& operator=(Session const&) = delete;
    ~Session();

    KORVA::COREREGISTRY::ICoreRegistry* Registry() const { return mHost->Registry(); }

    /// Hears of what fails.
    LastFailure& Failures() const { return *mFailures; }
    /// Borrowed; null for nobody.
    KORVA::IO::IURICredential* Credential() const { return mCredential.Get(); }

    /// Creates an object that must be there.
    template <class I>
    KORVA::TInterfacePtr<I> Create(GUID const& classId) const
    {
        auto object = KORVA::COREREGISTRY::CreateObject<I>(classId);
        if (!object)
            Missing(classId);
        return object;
    }

    /// Keeps a file open to the end of the command: it is named by its descriptor's number.
    void Keep(KORVA::SYSTEM::Descriptor file) const { mKept.push_back(std::move(file)); }

    /// The bounds for record files that the user set.
    Limits const& Bounds() const { return mLimits; }

private:
    bool OnMessage(KORVA::KLogRecord const& record) noexcept override;
    [[noreturn]] static void Missing(GUID const& classId);

    bool mVerbose;
    Limits mLimits;
    std::unique_ptr<KORVA::HOST::Host> mHost;
    KORVA::TInterfacePtr<LastFailure> mFailures;
    KORVA::IO::IURICredentialPtr mCredential;
    mutable std::vector<KORVA::SYSTEM::Descriptor> mKept;
};
} // namespace TOOL
