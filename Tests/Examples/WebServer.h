// A real web server on the loopback interface.
#pragma once

#include "Integration/ToolRun.h"
#include "Support/TemporaryDirectory.h"

#include <memory>
#include <string>

namespace KORVA::TESTS
{
/// A port that nobody listens on at the moment.
int FreePort();

/// nginx with a certificate for 127.0.0.1, on three ports of its own, while it lives. What it serves, under
/// every prefix the same files:
///
/// | prefix       |                                                                    |
/// |--------------|--------------------------------------------------------------------|
/// | `/plain/`    | as they are                                                        |
/// | `/noranges/` | only as a whole                                                    |
/// | `/chunked/`  | only as a whole, without size, tag and date                        |
/// | `/nohead/`   | HEAD is answered with 405                                          |
/// | `/auth/`     | for the user `ada` with the password `Grüße!` (Basic); the folder  |
/// |              | itself is for nobody: 403                                          |
/// | `/forbidden/`| for nobody: 403                                                    |
/// | `/slow/`     | 64 KiB a second                                                    |
/// | `/error`     | 503                                                                |
/// | `/to/same`   | `/plain/text` on this port; `other`, on the second; `tls`, under   |
/// |              | https; `clear`, under http; `auth`, `/auth/text` on this port;     |
/// |              | `otherauth`, on the second; `loop`, itself; `file`, `file:///`;    |
/// |              | `user`, a URL with a user; `down`, by way of https back to http    |
class WebServer
{
public:
    WebServer();
    WebServer(WebServer const&) = delete;
    WebServer& operator=(WebServer const&) = delete;
    ~WebServer();

    std::string Http(std::string const& path) const { return Base("http", mPort) + path; }
    std::string Other(std::string const& path) const { return Base("http", mOtherPort) + path; }
    std::string Https(std::string const& path) const { return Base("https", mTLSPort) + path; }
    std::string Port() const { return std::to_string(mPort); }
    std::string TLSPort() const { return std::to_string(mTLSPort); }
    /// The certificate that vouches for it.
    std::string Certificate() const { return (mDirectory.Path() / "cert.pem").string(); }

    /// Writes a file that is served from then on.
    void File(std::string const& name, std::string_view content) const;
    std::filesystem::path PathOf(std::string const& name) const { return mDirectory.Path() / "files" / name; }

    /// The requests so far: `GET /plain/text 206`, each on a line.
    std::string Requests() const;

private:
    static std::string Base(std::string const& scheme, int port)
    {
        return scheme + "://127.0.0.1:" + std::to_string(port);
    }
    std::string Configuration() const;
    bool Starts();

    TemporaryDirectory mDirectory;
    int mPort = 0;
    int mOtherPort = 0;
    int mTLSPort = 0;
    std::unique_ptr<Running> mServer;
};
} // namespace KORVA::TESTS
