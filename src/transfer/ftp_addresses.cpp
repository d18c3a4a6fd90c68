// The addresses and folders that FTP replies and commands carry as text.
#include <cstdio>

#include "transfer/ftp_client.h"

namespace tavlet::transfer {
namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// A decimal number of at most `maxDigits` digits at `pos`; advances past it.
bool ReadNumber(const std::string& text, std::size_t& pos, unsigned long maxValue,
                unsigned long& value) {
  const std::size_t start = pos;
  value = 0;
  while (pos < text.size() && IsDigit(text[pos]) && pos - start < 6) {
    value = value * 10 + static_cast<unsigned long>(text[pos] - '0');
    ++pos;
  }
  return pos > start && (pos >= text.size() || !IsDigit(text[pos])) && value <= maxValue;
}

}  // namespace

bool ParsePasvReply(const std::string& text, std::string& host, std::uint16_t& port) {
  // The six numbers stand anywhere in the text, with or without brackets.
  for (std::size_t start = 0; start < text.size(); ++start) {
    if (!IsDigit(text[start]) || (start > 0 && IsDigit(text[start - 1]))) continue;
    std::size_t pos = start;
    unsigned long parts[6] = {};
    bool ok = true;
    for (int i = 0; i < 6 && ok; ++i) {
      ok = ReadNumber(text, pos, 255, parts[i]);
      if (ok && i < 5) ok = pos < text.size() && text[pos++] == ',';
    }
    if (!ok) continue;
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "%lu.%lu.%lu.%lu", parts[0], parts[1], parts[2], parts[3]);
    host = buffer;
    port = static_cast<std::uint16_t>(parts[4] * 256 + parts[5]);
    return port != 0;
  }
  return false;
}

bool ParseEpsvReply(const std::string& text, std::uint16_t& port) {
  const std::size_t open = text.find('(');
  if (open == std::string::npos || open + 5 >= text.size()) return false;
  const char delimiter = text[open + 1];
  if (delimiter < 33 || delimiter > 126 || IsDigit(delimiter)) return false;
  if (text[open + 2] != delimiter || text[open + 3] != delimiter) return false;
  std::size_t pos = open + 4;
  unsigned long value = 0;
  if (!ReadNumber(text, pos, 65535, value) || value == 0) return false;
  if (pos + 1 >= text.size() || text[pos] != delimiter || text[pos + 1] != ')') return false;
  port = static_cast<std::uint16_t>(value);
  return true;
}

std::string PortArgument(const NetAddress& address) {
  std::string argument = address.host;
  for (char& c : argument) {
    if (c == '.') c = ',';
  }
  return argument + "," + std::to_string(address.port / 256) + "," +
         std::to_string(address.port % 256);
}

std::string EprtArgument(const NetAddress& address) {
  return std::string(address.IsV6() ? "|2|" : "|1|") + address.host + "|" +
         std::to_string(address.port) + "|";
}

bool ParsePwdReply(const std::string& text, std::string& folder) {
  const std::size_t open = text.find('"');
  if (open == std::string::npos) return false;
  folder.clear();
  for (std::size_t pos = open + 1; pos < text.size(); ++pos) {
    if (text[pos] != '"') {
      folder += text[pos];
    } else if (pos + 1 < text.size() && text[pos + 1] == '"') {
      folder += '"';
      ++pos;
    } else {
      return true;
    }
  }
  return false;
}

}  // namespace tavlet::transfer
