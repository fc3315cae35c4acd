// tessio dict: a persistent dictionary in a file.
#include "Commands.h"
#include "Failure.h"
#include "Output.h"
#include "RecordFile.h"
#include "RelativeNames.h"
#include "Values.h"
#include <tessio/Records/Dump/Json.h>
#include <tessio/TessIO/ClassIds.h>
#include <tessio/TessIO/IDictionary.h>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <memory>

namespace TOOL
{
namespace
{
using KORVA::IDictionary;
using KORVA::IObject;

struct Arguments
{
    std::string file;
    std::string key;
    std::string type;
    std::string value;
    bool bigEndian = false;
    bool raw = false;
};

/// Records nested deeper than 1,000 are not written.
constexpr std::size_t kLongestPath = 999;

/// Keys separated by slashes: where the last one is, and in which dictionaries it lies.
std::vector<unsigned int> PathOf(std::string const& text)
{
    std::vector<unsigned int> path;
    std::size_t from = 0;
    for (std::size_t slash = 0; slash != std::string::npos; from = slash + 1)
    {
        slash = text.find('/', from);
        path.push_back(KeyOf(text.substr(from, slash == std::string::npos ? slash : slash - from)));
    }
    if (path.size() > kLongestPath)
        throw Failure(Exit::kUsage, fmt::format("a key path has {} keys at most", kLongestPath));
    return path;
}

IDictionary* AsDictionary(IObject* object)
{
    IObject* found = nullptr;
    if (!object || object->QueryInterface(KORVA::IO::IID_DICTIONARY, &found) != KORVA::kNoError)
        return nullptr;
    // A file can aggregate an object of any class under any id.
    return dynamic_cast<IDictionary*>(found);
}

/// The dictionary that holds the last key of a path. Those on the way are made when `create` is set;
/// otherwise null when one is missing. Ends the command where the way leads through another value.
IDictionary* Holder(Session const& session, IDictionary& root, std::vector<unsigned int> const& path,
                    bool create)
{
    IDictionary* holder = &root;
    std::string way;
    for (std::size_t i = 0; i + 1 < path.size(); ++i)
    {
        way += (i > 0 ? "/" : "") + std::to_string(path[i]);
        IObject* next = holder->Get(path[i]);
        if (!next && !create)
            return nullptr;
        if (!next)
        {
            auto const made = session.Create<IDictionary>(KORVA::IO::IID_DICTIONARY);
            holder->Put(path[i], made.Get());
            next = made.Get();
        }
        holder = AsDictionary(next);
        if (!holder)
            throw Failure(Exit::kNotFound, way + " is no dictionary");
    }
    return holder;
}

IDictionary& Root(RecordFile const& file) { return *AsDictionary(&file.Object()); }

RecordFile Open(Session const& session, Arguments const& arguments, RecordFile::Use use)
{
    RecordFile file(session, arguments.file, KORVA::IO::IID_DICTIONARY, use);
    if (file.IsNew() && arguments.bigEndian)
        file.SetOrder(KORVA::IO::IDataProvider::kBigEndian);
    return file;
}

[[noreturn]] void NoKey(Arguments const& arguments)
{
    throw Failure(Exit::kNotFound, Quoted(arguments.file) + " has no key " + arguments.key);
}

/// One line for an entry: what it is and what it holds.
std::string Line(Node const& node)
{
    if (node.kind == Kind::kValue)
        return node.value.content.index() == 0 ? node.value.type : node.value.type + " " + Shown(node.value);
    if (node.kind == Kind::kDictionary || node.kind == Kind::kStrings)
        return fmt::format("{}, {}", ClassName(node.classId), Entries(node));
    if (node.kind == Kind::kURI)
        return "uri " + Quoted(node.text);
    if (node.kind == Kind::kRelativeURI)
        return fmt::format("relative {}:{}", DirectoryName(node.directory), Escaped(node.text));
    return ClassName(node.classId);
}

/// Where a relative URI leads on this system.
std::string PathHere(Node const& node, Arguments const& arguments)
{
    if (Directory const* const directory = DirectoryOfType(node.directory))
        return RelativeURIOf(*directory, node.text, Exit::kNotFound)->GetPath().ToUTF8();
    throw Failure(Exit::kNotFound,
                  fmt::format("{} of {} is named from the directory {}, which nobody knows here",
                              arguments.key, Quoted(arguments.file), DirectoryName(node.directory)));
}

void Set(Common const& common, Arguments const& arguments)
{
    Session const session(common);
    std::vector<unsigned int> const path = PathOf(arguments.key);
    RecordFile const file = Open(session, arguments, RecordFile::Use::kEditOrCreate);
    PutValue(*Holder(session, Root(file), path, true), path.back(), arguments.type, arguments.value);
    file.Save();
}

IObject& Found(Session const& session, RecordFile const& file, Arguments const& arguments)
{
    std::vector<unsigned int> const path = PathOf(arguments.key);
    IDictionary const* const holder = Holder(session, Root(file), path, false);
    IObject* const object = holder ? holder->Get(path.back()) : nullptr;
    if (!object)
        NoKey(arguments);
    return *object;
}

void PrintRaw(Node const& node, Arguments const& arguments)
{
    if (auto const* const bytes = std::get_if<std::vector<unsigned char>>(&node.value.content))
        Print({reinterpret_cast<char const*>(bytes->data()), bytes->size()});
    else if (auto const* const text = std::get_if<std::u16string>(&node.value.content))
        Print(KORVA::STRING::CoreString(*text).ToUTF8());
    else
        throw Failure(Exit::kUsage, arguments.key + " is neither bytes nor text: --raw prints only these");
}

void Get(Common const& common, Arguments const& arguments)
{
    Session const session(common);
    RecordFile const file = Open(session, arguments, RecordFile::Use::kRead);
    Node const node = Describe(session, Found(session, file, arguments));
    if (arguments.raw)
        PrintRaw(node, arguments);
    else if (common.json)
    {
        Json entry = ToJson(node, "", arguments.key);
        if (node.kind == Kind::kRelativeURI)
            entry["path"] = PathHere(node, arguments);
        PrintJson({{"entry", entry}});
    }
    else if (node.kind == Kind::kValue)
        Print(Shown(node.value) + "\n");
    else if (node.kind == Kind::kURI)
        Print(Escaped(node.text) + "\n");
    else if (node.kind == Kind::kRelativeURI)
        Print(Escaped(PathHere(node, arguments)) + "\n");
    else
        Print(Line(node) + "\n");
}

void Remove(Common const& common, Arguments const& arguments)
{
    Session const session(common);
    std::vector<unsigned int> const path = PathOf(arguments.key);
    RecordFile const file = Open(session, arguments, RecordFile::Use::kEdit);
    IDictionary* const holder = Holder(session, Root(file), path, false);
    if (!holder || !holder->Get(path.back()))
        NoKey(arguments);
    holder->Remove(path.back());
    file.Save();
}

class Lister final : public IDictionary::IDictionaryFunctor
{
public:
    explicit Lister(Session const& session) : mSession(session) {}

