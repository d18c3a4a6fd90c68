// Files for the transfer tests: made a block at a time from a seed, and compared
// a block at a time, so that 50 MB files never sit whole in memory.
#pragma once

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace tavlet::testing {

inline bool WritePatternFile(const std::string& path, std::uint64_t size, std::uint32_t seed) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  std::vector<char> block(1 << 20);
  std::uint32_t state = seed * 2654435761u + 1;
  for (std::uint64_t done = 0; done < size;) {
    const std::size_t n =
        static_cast<std::size_t>(std::min<std::uint64_t>(block.size(), size - done));
    for (std::size_t i = 0; i < n; i += 4) {
      state = state * 1664525u + 1013904223u;
      for (std::size_t k = 0; k < 4 && i + k < n; ++k)
        block[i + k] = static_cast<char>(state >> (8 * k));
    }
    out.write(block.data(), static_cast<std::streamsize>(n));
    done += n;
  }
  return static_cast<bool>(out.flush());
}

// "" when equal, else where they differ.
inline std::string CompareFiles(const std::string& a, const std::string& b) {
  std::ifstream first(a, std::ios::binary), second(b, std::ios::binary);
  if (!first) return "cannot open " + a;
  if (!second) return "cannot open " + b;
  std::vector<char> x(1 << 20), y(1 << 20);
  for (std::uint64_t offset = 0;;) {
    first.read(x.data(), static_cast<std::streamsize>(x.size()));
    second.read(y.data(), static_cast<std::streamsize>(y.size()));
    const auto n = first.gcount(), m = second.gcount();
    for (std::streamsize i = 0; i < std::min(n, m); ++i) {
      if (x[i] != y[i]) return "first difference at byte " + std::to_string(offset + i);
    }
    if (n != m) return "lengths differ after byte " + std::to_string(offset + std::min(n, m));
    if (n == 0) return {};
    offset += static_cast<std::uint64_t>(n);
  }
}

inline std::string ReadText(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

inline bool FileExists(const std::string& path) { return static_cast<bool>(std::ifstream(path)); }

}  // namespace tavlet::testing
