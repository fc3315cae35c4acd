#include "CoreRegistry/CoreRegistry.h"
#include "Host/Host.h"
#include "TessIO/IDictionary.h"
#include "TessIO/IURIRegistry.h"
#include "TessIO/LibUtils.h"
#include <cstdio>

using namespace KORVA;
using COREREGISTRY::CreateObject;

int main(int argc, char** argv)
{
    std::string error;
    auto const host = HOST::Host::Boot(error);
    if (!host || argc != 2)
        return std::fprintf(stderr, "%s\n", host ? "usage: example_host FILE" : error.c_str()), 1;
    IO::IURIPtr uri;
    IO::IURIFilePtr file;
    IO::CreateURI(host->Registry(), uri, argv[1]);
    CreateObject<IO::IURIRegistry>(IO::IID_URI_REGISTRY)->Create(*uri, file, nullptr);

    TInterfacePtr<IO::IDataProviderStream> stream;
    if (!file || file->Create() != kNoError || file->Write(stream) != kNoError)
        return std::fprintf(stderr, "cannot write %s\n", argv[1]), 1;
    auto const settings = CreateObject<IDictionary>(IO::IID_DICTIONARY);
    settings->Put(1, 640);
    settings->Put(2, u"Tuesday", 7);
    stream->GetDataProvider()->SetSize(0);
    *stream << *settings;
    stream.Reset(); // closes the file

    TInterfacePtr<IDictionary> loaded;
    int width = 0;
    if (file->Read(stream) == kNoError)
        *stream >> loaded.Out();
    if (!loaded || loaded->Get(1, width) != kNoError)
        return std::fprintf(stderr, "cannot read %s\n", argv[1]), 1;
    std::printf("%u entries, width %d\n", loaded->Size(), width);
}
