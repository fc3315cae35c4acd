// Measured behaviour of the URL object and the text services around it, line by line.
#include "Platform/URL.h"
#include "Platform/StringServices.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <fstream>
#include <string>
#include <vector>

namespace
{
using KORVA::PLATFORM::URL;
using KORVA::PLATFORM::URLRef;
using Json = nlohmann::json;
namespace PLATFORM = KORVA::PLATFORM;

/// JSON can't carry a lone surrogate: \ud800 to \udfff stand as U+E800 to U+EFFF, which the data does not
/// use.
constexpr int kMarkerOffset = 0xE800 - 0xD800;

bool IsLead(int unit) { return unit >= 0xD800 && unit < 0xDC00; }

bool IsTrail(int unit) { return unit >= 0xDC00 && unit < 0xE000; }

/// The line with lone surrogates marked.
std::string Parseable(std::string line)
{
    auto const unitAt = [&line](std::size_t at) {
        bool const escape = at + 6 <= line.size() && line[at] == '\\' && line[at + 1] == 'u';
        return escape ? std::stoi(line.substr(at + 2, 4), nullptr, 16) : -1;
    };
    for (std::size_t i = line.find('\\'); i != std::string::npos; i = line.find('\\', i))
    {
        int const unit = unitAt(i);
        if (unit < 0)
            i += 2;
        else if (IsLead(unit) && IsTrail(unitAt(i + 6)))
            i += 12;
        else
        {
            if (IsLead(unit) || IsTrail(unit))
            {
                line[i + 2] = 'e';
                line[i + 3] = "89abcdef"[(unit - 0xD800) >> 8];
            }
            i += 6;
        }
    }
    return line;
}

std::u16string Wide(std::string const& text)
{
    std::u16string units = PLATFORM::FromUTF8(text).value();
    for (char16_t& unit : units)
        if (unit >= 0xE800 && unit < 0xF000)
            unit = static_cast<char16_t>(unit - kMarkerOffset);
    return units;
}

Json Text(std::optional<std::u16string> const& text)
{
    if (!text)
        return nullptr;
    std::u16string marked = *text;
    for (std::size_t i = 0; i < marked.size(); ++i)
        if (IsLead(marked[i]) && i + 1 < marked.size() && IsTrail(marked[i + 1]))
            ++i;
        else if (IsLead(marked[i]) || IsTrail(marked[i]))
            marked[i] = static_cast<char16_t>(marked[i] + kMarkerOffset);
    return PLATFORM::ToUTF8(marked).value();
}

Json Describe(URLRef const& url)
{
    if (!url)
        return nullptr;
    Json parts = Json::object();
    auto put = [&parts](char const* name, std::optional<std::u16string> const& part) {
        if (part)
            parts[name] = Text(part);
    };
    put("scheme", url->Scheme());
    put("host", url->Host());
    if (url->Port())
        parts["port"] = *url->Port();
    put("path", url->Path());
    put("parameterString", url->ParameterString());
    put("query", url->Query());
    put("absoluteString", url->AbsoluteString());
    return parts;
}

std::vector<Json> Lines(std::string const& kind)
{
    std::ifstream file(TESSIO_SOURCE_DIR "/Tests/Data/URLVectors.jsonl");
    std::vector<Json> rows;
    for (std::string line; std::getline(file, line);)
    {
        Json row = Json::parse(Parseable(line));
        if (row["kind"] == kind)
            rows.push_back(std::move(row));
    }
    return rows;
}

URLRef Make(Json const& how)
{
    std::string const kind = how[0];
    std::u16string const text = Wide(how[1]);
    if (kind == "f" || kind == "d")
        return URL::FromFilePath(text, kind == "d");
    std::string const base = how[2];
    URLRef const url = URL::FromString(text, base.empty() ? URLRef() : URL::FromString(Wide(base)));
    return kind == "a" ? URL::FromString(url->AbsoluteString().value()) : url;
}

TEST(URLVectors, Tables)
{
    auto const rows = Lines("tables");
    ASSERT_EQ(rows.size(), 1u);
    auto const holds = [](Json const& list, int value) {
        return std::find(list.begin(), list.end(), Json(value)) != list.end();
    };
    for (int code = 1; code < 128; ++code)
    {
        std::u16string const text(1, static_cast<char16_t>(code));
        EXPECT_EQ(PLATFORM::AddPercentEscapes(text) != text, holds(rows[0]["escaped_ascii"], code)) << code;
        EXPECT_EQ(static_cast<bool>(URL::FromString(text)), holds(rows[0]["legal_ascii"], code)) << code;
        EXPECT_EQ(PLATFORM::EscapeFilePath(text) != std::string(1, static_cast<char>(code)),
                  holds(rows[0]["escaped_ascii_in_file_path"], code))
            << code;
    }
    std::string bytes;
    std::u16string units;
    for (int i = 0; i < 128; ++i)
    {
        bytes += static_cast<char>(0x80 + i);
        units += static_cast<char16_t>(rows[0]["mac_roman_80_ff"][static_cast<std::size_t>(i)].get<int>());
    }
    EXPECT_EQ(PLATFORM::FromMacRoman(bytes), units);
    EXPECT_EQ(PLATFORM::ToMacRoman(units), bytes);
}

TEST(URLVectors, Texts)
{
    auto const rows = Lines("url");
    ASSERT_EQ(rows.size(), 927u);
    for (Json const& row : rows)
    {
        SCOPED_TRACE(row["in"].dump());
        std::u16string const in = Wide(row["in"]);
        std::u16string const composed = PLATFORM::ComposeCanonical(in);
        EXPECT_EQ(composed, Wide(row["composed"]));
        std::optional<std::u16string> const escaped = PLATFORM::AddPercentEscapes(composed);
        EXPECT_EQ(Text(escaped), row["escaped"]);
        EXPECT_EQ(Text(PLATFORM::ReplacePercentEscapes(in)), row["unescaped"]);
        EXPECT_EQ(escaped ? Describe(URL::FromString(*escaped)) : Json(nullptr), row["from_escaped"]);
        EXPECT_EQ(Describe(URL::FromString(in)), row["from_raw"]);
        if (!row.contains("file_url"))
            continue;
        auto const fileURL = [&in](bool isDirectory) {
            URLRef const url = URL::FromFilePath(in, isDirectory);
            return url ? Text(url->AbsoluteString()) : Json(nullptr);
        };
        Json const& expected = row["file_url"];
        EXPECT_EQ(fileURL(false), expected.is_null() ? Json(nullptr) : expected["file"]);
        EXPECT_EQ(fileURL(true), expected.is_null() ? Json(nullptr) : expected["directory"]);
    }
}

TEST(URLVectors, Resolutions)
{
    auto const rows = Lines("resolve");
    ASSERT_EQ(rows.size(), 1806u);
    for (Json const& row : rows)
    {
        SCOPED_TRACE(row["base"].dump() + " + " + row["relative"].dump());
        EXPECT_EQ(Describe(URL::FromString(Wide(row["relative"]), URL::FromString(Wide(row["base"])))),
                  row["url"]);
    }
}

TEST(URLVectors, Equality)
{
    auto const rows = Lines("equal");
    ASSERT_EQ(rows.size(), 35u);
    for (Json const& row : rows)
    {
        URLRef const a = Make(row["a"]);
        URLRef const b = Make(row["b"]);
        ASSERT_TRUE(a && b) << row;
        EXPECT_EQ(a->IsEqual(*b), row["equal"].get<bool>()) << row;
        EXPECT_EQ(b->IsEqual(*a), row["equal"].get<bool>()) << row;
    }
}
} // namespace
