// Prints what is in a record file: example_walk [PLUGIN...] FILE
#include <cstdio>
#include <tessio/CoreRegistry/CoreRegistry.h>
#include <tessio/Host/Host.h>
#include <tessio/ObjectModel/GUIDText.h>
#include <tessio/TessIO/FilePaths.h>
#include <tessio/TessIO/IDictionary.h>
#include <tessio/TessIO/IPersistentData.h>
#include <tessio/TessIO/IStringDictionary.h>
#include <tessio/TessIO/IURIRegistry.h>
#include <tessio/TessIO/RecordFormat.h>

using namespace KORVA;
using COREREGISTRY::CreateObject;
using IO::IDataProvider;

namespace
{
void Show(IObject const& object, int depth);

/// Plain values are found through the getters: each knows its own kind, and every number the two of numbers.
void ShowValue(IDictionary const& dictionary, unsigned int key)
{
    unsigned char const* bytes = nullptr;
    UniChar const* text = nullptr;
    int length = 0;
    GUID id{};
    long long whole = 0;
    double real = 0;
    if (dictionary.Get(key, &text, length) == kNoError)
        std::printf("\"%s\"\n", STRING::CoreString(text, static_cast<std::size_t>(length)).ToUTF8().c_str());
    else if (dictionary.Get(key, &bytes, length) == kNoError)
        std::printf("%d bytes\n", length);
    else if (dictionary.Get(key, id) == kNoError)
        std::printf("%s\n", GUIDToText(id).c_str());
    else if (dictionary.Get(key, whole) == kNoError && dictionary.Get(key, real) == kNoError)
        static_cast<double>(whole) == real ? std::printf("%lld\n", whole) : std::printf("%g\n", real);
}

struct Entries : IDictionary::IDictionaryFunctor
{
    Entries(IDictionary const& owner, int at) : dictionary(owner), depth(at) {}

    bool OnEntry(unsigned int key, IObject* value) override
    {
        std::printf("%*s%u: ", depth * 2, "", key);
        long long number = 0;
        dictionary.Get(key, number) == kNoError ? ShowValue(dictionary, key) : Show(*value, depth);
        return false;
    }

    IDictionary const& dictionary;
    int depth;
};

struct Strings : IStringDictionary::IForEachFunctor
{
    explicit Strings(int at) : depth(at) {}

    void OnEntry(STRING::CoreString const& key, STRING::CoreString const& value) override
    {
        std::printf("%*s%s = \"%s\"\n", depth * 2, "", key.ToUTF8().c_str(), value.ToUTF8().c_str());
    }

    int depth;
};

/// Ends the line that its caller began, and lists below it what is inside of the object.
void Show(IObject const& object, int depth)
{
    IObject* found = nullptr;
    static_cast<void>(object.QueryInterface(IO::IPERSISTENT_DATA, &found));
    GUID const classId = found ? static_cast<IO::IPersistentData*>(found)->GetUID() : GUID{};
    if (classId == IO::IID_DICTIONARY)
    {
        auto const& dictionary = static_cast<IDictionary const&>(object);
        std::printf("dictionary, %u entries\n", dictionary.Size());
        Entries entries(dictionary, depth + 1);
        dictionary.ForEach(entries);
    }
    else if (classId == IO::IID_STRING_DICTIONARY)
    {
        auto const& dictionary = static_cast<IStringDictionary const&>(object);
        std::printf("string dictionary, %u entries\n", dictionary.Size());
        Strings strings(depth + 1);
        dictionary.ForEach(strings);
    }
    else
        std::printf("object of class %s\n", GUIDToText(classId).c_str());
}

//! [walk]
/// One record after the other, to the end. False when something other than a record stands there.
bool Walk(IO::IDataProviderStream& stream)
{
    TInterfacePtr<IDataProvider> const provider = stream.GetDataProvider();
    while (!provider->AtEnd())
    {
        // A record tells its class and its length before anything else.
        int64 const start = provider->GetPosition();
        GUID classId{};
        int64 length = 0;
        stream >> classId >> length;
        int64 const left = provider->Size() - provider->GetPosition();
        bool const isRecord =
            provider->GetPosition() - start == IO::kRecordHeadSize && length >= 0 && length <= left;
        provider->SetPosition(start, IDataProvider::kFromStart);
        if (!isRecord)
            return false;
        TInterfacePtr<IObject> object;
        stream >> object.Out();
        std::printf("%lld: ", start);
        if (object)
            Show(*object, 0);
        else
            std::printf("skipped %lld bytes of the class %s\n", length, GUIDToText(classId).c_str());
    }
    return true;
}
//! [walk]
} // namespace

//! [main]
int main(int argc, char** argv)
{
    std::string error;
    auto const host = HOST::Host::Boot(error);
    for (int i = 1; host && i < argc - 1; ++i)
        if (!host->LoadPlugIn(argv[i], error))
            return std::fprintf(stderr, "%s\n", error.c_str()), 1;
    if (!host || argc < 2)
        return std::fprintf(stderr, "%s\n", host ? "usage: example_walk [PLUGIN...] FILE" : error.c_str()), 1;

    IO::IURIPtr uri;
    IO::IURIFilePtr file;
    TInterfacePtr<IO::IDataProviderStream> stream;
    if (IO::CreateFileURI(host->Registry(), uri, argv[argc - 1]) == kNoError)
        CreateObject<IO::IURIRegistry>(IO::IID_URI_REGISTRY)->Create(*uri, file, nullptr);
    if (!file || file->Read(stream) != kNoError)
        return std::fprintf(stderr, "cannot read %s\n", argv[argc - 1]), 1;
    if (!Walk(*stream))
        return std::fprintf(stderr, "%s: no record at %lld\n", argv[argc - 1],
                            stream->GetDataProvider()->GetPosition()),
               1;
}
//! [main]
