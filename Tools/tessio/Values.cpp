#include "Values.h"

#include "Failure.h"
#include "Output.h"
#include "RelativeNames.h"
#include "Saving.h"
#include "System/Files.h"
#include "System/Transfer.h"
#include <tessio/CoreRegistry/CoreRegistry.h>
#include <tessio/CoreString/CoreString.h>
#include <tessio/ObjectModel/GUIDText.h>
#include <tessio/TessIO/ClassIds.h>

#include <fmt/format.h>

#include <bit>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <limits>

namespace TOOL
{
namespace
{
using namespace KORVA;

[[noreturn]] void Unfit(std::string const& text, std::string const& type, std::string const& why)
{
    throw Failure(Exit::kUsage, Quoted(text) + " is no " + type + ": " + why);
}

template <class Number>
Number Whole(std::string const& text, std::string const& type)
{
    using Limits = std::numeric_limits<Number>;
    bool const negative = text.starts_with('-');
    std::string_view const digits = std::string_view(text).substr(negative || text.starts_with('+') ? 1 : 0);
    std::optional<uint64> const magnitude = NumberOf(digits);
    if (!magnitude)
        Unfit(text, type, "not a whole number of at most 64 bits");
    auto const largest = static_cast<uint64>(Limits::max());
    uint64 const limit = negative ? (Limits::is_signed ? largest + 1 : 0) : largest;
    if (*magnitude > limit)
        Unfit(text, type, fmt::format("the range is {} to {}", Limits::min(), Limits::max()));
    return static_cast<Number>(negative ? 0 - *magnitude : *magnitude);
}

template <class Number>
Number Floating(std::string const& text, std::string const& type)
{
    std::string_view digits = text;
    bool const negative = digits.starts_with('-');
    if (negative || digits.starts_with('+'))
        digits.remove_prefix(1);
    bool const hex = digits.starts_with("0x") || digits.starts_with("0X");
    if (hex)
        digits.remove_prefix(2);
    Number value = 0;
    auto const [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value,
                                              hex ? std::chars_format::hex : std::chars_format::general);
    if (error == std::errc::result_out_of_range)
        Unfit(text, type, "out of range");
    if (error != std::errc() || end != digits.data() + digits.size() || digits.starts_with('-'))
        Unfit(text, type, "not a number");
    if (hex && !std::isfinite(value))
        Unfit(text, type, "not a number");
    return negative ? -value : value;
}

std::vector<unsigned char> HexBytes(std::string const& text)
{
    std::vector<unsigned char> bytes;
    int digits = 0;
    int high = 0;
    for (char const c : text)
    {
        if (c == ' ' || c == ':' || c == '\n' || c == '\t')
            continue;
        std::size_t const value = std::string_view("0123456789abcdefABCDEF").find(c);
        if (value == std::string_view::npos)
            Unfit(text, "byte string", "hexadecimal digits in pairs are");
        int const nibble = static_cast<int>(value < 16 ? value : value - 6);
        if (++digits % 2 == 0)
            bytes.push_back(static_cast<unsigned char>(high * 16 + nibble));
        high = nibble;
    }
    if (digits % 2 != 0)
        Unfit(text, "byte string", "half a byte is left over");
    return bytes;
}

std::vector<unsigned char> FileBytes(std::string const& name)
{
    constexpr std::size_t kStep = std::size_t{1} << 20;
    constexpr auto kMost = static_cast<std::size_t>(std::numeric_limits<int>::max());
    SYSTEM::ErrorNumber error = 0;
    SYSTEM::Descriptor const file = SYSTEM::OpenFileAndWait(name, error);
    if (!file)
        throw Failure(error == ENOENT || error == ENOTDIR ? Exit::kNotFound : Exit::kInputOutput,
                      "cannot open " + Quoted(name) + ": " + WordsOf(error));
    std::vector<unsigned char> bytes;
    std::size_t came = kStep;
    while (came == kStep)
    {
        std::size_t const before = bytes.size();
        if (before > kMost)
            throw Failure(Exit::kUsage, Quoted(name) + ": a byte string holds 2147483647 bytes at most");
        bytes.resize(before + kStep);
        if ((error = SYSTEM::ReadAll(file.Get(), bytes.data() + before, came)) != 0)
            throw Failure(Exit::kInputOutput, "cannot read " + Quoted(name) + ": " + WordsOf(error));
        bytes.resize(before + came);
    }
    return bytes;
}

void PutBytes(IDictionary& dictionary, unsigned int key, std::vector<unsigned char> const& bytes)
{
    if (bytes.empty())
        throw Failure(Exit::kUsage, "a dictionary holds no empty byte strings");
    if (bytes.size() > static_cast<std::size_t>(std::numeric_limits<int>::max()))
        throw Failure(Exit::kUsage, "a byte string holds 2147483647 bytes at most");
    dictionary.Put(key, bytes.data(), static_cast<int>(bytes.size()));
}

void PutText(IDictionary& dictionary, unsigned int key, std::string const& text)
{
    STRING::CoreString const units = TextArgument(text, "text");
    if (units.empty())
        throw Failure(Exit::kUsage, "a dictionary holds no empty texts");
    if (units.size() > static_cast<std::size_t>(std::numeric_limits<int>::max() / 2))
        throw Failure(Exit::kUsage, "a text holds 1073741823 units at most");
    dictionary.Put(key, units.data(), static_cast<int>(units.size()));
}

void PutDictionary(IDictionary& dictionary, unsigned int key, std::string const& text)
{
    if (!text.empty())
        throw Failure(Exit::kUsage, "a dictionary takes no value: put its entries by their own keys");
    auto const nested = COREREGISTRY::CreateObject<IDictionary>(IO::IID_DICTIONARY);
    if (nested)
        dictionary.Put(key, nested.Get());
}

void PutURI(IDictionary& dictionary, unsigned int key, std::string const& text)
{
    auto const uri = COREREGISTRY::CreateObject<IO::IURI>(IO::IID_IURI);
    if (!uri)
        return;
    uri->Init(TextArgument(text, "location"));
    if (uri->GetAbsoluteString().empty())
        Unfit(text, "uri", "nothing can be made of it");
    dictionary.Put(key, uri.Get());
}

void PutRelativeURI(IDictionary& dictionary, unsigned int key, std::string const& text)
{
    auto const [directory, way] = RelativeNameOf(text);
    dictionary.Put(key, RelativeURIOf(directory, way, Exit::kUsage).Get());
}

using Put = void (*)(IDictionary&, unsigned int, std::string const&, std::string const&);

template <class Number>
void PutWhole(IDictionary& dictionary, unsigned int key, std::string const& type, std::string const& text)
{
    dictionary.Put(key, Whole<Number>(text, type));
}

template <class Number>
void PutFloating(IDictionary& dictionary, unsigned int key, std::string const& type, std::string const& text)
{
    dictionary.Put(key, Floating<Number>(text, type));
}

struct TypeRow
{
    char const* name;
    Put put;
};

constexpr TypeRow kTypes[] = {
    {"int8", &PutWhole<signed char>},
    {"uint8", &PutWhole<unsigned char>},
    {"int16", &PutWhole<short>},
    {"uint16", &PutWhole<unsigned short>},
    {"int32", &PutWhole<int>},
    {"uint32", &PutWhole<unsigned int>},
    {"int64", &PutWhole<long long>},
    {"uint64", &PutWhole<unsigned long long>},
    {"float", &PutFloating<float>},
    {"double", &PutFloating<double>},
    {"guid",
     [](IDictionary& dictionary, unsigned int key, std::string const&, std::string const& text) {
         std::optional<GUID> const id = GUIDFromText(text);
         if (!id)
             Unfit(text, "guid", "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX} is");
         dictionary.Put(key, *id);
     }},
    {"bytes", [](IDictionary& dictionary, unsigned int key, std::string const&,
                 std::string const& text) { PutBytes(dictionary, key, HexBytes(text)); }},
    {"file", [](IDictionary& dictionary, unsigned int key, std::string const&,
                std::string const& text) { PutBytes(dictionary, key, FileBytes(text)); }},
    {"text", [](IDictionary& dictionary, unsigned int key, std::string const&,
                std::string const& text) { PutText(dictionary, key, text); }},
    {"uri", [](IDictionary& dictionary, unsigned int key, std::string const&,
               std::string const& text) { PutURI(dictionary, key, text); }},
    {"relative", [](IDictionary& dictionary, unsigned int key, std::string const&,
                    std::string const& text) { PutRelativeURI(dictionary, key, text); }},
    {"dict", [](IDictionary& dictionary, unsigned int key, std::string const&,
                std::string const& text) { PutDictionary(dictionary, key, text); }},
};
} // namespace

void PutValue(IDictionary& dictionary, unsigned int key, std::string const& type, std::string const& text)
{
    for (TypeRow const& row : kTypes)
        if (type == row.name)
            return row.put(dictionary, key, type, text);
    throw Failure(Exit::kUsage, Quoted(type) + " is no type; the types are " +
                                    fmt::format("{}", fmt::join(ValueTypes(), " ")));
}

std::vector<std::string> const& ValueTypes()
{
    static std::vector<std::string> const sNames = [] {
        std::vector<std::string> names;
        for (TypeRow const& row : kTypes)
            names.emplace_back(row.name);
        return names;
    }();
    return sNames;
}

unsigned int KeyOf(std::string const& text) { return Whole<unsigned int>(text, "key"); }
} // namespace TOOL
