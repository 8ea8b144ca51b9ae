#include "token.h"

#include <errno.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>
#include <fstream>
#include <sstream>

namespace sensorctl::gateway {

namespace {

bool ReadRandom(unsigned char* bytes, size_t count) {
    int fd = open("/dev/urandom", O_RDONLY | O_CLOEXEC);
    if (fd < 0) return false;
    size_t done = 0;
    while (done < count) {
        ssize_t n = read(fd, bytes + done, count - done);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) break;
        done += static_cast<size_t>(n);
    }
    close(fd);
    return done == count;
}

std::string Trimmed(std::string const& text) {
    size_t const begin = text.find_first_not_of(" \t\r\n");
    if (begin == std::string::npos) return std::string();
    size_t const end = text.find_last_not_of(" \t\r\n");
    return text.substr(begin, end - begin + 1);
}

bool CreateTokenFile(std::string const& path, std::string* token, std::string* error) {
    *token = FreshToken();
    if (token->empty()) {
        *error = "cannot read the system's random source";
        return false;
    }
    // O_EXCL: never write through a file or link someone else put there.
    int fd = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (fd < 0) {
        *error = "cannot create " + path + ": " + std::strerror(errno);
        return false;
    }
    std::string const line = *token + "\n";
    bool const written = write(fd, line.data(), line.size()) == static_cast<ssize_t>(line.size());
    bool const closed = close(fd) == 0;
    if (!written || !closed) {
        *error = "cannot write " + path;
        return false;
    }
    return true;
}

} // namespace

std::string FreshToken() {
    unsigned char bytes[32];
    if (!ReadRandom(bytes, sizeof bytes)) return std::string();
    static char const kDigits[] = "0123456789abcdef";
    std::string text;
    for (unsigned char byte : bytes) {
        text += kDigits[byte >> 4];
        text += kDigits[byte & 0x0f];
    }
    return text;
}

bool ReadOrCreateTokenFile(std::string const& path, std::string* token, std::string* error) {
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        if (access(path.c_str(), F_OK) != 0) return CreateTokenFile(path, token, error);
        *error = "cannot read " + path;
        return false;
    }
    std::ostringstream text;
    text << in.rdbuf();
    *token = Trimmed(text.str());
    if (token->empty()) {
        *error = path + " holds no token";
        return false;
    }
    return true;
}

bool SameToken(std::string_view presented, std::string_view expected) {
    unsigned char difference = presented.size() == expected.size() ? 0 : 1;
    for (size_t i = 0; i < expected.size(); ++i) {
        unsigned char const p = i < presented.size() ? static_cast<unsigned char>(presented[i]) : 0;
        difference |= static_cast<unsigned char>(p ^ static_cast<unsigned char>(expected[i]));
    }
    // Empty expected token never matches: a server without one refuses everyone.
    return difference == 0 && !expected.empty();
}

} // namespace sensorctl::gateway
