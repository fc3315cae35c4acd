// Scheme names. Each source that includes this has its own copies.
#pragma once

#include <tessio/CoreString/CoreString.h>

namespace KORVA::IO
{
/// The spelling of the names is part of the interface, the missing letter included.
///@{
static STRING::CoreString const kHttpscheme(u"https");
static STRING::CoreString const kBlobScheme(u"blobs");
static STRING::CoreString const kHttpcheme(u"http");
static STRING::CoreString const kFileScheme(u"file");
static STRING::CoreString const kFtpScheme(u"ftp");
///@}
} // namespace KORVA::IO
