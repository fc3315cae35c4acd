#include "Format/Guard.h"
#include <tessio/ObjectModel/GUIDText.h>
#include <tessio/Records/Dump/Text.h>
#include <tessio/Records/Format/RecordWriter.h>
#include <tessio/Records/Format/Words.h>
#include <tessio/Records/Tree/Reader.h>
#include <tessio/TessIO/ClassIds.h>

#include <tessio/Records/Format/Directories.h>
#include <tessio/Records/Format/Value.h>

#include <fmt/format.h>

#include <algorithm>
#include <bit>
#include <charconv>

namespace KORVA::RECORDS
{
namespace
{
using STRING::CoreString;

struct Token
{
    enum class Type
    {
        kWord,
        kString,
        kId,
        kMark,
        kEnd
    };

    Type type = Type::kEnd;
    /// Of a word or a mark; for messages of the others as well.
    std::string_view text;
    CoreString string;
    GUID id{};
    /// Where it begins in the text.
    std::size_t at = 0;
};

class Lexer
{
public:
    explicit Lexer(std::string_view text) : mText(text) { Advance(); }

    Token const& Next() const { return mToken; }
    Token Take()
    {
        Token token = std::move(mToken);
        Advance();
        return token;
    }
    [[noreturn]] static void Fail(std::size_t at, std::string why)
    {
        Raise(ErrorCode::kBadDump, static_cast<int64>(at), std::move(why));
    }

private:
    static bool IsWordCharacter(char c)
    {
        return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '-' ||
               c == '+' || c == '.' || c == '_';
    }
    void SkipBlanks();
    void Advance();
    void String();

    std::string_view mText;
    std::size_t mAt = 0;
    Token mToken;
};

void Lexer::SkipBlanks()
{
    for (; mAt < mText.size(); ++mAt)
    {
        char const c = mText[mAt];
        if (c == '#')
            while (mAt + 1 < mText.size() && mText[mAt + 1] != '\n')
                ++mAt;
        else if (c != ' ' && c != '\t' && c != '\r' && c != '\n')
            return;
    }
}

void Lexer::Advance()
{
    SkipBlanks();
    mToken = {};
    mToken.at = mAt;
    if (mAt == mText.size())
        return;
    std::size_t const start = mAt;
    constexpr std::size_t kIdLength = 38;
    if (mText[mAt] == '"')
        return String();
    if (auto const id = mText[mAt] == '{' ? GUIDFromText(mText.substr(mAt, kIdLength)) : std::nullopt)
    {
        mToken.type = Token::Type::kId;
        mToken.id = *id;
        mAt += kIdLength;
    }
    else if (std::string_view("{}:=").find(mText[mAt]) != std::string_view::npos)
    {
        mToken.type = Token::Type::kMark;
        ++mAt;
    }
    else
    {
        mToken.type = Token::Type::kWord;
        while (mAt < mText.size() && IsWordCharacter(mText[mAt]))
            ++mAt;
        if (mAt == start)
            Fail(mAt, "nothing begins with " + Quoted(mText.substr(mAt, 1)));
    }
    mToken.text = mText.substr(start, mAt - start);
}

void Lexer::String()
{
    std::size_t const start = mAt;
    std::string_view rest = mText.substr(start + 1);
    if (char const* const why = Unquote(rest, mToken.string))
        Fail(start, why);
    mAt = mText.size() - rest.size();
    mToken.type = Token::Type::kString;
    mToken.text = mText.substr(start, mAt - start);
}

class Parser
{
public:
    explicit Parser(std::string_view text) : mLexer(text), mWriter(ReadHead()) {}

