// A factory whose answers a test decides.
#pragma once

#include <tessio/ObjectModel/IClassFactory.h>
#include <tessio/ObjectModel/TObject.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace KORVA::TESTS
{
/// What a `FakeFactory` makes: knows its maker's name.
class Product final : public TObject<IObject>
{
public:
    explicit Product(std::string maker) : mMaker(std::move(maker)) {}
    std::string const& Maker() const { return mMaker; }

private:
    std::string mMaker;
};

/// Serves the ids in `serves`; writes its name to `asked` at each question.
class FakeFactory final : public TObject<IClassFactory>
{
public:
    FakeFactory(std::string name, std::vector<std::string>& asked, std::vector<GUID> ids = {})
        : serves(std::move(ids)), mName(std::move(name)), mAsked(asked)
    {}
    ~FakeFactory() override
    {
        if (onDeath)
            onDeath();
    }

    ErrCode CreateInstance(GUID const& classId, IObject** out) override
    {
        mAsked.push_back(mName);
        if (onQuestion)
            onQuestion();
        *out = nullptr;
        for (GUID const& id : serves)
            if (id == classId)
                *out = new Product(mName);
        return *out ? 0 : -1004;
    }

    std::vector<GUID> serves;
    std::function<void()> onQuestion;
    std::function<void()> onDeath;

private:
    std::string mName;
    std::vector<std::string>& mAsked;
};
} // namespace KORVA::TESTS
