// Saves a dictionary and a text to the file of the first argument, loads them, and uses the plug-in of the
// second.
#include "Counter.h"
#include <tessio/CoreRegistry/CoreRegistry.h>
#include <tessio/Host/Host.h>
#include <tessio/Logger/KLoggerLibInterface.h>
#include <tessio/TessIO/IDictionary.h>
#include <tessio/TessIO/IURIRegistry.h>
#include <tessio/TessIO/LibUtils.h>

#include <cstdio>
#include <string>

using namespace KORVA;
using COREREGISTRY::CreateObject;

namespace
{
/// Sees what the plug-in logs, if both share one logging service.
class Sink final : public KLogSink
{
public:
    bool OnMessage(KLogRecord const& record) noexcept override
    {
        messages += std::string(record.sourcePath) == "PlugIn" ? 1 : 0;
        return false;
    }

    int messages = 0;
};

bool Save(IO::IURIFile& file)
{
    TInterfacePtr<IO::IDataProviderStream> stream;
    if (file.Create() != kNoError || file.Write(stream) != kNoError)
        return false;
    auto const dictionary = CreateObject<IDictionary>(IO::IID_DICTIONARY);
    dictionary->Put(1, 640);
    *stream << *dictionary;
    return true;
}

int Load(IO::IURIFile& file)
{
    TInterfacePtr<IO::IDataProviderStream> stream;
    TInterfacePtr<IDictionary> dictionary;
    int width = 0;
    if (file.Read(stream) == kNoError)
        *stream >> dictionary.Out();
    return dictionary && dictionary->Get(1, width) == kNoError ? width : -1;
}
} // namespace

int main(int argc, char** argv)
{
    std::string error;
    auto const host = argc == 3 ? HOST::Host::Boot(error) : nullptr;
    if (!host)
        return std::fprintf(stderr, "%s\n", argc == 3 ? error.c_str() : "usage: consumer FILE PLUGIN"), 1;
    Sink sink;
    KLoggerLibInterface::InstallSink(&sink);

    IO::IURIPtr uri;
    IO::IURIFilePtr file;
    IO::CreateURI(host->Registry(), uri, argv[1]);
    CreateObject<IO::IURIRegistry>(IO::IID_URI_REGISTRY)->Create(*uri, file, nullptr);
    if (!file || !Save(*file))
        return std::fprintf(stderr, "cannot write %s\n", argv[1]), 1;
    int const width = Load(*file);

    if (!host->LoadPlugIn(argv[2], error))
        return std::fprintf(stderr, "%s\n", error.c_str()), 1;
    int words = 0;
    {
        auto const counter = CreateObject<CONSUMER::ICounter>(CONSUMER::IID_COUNTER);
        words = counter ? counter->Words("one two  three") : -1;
    }
    KLoggerLibInterface::InstallSink(nullptr);
    std::printf("width %d, words %d, messages %d\n", width, words, sink.messages);
}