    Bytes Parse();

private:
    [[noreturn]] void Expected(std::string const& what, Token const& found) const
    {
        Lexer::Fail(found.at, fmt::format("{} is expected, not {}", what,
                                          found.type == Token::Type::kEnd ? "the end" : Escaped(found.text)));
    }
    Token Take(Token::Type type, char const* what)
    {
        Token token = mLexer.Take();
        if (token.type != type)
            Expected(what, token);
        return token;
    }
    bool NextIs(std::string_view text) const
    {
        Token const& next = mLexer.Next();
        return (next.type == Token::Type::kWord || next.type == Token::Type::kMark) && next.text == text;
    }
    bool Accept(std::string_view text)
    {
        bool const is = NextIs(text);
        if (is)
            mLexer.Take();
        return is;
    }
    void Mark(char const* mark)
    {
        if (Token const token = mLexer.Take(); token.type != Token::Type::kMark || token.text != mark)
            Expected(fmt::format("\"{}\"", mark), token);
    }
    template <class Number>
    Number WholeNumber(char const* what);
    template <class Number>
    Number FloatingNumber();
    Order ReadHead();
    Bytes Hex();
    void Record(int depth);
    void Value(std::string_view type);
    void NumberValue(std::string const& type);
    void Part(std::string_view type, int depth);
    void Dictionary(int depth);
    void Strings();
    void Relative();
    void Raw();
    void Aggregates(int depth);

