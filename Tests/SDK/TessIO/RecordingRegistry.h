// A registry that remembers what is registered with it.
#pragma once

#include <tessio/CoreRegistry/ICoreRegistry.h>
#include <tessio/ObjectModel/TObject.h>

#include <vector>

namespace KORVA::TESTS
{
/// Keeps every factory and answers `result`; with `rejects` it keeps none. Serves no class itself: an id
/// asked for is kept and answered with `creation`.
class RecordingRegistry final : public TObject<COREREGISTRY::ICoreRegistry>
{
public:
    explicit RecordingRegistry(int result = 0, bool rejects = false) : mResult(result), mRejects(rejects) {}

    ErrCode CreateInstance(GUID const& classId, IObject** out) override
    {
        asked.push_back(classId);
        *out = nullptr;
        return creation;
    }

    int RegisterFactory(IClassFactory* factory) override
    {
        ++registrations;
        // Held by the factory while it lives: tells when it died.
        factory->Aggregate(witness.Get(), GUID{});
        if (!mRejects)
            factories.emplace_back().Share(factory);
        return mResult;
    }

    int UnregisterFactory(IClassFactory*) override
    {
        ++unregistrations;
        return 0;
    }

    class Witness final : public TObject<IObject>
    {
    };

    std::vector<TInterfacePtr<IClassFactory>> factories;
    std::vector<GUID> asked;
    ErrCode creation = -1004;
    int registrations = 0;
    int unregistrations = 0;
    TInterfacePtr<IObject> witness = [] {
        TInterfacePtr<IObject> made;
        made.Adopt(new Witness);
        return made;
    }();

private:
    int mResult;
    bool mRejects;
};
} // namespace KORVA::TESTS
