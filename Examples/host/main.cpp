#include <tessio/Cxx/TessIO.h>
#include <tessio/Host/Host.h>

#include <cstdio>

using namespace KORVA;

int main(int argc, char** argv)
{
    std::string reason;
    auto const host = HOST::Host::Boot(reason);
    auto const complain = [](std::string const& text) {
        return std::fprintf(stderr, "%s\n", text.c_str()), 1;
    };
    if (!host || argc != 2)
        return complain(host ? "usage: example_host FILE" : reason);

    auto settings = CXX::Dictionary::Create().value();
    settings.Set(1, 640);
    if (auto const set = settings.Set(2, u"Tuesday"); !set)
        return complain(set.error().Message());
    if (auto const saved = CXX::Save(argv[1], settings); !saved)
        return complain(saved.error().Message());
    auto const loaded = CXX::Load<CXX::Dictionary>(argv[1]);
    if (!loaded)
        return complain(loaded.error().Message());
    auto const width = loaded->Get<int>(1);
    if (!width)
        return complain(width.error().Message());
    std::printf("%zu entries, width %d\n", loaded->Size(), *width);
}
