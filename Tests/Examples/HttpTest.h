// The plug-in of the schemes http and https in a host, before a real web server.
#pragma once

#include "Examples/OddServer.h"
#include "Examples/WebServer.h"
#include "Integration/HostTest.h"
#include "http/HttpScheme.h"
#include <tessio/ObjectModel/TObject.h>
#include <tessio/TessIO/IReporter.h>
#include <tessio/TessIO/IURIAuthenticationChallenge.h>

#include <cstdlib>

namespace KORVA::TESTS
{
/// Keeps what it is told: "35 111" for a result and its detail, blanks between several.
class Heard final : public TObject<IO::IReporter>
{
public:
    void Report(IO::IURI* uri, OperationId result, ErrCode detail) override
    {
        EXPECT_TRUE(uri);
        text += (text.empty() ? "" : " ") + std::to_string(result) + " " + std::to_string(detail);
    }

    std::string text;
};

class HttpTest : public HostTest
{
protected:
    HttpTest()
    {
        for (char const* const name :
             {"http_proxy", "https_proxy", "HTTP_PROXY", "HTTPS_PROXY", "all_proxy", "ALL_PROXY", "no_proxy",
              "NO_PROXY", HTTP::kConnectTimeoutVariable, HTTP::kStallTimeoutVariable})
            unsetenv(name);
        setenv(HTTP::kCAFileVariable, server.Certificate().c_str(), 1);
        std::string error;
        EXPECT_TRUE(host->LoadPlugIn(TESSIO_HTTP_PLUGIN, error)) << error;
        reporter.Adopt(new Heard);
        server.File("text", "0123456789");
    }

    IO::IURIPtr URIOf(std::string const& url, char const* user = nullptr,
                      char const* password = nullptr) const
    {
        IO::IURIPtr uri;
        EXPECT_EQ(IO::CreateURI(host->Registry(), uri, url.c_str()), 0);
        if (!user)
            return uri;
        auto const credential = COREREGISTRY::CreateObject<IO::IURICredential>(IO::IID_URI_CREDENTIAL);
        credential->Init(user, password);
        uri->Aggregate(credential.Get(), IO::IID_URI_CREDENTIAL);
        return uri;
    }

    IO::IURIFilePtr FileOf(IO::IURI& uri) const
    {
        IO::IURIFilePtr file;
        auto const registry = COREREGISTRY::CreateObject<IO::IURIRegistry>(IO::IID_URI_REGISTRY);
        EXPECT_EQ(registry->Create(uri, file, reporter.Get()), 0);
        return file;
    }
    IO::IURIFilePtr FileAt(std::string const& url) const { return FileOf(*URIOf(url)); }

    /// The provider over the file's bytes; empty, and `code`, when it can't be opened.
    TInterfacePtr<IO::IDataProvider> Open(std::string const& url, ErrCode code = 0) const
    {
        TInterfacePtr<IO::IDataProviderStream> stream;
        EXPECT_EQ(FileAt(url)->Read(stream), code);
        return stream ? stream->GetDataProvider() : TInterfacePtr<IO::IDataProvider>();
    }

    /// Up to `count` bytes from the position on, in one read that must answer `code`.
    static std::string Read(IO::IDataProvider& provider, int32 count, ErrCode code = 0)
    {
        std::string bytes(static_cast<std::size_t>(count), '\0');
        EXPECT_EQ(provider.Read(bytes.data(), count), code);
        bytes.resize(static_cast<std::size_t>(count));
        return bytes;
    }

    /// "2 401 ada": how often, why, and for whom; "none" without a challenge.
    static std::string ChallengeOf(IO::IURIFile const& file)
    {
        IObject* found = nullptr;
        if (file.QueryInterface(IO::IID_URI_AUTHENTICATION_CHALLENGE, &found) != kNoError)
            return "none";
        auto const& challenge = static_cast<IO::IURIAuthenticationChallenge const&>(*found);
        IO::IURICredential const* const credential = challenge.GetProposedCredential();
        return std::to_string(challenge.GetPreviousFailureCount()) + " " +
               std::to_string(challenge.GetPreviousFailureError()) + " " +
               (credential ? credential->GetUsername().ToUTF8() : "nobody");
    }

    /// From now on whatever is protected goes through the proxy.
    void GoByProxy() const { setenv("https_proxy", proxy.URL("").c_str(), 1); }

    WebServer server;
    /// Leads to the web server alone.
    OddServer proxy{[this](OddServer::Client const& client, std::string const& request) {
        bool const isKnown = request.starts_with("CONNECT 127.0.0.1:" + server.TLSPort() + " ");
        client.Send(isKnown ? "HTTP/1.1 200 Go on\r\n\r\n"
                            : "HTTP/1.1 403 Not there\r\nContent-Length: 0\r\n\r\n");
        if (isKnown)
            client.Tunnel(std::stoi(server.TLSPort()));
    }};
    TInterfacePtr<Heard> reporter;
};

/// The right password of the user "ada".
inline constexpr char kPassword[] = "Gr\xC3\xBC\xC3\x9F"
                                    "e!";
} // namespace KORVA::TESTS
