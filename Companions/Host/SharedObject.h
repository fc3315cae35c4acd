// A loaded shared object.
#pragma once

#include <string>

namespace KORVA::HOST
{
/// Stays loaded until `Unload`, even when this object goes.
class SharedObject
{
public:
    /// False and the system's words in `error` when it can't be loaded.
    bool Load(std::string const& file, std::string& error);
    void Unload();

    /// The function of that name, or null.
    template <class Function>
    Function* Find(char const* name) const
    {
        return reinterpret_cast<Function*>(Symbol(name));
    }

private:
    void* Symbol(char const* name) const;

    void* mHandle = nullptr;
};
} // namespace KORVA::HOST
