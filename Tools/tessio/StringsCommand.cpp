// tessio strings: a string dictionary in a file.
#include "Commands.h"
#include "Document.h"
#include "Failure.h"
#include "Import.h"
#include "Output.h"
#include "RecordFile.h"
#include <tessio/TessIO/ClassIds.h>
#include <tessio/TessIO/IStringDictionary.h>

#include <memory>
#include <nlohmann/json.hpp>

namespace TOOL
{
namespace
{
using KORVA::IStringDictionary;
using KORVA::STRING::CoreString;

struct Arguments
{
    std::string file;
    std::string key;
    std::string value;
    bool bigEndian = false;
};

/// The dictionary in the file. The class was checked when the file was loaded.
IStringDictionary& Strings(RecordFile const& file) { return static_cast<IStringDictionary&>(file.Object()); }

RecordFile Open(Session const& session, Arguments const& arguments, RecordFile::Use use)
{
    RecordFile file(session, arguments.file, KORVA::IO::IID_STRING_DICTIONARY, use);
    if (file.IsNew() && arguments.bigEndian)
        file.SetOrder(KORVA::IO::IDataProvider::kBigEndian);
    return file;
}

[[noreturn]] void NoKey(Arguments const& arguments)
{
    throw Failure(Exit::kNotFound, Quoted(arguments.file) + " has no key " + Quoted(arguments.key));
}

void Set(Common const& common, Arguments const& arguments)
{
    Session const session(common);
    CoreString const key = TextArgument(arguments.key, "key");
    CoreString const value = TextArgument(arguments.value, "value");
    RecordFile const file = Open(session, arguments, RecordFile::Use::kEditOrCreate);
    Strings(file).Put(key, value);
    file.Save();
}

void Get(Common const& common, Arguments const& arguments)
{
    Session const session(common);
    RecordFile const file = Open(session, arguments, RecordFile::Use::kRead);
    CoreString value;
    if (!Strings(file).Get(TextArgument(arguments.key, "key"), value))
        NoKey(arguments);
    if (common.json)
        PrintJson({{"key", arguments.key}, {"value", value.ToUTF8()}});
    else
        Print(value.ToUTF8() + "\n");
}

void Remove(Common const& common, Arguments const& arguments)
{
    Session const session(common);
    CoreString const key = TextArgument(arguments.key, "key");
    RecordFile const file = Open(session, arguments, RecordFile::Use::kEdit);
    if (!Strings(file).Has(key))
        NoKey(arguments);
    Strings(file).Remove(key);
    file.Save();
}

class Lister final : public IStringDictionary::IForEachFunctor
{
public:
    void OnEntry(CoreString const& key, CoreString const& value) override
    {
        text += Escaped(key) + "=" + Quoted(value) + "\n";
        json.push_back({{"key", key.ToUTF8()}, {"value", value.ToUTF8()}});
    }

    std::string text;
    Json json = Json::array();
};

void List(Common const& common, Arguments const& arguments)
{
    Session const session(common);
    RecordFile const file = Open(session, arguments, RecordFile::Use::kRead);
    Lister lister;
    Strings(file).ForEach(lister);
    if (common.json)
        PrintJson({{"strings", lister.json}});
    else
        Print(lister.text);
}

void Import(Common const& common, Arguments const& arguments)
{
    Session const session(common);
    Bytes const text = ReadInput(session, common, arguments.value);
    auto const assignments = ParseAssignments(std::string(text.begin(), text.end()), arguments.value);
    RecordFile const file = Open(session, arguments, RecordFile::Use::kEditOrCreate);
    for (auto const& [key, value] : assignments)
        Strings(file).Put(TextArgument(key, "key"), TextArgument(value, "value of " + key));
    file.Save();
}
} // namespace

void AddStringsCommand(Command const& app, Common const& common)
{
    Command const strings = app.Add("strings", "Keep a string dictionary in a file");
    strings.NeedsCommand();
    auto const arguments = std::make_shared<Arguments>();
    auto const add = [&](char const* name, char const* about, void (*run)(Common const&, Arguments const&)) {
        Command const command = strings.Add(name, about);
        command.Option("FILE", arguments->file, "The record file").Required();
        command.Runs([&common, arguments, run] { run(common, *arguments); });
        return command;
    };
    auto const addKey = [&](Command const& command) {
        command.Option("KEY", arguments->key, "The key").Required();
    };
    auto const addOrder = [&](Command const& command) {
        command.Flag("--big-endian", arguments->bigEndian, "Make a new file in big-endian order");
    };
    Command const set = add("set", "Set a key; makes the file when it is not there", &Set);
    addKey(set);
    set.Option("VALUE", arguments->value, "The value").Required();
    addOrder(set);
    addKey(add("get", "Print the value of a key", &Get));
    addKey(add("rm", "Remove a key", &Remove));
    add("list", "Print every key and value, in order", &List);
    Command const import =
        add("import", "Set every key of a KEY=value text such as /etc/os-release", &Import);
    import.Option("SOURCE", arguments->value, "The text; - for standard input").Required();
    addOrder(import);
}
} // namespace TOOL
