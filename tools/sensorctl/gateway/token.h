// The bearer token every API request must carry.
#pragma once

#include <string>
#include <string_view>

namespace sensorctl::gateway {

// 32 bytes from the system's random source, as 64 hexadecimal digits; empty
// when the source cannot be read.
std::string FreshToken();

// Reads the token from FILE (surrounding white space dropped). A missing file
// is created, owner-only, holding a fresh token. False with *error when the
// file cannot be read or made, or holds no token.
bool ReadOrCreateTokenFile(std::string const& path, std::string* token, std::string* error);

// Compares in time that depends on the lengths only, never on where the
// texts first differ.
bool SameToken(std::string_view presented, std::string_view expected);

} // namespace sensorctl::gateway
