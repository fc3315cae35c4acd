// The scheme names, spelt as they are.
#include <tessio/TessIO/URISchemes.h>

#include "LoggingInterface.h"
#include "SDK/TessIO/OtherSchemes.h"

#include <gtest/gtest.h>

namespace KORVA::TESTS
{
namespace
{
Schemes SchemesOfThisSource()
{
    return {&IO::kHttpscheme, &IO::kBlobScheme, &IO::kHttpcheme, &IO::kFileScheme, &IO::kFtpScheme};
}

TEST(URISchemes, HaveTheirValues)
{
    EXPECT_EQ(IO::kHttpscheme.ToUTF8(), "https");
    EXPECT_EQ(IO::kBlobScheme.ToUTF8(), "blobs");
    EXPECT_EQ(IO::kHttpcheme.ToUTF8(), "http");
    EXPECT_EQ(IO::kFileScheme.ToUTF8(), "file");
    EXPECT_EQ(IO::kFtpScheme.ToUTF8(), "ftp");
}

TEST(URISchemes, EachSourceHasItsOwnCopies)
{
    Schemes const here = SchemesOfThisSource();
    Schemes const there = SchemesOfAnotherSource();
    for (std::size_t i = 0; i < here.size(); ++i)
    {
        EXPECT_NE(here[i], there[i]) << i;
        EXPECT_TRUE(*here[i] == *there[i]) << i;
    }
}

TEST(LoggingInterface, IsTheLoggingService)
{
    EXPECT_NE(IO::loggingInterface, nullptr);
    EXPECT_EQ(IO::loggingInterface, KLoggerLibInterface::GetInstance());
}
} // namespace
} // namespace KORVA::TESTS
