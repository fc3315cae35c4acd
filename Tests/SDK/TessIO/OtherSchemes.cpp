// A second source with the scheme names, to tell its copies from the test's.
#include "SDK/TessIO/OtherSchemes.h"

#include <tessio/TessIO/URISchemes.h>

namespace KORVA::TESTS
{
Schemes SchemesOfAnotherSource()
{
    return {&IO::kHttpscheme, &IO::kBlobScheme, &IO::kHttpcheme, &IO::kFileScheme, &IO::kFtpScheme};
}
} // namespace KORVA::TESTS
