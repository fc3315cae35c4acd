// A program that uses every part of the friendly layer and links what it would link without.
#include "Cxx/TessIO.h"
#include "SDK/Cxx/Program/Second.h"

#include <cstdio>

using namespace KORVA;

namespace
{
CXX::Result<void> Use(std::filesystem::path const& path)
{
    auto dictionary = CXX::Dictionary::Create();
    auto strings = CXX::StringDictionary::Create();
    auto memory = CXX::DataProvider::Memory();
    if (!dictionary || !strings || !memory)
        return dictionary.error();
    dictionary->Set(1, 640);
    auto stream = CXX::Stream::Over(*memory);
    if (!stream)
        return stream.error();
    *stream << 1 << u"text" << *dictionary;
    auto const file = CXX::File::At(path);
    if (!file)
        return file.error();
    return strings->Set("key", u"value")
        .and_then([&] { return dictionary->Set(2, *strings); })
        .and_then([&] { return CXX::Save(path, *dictionary); })
        .and_then([&] { return CXX::Append(path, *strings); })
        .and_then([&] { return stream->Status(); });
}
} // namespace

int main(int, char** argv)
{
    CXX::Result<void> const used = Use(argv[0]);
    std::printf("%s\n%s\n", used.error().Message().c_str(), Second(argv[0]).c_str());
    return used ? 0 : 1;
}
