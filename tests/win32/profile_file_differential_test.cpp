// The private-profile engine against the platform's own functions: the same reads on
// the same files must leave the same bytes in the same buffers, and the same writes
// must leave the same files.
//
// Where Windows itself differs from Wine (the Wine conformance tests mark these cases
// "todo"), the engine follows Windows, and so do the expectations here:
//  - A cut list of section names (GetPrivateProfileSectionNamesA) or of keys
//    (GetPrivateProfileStringA with a null key) has a NUL in the buffer's last byte
//    too, since Windows Server 2003; Wine leaves that byte alone. WindowsListEnd puts
//    it into the platform's buffer before the comparison.
//  - Deleting a key (a null string, a null struct) or a section from a file that
//    doesn't exist leaves the file there, empty; Wine writes nothing
//    (DeletionFromAMissingFileLeavesItEmpty).
// Where the engine knowingly differs from Wine alone:
//  - GetPrivateProfileSectionA with a buffer of one byte: Wine writes a second NUL
//    past the buffer's end; the engine never writes past the size it is given
//    (WineWritesPastOneByte takes that byte back out of the platform's buffer).
// Where the engine knowingly differs from Windows, and why:
//  - Windows keeps the NULs of a line that a write doesn't touch (the conformance
//    case "NULLs in file before first section"); the engine, like Wine, writes every
//    line anew from what it read, which ends such a line at its first NUL, and so do
//    the expectations here (the "nul bytes" shape of WritesLeaveTheSameFiles).
//  - The last-error codes that Windows sets and Wine doesn't (ERROR_BAD_LENGTH and
//    ERROR_INVALID_DATA of a struct read, ERROR_FILE_NOT_FOUND of a read) have no
//    counterpart: the engine's calls answer with their results alone.
//  - A UTF-16 file holding characters that code page 936 lacks reads as the A calls
//    read it ("?" for each), but the engine refuses to rewrite it, where the
//    platform, which works in UTF-16 inside, keeps them: a rewrite through code page
//    936 would lose them (Utf16FileWithCharactersOutsideTheCodePage).
#include <windows.h>

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/file_system.h"
#include "platform/win32/handles.h"
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

