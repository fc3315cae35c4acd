// From a URI to the text that is asked for.
#pragma once

#include <tessio/TessIO/IURI.h>

#include <string>

namespace HTTP
{
/// The URL as it is sent, escaped; empty for a URI that is no URL of the schemes http and https with a host,
/// or has a user in it.
std::string RequestURLOf(KORVA::IO::IURI const& uri);

/// Whether two URLs lead to the same host and port by the same protocol.
bool IsSameServer(char const* url, char const* other);
} // namespace HTTP
