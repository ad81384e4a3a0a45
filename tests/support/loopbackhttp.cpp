#include "tests/support/loopbackhttp.h"

#include <winsock2.h>

#include <algorithm>
#include <utility>

namespace {

void LimitWaits(SOCKET client) {
    const DWORD milliseconds = 5000;
    for (const int wait : {SO_RCVTIMEO, SO_SNDTIMEO})
        setsockopt(client, SOL_SOCKET, wait, reinterpret_cast<const char*>(&milliseconds), sizeof milliseconds);
}

// The path in "GET /path HTTP/1.1", once the whole head of the request has come.
std::string ReadRequestPath(SOCKET client) {
    std::string head;
    char chunk[2048];
    while (head.find("\r\n\r\n") == std::string::npos) {
        const int got = recv(client, chunk, sizeof chunk, 0);
        if (got <= 0) return {};
        head.append(chunk, static_cast<size_t>(got));
    }
    const size_t begin = head.find(' ') + 1;
    return head.substr(begin, head.find(' ', begin) - begin);
}

void Send(SOCKET client, const std::string& bytes, size_t piece) {
    for (size_t at = 0; at < bytes.size();) {
        const size_t length = std::min({piece, bytes.size() - at, size_t{1} << 20});
        const int sent = send(client, bytes.data() + at, static_cast<int>(length), 0);
        if (sent <= 0) return;
        at += static_cast<size_t>(sent);
        if (piece != std::string::npos) Sleep(2);
    }
}

}  // namespace

LoopbackHttp::LoopbackHttp() {
    WSADATA data;
    WSAStartup(0x202, &data);
    m_listener = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    int length = sizeof address;
    bind(m_listener, reinterpret_cast<sockaddr*>(&address), length);
    listen(m_listener, 16);
    getsockname(m_listener, reinterpret_cast<sockaddr*>(&address), &length);
    m_port = ntohs(address.sin_port);
    m_thread = std::thread([this] { Run(); });
}

LoopbackHttp::~LoopbackHttp() {
    closesocket(m_listener);
    m_thread.join();
    WSACleanup();
}

void LoopbackHttp::Serve(const std::string& path, Page page) {
    const std::lock_guard guard(m_lock);
    m_pages[path] = std::move(page);
}

std::wstring LoopbackHttp::Url(const std::wstring& path) const {
    return L"http://127.0.0.1:" + std::to_wstring(m_port) + path;
}

std::string LoopbackHttp::TakeRequests() {
    const std::lock_guard guard(m_lock);
    return std::exchange(m_requests, {});
}

void LoopbackHttp::Run() {
    for (;;) {
        const SOCKET client = accept(m_listener, nullptr, nullptr);
        if (client == INVALID_SOCKET) return;
        LimitWaits(client);
        Answer(client);
        closesocket(client);
    }
}

void LoopbackHttp::Answer(uintptr_t client) {
    const std::lock_guard guard(m_lock);
    const std::string path = ReadRequestPath(client);
    m_requests += ' ' + path;
    const auto found = m_pages.find(path);
    const Page page = found == m_pages.end() ? Page{"not found"} : found->second;
    if (page.hangsUp) return;
    std::string head = found == m_pages.end() ? "HTTP/1.1 404 Not Found\r\n" : "HTTP/1.1 200 OK\r\n";
    const size_t length = page.announced.value_or(page.body.size());
    if (page.hasLength) head += "Content-Length: " + std::to_string(length) + "\r\n";
    Send(client, head + "Connection: close\r\n\r\n" + page.body, page.piece);
    shutdown(client, SD_SEND);
}
