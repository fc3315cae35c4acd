#include "LinkedObjects.h"

#include "EntryPoints.h"
#include <tessio/Host/Host.h>
#include <tessio/TessIO/TessIO.h>

// The file-system companion's entry points. An archive can't have the names that every plug-in has.
extern "C" KORVA::HOST::PlugInFunction KorvaFileIOInit;
extern "C" KORVA::HOST::PlugInFunction KorvaFileIOShutdown;

namespace KORVA::HOST
{
namespace
{
template <class Function>
auto Plain(Function* function)
{
    return reinterpret_cast<void (*)()>(function);
}
} // namespace

std::span<LinkedFunction const> LinkedFunctions()
{
    // Whoever asks for other files than these wants them loaded. Never destroyed: a host may end last.
    static Host::Options const& sNames = *new Host::Options;
    static LinkedFunction const sFunctions[] = {
        {sNames.fileSystem, kPlugInInit, Plain(&KorvaFileIOInit)},
        {sNames.fileSystem, kPlugInShutdown, Plain(&KorvaFileIOShutdown)},
        {sNames.library, kLibraryInit, Plain(&IO::Init)},
        {sNames.library, kLibraryShutdown, Plain(&IO::Shutdown)},
    };
    return sFunctions;
}
} // namespace KORVA::HOST
