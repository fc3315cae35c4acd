// A program that uses every part of the friendly layer and links what it would link without.
#include "SDK/Cxx/Program/Second.h"
#include <tessio/Cxx/TessIO.h>

#include <cstdio>

using namespace KORVA;

namespace
{
//! [update]
/// Counts one more visit, together with everybody else who counts in that file.
CXX::Result<void> CountVisit(std::filesystem::path const& path)
{
    auto const counted = CXX::Update<CXX::Dictionary>(
        path, [](CXX::Dictionary& counts) { counts.Set(1, counts.Get<int>(1).value_or(0) + 1); });
    if (counted.error().Code() != IO::kFileNotFound)
        return counted;
    auto first = CXX::Dictionary::Create();
    if (!first)
        return first.error();
    first->Set(1, 1);
    // A state that nobody set stands for no file, so one of all who come here makes it.
    CXX::FileState none;
    auto const made = CXX::Save(path, *first, {.state = &none});
    return made.error().Code() == CXX::kChanged ? CountVisit(path) : made;
}
//! [update]

//! [state]
/// Saves what somebody has edited since `Load` told the state of the file, unless the file is another one
/// now.
CXX::Result<void> SaveEdited(std::filesystem::path const& path, CXX::Dictionary const& edited,
                             CXX::FileState& loaded)
{
    auto const saved = CXX::Save(path, edited, {.state = &loaded});
    // The new content is there, whole. Only a power cut may bring the old one back.
    return saved.error().Code() == CXX::kNotFlushed ? CXX::Result<void>() : saved;
}
//! [state]

//! [close]
/// Writes in place, where a crash may leave a part.
CXX::Result<void> WriteInPlace(std::filesystem::path const& path, int number)
{
    auto const file = CXX::File::At(path);
    auto stream = file ? file->Write() : CXX::Result<CXX::Stream>(file.error());
    if (!stream)
        return stream.error();
    *stream << number;
    auto const status = stream->Status();
    auto const closed = stream->Close();
    return status ? closed : status;
}
//! [close]

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
        .and_then([&] { return stream->Status(); })
        .and_then([&] { return CountVisit(path); })
        .and_then([&] {
            CXX::FileState state;
            auto const loaded = CXX::Load<CXX::Dictionary>(path, {.state = &state});
            return loaded ? SaveEdited(path, *loaded, state) : CXX::Result<void>(loaded.error());
        })
        .and_then([&] { return WriteInPlace(path, 7); });
}
} // namespace

int main(int, char** argv)
{
    CXX::Result<void> const used = Use(argv[0]);
    std::printf("%s\n%s\n", used.error().Message().c_str(), Second(argv[0]).c_str());
    return used ? 0 : 1;
}
