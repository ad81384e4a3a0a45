#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

// A serial HTTP server on a port of its own of the loopback address, for tests of real downloads. It gives up on a
// client that is silent for five seconds, and a page that nobody set is a "404 Not Found" with a body.
class LoopbackHttp {
public:
    struct Page {
        std::string body;
        std::optional<size_t> announced = std::nullopt;  // another length than the body's
        bool hasLength = true;                           // whether a length is announced at all
        size_t piece = std::string::npos;                // bytes sent at once, with a short pause after each piece
        bool hangsUp = false;                            // closes the connection without an answer
    };

    LoopbackHttp();
    ~LoopbackHttp();
    LoopbackHttp(const LoopbackHttp&) = delete;
    LoopbackHttp& operator=(const LoopbackHttp&) = delete;

    // `path` begins with "/".
    void Serve(const std::string& path, Page page);
    std::wstring Url(const std::wstring& path) const;
    // The paths asked for since the last call, each with a blank before it. Waits until the server is idle and keeps
    // nothing, so that counts of allocations are exact.
    std::string TakeRequests();

private:
    void Run();
    void Answer(uintptr_t client);

    uintptr_t m_listener;  // a SOCKET; its header does not go after that of Windows
    unsigned short m_port = 0;
    std::mutex m_lock;  // guards the pages and the requests, and is held while the server answers
    std::map<std::string, Page> m_pages;
    std::string m_requests;
    std::thread m_thread;
};
