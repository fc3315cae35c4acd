// tessio diff: what two record files say differently.
#include "Commands.h"
#include "Document.h"
#include "Failure.h"
#include "Output.h"
#include <tessio/Records/Tree/Compare.h>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <memory>

namespace TOOL
{
namespace
{
struct Arguments
{
    Input a;
    std::string b;
    bool subset = false;
};

char const* Name(Difference::Type type)
{
    switch (type)
    {
    case Difference::Type::kRemoved:
        return "removed";
    case Difference::Type::kAdded:
        return "added";
    case Difference::Type::kChanged:
        break;
    }
    return "changed";
}

std::string AsText(std::vector<Difference> const& differences)
{
    std::string text;
    for (Difference const& difference : differences)
        switch (difference.type)
        {
        case Difference::Type::kRemoved:
            text += Styled(Style::kRemoved, fmt::format("- {}  {}", difference.path, difference.a)) + "\n";
            break;
        case Difference::Type::kAdded:
            text += Styled(Style::kAdded, fmt::format("+ {}  {}", difference.path, difference.b)) + "\n";
            break;
        case Difference::Type::kChanged:
            text += Styled(Style::kChanged,
                           fmt::format("~ {}  {} -> {}", difference.path, difference.a, difference.b)) +
                    "\n";
            break;
        }
    return text;
}

Json AsJson(std::vector<Difference> const& differences)
{
    Json list = Json::array();
    for (Difference const& difference : differences)
    {
        Json json = {{"what", Name(difference.type)}, {"path", difference.path}};
        if (difference.type != Difference::Type::kAdded)
            json["a"] = difference.a;
        if (difference.type != Difference::Type::kRemoved)
            json["b"] = difference.b;
        list.push_back(std::move(json));
    }
    return list;
}

/// A file that is not there is trouble, not a difference.
std::unique_ptr<OpenDocument> Load(Session const& session, Common const& common, Input const& source)
{
    try
    {
        return std::make_unique<OpenDocument>(session, common, source);
    }
    catch (Failure const& failure)
    {
        throw Failure(failure.Code() == Exit::kNotFound ? Exit::kInputOutput : failure.Code(),
                      failure.what());
    }
}

void Run(Common const& common, Arguments const& arguments)
{
    if (arguments.a.file == "-" && arguments.b == "-")
        throw Failure(Exit::kUsage, "only one of the files can be standard input");
    Session const session(common);
    auto const a = Load(session, common, arguments.a);
    auto const b = Load(session, common, {arguments.b, arguments.a.endian});
    std::vector<Difference> const differences =
        Compare({a->Tree(), a->Content()}, {b->Tree(), b->Content()}, arguments.subset);
    if (common.json)
        PrintJson({{"subset", arguments.subset}, {"differences", AsJson(differences)}});
    else
        Print(AsText(differences));
    // What is damaged is compared as far as it goes, which may be too little to call it the same.
    a->FailWhenDamaged();
    b->FailWhenDamaged();
    if (!differences.empty())
        throw Failure(Exit::kNotFound, Quoted(a->File()) +
                                           (arguments.subset ? " is not contained in " : " differs from ") +
                                           Quoted(b->File()));
}
} // namespace

void AddDiffCommand(Command const& app, Common const& common)
{
    Command const command = app.Add(
        "diff",
        "Compare what two record files hold, whatever their byte orders: - removed, + added, ~ changed");
    auto const arguments = std::make_shared<Arguments>();
    command.Option("A", arguments->a.file, "A record file; - for standard input").Required();
    command.Option("B", arguments->b, "Another one").Required();
    command.Option("--endian", arguments->a.endian, "The byte order of both; found out when not given")
        .Names("big|little")
        .OneOf({"big", "little"});
    command.Flag("--subset", arguments->subset, "Only whether all that is in A is in B too");
    command.Runs([&common, arguments] { Run(common, *arguments); });
}
} // namespace TOOL
