// A server that does what no real one would.
#pragma once

#include <atomic>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace KORVA::TESTS
{
/// Answers each connection's one request with what a function makes of it, and closes it. Runs on threads of
/// its own.
class OddServer
{
public:
    /// One connection.
    class Client
    {
    public:
        Client(int socket, int stop) : mSocket(socket), mStop(stop) {}

        /// False when the client is gone.
        bool Send(std::string_view bytes) const;
        /// Until the client goes away, or the server has to.
        void Stall() const;
        /// Passes bytes to and from a server on this machine, until one of the two goes away or this one has
        /// to.
        void Tunnel(int port) const;

    private:
        int mSocket;
        int mStop;
    };

    /// Gets the request's first line and headers.
    using Answer = std::function<void(Client const& client, std::string const& request)>;

    explicit OddServer(Answer answer);
    OddServer(OddServer const&) = delete;
    OddServer& operator=(OddServer const&) = delete;
    ~OddServer();

    std::string URL(std::string const& path) const
    {
        return "http://127.0.0.1:" + std::to_string(mPort) + path;
    }
    /// All requests so far, whole.
    std::vector<std::string> Requests() const;

private:
    void Serve();
    void ServeOne(int socket);

    Answer mAnswer;
    int mListener = -1;
    int mStop[2] = {-1, -1};
    int mPort = 0;
    std::mutex mutable mMutex;
    std::vector<std::string> mRequests;
    std::vector<std::thread> mClients;
    std::thread mThread;
};

/// Listens, but takes nobody in: whoever connects waits for ever.
class FullServer
{
public:
    FullServer();
    FullServer(FullServer const&) = delete;
    FullServer& operator=(FullServer const&) = delete;
    ~FullServer();

    std::string URL() const { return "http://127.0.0.1:" + std::to_string(mPort) + "/"; }

private:
    int mPort = 0;
    std::vector<int> mSockets;
};
} // namespace KORVA::TESTS
