#include "Examples/WebServer.h"

#include "Support/Process.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <stdexcept>
#include <thread>

namespace KORVA::TESTS
{
namespace
{
sockaddr_in Loopback(int port)
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

bool Listens(int port)
{
    int const probe = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in const address = Loopback(port);
    bool const connected = connect(probe, reinterpret_cast<sockaddr const*>(&address), sizeof address) == 0;
    close(probe);
    return connected;
}

void Replace(std::string& text, std::string const& what, std::string const& with)
{
    for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + with.size()))
        text.replace(at, what.size(), with);
}

constexpr char kConfiguration[] = R"(
daemon off;
master_process off;
pid @/pid;
error_log @/error.log warn;
events { worker_connections 64; }
http {
    log_format request '$request_method $uri $status';
    access_log @/access.log request;
    client_body_temp_path @/temporary;
    proxy_temp_path @/temporary;
    fastcgi_temp_path @/temporary;
    uwsgi_temp_path @/temporary;
    scgi_temp_path @/temporary;
    default_type application/octet-stream;
    server {
        listen 127.0.0.1:HTTPPORT;
        listen 127.0.0.1:OTHERPORT;
        listen 127.0.0.1:TLSPORT ssl;
        ssl_certificate @/cert.pem;
        ssl_certificate_key @/key.pem;
        location /plain/ { alias @/files/; }
        location /noranges/ { alias @/files/; max_ranges 0; }
        location /chunked/ {
            alias @/files/;
            sub_filter 'a text that is in no file' '';
            sub_filter_types *;
        }
        location /nohead/ {
            alias @/files/;
            if ($request_method = HEAD) { return 405; }
        }
        location /auth/ {
            alias @/files/;
            auth_basic "files";
            auth_basic_user_file @/users;
        }
        location /forbidden/ { deny all; }
        location /slow/ { alias @/files/; limit_rate 64k; }
        location /error { return 503; }
        location /to/same { return 302 /plain/text; }
        location /to/other { return 302 http://127.0.0.1:OTHERPORT/plain/text; }
        location /to/auth { return 302 /auth/text; }
        location /to/otherauth { return 302 http://127.0.0.1:OTHERPORT/auth/text; }
        location /to/tls { return 302 https://127.0.0.1:TLSPORT/plain/text; }
        location /to/clear { return 302 http://127.0.0.1:HTTPPORT/plain/text; }
        location /to/loop { return 302 /to/loop; }
        location /to/file { return 302 file:///etc/passwd; }
        location /to/user { return 302 http://ada:x@127.0.0.1:HTTPPORT/plain/text; }
        location /to/down { return 302 https://127.0.0.1:TLSPORT/to/clear; }
    }
}
)";
} // namespace

int FreePort()
{
    int const probe = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address = Loopback(0);
    socklen_t size = sizeof address;
    bool const found = bind(probe, reinterpret_cast<sockaddr const*>(&address), size) == 0 &&
                       getsockname(probe, reinterpret_cast<sockaddr*>(&address), &size) == 0;
    close(probe);
    if (!found)
        throw std::runtime_error("no free port");
    return ntohs(address.sin_port);
}

WebServer::WebServer()
{
    std::filesystem::create_directory(mDirectory.Path() / "files");
    mDirectory.File("users", "ada:{PLAIN}Gr\xC3\xBC\xC3\x9F"
                             "e!\n");
    Outcome const made =
        RunProgram({"/usr/bin/openssl", "req", "-x509", "-newkey", "ec", "-pkeyopt",
                    "ec_paramgen_curve:prime256v1", "-nodes", "-keyout", "key.pem", "-out", "cert.pem",
                    "-days", "2", "-subj", "/CN=test", "-addext", "subjectAltName=IP:127.0.0.1"},
                   mDirectory.Path().string());
    if (made.exitCode != 0)
        throw std::runtime_error("openssl: " + made.err);
    // Between the search for a free port and its use somebody else may take it.
    for (int attempt = 0; attempt < 10; ++attempt)
        if (Starts())
            return;
    throw std::runtime_error("nginx does not start: " + Content(mDirectory.Path() / "error.log"));
}

WebServer::~WebServer()
{
    if (mServer)
        mServer->Signal(SIGTERM);
    if (mServer)
        static_cast<void>(mServer->Wait());
}

bool WebServer::Starts()
{
    mPort = FreePort();
    mOtherPort = FreePort();
    mTLSPort = FreePort();
    std::string const directory = mDirectory.Path().string();
    mDirectory.File("nginx.conf", Configuration());
    mServer = std::make_unique<Running>(std::vector<std::string>{"/usr/sbin/nginx", "-p", directory, "-c",
                                                                 directory + "/nginx.conf", "-e",
                                                                 directory + "/error.log"},
                                        directory);
    while (!mServer->HasEnded())
    {
        if (Listens(mPort) && Listens(mOtherPort) && Listens(mTLSPort))
            return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return false;
}

std::string WebServer::Configuration() const
{
    std::string text = kConfiguration;
    Replace(text, "@/", mDirectory.Path().string() + "/");
    Replace(text, "HTTPPORT", std::to_string(mPort));
    Replace(text, "OTHERPORT", std::to_string(mOtherPort));
    Replace(text, "TLSPORT", std::to_string(mTLSPort));
    return text;
}

void WebServer::File(std::string const& name, std::string_view content) const
{
    mDirectory.File("files/" + name, content);
}

std::string WebServer::Requests() const { return Content(mDirectory.Path() / "access.log"); }
} // namespace KORVA::TESTS