    Lexer mLexer;
    RecordWriter mWriter;
};

template <class Number>
Number Parser::WholeNumber(char const* what)
{
    Token const token = Take(Token::Type::kWord, what);
    std::string_view digits = token.text;
    int base = 10;
    if (digits.starts_with("0x"))
    {
        base = 16;
        digits.remove_prefix(2);
    }
    Number number{};
    auto const [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number, base);
    if (error == std::errc::result_out_of_range)
        Lexer::Fail(token.at, fmt::format("{} is out of range for {}", token.text, what));
    if (error != std::errc() || end != digits.data() + digits.size())
        Expected(what, token);
    return number;
}

template <class Number>
Number Parser::FloatingNumber()
{
    Token const token = Take(Token::Type::kWord, "a number");
    Number number{};
    auto const [end, error] =
        std::from_chars(token.text.data(), token.text.data() + token.text.size(), number);
    if (error == std::errc::result_out_of_range)
        Lexer::Fail(token.at, fmt::format("{} is out of range", token.text));
    if (error != std::errc() || end != token.text.data() + token.text.size())
        Expected("a number", token);
    return number;
}

Order Parser::ReadHead()
{
    Token const token = mLexer.Take();
    if (token.type != Token::Type::kWord || token.text != "tessio-dump")
        Expected("\"tessio-dump\"", token);
    if (auto const version = WholeNumber<int>("the version of the format"); version != 1)
        Lexer::Fail(token.at, fmt::format("only version 1 of the format is known, not {}", version));
    Token const order = mLexer.Take();
    if (order.text == "little-endian")
        return IO::IDataProvider::kLittleEndian;
    if (order.text == "big-endian")
        return IO::IDataProvider::kBigEndian;
    Expected("\"little-endian\" or \"big-endian\"", order);
}

Bytes Parser::Hex()
{
    Mark("{");
    Bytes bytes;
    while (!Accept("}"))
    {
        Token const token = Take(Token::Type::kWord, "pairs of hexadecimal digits");
        if (token.text.size() % 2 != 0)
            Lexer::Fail(token.at, fmt::format("half a byte is left over in {}", Escaped(token.text)));
        for (std::size_t i = 0; i < token.text.size(); i += 2)
        {
            unsigned char byte = 0;
            char const* const from = token.text.data() + i;
            if (std::from_chars(from, from + 2, byte, 16).ptr != from + 2)
                Expected("pairs of hexadecimal digits", token);
            bytes.push_back(byte);
        }
    }
    return bytes;
}

void Parser::NumberValue(std::string const& type)
{
    NumberFields fields;
    if (Accept("fields"))
    {
        fields.integer = WholeNumber<uint64>("a whole number");
        fields.floating = WholeNumber<uint64>("the bits of a floating-point number");
    }
    else if (type == "float")
        fields = FieldsOfFloating(type, static_cast<double>(FloatingNumber<float>()));
    else if (type == "double")
        fields = FieldsOfFloating(type, FloatingNumber<double>());
    else
    {
        Token const token = mLexer.Next();
        uint64 const integer = type.starts_with('u')
                                   ? WholeNumber<uint64>("a whole number of the type")
                                   : static_cast<uint64>(WholeNumber<int64>("a whole number of the type"));
        fields = FieldsOfWhole(type, integer);
        if (fields.integer != integer)
            Lexer::Fail(token.at, fmt::format("{} is out of range for {}", token.text, type));
    }
    mWriter.Put(fields.integer);
    mWriter.Put(fields.floating);
}

void Parser::Value(std::string_view type)
{
    mWriter.Begin(IO::IID_IDICTIONARY_VALUE);
    if (type == "value")
    {
        mWriter.Put(WholeNumber<uint32>("a type tag"));
        return;
    }
    mWriter.Put(FindType(type)->tag);
    if (type == "none")
        return;
    if (type == "guid")
    {
        auto const id =
            StoredId(Take(Token::Type::kId, "an identifier").id, IO::IDataProvider::kLittleEndian);
        mWriter.Put(ByteView(id));
    }
    else if (type == "bytes")
    {
        Bytes const bytes = Hex();
        mWriter.Put(static_cast<int32>(bytes.size()));
        mWriter.Put(ByteView(bytes));
    }
    else if (type == "text")
    {
        CoreString const text = Take(Token::Type::kString, "a text").string;
        mWriter.Put(static_cast<int32>(2 * text.size()));
        for (char16_t const unit : text.view())
        {
            unsigned char bytes[2];
            Store(bytes, unit, IO::IDataProvider::kLittleEndian);
            mWriter.Put(ByteView(bytes));
        }
    }
    else
        NumberValue(std::string(type));
}

void Parser::Part(std::string_view type, int depth)
{
    if (type == "holds")
        return Record(depth + 1);
    if (type == "bytes")
    {
        Bytes const bytes = Hex();
        return mWriter.Put(ByteView(bytes));
    }
    if (type == "string")
        return mWriter.Put(Take(Token::Type::kString, "a text").string);
    if (type == "guid")
        return mWriter.Put(Take(Token::Type::kId, "an identifier").id);
    if (type == "bool")
    {
        Token const token = mLexer.Take();
        if (token.text != "true" && token.text != "false")
            Expected("\"true\" or \"false\"", token);
        return mWriter.Put(static_cast<unsigned char>(token.text == "true"));
    }
    if (type == "float" && Accept("bits"))
        return mWriter.Put(WholeNumber<uint32>("32 bits"));
    if (type == "double" && Accept("bits"))
        return mWriter.Put(WholeNumber<uint64>("64 bits"));
    if (type == "float")
        return mWriter.Put(std::bit_cast<uint32>(FloatingNumber<float>()));
    if (type == "double")
        return mWriter.Put(std::bit_cast<uint64>(FloatingNumber<double>()));
    if (type == "int8")
        return mWriter.Put(WholeNumber<signed char>("int8"));
    if (type == "uint8")
        return mWriter.Put(WholeNumber<unsigned char>("uint8"));
    if (type == "int16")
        return mWriter.Put(WholeNumber<short>("int16"));
    if (type == "uint16")
        return mWriter.Put(WholeNumber<unsigned short>("uint16"));
    if (type == "int32")
        return mWriter.Put(WholeNumber<int32>("int32"));
    if (type == "uint32")
        return mWriter.Put(WholeNumber<uint32>("uint32"));
    if (type == "int64")
        return mWriter.Put(WholeNumber<int64>("int64"));
    return mWriter.Put(WholeNumber<uint64>("uint64"));
}

bool IsPartType(std::string_view type)
{
    for (char const* const known : {"holds", "bytes", "string", "guid", "bool", "float", "double", "int8",
                                    "uint8", "int16", "uint16", "int32", "uint32", "int64", "uint64"})
        if (type == known)
            return true;
    return false;
}

void Parser::Dictionary(int depth)
{
    bool const hasId = mLexer.Next().type == Token::Type::kId;
    mWriter.Begin(hasId ? mLexer.Take().id : IO::IID_DICTIONARY);
    std::size_t const room = mWriter.Room();
    uint32 count = 0;
    for (Mark("{"); !Accept("}"); ++count)
    {
        mWriter.Put(WholeNumber<uint32>("a key"));
        Mark(":");
        Record(depth + 1);
    }
    mWriter.Fill(room, count);
}

void Parser::Strings()
{
    mWriter.Begin(IO::IID_STRING_DICTIONARY);
    std::size_t const room = mWriter.Room();
    uint32 count = 0;
    for (Mark("{"); !Accept("}"); ++count)
    {
        mWriter.Put(Take(Token::Type::kString, "a key between quotes").string);
        Mark("=");
        mWriter.Put(Take(Token::Type::kString, "a text").string);
    }
    mWriter.Fill(room, count);
}

void Parser::Relative()
{
    mWriter.Begin(IO::IID_IRELATIVE_URI);
    mWriter.Put(Take(Token::Type::kString, "a scheme between quotes").string);
    mWriter.Put(Take(Token::Type::kString, "a host between quotes").string);
    mWriter.Put(WholeNumber<uint32>("a port"));
    mWriter.Put(Take(Token::Type::kString, "a path between quotes").string);
    for (Directory const& directory : Directories())
        if (Accept(directory.name))
            return mWriter.Put(static_cast<int32>(directory.type));
    mWriter.Put(WholeNumber<int32>("a directory's name or number"));
}

/// All of the record: nothing may be added to bytes that stand as they are.
void Parser::Raw()
{
    mWriter.Begin(Take(Token::Type::kId, "a class id").id);
    std::optional<int64> length;
    if (Accept("length"))
        length = WholeNumber<int64>("a length");
    Bytes const bytes = Hex();
    mWriter.Put(ByteView(bytes));
    mWriter.End(length);
}

void Parser::Aggregates(int depth)
{
    std::size_t const room = mWriter.Room();
    uint32 count = 0;
    if (Accept("with"))
        for (Mark("{"); !Accept("}"); ++count)
        {
            mWriter.Put(Take(Token::Type::kId, "an interface id").id);
            Mark(":");
            Record(depth + 1);
        }
    mWriter.Fill(room, count);
}

void Parser::Record(int depth)
{
    Token const token = Take(Token::Type::kWord, "a record");
    if (depth > IO::kMostNestedRecords)
        Lexer::Fail(token.at, fmt::format("nested more than {} deep", IO::kMostNestedRecords));
    if (token.text == "record")
        return Raw();
    if (token.text == "PersistentDictionary")
        Dictionary(depth);
    else if (token.text == "StringDictionary")
        Strings();
    else if (token.text == "URI")
    {
        mWriter.Begin(IO::IID_IURI);
        mWriter.Put(Take(Token::Type::kString, "a text").string);
    }
    else if (token.text == "RelativeURI")
        Relative();
    else if (token.text == "object")
    {
        mWriter.Begin(Take(Token::Type::kId, "a class id").id);
        for (Mark("{"); !Accept("}");)
        {
            Token const type = Take(Token::Type::kWord, "a type");
            if (!IsPartType(type.text))
                Expected("the type of a part", type);
            Part(type.text, depth);
        }
    }
    else if (token.text == "value" || FindType(token.text))
        Value(token.text);
    else
        Expected("a record", token);
    Aggregates(depth);
    mWriter.End();
}

Bytes Parser::Parse()
{
    while (mLexer.Next().type != Token::Type::kEnd)
    {
        if (!Accept("rest"))
        {
            Record(0);
            continue;
        }
        Bytes const bytes = Hex();
        mWriter.Put(ByteView(bytes));
        if (mLexer.Next().type != Token::Type::kEnd)
            Expected("the end behind the rest", mLexer.Next());
    }
    return mWriter.Take();
}
} // namespace

Result<Bytes> ReadText(std::string_view text)
{
    return Guarded([&] { return Parser(text).Parse(); });
}

int64 LineAt(std::string_view text, int64 offset)
{
    return 1 + std::ranges::count(text.substr(0, static_cast<std::size_t>(offset)), '\n');
}
} // namespace KORVA::RECORDS
