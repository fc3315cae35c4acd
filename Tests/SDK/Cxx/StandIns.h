// Objects that stand in for those of the library.
#pragma once

#include "Support/ForwardingProvider.h"
#include <tessio/CoreRegistry/CoreRegistry.h>
#include <tessio/FileIO/IFile.h>
#include <tessio/ObjectModel/TObject.h>
#include <tessio/TessIO/IDataProviderStatus.h>

#include <functional>
#include <utility>

namespace KORVA::TESTS
{
/// While it lives, objects of one class are made by a function, with a code of the test's choice. The others
/// come from the registry that was installed before.
class Replacing
{
public:
    using Make = std::function<IObject*()>;

    Replacing(GUID const& classId, Make make, ErrCode code = kNoError)
    {
        mBefore.Share(COREREGISTRY::GetCoreRegistry());
        TInterfacePtr<Registry> registry;
        registry.Adopt(new Registry(*mBefore, classId, std::move(make), code));
        COREREGISTRY::InstallCoreRegistry(registry.Get());
    }
    Replacing(Replacing const&) = delete;
    Replacing& operator=(Replacing const&) = delete;
    ~Replacing() { COREREGISTRY::InstallCoreRegistry(mBefore.Get()); }

private:
    class Registry final : public TObject<COREREGISTRY::ICoreRegistry>
    {
    public:
        Registry(ICoreRegistry& below, GUID const& classId, Make make, ErrCode code)
            : mClassId(classId), mMake(std::move(make)), mCode(code)
        {
            mBelow.Share(&below);
        }
        ErrCode CreateInstance(GUID const& classId, IObject** out) override
        {
            if (!(classId == mClassId))
                return mBelow->CreateInstance(classId, out);
            *out = mMake();
            return mCode;
        }
        int RegisterFactory(IClassFactory* factory) override { return mBelow->RegisterFactory(factory); }
        int UnregisterFactory(IClassFactory* factory) override { return mBelow->UnregisterFactory(factory); }

    private:
        TInterfacePtr<ICoreRegistry> mBelow;
        GUID mClassId;
        Make mMake;
        ErrCode mCode;
    };

    TInterfacePtr<COREREGISTRY::ICoreRegistry> mBefore;
};

/// What happens to the bytes that are written to a `FailingProvider`.
struct Trouble
{
    /// The first failure's number, once something was written out.
    int32 error = 0;
    /// How many bytes each writing out loses that finds something held back.
    int64 lostEachTime = 0;
    int writtenOut = 0;
};

/// Passes everything on to another provider, and tells of trouble as a provider of files does.
class FailingProvider final : public ForwardingProvider, public IO::IDataProviderStatus
{
public:
    FailingProvider(TInterfacePtr<IO::IDataProvider> below, Trouble& trouble)
        : ForwardingProvider(std::move(below)), mTrouble(trouble)
    {}

    int64 GetLostBytes() const override { return mLost; }
    int32 GetSystemError() const override { return mLost > 0 ? mTrouble.error : 0; }
    ErrCode WriteOut() override
    {
        ++mTrouble.writtenOut;
        mLost += std::exchange(mHoldsBack, false) ? mTrouble.lostEachTime : 0;
        return mLost > 0 ? 2 : 0;
    }
    ErrCode FlushToDevice() override { return WriteOut(); }

    OperationId Write(void const* data, std::size_t count) override
    {
        mHoldsBack = true;
        return ForwardingProvider::Write(data, count);
    }

private:
    Trouble& mTrouble;
    int64 mLost = 0;
    bool mHoldsBack = false;
};

/// A file object whose `Replace` really replaces, and then answers whatever a test wants.
class AnsweringFile final : public TObject<FILE_SYS::IFile>
{
public:
    AnsweringFile(FILE_SYS::IFilePtr below, FILE_SYS::ErrCode answer)
        : mBelow(std::move(below)), mAnswer(answer)
    {}

    bool BindPath(STRING::CoreString const& path) override { return mBelow->BindPath(path); }
    bool Exists() override { return mBelow->Exists(); }
    FILE_SYS::ErrCode QueryFlag(uchar& flag) override { return mBelow->QueryFlag(flag); }
    FILE_SYS::ErrCode ReadPermissions(uchar (&permissions)[3]) override
    {
        return mBelow->ReadPermissions(permissions);
    }
    FILE_SYS::ErrCode Create() override { return mBelow->Create(); }
    FILE_SYS::ErrCode Delete() override { return mBelow->Delete(); }
    FILE_SYS::ErrCode GetSize(uint64& size) override { return mBelow->GetSize(size); }
    FILE_SYS::ErrCode GetModificationDate(uint64& date) override { return mBelow->GetModificationDate(date); }
    FILE_SYS::ErrCode SetModificationDate(uint64& date) override { return mBelow->SetModificationDate(date); }
    FILE_SYS::ErrCode GetCreationDate(uint64& date) override { return mBelow->GetCreationDate(date); }
    FILE_SYS::ErrCode SetCreationDate(uint64& date) override { return mBelow->SetCreationDate(date); }
    FILE_SYS::ErrCode CopyTo(STRING::CoreString const& target) override { return mBelow->CopyTo(target); }
    FILE_SYS::ErrCode MoveTo(STRING::CoreString const& target) override { return mBelow->MoveTo(target); }
    FILE_SYS::ErrCode Sync() override { return mBelow->Sync(); }
    FILE_SYS::ErrCode Replace(void const* data, uint64 count) override
    {
        FILE_SYS::ErrCode const result = mBelow->Replace(data, count);
        return result == FILE_SYS::kDone ? mAnswer : result;
    }

private:
    FILE_SYS::IFilePtr mBelow;
    FILE_SYS::ErrCode mAnswer;
};
} // namespace KORVA::TESTS
