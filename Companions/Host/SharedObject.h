// A loaded shared object, or what the program itself has of it.
#pragma once

#include <string>

namespace KORVA::HOST
{
/// Stays loaded until `Unload`, even when this object goes.
class SharedObject
{
public:
    /// Nothing is loaded where the program has it already. False and the system's words in `error` when it
    /// can't be loaded.
    bool Load(std::string const& file, std::string& error);
    void Unload();

    /// The function of that name, or null.
    template <class Function>
    Function* Find(char const* name) const
    {
        return reinterpret_cast<Function*>(Symbol(name));
    }

private:
    using AnyFunction = void();

    AnyFunction* Symbol(char const* name) const;

    void* mHandle = nullptr;
    /// The file's name, when it is linked into the program.
    std::string mLinked;
};
} // namespace KORVA::HOST
