// Work that takes long enough to wonder about.
#pragma once

#include <tessio/ObjectModel/Types.h>
#include <tessio/Records/Format/Work.h>

#include <chrono>
#include <string>
#include <utility>

namespace TOOL
{
/// One line on standard error, from half a second on and on terminals only; it goes away with the object.
class Progress
{
public:
    /// How long nothing is shown, and how long each line stands.
    struct Pace
    {
        std::chrono::milliseconds patience{500};
        std::chrono::milliseconds pause{100};
    };

    /// `what` is done to `total` bytes; 0 when that is not known.
    Progress(std::string what, KORVA::int64 total) : Progress(std::move(what), total, Pace()) {}
    Progress(std::string what, KORVA::int64 total, Pace pace);
    Progress(Progress const&) = delete;
    Progress& operator=(Progress const&) = delete;
    ~Progress();

    /// So many of the bytes are done. Cheap enough for every record.
    void At(KORVA::int64 done);
    /// For the records library: borrows this object, and never wants an end.
    KORVA::RECORDS::Progress Watcher()
    {
        return [this](KORVA::int64 done, KORVA::int64) {
            At(done);
            return true;
        };
    }
    /// The same for who learns of `total` on the way.
    void At(KORVA::int64 done, KORVA::int64 total)
    {
        mTotal = total;
        At(done);
    }

private:
    std::string mWhat;
    KORVA::int64 mTotal;
    Pace mPace;
    bool mIsTerminal;
    bool mIsShown = false;
    std::chrono::steady_clock::time_point mNext;
};
} // namespace TOOL
