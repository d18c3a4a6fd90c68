// Code-page 936 text: the multibyte primitives the bar relies on, written for one
// code page so they behave the same on every platform. A lead byte 0x81-0xFE takes
// the byte after it (if any), so a trail byte that equals '\\', '<' or a letter is
// never matched, folded or split. Only ASCII letters fold.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tavlet::text {

constexpr bool IsLeadByte(unsigned char c) { return c >= 0x81 && c <= 0xFE; }

// Length in bytes of the character at `s` (1 or 2); 1 for a lead byte at the end.
std::size_t CharLength(std::string_view s, std::size_t pos = 0);

// Contracts of the runtime's _mbs* functions, for code page 936.
int Mbclen(const char* c);                                            // _mbclen
int Mbscmp(std::string_view a, std::string_view b);                   // _mbscmp: <0, 0, >0
int Mbsicmp(std::string_view a, std::string_view b);                  // _mbsicmp
int Mbsicoll(std::string_view a, std::string_view b);                 // _mbsicoll
std::size_t Mbsstr(std::string_view hay, std::string_view needle);    // _mbsstr; npos if absent
std::size_t Mbschr(std::string_view s, unsigned int character);       // _mbschr; npos if absent
std::string Mbslwr(std::string_view s);                               // _mbslwr
int Mbsnbcmp(std::string_view a, std::string_view b, std::size_t bytes);   // _mbsnbcmp
int Mbsncmp(std::string_view a, std::string_view b, std::size_t chars);    // _mbsncmp
std::size_t Mbccpy(char* dest, const char* src);                      // _mbccpy; bytes copied

// Conversions for terminals, logs and tests. Bytes that are not valid code-page 936
// become U+FFFD; characters that code page 936 lacks become '?'.
std::string ToUtf8(std::string_view cp936);
std::string FromUtf8(std::string_view utf8);
// No malformed, overlong or surrogate sequence anywhere.
bool IsValidUtf8(std::string_view s);
// The same for UTF-16LE without a byte-order mark; an odd last byte is left out.
std::string ToUtf16Le(std::string_view cp936);
std::string FromUtf16Le(std::string_view utf16le);

}  // namespace tavlet::text
