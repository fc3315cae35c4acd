#include "LastComponent.h"

namespace KORVA::IO
{
STRING::CoreString LastComponent(STRING::CoreString const& path)
{
    if (path.size() < 2)
        return path;
    std::size_t separator = path.rfind(u'/', path.size() - 2);
    if (separator == STRING::CoreString::npos)
        separator = path.rfind(u'\\', path.size() - 2);
    return separator == STRING::CoreString::npos ? path : path.substr(separator + 1);
}
} // namespace KORVA::IO
