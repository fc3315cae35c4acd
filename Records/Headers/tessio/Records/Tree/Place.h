// Where records are, for those who keep many of them.
#pragma once

#include <memory>
#include <string>
#include <utility>

namespace KORVA::RECORDS
{
/// The path to a record. What is held by one record shares the path to it: paths are as long as records are
/// deep, and there may be as many as there are records.
class Place
{
public:
    /// The file itself.
    Place() = default;
    /// `segment` is the last component, as in paths.
    Place(Place const& holder, std::string segment)
        : mLast(std::make_shared<Component const>(Component{holder.mLast, std::move(segment)}))
    {}

    bool IsFile() const { return !mLast; }

    /// The last component alone, "/dict[7]".
    std::string Last() const { return mLast ? "/" + mLast->segment : std::string(); }

    /// "/0/dict[7]"; empty for the file.
    std::string Text() const
    {
        std::size_t size = 0;
        for (Component const* at = mLast.get(); at; at = at->holder.get())
            size += 1 + at->segment.size();
        std::string text(size, '/');
        for (Component const* at = mLast.get(); at; at = at->holder.get())
        {
            size -= at->segment.size();
            text.replace(size, at->segment.size(), at->segment);
            --size;
        }
        return text;
    }

private:
    struct Component
    {
        std::shared_ptr<Component const> holder;
        std::string segment;
    };

    std::shared_ptr<Component const> mLast;
};
} // namespace KORVA::RECORDS
