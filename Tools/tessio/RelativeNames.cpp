#include "RelativeNames.h"

#include "Output.h"
#include <tessio/CoreRegistry/CoreRegistry.h>
#include <tessio/TessIO/ClassIds.h>

#include <fmt/format.h>

#include <filesystem>

namespace TOOL
{
using namespace KORVA;
using STRING::CoreString;

namespace
{
/// Where a way leads from a directory.
std::string Destination(FILE_SYS::IDir const& directory, CoreString const& way)
{
    CoreString base;
    static_cast<void>(directory.GetPath(1, base));
    std::string path = std::filesystem::path(base.ToUTF8() + '/' + way.ToUTF8()).lexically_normal().string();
    while (path.size() > 1 && path.ends_with('/'))
        path.pop_back();
    return path;
}
} // namespace

IO::IRelativeURIPtr RelativeURIOf(Directory const& directory, CoreString const& way, Exit unusable)
{
    auto uri = COREREGISTRY::CreateObject<IO::IRelativeURI>(IO::IID_IRELATIVE_URI);
    if (!uri)
        throw Failure(Exit::kInputOutput, "no component makes relative URIs");
    static_cast<void>(uri->Init(directory.type, CoreString("file"), CoreString(), 0, way, true));
    FILE_SYS::IDir* base = nullptr;
    uri->GetBaseDir(&base);
    if (!base)
        throw Failure(Exit::kNotFound, fmt::format("the directory {} is unknown here", directory.name));
    if (uri->GetPath().ToUTF8() != Destination(*base, way))
        throw Failure(unusable,
                      fmt::format("{} can't be followed from the directory {}: a backslash, or a dot "
                                  "segment at its end, is not kept",
                                  Quoted(way), directory.name));
    return uri;
}

RelativeName RelativeNameOf(std::string const& text)
{
    std::size_t const colon = text.find(':');
    if (colon == std::string::npos)
        throw Failure(Exit::kUsage, Quoted(text) +
                                        " names no file from a directory, as documents:notes/a.txt "
                                        "does");
    return {DirectoryNamed(text.substr(0, colon)), TextArgument(text.substr(colon + 1), "path")};
}
} // namespace TOOL
