#include "Support/Laid.h"

#include <algorithm>
#include <stdexcept>
#include <string>

namespace KORVA::TESTS
{
namespace
{
void PutNumber(Bytes& bytes, Order order, uint64 number, std::size_t size)
{
    for (std::size_t i = 0; i < size; ++i)
        bytes.push_back(static_cast<unsigned char>(number >> (8 * (order == kBig ? size - 1 - i : i))));
}

uint64 Number(std::string const& word)
{
    if (word.starts_with('-'))
        return static_cast<uint64>(std::stoll(word));
    return std::stoull(word, nullptr, word.starts_with("0x") ? 16 : 10);
}

void PutId(Bytes& bytes, Order order, std::string const& text)
{
    PutNumber(bytes, order, std::stoull(text.substr(1, 8), nullptr, 16), 4);
    PutNumber(bytes, order, std::stoull(text.substr(10, 4), nullptr, 16), 2);
    PutNumber(bytes, order, std::stoull(text.substr(15, 4), nullptr, 16), 2);
    Bytes const rest = Hex(text.substr(20, 4) + text.substr(25, 12));
    bytes.insert(bytes.end(), rest.begin(), rest.end());
}

void PutWord(Bytes& bytes, Order order, std::string const& word)
{
    if (word == "Dict")
        return PutId(bytes, order, "{73E90CD5-BBC6-4326-8241-9BB4250B1B05}");
    if (word == "Value")
        return PutId(bytes, order, "{73E90C21-BBC6-4326-8241-9BB4250B1B05}");
    if (word == "Strings")
        return PutId(bytes, order, "{CD210A56-284C-4B7C-813F-42ADDF774853}");
    if (word == "URI")
        return PutId(bytes, order, "{2517B49E-BCE5-404C-8524-3A6EC3C3B633}");
    if (word == "Relative")
        return PutId(bytes, order, "{4E278406-081C-48E2-97C3-C6C6D87280ED}");
    if (word.starts_with('{'))
        return PutId(bytes, order, word);
    if (word.starts_with('\''))
        return PutNumber(bytes, order,
                         static_cast<uint64>(word[1]) << 24 | static_cast<uint64>(word[2]) << 16 |
                             static_cast<uint64>(word[3]) << 8 | static_cast<uint64>(word[4]),
                         4);
    if (word.starts_with('"'))
    {
        for (char const c : word.substr(1))
            PutNumber(bytes, order, static_cast<unsigned char>(c), 2);
        return;
    }
    if (word.starts_with('^'))
    {
        for (std::size_t at = 0; at < word.size(); at += 5)
            PutNumber(bytes, order, std::stoull(word.substr(at + 1, 4), nullptr, 16), 2);
        return;
    }
    if (word.starts_with('='))
    {
        Bytes const plain = Hex(word.substr(1));
        bytes.insert(bytes.end(), plain.begin(), plain.end());
        return;
    }
    std::size_t const colon = word.find(':');
    if (colon == std::string::npos)
        throw std::invalid_argument("no such word: " + word);
    PutNumber(bytes, order, Number(word.substr(0, colon)), std::stoul(word.substr(colon + 1)));
}
} // namespace

Bytes Laid(Order order, std::string_view words)
{
    Bytes bytes;
    while (!words.empty())
    {
        if (words.front() == ' ' || words.front() == '\n')
        {
            words.remove_prefix(1);
            continue;
        }
        // The closing quote of a text ends it, and is left out.
        bool const isText = words.front() == '"';
        std::size_t const end =
            std::min(isText ? words.find('"', 1) : words.find_first_of(" \n"), words.size());
        PutWord(bytes, order, std::string(words.substr(0, end)));
        words.remove_prefix(std::min(isText ? end + 1 : end, words.size()));
    }
    return bytes;
}

// By offset: the dictionary 0, its entries 32, 84, 128, 178 and 208, its aggregate 276, the URI 308, the
// relative one 358, the last one 416.
char const kEvery[] = R"(
    Dict 284:8 5:4
        1:4 Value 24:8 'S32V 7:8 0x401C000000000000:8 0:4
        2:4 Value 16:8 'UNIC 4:4 =68006900 0:4
        3:4 Strings 22:8 1:4 2:4 "a" 4:4 "xy" 0:4
        4:4 {76543210-BA98-4EDC-9F01-23456789ABCD} 2:8 =0102
        5:4 Value 24:8 'GUID =67452301AB89EF010123456789ABCDEF 0:4
        1:4 {11111111-2222-3333-4444-555555555555} Value 8:8 'UNNT 0:4
    URI 26:8 18:4 "file:///a" 0:4
    Relative 34:8 8:4 "file" 0:4 0:4 2:4 "a" 3:4 0:4
    {76543210-BA98-4EDC-9F01-23456789ABCD} 2:8 =0102)";
} // namespace KORVA::TESTS
