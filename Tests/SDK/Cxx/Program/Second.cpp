// The same layer once more: what it defines must be inline.
#include "SDK/Cxx/Program/Second.h"

#include <tessio/Cxx/TessIO.h>

using namespace KORVA;

std::string Second(std::filesystem::path const& path)
{
    auto const loaded = CXX::Load<CXX::Dictionary>(path);
    if (!loaded)
        return loaded.error().Message();
    std::string text;
    for (auto const& [key, value] : *loaded)
        text += std::to_string(key) + " " + value.Get<std::string>().value_or("-") + "\n";
    auto const all = CXX::LoadAll(CXX::URI::FromPath(path).value());
    return text + std::to_string(all ? all->objects.size() : 0);
}
