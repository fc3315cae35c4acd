// From a URI to the text that is asked for.
#pragma once

#include "TessIO/IURI.h"

#include <string>

namespace HTTP
{
/// The URL as it is sent, escaped; empty for a URI that is no URL of the schemes http and https with a host,
/// or has a user in it.
std::string RequestURLOf(KORVA::IO::IURI const& uri);
} // namespace HTTP
