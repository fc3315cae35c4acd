#include "System/User.h"

#include <pwd.h>
#include <unistd.h>

#include <cerrno>
#include <vector>

namespace KORVA::SYSTEM
{
std::string HomeInUserDatabase()
{
    constexpr std::size_t kRoom = 16384;
    constexpr std::size_t kMostRoom = std::size_t{1} << 20;
    std::vector<char> room(kRoom);
    passwd entry{};
    passwd* found = nullptr;
    for (;;)
    {
        int const error = getpwuid_r(getuid(), &entry, room.data(), room.size(), &found);
        if (error == ERANGE && room.size() < kMostRoom)
            room.resize(2 * room.size());
        else if (error != EINTR)
            return error == 0 && found && found->pw_dir ? found->pw_dir : "";
    }
}
} // namespace KORVA::SYSTEM
