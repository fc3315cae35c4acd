// tessio strings: a string dictionary in a file.
#include "Commands.h"
#include "Failure.h"
#include "Import.h"
#include "Location.h"
#include "Output.h"
#include "RecordFile.h"
#include "TessIO/ClassIds.h"
#include "TessIO/IStringDictionary.h"

#include <cstdio>
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

std::string SourceText(Session const& session, std::string const& source)
{
    if (source == "-")
    {
        std::string text;
        char piece[65536];
        while (std::size_t const count = std::fread(piece, 1, sizeof piece, stdin))
            text.append(piece, count);
        if (std::ferror(stdin) != 0)
            throw Failure(Exit::kInputOutput, "cannot read standard input");
        return text;
    }
    std::vector<unsigned char> const bytes = ReadWhole(*OpenToRead(session, source), source);
    return {bytes.begin(), bytes.end()};
}

void Import(Common const& common, Arguments const& arguments)
{
    Session const session(common);
    auto const assignments = ParseAssignments(SourceText(session, arguments.value), arguments.value);
    RecordFile const file = Open(session, arguments, RecordFile::Use::kEditOrCreate);
    for (auto const& [key, value] : assignments)
        Strings(file).Put(TextArgument(key, "key"), TextArgument(value, "value of " + key));
    file.Save();
}
} // namespace

void AddStringsCommand(CLI::App& app, Common const& common)
{
    CLI::App* const strings = app.add_subcommand("strings", "Keep a string dictionary in a file");
    strings->require_subcommand(1);
    auto const arguments = std::make_shared<Arguments>();
    auto const add = [&](char const* name, char const* about, void (*run)(Common const&, Arguments const&)) {
        CLI::App* const command = strings->add_subcommand(name, about);
        command->add_option("FILE", arguments->file, "The record file")->required();
        command->callback([&common, arguments, run] { run(common, *arguments); });
        return command;
    };
    auto const addKey = [&](CLI::App* command) {
        command->add_option("KEY", arguments->key, "The key")->required();
    };
    auto const addOrder = [&](CLI::App* command) {
        command->add_flag("--big-endian", arguments->bigEndian, "Make a new file in big-endian order");
    };
    CLI::App* const set = add("set", "Set a key; makes the file when it is not there", &Set);
    addKey(set);
    set->add_option("VALUE", arguments->value, "The value")->required();
    addOrder(set);
    addKey(add("get", "Print the value of a key", &Get));
    addKey(add("rm", "Remove a key", &Remove));
    add("list", "Print every key and value, in order", &List);
    CLI::App* const import =
        add("import", "Set every key of a KEY=value text such as /etc/os-release", &Import);
    import->add_option("SOURCE", arguments->value, "The text; - for standard input")->required();
    addOrder(import);
}
} // namespace TOOL
