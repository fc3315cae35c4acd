// Says what is wrong with a record file, and writes what can be kept of it to another one.
#include <tessio/Records/Salvage/Salvage.h>
#include <tessio/Records/Tree/FileOrder.h>
#include <tessio/Records/Tree/Reader.h>

#include <cstdio>
#include <fstream>
#include <iterator>

using namespace KORVA::RECORDS;

namespace
{
int Fail(char const* file, std::string const& words)
{
    return std::fprintf(stderr, "%s: %s\n", file, words.c_str()), 1;
}

//! [look]
/// Prints what is damaged; the number of damaged records.
Result<int> Look(ByteView content, Order order)
{
    MemorySource const source(content);
    ReadOptions options;
    options.order = order;
    Reader reader(source, options);
    int damaged = 0;
    Result<KORVA::int64> const end = Walk(reader, [&](Node const& node, std::string const& path) {
        if (std::string const problem = Problem(node); !problem.empty())
        {
            std::printf("%s at %lld: %s\n", path.c_str(), node.offset, problem.c_str());
            ++damaged;
        }
        return true;
    });
    if (!end)
        return end.error();
    if (auto const rest = LeftOver(*end, source.Size()))
    {
        std::printf("at %lld: %s\n", rest->offset, rest->words.c_str());
        ++damaged;
    }
    return damaged;
}
//! [look]

//! [rescue]
/// A sound file of what is whole. Prints what is lost.
Result<Bytes> Rescue(ByteView content, Order order)
{
    Result<Salvaged> const salvaged = Salvage(content, order);
    if (!salvaged)
        return salvaged.error();
    for (Fate const& fate : salvaged->fates)
        if (fate.type == Fate::Type::kLost)
            std::printf("%lld bytes at %lld are lost\n", fate.length, fate.offset);
    return salvaged->content;
}
//! [rescue]
} // namespace

int main(int argc, char** argv)
{
    if (argc != 3)
        return std::fprintf(stderr, "usage: example_rescue DAMAGED RESULT\n"), 2;
    std::ifstream in(argv[1], std::ios::binary);
    if (!in)
        return Fail(argv[1], "can't be read");
    Bytes const content(std::istreambuf_iterator<char>(in), {});
    Result<Order> const order = OrderOf(content);
    if (!order)
        return Fail(argv[1], order.error().words);
    Result<int> const damaged = Look(content, *order);
    if (!damaged)
        return Fail(argv[1], damaged.error().words);
    if (*damaged == 0)
        return std::puts("nothing is damaged"), 0;
    Result<Bytes> const rescued = Rescue(content, *order);
    if (!rescued)
        return Fail(argv[1], rescued.error().words);
    std::ofstream out(argv[2], std::ios::binary);
    out.write(reinterpret_cast<char const*>(rescued->data()), static_cast<std::streamsize>(rescued->size()));
    return out.flush() ? 0 : Fail(argv[2], "can't be written");
}