// A file in UTF-16LE with its byte-order mark.
std::string Utf16File(std::u16string_view text) {
  std::string bytes = "\xFF\xFE";
  for (char16_t unit : text) {
    bytes += static_cast<char>(unit & 0xFF);
    bytes += static_cast<char>(unit >> 8);
  }
  return bytes;
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
      {"mixed line ends", "[a]\r\nx=1\ry=2\r\n[b]\rz=3\n\r\nw=4\r\n[c]\n\rk=v\r\r\n\nq=1"},
      // Sections whose names end in a character with the trail byte 0x5D, "]".
      {"trail byte ]", "[图\x81\x5D]\r\n文件1=C:\\a.dwg,0\r\n[\xAA\x5D x\xAA\x5D]\r\nk=v\r\n"
                       "[ab\x81\x5D\r\nq=1\r\n[t]\r\nk=v\x81\r\nx=1\r\n"},
      {"utf-16", Utf16File(u"[工作集]\r\n文件1=C:\\图纸\\表.dwg,0\r\n文件2=D:\\总图.dwg,1\r\n[b]\rk=v\r\n")},
      {"utf-16, mark only", Utf16File(u"")},
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

using Adjust = std::function<void(std::vector<char>&, std::uint32_t)>;

// What Windows has where Wine differs: a cut list of names or keys ends with a NUL in
// the last byte. `full` is the list's length in a buffer large enough; a list is cut
// when it and its final NUL don't fit below the last byte.
Adjust WindowsListEnd(DWORD full) {
  return [full](std::vector<char>& buffer, std::uint32_t size) {
    if (full > 0 && size > 0 && full + 1 >= size) buffer[size - 1] = 0;
  };
}

Adjust WineWritesPastOneByte() {
  return [](std::vector<char>& buffer, std::uint32_t size) {
    if (size == 1) buffer[1] = Junk(1)[1];
  };
}

// `adjust` turns what the platform (Wine) left into what Windows leaves.
void CompareBuffers(const std::string& what, std::uint32_t size, const std::function<DWORD(char*, DWORD)>& platform,
                    const std::function<std::uint32_t(char*, std::uint32_t)>& ours, int& compared,
                    const Adjust& adjust = nullptr) {
  std::vector<char> theirs = Junk(size), mine = Junk(size);
  const DWORD theirReturn = platform(theirs.data(), size);
  if (adjust) adjust(theirs, size);
  EXPECT_EQ(ours(mine.data(), size), theirReturn) << what << " size " << size;
  EXPECT_TRUE(mine == theirs) << what << " size " << size << "\n ours:     " << Show(mine)
                              << "\n platform: " << Show(theirs);
  ++compared;
}

DWORD FullNames(const char* file) {
  std::vector<char> buffer(32000);
  return GetPrivateProfileSectionNamesA(buffer.data(), 32000, file);
}

// The length of the key list, or 0 when the call gives its default (no listed key).
DWORD FullKeys(const char* section, const char* file) {
  std::vector<char> a(32000), b(32000);
  const DWORD length = GetPrivateProfileStringA(section, nullptr, "1", a.data(), 32000, file);
  GetPrivateProfileStringA(section, nullptr, "2", b.data(), 32000, file);
  return a == b ? length : 0;
}

TEST(ProfileDifferential, ReadsMatchThePlatformOnEveryShape) {
  int compared = 0;
  for (const Shape& shape : Shapes()) {
    SCOPED_TRACE(shape.what);
    const std::string path = Put(shape.bytes);
    const char* file = path.c_str();
    const profile::Document document = profile::Parse(profile::DecodeFile(shape.bytes).text);
    for (std::uint32_t size : {2000u, 4u, 1u})
      CompareBuffers(
          "names", size, [&](char* b, DWORD n) { return GetPrivateProfileSectionNamesA(b, n, file); },
          [&](char* b, std::uint32_t n) { return profile::GetSectionNames(document, b, n); }, compared,
          WindowsListEnd(FullNames(file)));
    for (const std::string& section : SectionsToAsk(document)) {
      const char* s = section.c_str();
      for (std::uint32_t size : {32000u, 7u, 3u}) {
        CompareBuffers(
            "section [" + section + "]", size, [&](char* b, DWORD n) { return GetPrivateProfileSectionA(s, b, n, file); },
            [&](char* b, std::uint32_t n) { return profile::GetSection(document, section, b, n); }, compared);
        CompareBuffers(
            "keys [" + section + "]", size,
            [&](char* b, DWORD n) { return GetPrivateProfileStringA(s, nullptr, "D", b, n, file); },
            [&](char* b, std::uint32_t n) { return profile::GetKeyList(document, section, "D", b, n); }, compared,
            WindowsListEnd(FullKeys(s, file)));
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
      {"null struct", [](ProfileFile& f) { f.WriteStruct("a", "x", nullptr, 4); },
       [](const char* p) { WritePrivateProfileStructA("a", "x", nullptr, 4, p); }},
      {"null struct, missing key", [](ProfileFile& f) { f.WriteStruct("新节", "x", nullptr, 4); },
       [](const char* p) { WritePrivateProfileStructA("新节", "x", nullptr, 4, p); }},
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
      const profile::Document platformWritten = profile::Parse(profile::DecodeFile(theirBytes).text);
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

// Every buffer size from 1 to past the whole list, so that each way a list can end
// (whole, two short, cut in a name, in a value, in a double-byte character) is met.
TEST(ProfileDifferential, ListsMatchAtEveryBufferSize) {
  const std::string files[] = {
      "[a]\r\nx=12345\r\ny=67\r\nnoeq\r\nz=\r\n[bb]\r\n[ccc]\r\nk=v\r\n;c=1\r\n",
      "[中]\r\n文=中文\r\nk=v\r\n键=值值\r\n[文文]\r\n[x]\r\n",
      "[图\x81\x5D]\r\n\xAA\x5D=\x81\x5D\r\nk=\"中\"\r\n",
  };
  int compared = 0;
  for (const std::string& bytes : files) {
    const std::string path = Put(bytes);
    const char* file = path.c_str();
    const profile::Document document = profile::Parse(bytes);
    const auto last = static_cast<std::uint32_t>(bytes.size() + 4);
    for (std::uint32_t size = 1; size <= last; ++size) {
      CompareBuffers(
          "names", size, [&](char* b, DWORD n) { return GetPrivateProfileSectionNamesA(b, n, file); },
          [&](char* b, std::uint32_t n) { return profile::GetSectionNames(document, b, n); }, compared,
          WindowsListEnd(FullNames(file)));
      for (const profile::Section& section : document.sections) {
        if (section.name.empty()) continue;
        const char* s = section.name.c_str();
        CompareBuffers(
            "section [" + section.name + "]", size,
            [&](char* b, DWORD n) { return GetPrivateProfileSectionA(s, b, n, file); },
            [&](char* b, std::uint32_t n) { return profile::GetSection(document, section.name, b, n); }, compared,
            WineWritesPastOneByte());
        CompareBuffers(
            "keys [" + section.name + "]", size,
            [&](char* b, DWORD n) { return GetPrivateProfileStringA(s, nullptr, "D  ", b, n, file); },
            [&](char* b, std::uint32_t n) { return profile::GetKeyList(document, section.name, "D  ", b, n); },
            compared, WindowsListEnd(FullKeys(s, file)));
        for (const profile::Entry& entry : section.entries) {
          const char* k = entry.name.c_str();
          CompareBuffers(
              "string [" + section.name + "] " + entry.name, size,
              [&](char* b, DWORD n) { return GetPrivateProfileStringA(s, k, "dflt", b, n, file); },
              [&](char* b, std::uint32_t n) { return profile::GetString(document, section.name, entry.name, "dflt", b, n); },
              compared);
        }
      }
    }
  }
  EXPECT_GT(compared, 500);
}

// A null key lists the keys; with none to list, the default comes back whole, trailing
// blanks and all, unlike the default of a single key.
TEST(ProfileDifferential, KeyListDefaultKeepsItsBlanks) {
  const std::string path = Put("[empty]\r\n[a]\r\nnoeq\r\n;c=1\r\n");
  const char* file = path.c_str();
  const profile::Document document = profile::Parse(Contents(path));
  int compared = 0;
  for (const char* section : {"missing", "empty", "a"}) {
    for (const char* def : {"dflt  ", " ", "  ", "中文  ", " x ", "'q'  ", "\"q\"", ""}) {
      for (std::uint32_t size : {2000u, 1u, 2u, 3u, 4u, 7u}) {
        CompareBuffers(
            std::string("keys [") + section + "] default '" + def + "'", size,
            [&](char* b, DWORD n) { return GetPrivateProfileStringA(section, nullptr, def, b, n, file); },
            [&](char* b, std::uint32_t n) { return profile::GetKeyList(document, section, def, b, n); }, compared);
      }
    }
  }
  EXPECT_EQ(compared, 3 * 8 * 6);
}

// Reads and writes through ProfileFile against the platform's calls, on a file that
// another handle holds open as each case says.
struct Holder {
  const char* what;
  DWORD access, share, flags;
  bool readable, writable;  // what Windows does (Wine's conformance tests agree)
};

win32::KernelHandle Hold(const std::string& path, const Holder& holder) {
  return win32::KernelHandle(CreateFileA(path.c_str(), holder.access, holder.share, nullptr, OPEN_EXISTING,
                                         FILE_ATTRIBUTE_NORMAL | holder.flags, nullptr));
}

// The temporary files a write leaves beside its file (none, once it is done).
std::vector<std::string> Leftovers(const std::string& path) {
  std::vector<std::string> names, left;
  NativeFileSystem().ListFolder(path.substr(0, path.rfind('\\')), names);
  for (const std::string& name : names)
    if (name.rfind("MV_", 0) == 0) left.push_back(name);
  return left;
}

TEST(ProfileDifferential, HeldFilesAreReadAndWrittenAsThePlatformDoes) {
  const std::string content = "[工作集]\r\n文件1=C:\\a.dwg,0\r\n";
  const Holder holders[] = {
      {"delete on close, sharing reading", GENERIC_WRITE, FILE_SHARE_READ, FILE_FLAG_DELETE_ON_CLOSE, true, false},
      {"delete on close, sharing all", GENERIC_READ | GENERIC_WRITE,
       FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, FILE_FLAG_DELETE_ON_CLOSE, true, true},
      {"reading and writing, sharing both", GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, 0,
       true, true},
      {"writing, sharing both", GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, 0, true, true},
      {"reading, sharing both", GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, 0, true, true},
      {"reading and writing, sharing reading", GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ, 0, true, false},
      {"reading, sharing writing", GENERIC_READ, FILE_SHARE_WRITE, 0, false, false},
      {"reading and writing, sharing all", GENERIC_READ | GENERIC_WRITE,
       FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, 0, true, true},
  };
  for (const Holder& holder : holders) {
    SCOPED_TRACE(holder.what);
    const std::string mine = Put(content), theirs = Put(content);
    {
      win32::KernelHandle heldMine = Hold(mine, holder), heldTheirs = Hold(theirs, holder);
      ASSERT_TRUE(heldMine.valid() && heldTheirs.valid());
      ProfileFile file(NativeFileSystem(), mine);
      char buffer[64] = {};
      GetPrivateProfileStringA("工作集", "文件1", "D", buffer, sizeof buffer, theirs.c_str());
      EXPECT_EQ(file.GetString("工作集", "文件1", "D"), buffer);
      EXPECT_EQ(std::string(buffer) != "D", holder.readable);
      std::vector<std::string> lines;
      file.GetSectionLines("工作集", lines);
      EXPECT_EQ(lines.size(), holder.readable ? 1u : 0u);
      if (holder.flags & FILE_FLAG_DELETE_ON_CLOSE) continue;  // the files go with their holders

      // Without delete sharing the file can't be replaced, so a write that succeeds
      // here has rewritten it in place. (With it, whether a rename may replace the file
      // depends on the file system; both ways must work.)
      if ((holder.share & FILE_SHARE_DELETE) == 0) {
        const std::string scratch = Put("scratch");
        EXPECT_FALSE(MoveFileExA(scratch.c_str(), mine.c_str(), MOVEFILE_REPLACE_EXISTING));
        DeleteFileA(scratch.c_str());
      }

      const bool ours = file.WriteString("工作集", "文件2", "D:\\b.dwg,1");
      const bool platform = WritePrivateProfileStringA("工作集", "文件2", "D:\\b.dwg,1", theirs.c_str()) != FALSE;
      WritePrivateProfileStringA(nullptr, nullptr, nullptr, theirs.c_str());
      EXPECT_EQ(ours, platform);
      EXPECT_EQ(ours, holder.writable);
    }
    EXPECT_TRUE(Contents(mine) == Contents(theirs)) << "ours:\n" << Contents(mine) << "\nplatform:\n" << Contents(theirs);
    EXPECT_EQ(Leftovers(mine), std::vector<std::string>{});
  }
}

// The platform takes a name without a folder to be in the Windows folder.
TEST(ProfileDifferential, ABareNameIsInTheWindowsFolder) {
  char windows[MAX_PATH] = {};
  ASSERT_GT(GetWindowsDirectoryA(windows, MAX_PATH), 0u);
  EXPECT_EQ(NativeFileSystem().WindowsFolder(), windows);
  const std::string mine = "tavlet_bare_ours.ini", theirs = "tavlet_bare_platform.ini";
  const std::string folder = std::string(windows) + "\\";
  DeleteFileA((folder + mine).c_str());
  DeleteFileA((folder + theirs).c_str());
  ProfileFile file(NativeFileSystem(), mine);
  EXPECT_EQ(file.Path(), folder + mine);
  ASSERT_TRUE(file.WriteString("工作集", "文件1", "C:\\a.dwg,0"));
  ASSERT_TRUE(WritePrivateProfileStringA("工作集", "文件1", "C:\\a.dwg,0", theirs.c_str()));
  WritePrivateProfileStringA(nullptr, nullptr, nullptr, theirs.c_str());
  EXPECT_EQ(Contents(folder + mine), Contents(folder + theirs));
  char buffer[64] = {};
  GetPrivateProfileStringA("工作集", "文件1", "D", buffer, sizeof buffer, mine.c_str());
  EXPECT_STREQ(buffer, "C:\\a.dwg,0");
  EXPECT_EQ(ProfileFile(NativeFileSystem(), theirs).GetString("工作集", "文件1"), "C:\\a.dwg,0");
  DeleteFileA((folder + mine).c_str());
  DeleteFileA((folder + theirs).c_str());
}

// Windows leaves an empty file where Wine writes nothing; see the top of this file.
TEST(ProfileDifferential, DeletionFromAMissingFileLeavesItEmpty) {
  const std::function<void(ProfileFile&)> deletions[] = {
      [](ProfileFile& f) { f.WriteStruct("a", "k", nullptr, 4); },
      [](ProfileFile& f) { ProfileFile(NativeFileSystem(), f.Path(), true).WriteString("a", "k", ""); },
      [](ProfileFile& f) { f.DeleteSection("a"); },
  };
  for (const auto& deletion : deletions) {
    const std::string path = NewPath();
    ProfileFile file(NativeFileSystem(), path);
    deletion(file);
    EXPECT_TRUE(NativeFileSystem().Stat(path).exists);
    EXPECT_EQ(Contents(path), "");
  }
}

TEST(ProfileDifferential, Utf16FileWithCharactersOutsideTheCodePage) {
  const std::string bytes = Utf16File(u"[a]\r\nk=\u0E01x\r\ny=1\r\n");
  const std::string mine = Put(bytes), theirs = Put(bytes);
  ProfileFile file(NativeFileSystem(), mine);
  char buffer[16] = {};
  GetPrivateProfileStringA("a", "k", "D", buffer, sizeof buffer, theirs.c_str());
  EXPECT_EQ(file.GetString("a", "k", "D"), buffer);
  EXPECT_EQ(file.GetInt("a", "y", 0), 1);
  EXPECT_FALSE(file.WriteString("a", "y", "2"));
  EXPECT_TRUE(Contents(mine) == bytes);
}

}  // namespace
}  // namespace tavlet
