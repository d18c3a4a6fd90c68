// The private-profile engine against the platform's own functions: the same reads on
// the same files must leave the same bytes in the same buffers, and the same writes
// must leave the same files.
#include <windows.h>

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "platform/file_system.h"
#include "settings/profile_engine.h"
#include "settings/profile_file.h"

namespace tavlet {
namespace {

// A new name for every file, so that the platform's own cache never answers.
std::string NewPath() {
  static const std::string folder = [] {
    char temp[MAX_PATH] = {};
    GetTempPathA(MAX_PATH, temp);
    const std::string path = std::string(temp) + "tavlet_profile_diff\\";
    CreateDirectoryA(path.c_str(), nullptr);
    return path;
  }();
  static int counter = 0;
  return folder + "case" + std::to_string(++counter) + ".ini";
}

std::string Put(const std::string& bytes) {
  const std::string path = NewPath();
  EXPECT_EQ(NativeFileSystem().WriteFileAtomic(path, bytes), FileError::None);
  return path;
}

std::string Contents(const std::string& path) {
  std::string bytes;
  NativeFileSystem().ReadFile(path, bytes);
  return bytes;
}

std::string Show(const std::vector<char>& buffer) {
  std::string out;
  for (char ch : buffer) {
    const auto c = static_cast<unsigned char>(ch);
    char hex[4];
    std::snprintf(hex, sizeof hex, "%02X", c);
    out += c == 0 ? std::string("|") : (c < 32 || c > 126) ? std::string(hex) : std::string(1, ch);
  }
  return out.size() > 300 ? out.substr(0, 300) + "..." : out;
}

struct Shape {
  const char* what;
  std::string bytes;
};

// Files of varied shape. Section and key names to ask for come from each file's own
// headers and entries, in their spelling, in other letter case, padded, and missing.
std::vector<Shape> Shapes() {
  std::string manyKeys = "[big]\r\n";
  for (int i = 1; i <= 1500; ++i)
    manyKeys += "文件" + std::to_string(i) + "=C:\\图纸\\第" + std::to_string(i) + "号.dwg,0\r\n";
  std::string manySections;
  for (int i = 0; i < 150; ++i) manySections += "[工作集 " + std::to_string(i) + "]\r\nk=v\r\n";
  const std::string longName(300, 'n');
  return {
      {"plain", "[a]\r\nx=1\r\ny=two\r\n[b]\r\nz=3\r\n"},
      {"lf only", "[a]\nx=1\ny=two\n[b]\nz=3\n"},
      {"cr only", "[a]\rx=1\ry=2\r"},
      {"no final newline", "[a]\r\nx=1\r\n[b]\r\nz=3"},
      {"duplicate sections", "[a]\nx=1\n[A]\ny=2\nx=9\n[b]\n[a]\nz=3\n"},
      {"duplicate keys", "[a]\nx=1\nX=2\nx=3\ny=4\n"},
      {"blank lines", "\n\n[a]\n\nx=1\n\n\ny=2\n\n[b]\n\n"},
      {"lines without equals", "[a]\nnoeq\nx=1\n  spaced words  \n[b]\nalone\n"},
      {"comments", "; head\n[a]\n;c=1\n#h=2\nx=1\n; tail\n[b]\n;only\n"},
      {"blanks around", "  [ s ]  \n  k  =  v  \n\tt\t=\tw\t\n\xA1\xA1y=2\n[t ]\nq =1\n"},
      {"quotes", "[a]\nq1='x'\nq2=\"x\"\nq3=\"x\nq4=\"\nq5='x\"\nq6=\"\"\nq7= \" x \" \nq8=\"a\"b\"\n"},
      {"integers", "[a]\ni1=0x10\ni2=0X10\ni3= -5\ni4=+7\ni5=12abc\ni6=abc\ni7=\ni8=4294967295\n"
                   "i9=99999999999\ni10=0b101\ni11=0o17\ni12=\"42\"\ni13=010\ni14=  \n"},
      {"structs", "[a]\ns=01AB20CC\nt=01ab20cc\nu=01AB20CD\nv=01AB20CCx\nw=01AB20C\nx=\"01AB20CC\"\ng=01AB2GCC\n"},
      {"before any section", "top=1\nalso\n[a]\nx=1\n[]\ny=2\n"},
      {"header oddities", "[a\nk=1\n[b]]\nk=2\n[c] trailing\nk=3\n[]\nk=4\n"},
      {"code page 936 names", "[工作集]\r\n文件1=C:\\图纸\\表.dwg,0\r\n文件2=D:\\设计\\总图.dwg,1\r\n[图纸]\r\n路径=C:\\表\r\n"},
      {"long values", "[a]\nlong=" + std::string(2500, 'v') + "\nwide=" + std::string(2400, '\xD6') + "\n"},
      {"long names", "[" + longName + "]\n" + longName + "=1\n"},
      {"many keys", manyKeys},
      {"many sections", manySections},
      {"ctrl-z and tabs", "[a]\nx=1\x1a\n\ty\t=\t2\t\n"},
      {"empty", ""},
      {"equals everywhere", "[a]\n=e\nk==v\nk2=a=b\n"},
      {"nul bytes", std::string("[a]\nk=v\0w=1\n\0\0[b]\nz=2\n", 23)},
  };
}

std::vector<std::string> SectionsToAsk(const profile::Document& document) {
  std::vector<std::string> names = {"missing", ""};
  for (const profile::Section& s : document.sections) {
    if (s.name.empty() || names.size() > 12) continue;
    std::string upper = s.name;
    for (char& c : upper)
      if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 32);
    names.insert(names.end(), {s.name, upper, " " + s.name + " "});
  }
  return names;
}

std::vector<std::string> KeysToAsk(const profile::Document& document, const std::string& section) {
  std::vector<std::string> keys = {"missing", ""};
  if (const profile::Section* s = profile::FindSection(document, section))
    for (const profile::Entry& e : s->entries)
      if (keys.size() <= 24) keys.insert(keys.end(), {e.name, " " + e.name + " "});
  return keys;
}

// Bytes past the size a call is given; any write there is a fault of its own.
constexpr std::uint32_t kGuard = 16;

// Both buffers start as the same junk, high bytes and lead bytes among it, with guard
// bytes past the end: a byte one side writes and the other leaves alone shows, and so
// does a write past the end.
std::vector<char> Junk(std::uint32_t size) {
  std::vector<char> buffer(std::size_t{size} + kGuard);
  for (std::size_t i = 0; i < buffer.size(); ++i) buffer[i] = static_cast<char>(0xA7 + i * 0x3B);
  return buffer;
}

void CompareBuffers(const std::string& what, std::uint32_t size, const std::function<DWORD(char*, DWORD)>& platform,
                    const std::function<std::uint32_t(char*, std::uint32_t)>& ours, int& compared) {
  std::vector<char> theirs = Junk(size), mine = Junk(size);
  const DWORD theirReturn = platform(theirs.data(), size);
  EXPECT_EQ(ours(mine.data(), size), theirReturn) << what << " size " << size;
  EXPECT_TRUE(mine == theirs) << what << " size " << size << "\n ours:     " << Show(mine)
                              << "\n platform: " << Show(theirs);
  ++compared;
}

TEST(ProfileDifferential, ReadsMatchThePlatformOnEveryShape) {
  int compared = 0;
  for (const Shape& shape : Shapes()) {
    SCOPED_TRACE(shape.what);
    const std::string path = Put(shape.bytes);
    const char* file = path.c_str();
    const profile::Document document = profile::Parse(shape.bytes);
    for (std::uint32_t size : {2000u, 4u, 1u})
      CompareBuffers(
          "names", size, [&](char* b, DWORD n) { return GetPrivateProfileSectionNamesA(b, n, file); },
          [&](char* b, std::uint32_t n) { return profile::GetSectionNames(document, b, n); }, compared);
    for (const std::string& section : SectionsToAsk(document)) {
      const char* s = section.c_str();
      for (std::uint32_t size : {32000u, 7u, 3u}) {
        CompareBuffers(
            "section [" + section + "]", size, [&](char* b, DWORD n) { return GetPrivateProfileSectionA(s, b, n, file); },
            [&](char* b, std::uint32_t n) { return profile::GetSection(document, section, b, n); }, compared);
        CompareBuffers(
            "keys [" + section + "]", size,
            [&](char* b, DWORD n) { return GetPrivateProfileStringA(s, nullptr, "D", b, n, file); },
            [&](char* b, std::uint32_t n) { return profile::GetKeyList(document, section, "D", b, n); }, compared);
      }
      for (const std::string& key : KeysToAsk(document, section)) {
        const std::string what = "[" + section + "] " + key;
        const char* k = key.c_str();
        for (std::uint32_t size : {2000u, 5u})
          CompareBuffers(
              "string " + what, size,
              [&](char* b, DWORD n) { return GetPrivateProfileStringA(s, k, "dflt  ", b, n, file); },
              [&](char* b, std::uint32_t n) { return profile::GetString(document, section, key, "dflt  ", b, n); },
              compared);
        EXPECT_EQ(profile::GetInt(document, section, key, 77), GetPrivateProfileIntA(s, k, 77, file)) << "int " << what;
        unsigned char mine[3] = {}, theirs[3] = {};
        EXPECT_EQ(profile::GetStruct(document, section, key, mine, 3),
                  GetPrivateProfileStructA(s, k, theirs, 3, file) != FALSE)
            << "struct " << what;
        EXPECT_EQ(std::memcmp(mine, theirs, 3), 0) << "struct " << what;
      }
    }
  }
  EXPECT_GT(compared, 1000);
}

// One write script, run through ProfileFile on one copy of a file and through the
// platform's calls on another.
struct Script {
  const char* what;
  std::function<void(ProfileFile&)> ours;
  std::function<void(const char*)> platform;
};

Script Write(const char* what, const char* section, const char* key, const char* value) {
  return {what, [=](ProfileFile& f) { f.WriteString(section, key, value); },
          [=](const char* p) { WritePrivateProfileStringA(section, key, value, p); }};
}

// The platform has no copy: a section is read whole and written under the new name.
void PlatformCopy(const char* p, const char* from, const char* to) {
  std::vector<char> body(32767, 0);
  if (GetPrivateProfileSectionA(from, body.data(), 32767, p) != 0) WritePrivateProfileSectionA(to, body.data(), p);
}

std::vector<Script> Scripts() {
  const unsigned char data[4] = {0, 0x7F, 0x80, 0xFF};
  return {
      Write("replace a value", "a", "x", "new"),
      Write("same value", "a", "x", "1"),
      Write("other case, blanks", " A ", " X ", "  lead "),
      Write("new key", "a", "added", "v"),
      Write("new section", "新节", "文件1", "C:\\表.dwg,1"),
      Write("empty value", "a", "x", ""),
      {"delete key", [](ProfileFile& f) { ProfileFile(NativeFileSystem(), f.Path(), true).WriteString("a", "x", ""); },
       [](const char* p) { WritePrivateProfileStringA("a", "x", nullptr, p); }},
      {"delete section", [](ProfileFile& f) { f.DeleteSection("a"); },
       [](const char* p) { WritePrivateProfileSectionA("a", nullptr, p); }},
      {"clear section", [](ProfileFile& f) { f.ClearSection("a"); },
       [](const char* p) { WritePrivateProfileSectionA("a", "", p); }},
      {"struct", [data](ProfileFile& f) { f.WriteStruct("a", "s", data, 4); },
       [data](const char* p) { WritePrivateProfileStructA("a", "s", const_cast<unsigned char*>(data), 4, p); }},
      {"copy section", [](ProfileFile& f) { f.CopySection("a", "copy"); },
       [](const char* p) { PlatformCopy(p, "a", "copy"); }},
      {"rename section", [](ProfileFile& f) { f.RenameSection("a", "renamed"); },
       [](const char* p) {
         std::vector<char> body(32767, 0);
         if (GetPrivateProfileSectionA("a", body.data(), 32767, p) == 0) return;
         PlatformCopy(p, "a", "renamed");
         WritePrivateProfileSectionA("a", nullptr, p);
       }},
  };
}

TEST(ProfileDifferential, WritesLeaveTheSameFiles) {
  int compared = 0;
  for (const Shape& shape : Shapes()) {
    if (shape.bytes.size() > 4000) continue;
    for (const Script& script : Scripts()) {
      SCOPED_TRACE(std::string(shape.what) + " / " + script.what);
      const std::string mine = Put(shape.bytes);
      const std::string theirs = Put(shape.bytes);
      {
        ProfileFile file(NativeFileSystem(), mine);
        script.ours(file);
      }
      script.platform(theirs.c_str());
      WritePrivateProfileStringA(nullptr, nullptr, nullptr, theirs.c_str());  // flush
      const std::string theirBytes = Contents(theirs);
      EXPECT_TRUE(Contents(mine) == theirBytes) << "ours:\n" << Contents(mine) << "\nplatform:\n" << theirBytes;
      ++compared;

      // Each side reads the other's file the same way it reads its own.
      const profile::Document platformWritten = profile::Parse(theirBytes);
      std::vector<char> a(32000, 0), b(32000, 0);
      profile::GetSectionNames(platformWritten, a.data(), 2000);
      GetPrivateProfileSectionNamesA(b.data(), 2000, mine.c_str());
      EXPECT_TRUE(a == b) << "names";
      for (const std::string& name : profile::SplitList(a.data(), 2000)) {
        std::vector<char> x(32000, 0), y(32000, 0);
        profile::GetSection(platformWritten, name, x.data(), 32000);
        GetPrivateProfileSectionA(name.c_str(), y.data(), 32000, mine.c_str());
        EXPECT_TRUE(x == y) << "section " << name;
      }
    }
  }
  EXPECT_GE(compared, 40);
}

TEST(ProfileDifferential, BigWorksetRoundTrips) {
  const std::string mine = NewPath();
  const std::string theirs = NewPath();
  ProfileFile file(NativeFileSystem(), mine, true);
  for (int i = 1; i <= 300; ++i) {
    const std::string key = "文件" + std::to_string(i);
    const std::string value = "C:\\图纸\\第" + std::to_string(i) + "号.dwg," + std::to_string(i % 2);
    ASSERT_TRUE(file.WriteString("工作集 A", key, value));
    WritePrivateProfileStringA("工作集 A", key.c_str(), value.c_str(), theirs.c_str());
  }
  WritePrivateProfileStringA(nullptr, nullptr, nullptr, theirs.c_str());
  EXPECT_TRUE(Contents(mine) == Contents(theirs));
  std::vector<std::string> lines;
  ProfileFile(NativeFileSystem(), theirs).GetSectionLines("工作集 a", lines);
  ASSERT_EQ(lines.size(), 300u);
  EXPECT_EQ(lines[299], "文件300=C:\\图纸\\第300号.dwg,0");
}

}  // namespace
}  // namespace tavlet
