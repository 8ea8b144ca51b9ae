// Small text helpers used throughout the library. None reports errors:
// failures give empty or zero results.
#pragma once

#include <string>
#include <vector>

namespace string {

// Appends the non-empty pieces of text between occurrences of delimiter to out
// (which is not cleared).
void split(std::vector<std::string>& out, std::string const& text, std::string const& delimiter);

// Replaces every occurrence of from by to, never searching replaced text again.
std::string& replace_all(std::string& s, std::string const& from, std::string const& to);

// The number read by stream extraction (leading blanks skipped, reading stops
// at the first character that cannot continue it); 0 when nothing was read.
template <typename T> T to(std::string const& text);
template <> int to<int>(std::string const& text);
template <> unsigned int to<unsigned int>(std::string const& text);
template <> unsigned long to<unsigned long>(std::string const& text);

// A pointer value read as hexadecimal, with or without "0x"; null when nothing was read.
void* to_pointer(std::string const& text);

// Lower-case hexadecimal without prefix, left-padded with '0' to at least width.
template <typename T> std::string hex(T const& value, unsigned long width);
template <> std::string hex<long>(long const& value, unsigned long width);
template <> std::string hex<unsigned long>(unsigned long const& value, unsigned long width);

} // namespace string
