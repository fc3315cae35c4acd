// The system directories as a client gets them, for a user made up by the test.
#pragma once

#include "Companions/FileIO/Environment.h"
#include "Companions/FileIO/FileFixture.h"
#include "Support/RowName.h"
#include <tessio/FileIO/ISystemDirContainer.h>

namespace KORVA::TESTS
{
/// The user's home is /home/u, which need not be there; no variable but HOME is set.
class DirTest : public FileTest
{
protected:
    using Container = TInterfacePtr<FILE_SYS::ISystemDirContainer>;

    DirTest() { environment.Set("HOME", "/home/u"); }

    static Container NewContainer()
    {
        constexpr GUID kContainer{
            0xAEEF6E20, 0x3F08, 0x41B5, {0xB4, 0x60, 0xBA, 0x2E, 0x28, 0x8A, 0x76, 0x51}};
        return COREREGISTRY::CreateObject<FILE_SYS::ISystemDirContainer>(kContainer);
    }

    static std::string PathOf(FILE_SYS::IDir const* dir)
    {
        if (!dir)
            return "none";
        STRING::CoreString path(u"what stood here before");
        EXPECT_EQ(dir->GetPath(1, path), 0);
        return path.ToUTF8();
    }

    /// What a new container says now.
    static std::string Where(int32 type)
    {
        Container const container = NewContainer();
        return PathOf(container->GetDir(static_cast<FILE_SYS::DirType>(type)));
    }

    Environment environment;
};
} // namespace KORVA::TESTS
