#include "Saving.h"

#include "Output.h"

#include <cerrno>
#include <cstdio>
#include <system_error>

namespace TOOL
{
using KORVA::SYSTEM::ErrorNumber;
using KORVA::SYSTEM::NotKept;

std::string WordsOf(ErrorNumber error)
{
    switch (error)
    {
    case ENOENT:
    case ENOTDIR:
        return "no such file";
    case EACCES:
    case EPERM:
    case EROFS:
        return "permission denied";
    case EISDIR:
        return "is a directory";
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
        return "no space left";
    case EIO:
        return "input/output error";
    case EMFILE:
        return "too many open files";
    case ENFILE:
        return "too many open files in the whole system";
    case ENOMEM:
        return "out of memory";
    case ELOOP:
        return "too many symbolic links";
    case ENAMETOOLONG:
        return "the name is too long";
    default:
        return std::generic_category().message(error);
    }
}

std::string ReasonOf(ErrorNumber error)
{
    return error == ENOENT || error == ENOTDIR ? "no such directory" : WordsOf(error);
}

void Warn(std::string const& message)
{
    // What was printed before comes first, also where both go to one place.
    std::fflush(stdout);
    std::fprintf(stderr, "tessio: warning: %s\n", message.c_str());
}

void WarnOfSaved(std::string const& shown, ErrorNumber error, NotKept const& notKept)
{
    for (std::string const& what : notKept)
        Warn(Quoted(shown) + ": its " + Escaped(what) + " could not be kept");
    if (error != 0)
        Warn(Quoted(shown) + " is written, but that its name is on the disk could not be confirmed (" +
             WordsOf(error) + "): after a power cut the file may be what it was before");
}
} // namespace TOOL