    bool OnEntry(unsigned int key, IObject* value) override
    {
        Node const node = Describe(mSession, *value);
        std::string const label = std::to_string(key);
        text += label + " " + Line(node) + "\n";
        json.push_back(ToJson(node, "", label));
        return false;
    }

    std::string text;
    Json json = Json::array();

private:
    Session const& mSession;
};

void List(Common const& common, Arguments const& arguments)
{
    Session const session(common);
    RecordFile const file = Open(session, arguments, RecordFile::Use::kRead);
    IDictionary* const dictionary =
        arguments.key.empty() ? &Root(file) : AsDictionary(&Found(session, file, arguments));
    if (!dictionary)
        throw Failure(Exit::kNotFound, arguments.key + " is no dictionary");
    Lister lister(session);
    dictionary->ForEach(lister);
    if (common.json)
        PrintJson({{"entries", lister.json}});
    else
        Print(lister.text);
}
} // namespace

void AddDictCommand(Command const& app, Common const& common)
{
    Command const dict = app.Add("dict", "Keep a persistent dictionary in a file");
    dict.NeedsCommand();
    auto const arguments = std::make_shared<Arguments>();
    auto const add = [&](char const* name, char const* about, void (*run)(Common const&, Arguments const&)) {
        Command const command = dict.Add(name, about);
        command.Option("FILE", arguments->file, "The record file").Required();
        command.Runs([&common, arguments, run] { run(common, *arguments); });
        return command;
    };
    constexpr char kKeyHelp[] = "A number, or a path of numbers through nested dictionaries: 1/7/3";
    Command const set = add("set", "Set a value; makes the file and the dictionaries on the way", &Set);
    set.Option("KEY", arguments->key, kKeyHelp).Required();
    set.Option("TYPE", arguments->type, fmt::format("{}", fmt::join(ValueTypes(), " "))).Required();
    set.Option(
        "VALUE", arguments->value,
        "Numbers in any base (42, 0x2A, 0o52, 0b101010), a {GUID}, bytes in hexadecimal, a file's name, "
        "text, a location (uri), a file named from a directory (relative: documents:notes/a.txt); none for "
        "dict. Write -- before a value that begins with a dash");
    set.Flag("--big-endian", arguments->bigEndian, "Make a new file in big-endian order");
    Command const get = add("get", "Print a value", &Get);
    get.Option("KEY", arguments->key, kKeyHelp).Required();
    get.Flag("--raw", arguments->raw, "Print bytes or text as they are");
    add("rm", "Remove a value", &Remove).Option("KEY", arguments->key, kKeyHelp).Required();
    add("list", "Print every key, type and value", &List)
        .Option("KEY", arguments->key, "A nested dictionary");
}
} // namespace TOOL
