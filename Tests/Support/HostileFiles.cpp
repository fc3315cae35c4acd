#include "Support/HostileFiles.h"

#include "Support/Laid.h"
#include <tessio/ObjectModel/Types.h>

#include <stdexcept>
#include <string>
#include <string_view>

namespace KORVA::TESTS
{
namespace
{
/// Class id and length.
constexpr std::size_t kHeader = 24;

void Append(Bytes& bytes, Bytes const& more) { bytes.insert(bytes.end(), more.begin(), more.end()); }

void StoreAt(Bytes& bytes, std::size_t at, uint64 number, std::size_t size)
{
    for (std::size_t i = 0; i < size; ++i)
        bytes[at + i] = static_cast<unsigned char>(number >> (8 * i));
}

/// As many of them as there is room for, one behind the other.
Bytes Repeated(std::string_view words, std::size_t room)
{
    Bytes const one = Laid(kLittle, words);
    Bytes all;
    all.reserve(room);
    while (all.size() + one.size() <= room)
        Append(all, one);
    return all;
}

/// A dictionary of entries that each hold this record, under the keys 0, 1, 2...
Bytes Flat(std::string_view record, std::size_t size)
{
    Bytes file = Laid(kLittle, "Dict 0:8 0:4");
    file.reserve(size);
    Bytes entry = Laid(kLittle, "0:4 " + std::string(record));
    uint32 count = 0;
    for (; file.size() + entry.size() + 4 <= size; ++count)
    {
        StoreAt(entry, 0, count, 4);
        Append(file, entry);
    }
    Append(file, Laid(kLittle, "0:4"));
    StoreAt(file, 16, file.size() - kHeader, 8);
    StoreAt(file, 24, count, 4);
    return file;
}

/// Dictionaries in each other around `core`, each under the key 7.
Bytes Nest(int levels, Bytes const& core, uint32 count)
{
    constexpr std::size_t kInFront = kHeader + 8;
    constexpr std::size_t kBehind = 4;
    Bytes file;
    for (int level = 0; level < levels; ++level)
    {
        std::size_t const inner =
            core.size() + (kInFront + kBehind) * static_cast<std::size_t>(levels - 1 - level);
        Append(file, Laid(kLittle, "Dict " + std::to_string(inner + 8 + kBehind) + ":8 " +
                                       std::to_string(count) + ":4 7:4"));
    }
    Append(file, core);
    file.resize(file.size() + kBehind * static_cast<std::size_t>(levels));
    return file;
}

/// As deep as records are read, with `wide` in the innermost.
constexpr int kNested = 985;
constexpr std::size_t kOfNest = std::size_t{36} * kNested;

/// A string dictionary of these entries.
Bytes Texts(std::string_view entry, std::size_t size)
{
    Bytes file = Laid(kLittle, "Strings 0:8 0:4");
    Bytes const entries = Repeated(entry, size - file.size() - 4);
    Append(file, entries);
    Append(file, Laid(kLittle, "0:4"));
    StoreAt(file, 16, file.size() - kHeader, 8);
    StoreAt(file, 24, entries.size() / Laid(kLittle, entry).size(), 4);
    return file;
}

/// Dictionaries that each claim to reach to the end of the file and hold one entry: the next.
Bytes NestedFalseLengths(std::size_t size)
{
    Bytes file;
    for (uint32 level = 0; file.size() + kHeader + 8 <= size; ++level)
        Append(file, Laid(kLittle, "Dict 0x7FFFFFFFFFFF:8 1:4 " + std::to_string(level) + ":4"));
    return file;
}

/// Dictionaries in each other to the end of the file, far deeper than any reader follows.
Bytes DeeperThanIsRead(std::size_t size)
{
    Bytes file = Repeated("Dict 0:8 1:4 1:4", size);
    for (std::size_t at = 0; at < file.size(); at += kHeader + 8)
        StoreAt(file, at + 16, file.size() - at - kHeader, 8);
    return file;
}

/// String dictionaries that all reach to the end of the file. Each text of one holds the beginning of the
/// next: whoever looks for records everywhere reads the same texts once for each.
Bytes OverlappingTexts(std::size_t size)
{
    constexpr std::size_t kOne = kHeader + 8;
    Bytes file = Repeated("Strings 0:8 0:4 28:4", size - kOne);
    file.resize(file.size() + kHeader + 4);
    Bytes const end = Laid(kLittle, "0:4");
    Append(file, end);
    std::size_t const texts = file.size() / kOne - 1;
    for (std::size_t i = 0; i < texts; ++i)
    {
        StoreAt(file, i * kOne + 16, file.size() - i * kOne - kHeader, 8);
        StoreAt(file, i * kOne + 24, (texts - i) / 2, 4);
    }
    return file;
}
} // namespace

/// A dictionary that covers the file, with a false count. In front stand pairs of a record that claims to end
/// far behind the file, and of a dictionary that reads on from there; `behind` follows them to the end.
Bytes ReadOnBehindFalseEnds(std::size_t pairs, std::string_view reader, std::string_view behind,
                            std::size_t size)
{
    Bytes file = Laid(kLittle, "Dict 0:8 0xFFFFFFFF:4");
    for (std::size_t i = 0; i < pairs; ++i)
    {
        Append(file, Laid(kLittle, "24:4 {00000000-0000-0000-0000-000000000001} 0x7FFFFFFF:8"));
        Append(file, Laid(kLittle, "28:4 " + std::string(reader)));
    }
    for (uint32 key = 100; file.size() + 56 <= size; ++key)
        Append(file, Laid(kLittle, behind.empty() ? "0:8 0:8 0:8 0:8 0:8 0:8 0:8"
                                                  : std::to_string(key) + ":4 " + std::string(behind)));
    StoreAt(file, 16, file.size() - kHeader, 8);
    return file;
}

std::vector<HostileKind> const& HostileKinds()
{
    static std::vector<HostileKind> const sKinds = {
        // What each claims is not there, and each claims it once more.
        {"FlatFalseCounts", [](std::size_t size) { return Flat("Dict 8:8 0xFFFFFFFF:4 0:4", size); }},
        {"FlatFalseByteLengths", [](std::size_t size) { return Flat("Value 8:8 'CHAR 0x7FFFFFFF:4", size); }},
        {"FlatFalseTextLengths",
         [](std::size_t size) { return Flat("Value 12:8 'UNIC 0x7FFFFFFE:4 0:4", size); }},
        {"FlatFalseStringCounts",
         [](std::size_t size) { return Flat("Strings 8:8 0xFFFFFFFF:4 0:4", size); }},
        {"FlatFalseStringLengths", [](std::size_t size) { return Flat("URI 8:8 0x7FFFFFFE:4 0:4", size); }},
        {"FlatFalseAggregates", [](std::size_t size) { return Flat("Value 8:8 'UNNT 0x7FFFFFFF:4", size); }},
        {"FlatClaimsOfAMebibyte", [](std::size_t size) { return Flat("URI 8:8 0x100000:4 0:4", size); }},
        {"TopClaimsOfAMebibyte", [](std::size_t size) { return Repeated("URI 8:8 0x100000:4 0:4", size); }},
        {"TopClaimsOfAMebibyteInBytes",
         [](std::size_t size) { return Repeated("Value 12:8 'CHAR 0x100000:4 0:4", size); }},
        {"TopFalseCounts", [](std::size_t size) { return Repeated("Dict 8:8 0xFFFFFFFF:4 0:4", size); }},
        {"TopFalseStringCounts",
         [](std::size_t size) { return Repeated("Strings 8:8 0xFFFFFFFF:4 0:4", size); }},
        // Deep and wide: whatever is kept for each level and each record is kept for their product.
        {"NestWithAWideBottom",
         [](std::size_t size) { return Nest(kNested, Flat("Value 8:8 'UNNT 0:4", size - kOfNest), 1); }},
        {"NestWithAWideEmptyBottom",
         [](std::size_t size) { return Nest(kNested, Flat("Dict 0:8", size - kOfNest), 1); }},
        {"NestWithAWideBottomOfTexts",
         [](std::size_t size) { return Nest(kNested, Texts("0:4 0:4", size - kOfNest), 1); }},
        {"NestOfFalseCounts",
         [](std::size_t size) {
             return Nest(kNested, Flat("Dict 8:8 0xFFFFFFFF:4 0:4", size - kOfNest), 0xFFFFFFFF);
         }},
        {"NestedFalseLengths", &NestedFalseLengths},
        {"DeeperThanIsRead", &DeeperThanIsRead},
        {"OverlappingTexts", &OverlappingTexts},
        {"TextsBehindFalseEnds",
         [](std::size_t size) { return ReadOnBehindFalseEnds(280, "Strings 4:8 0xFFFFFFFF:4", "", size); }},
        {"LeavesBehindFalseEnds",
         [](std::size_t size) {
             return ReadOnBehindFalseEnds(300, "Dict 4:8 0xFFFFFFFF:4",
                                          "Value 0x7FFFFFFF:8 'S32V 7:8 7:8 0:4", size);
         }},
        {"FlatFalseEnds", [](std::size_t size) { return Flat("Value 0x7FFFFFFF:8 'UNNT 0:4", size); }},
        // Something to say of each of very many small things.
        {"EmptyRecords", [](std::size_t size) { return Repeated("Dict 0:8", size); }},
        {"FlatEmptyRecords", [](std::size_t size) { return Flat("Value 0:8", size); }},
        {"FlatEmptyDictionaries", [](std::size_t size) { return Flat("Dict 8:8 0:4 0:4", size); }},
        {"Zeros", [](std::size_t size) { return Bytes(size); }},
        {"UnknownClasses",
         [](std::size_t size) { return Repeated("{76543210-BA98-4EDC-9F01-23456789ABCD} 1:8 =00", size); }},
        {"SameKeys",
         [](std::size_t size) {
             Bytes file = Flat("Value 8:8 'UNNT 0:4", size);
             for (std::size_t at = kHeader + 4; at + 36 < file.size(); at += 36)
                 StoreAt(file, at, 7, 4);
             return file;
         }},
        {"EmptyTexts", [](std::size_t size) { return Texts("0:4 0:4", size); }},
        {"OddTexts", [](std::size_t size) { return Texts("1:4 1:4", size); }},
        {"NegativeTexts", [](std::size_t size) { return Texts("-1:4 -1:4", size); }},
        {"ShortTexts", [](std::size_t size) { return Texts("2:4 \"a\" 2:4 \"b\"", size); }},
    };
    return sKinds;
}

HostileKind const& HostileKindNamed(char const* name)
{
    for (HostileKind const& kind : HostileKinds())
        if (std::string_view(kind.name) == name)
            return kind;
    throw std::invalid_argument(std::string("no such kind: ") + name);
}
} // namespace KORVA::TESTS
