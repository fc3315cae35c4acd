#include "Examples/OddServer.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <stdexcept>

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

/// A socket that listens on a port of its own.
int Listener(int backlog, int& port)
{
    int const listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address = Loopback(0);
    socklen_t size = sizeof address;
    if (bind(listener, reinterpret_cast<sockaddr const*>(&address), size) != 0 ||
        listen(listener, backlog) != 0 ||
        getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size) != 0)
        throw std::runtime_error("cannot listen");
    port = ntohs(address.sin_port);
    return listener;
}

/// Whether the first of the two is ready, rather than the server told to stop.
bool IsReady(int socket, int stop)
{
    pollfd waits[] = {{socket, POLLIN, 0}, {stop, POLLIN, 0}};
    return poll(waits, 2, -1) > 0 && waits[1].revents == 0;
}

bool SendAll(int socket, std::string_view bytes)
{
    while (!bytes.empty())
    {
        ssize_t const sent = send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (sent <= 0)
            return false;
        bytes.remove_prefix(static_cast<std::size_t>(sent));
    }
    return true;
}

/// What has come from one socket, to the other; false when either is closed.
bool Pass(int from, int to)
{
    char bytes[16384];
    ssize_t const count = recv(from, bytes, sizeof bytes, 0);
    return count > 0 && SendAll(to, {bytes, static_cast<std::size_t>(count)});
}
} // namespace

bool OddServer::Client::Send(std::string_view bytes) const { return SendAll(mSocket, bytes); }

void OddServer::Client::Stall() const
{
    char byte = 0;
    while (IsReady(mSocket, mStop) && recv(mSocket, &byte, 1, 0) > 0)
        continue;
}

void OddServer::Client::Tunnel(int port) const
{
    int const server = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in const address = Loopback(port);
    bool open = connect(server, reinterpret_cast<sockaddr const*>(&address), sizeof address) == 0;
    while (open)
    {
        pollfd waits[] = {{mSocket, POLLIN, 0}, {server, POLLIN, 0}, {mStop, POLLIN, 0}};
        open = poll(waits, 3, -1) > 0 && waits[2].revents == 0;
        for (int const from : {0, 1})
            if (open && waits[from].revents != 0)
                open = Pass(waits[from].fd, waits[1 - from].fd);
    }
    close(server);
}

OddServer::OddServer(Answer answer) : mAnswer(std::move(answer))
{
    mListener = Listener(16, mPort);
    if (pipe(mStop) != 0)
        throw std::runtime_error("cannot make a pipe");
    mThread = std::thread(&OddServer::Serve, this);
}

OddServer::~OddServer()
{
    static_cast<void>(write(mStop[1], "x", 1));
    mThread.join();
    for (std::thread& client : mClients)
        client.join();
    for (int const descriptor : {mListener, mStop[0], mStop[1]})
        close(descriptor);
}

std::vector<std::string> OddServer::Requests() const
{
    std::lock_guard const lock(mMutex);
    return mRequests;
}

void OddServer::Serve()
{
    while (IsReady(mListener, mStop[0]))
        if (int const socket = accept4(mListener, nullptr, nullptr, SOCK_CLOEXEC); socket >= 0)
            mClients.emplace_back(&OddServer::ServeOne, this, socket);
}

void OddServer::ServeOne(int socket)
{
    std::string request;
    char byte = 0;
    while (!request.ends_with("\r\n\r\n") && IsReady(socket, mStop[0]) && recv(socket, &byte, 1, 0) == 1)
        request += byte;
    if (request.ends_with("\r\n\r\n"))
    {
        {
            std::lock_guard const lock(mMutex);
            mRequests.push_back(request);
        }
        mAnswer(Client(socket, mStop[0]), request);
    }
    close(socket);
}

FullServer::FullServer()
{
    mSockets.push_back(Listener(0, mPort));
    sockaddr_in const address = Loopback(mPort);
    for (int i = 0; i < 4; ++i)
    {
        int const socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
        static_cast<void>(connect(socket, reinterpret_cast<sockaddr const*>(&address), sizeof address));
        mSockets.push_back(socket);
    }
}

FullServer::~FullServer()
{
    for (int const socket : mSockets)
        close(socket);
}
} // namespace KORVA::TESTS
