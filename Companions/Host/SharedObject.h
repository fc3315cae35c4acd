// A loaded shared object, or what the program itself has of it.
#pragma once

#include "System/Loading.h"

#include <string>

namespace KORVA::HOST
{
/// Either `Unload` or `LeaveLoaded` must end it.
class SharedObject
{
public:
    /// Nothing is loaded where the program has it already. False and the system's words in `error` when it
    /// can't be loaded.
    bool Load(std::string const& file, std::string& error);
    /// False when the system keeps the code in memory nevertheless.
    bool Unload();
    /// Keeps the code in memory until the same file is loaded again and unloaded. Nothing, after `Unload`.
    void LeaveLoaded();

    /// Empty where nothing was loaded.
    SYSTEM::MemoryRange const& Range() const { return mRange; }

    /// The function of that name, or null. Those of what it was linked to are not its own.
    template <class Function>
    Function* Find(char const* name) const
    {
        return reinterpret_cast<Function*>(Symbol(name));
    }

private:
    using AnyFunction = void();

    AnyFunction* Symbol(char const* name) const;

    SYSTEM::LoadedObject mObject = nullptr;
    SYSTEM::MemoryRange mRange;
    /// The file's name, when it is linked into the program.
    std::string mLinked;
};
} // namespace KORVA::HOST
