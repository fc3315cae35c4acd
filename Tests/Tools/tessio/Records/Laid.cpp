#include "Tools/tessio/Records/Laid.h"

#include <algorithm>
#include <stdexcept>
#include <string>

namespace KORVA::TESTS
{
namespace
{
using TOOL::Order;

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

TOOL::RecordTree Read(Order order, Bytes const& content)
{
    TOOL::DecodeOptions options;
    options.order = order;
    return TOOL::Decode(content, options);
}
} // namespace KORVA::TESTS
