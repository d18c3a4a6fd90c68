#include "settings/profile_file.h"

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <sstream>

#include "sim/memory_file_system.h"

namespace tavlet {
namespace {

constexpr const char* kIni = "C:\\Data\\w.ini";

// Shows a returned buffer: NUL as "|", other control and high bytes as hex pairs.
std::string Show(const char* buffer, std::uint32_t size) {
  std::string out;
  for (std::uint32_t i = 0; i < size; ++i) {
    const auto c = static_cast<unsigned char>(buffer[i]);
    char hex[4];
    std::snprintf(hex, sizeof hex, "%02X", c);
    out += c == 0 ? std::string("|") : (c < 32 || c > 126) ? std::string(hex) : std::string(1, static_cast<char>(c));
  }
  return out;
}

// Cuts at small buffers, byte for byte as the platform leaves them ('#' = untouched).
// A cut list of names or keys ends with a NUL in the last byte, as on Windows.
TEST(ProfileEngine, TruncationAtTheBufferFollowsThePlatform) {
  const char* ascii = "[a]\nx=12345\ny=67\n[bb]\n[ccc]\n";
  const char* cp936 = "[中]\n文=中文\nk=v\n[文文]\n";
  const char* quoted = "[a]\nx=\"abcd\"\nc=中文中\n";
  const struct {
    std::string what;
    const char* file;
    std::uint32_t size;
    const char* expected;
    std::uint32_t ret;
  } cases[] = {
      {"sec", ascii, 1, "|", 0},        {"sec", ascii, 2, "||", 0},
      {"sec", ascii, 3, "x||", 1},      {"sec", ascii, 5, "x=1||", 3},
      {"sec", ascii, 8, "x=1234||", 6}, {"sec", ascii, 9, "x=12345||", 7},
      {"names", ascii, 2, "||", 0},     {"names", ascii, 3, "a||", 1},
      {"names", ascii, 4, "a|||", 2},   {"names", ascii, 5, "a|b||", 3},
      {"names", ascii, 8, "a|bb|c||", 6},
      {"str", ascii, 1, "|", 0},        {"str", ascii, 4, "123|", 3},
      {"str", ascii, 7, "12345|#", 5},
      {"keys", ascii, 2, "D|", 1},      {"keys", ascii, 3, "x||", 1},
      {"keys", ascii, 4, "x|||", 2},    {"keys", ascii, 5, "x|y||", 3},
      {"csec", cp936, 3, "CE||", 1},    {"csec", cp936, 4, "CEC4||", 2},
      {"csec", cp936, 9, "CEC4=D6D0CEC4||", 7},
      {"csec", cp936, 10, "CEC4=D6D0CEC4|||", 8},
      {"csec", cp936, 12, "CEC4=D6D0CEC4|k=||", 10},
      {"ckeys", cp936, 3, "CEC4|", 2},  {"ckeys", cp936, 7, "CEC4|k||#", 5},
      {"names", cp936, 3, "D6D0|", 1},  {"names", cp936, 5, "D6D0|#|", 3},
      {"str", quoted, 5, "abc|#", 3},   {"str", quoted, 6, "abcd|#", 4},
      {"cstr", quoted, 2, "#|", 1},     {"cstr", quoted, 4, "D6D0#|", 3},
      {"cstr", quoted, 5, "D6D0CEC4|", 4},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what + " " + std::to_string(c.size));
    const profile::Document d = profile::Parse(c.file);
    char buffer[64];
    std::memset(buffer, '#', sizeof buffer);
    std::uint32_t ret = 0;
    if (c.what == "sec") ret = profile::GetSection(d, "a", buffer, c.size);
    if (c.what == "csec") ret = profile::GetSection(d, "中", buffer, c.size);
    if (c.what == "names") ret = profile::GetSectionNames(d, buffer, c.size);
    if (c.what == "str") ret = profile::GetString(d, "a", "x", "D", buffer, c.size);
    if (c.what == "cstr") ret = profile::GetString(d, "a", "c", "D", buffer, c.size);
    if (c.what == "keys") ret = profile::GetKeyList(d, "a", "D", buffer, c.size);
    if (c.what == "ckeys") ret = profile::GetKeyList(d, "中", "D", buffer, c.size);
    EXPECT_EQ(Show(buffer, c.size), c.expected);
    EXPECT_EQ(ret, c.ret);
  }
}

// Only here is a struct read with a size below the stored one.
TEST(ProfileEngine, StructsAreHexWithAChecksum) {
  const profile::Document d =
      profile::Parse("[a]\ns=01ab20cc\nt=01AB20CD\nu=01AB20CCx\nv=01AB20C\nw=\"01AB20CC\"\ng=01AB2GCC\n");
  const unsigned char data[3] = {1, 0xAB, 0x20};
  EXPECT_EQ(profile::StructText(data, 3), "01AB20CC");
  const struct {
    const char* key;
    std::uint32_t size;
    bool ok;
    const char* filled;
  } structs[] = {
      {"s", 3, true, "01AB20"},
      {"s", 2, false, "01AB00"},  // decoded, then the checksum "20" fails
      {"t", 3, false, "01AB20"},  // filled although the checksum fails
      {"u", 3, true, "01AB20"},   // characters beyond the checksum are ignored
      {"v", 3, false, "000000"},  // too short: untouched
      {"w", 3, false, "000000"},  // a quote is neither letter nor digit: untouched
      {"g", 3, false, "01AB30"},  // a "G" is decoded as if it were a digit
      {"missing", 3, false, "000000"}};
  for (const auto& c : structs) {
    unsigned char out[3] = {};
    EXPECT_EQ(profile::GetStruct(d, "a", c.key, out, c.size), c.ok) << c.key;
    char hex[8];
    std::snprintf(hex, sizeof hex, "%02X%02X%02X", out[0], out[1], out[2]);
    EXPECT_STREQ(hex, c.filled) << c.key;
  }
}

// Writes the differential test under Wine does not make, each against the file the
// platform leaves.
TEST(ProfileFileWrites, FilesComeOutAsThePlatformWritesThem) {
  const struct {
    const char *before, *after;
    std::function<void(ProfileFile&)> write;
  } cases[] = {
      {"[a]\nx=1\n", "[a]\r\nx=1\r\nk=a\r\nb\r\n", [](ProfileFile& f) { f.WriteString("a", "k", "a\r\nb"); }},
      {"[a]\nx=1\n", "[a]\r\nx=1\r\n[s]\r\nb=True\r\ni=-12\r\nd=0.125\r\nt=01AB20CC\r\n",
       [](ProfileFile& f) {
         const unsigned char data[3] = {1, 0xAB, 0x20};
         f.WriteBool("s", "b", true) && f.WriteInt("s", "i", -12) && f.WriteDouble("s", "d", 0.125) &&
             f.WriteStruct("s", "t", data, 3);
       }},
      {"[a]\nx=1\ny=\n", "[a]\r\ny=\r\n", [](ProfileFile& f) { f.WriteString("a", "x", ""); }},
      {"[A]\nx=1\n", "[A]\nx=1\n", [](ProfileFile& f) { f.RenameSection("A", "a"); }},
      {"[a]\nx=1\n", "[a]\r\nx=1\r\n[e]\r\n", [](ProfileFile& f) { f.EnsureSection("e"); }},
  };
  for (const auto& c : cases) {
    MemoryFileSystem files;
    files.AddFile(kIni, c.before);
    ProfileFile file(files, kIni, /*removeEmptyValues=*/true);
    c.write(file);
    EXPECT_EQ(files.Contents(kIni), c.after) << c.before;
  }
}

TEST(ProfileFileReads, WhatWasWrittenReadsBackAsTheFileHasIt) {
  MemoryFileSystem files;
  files.AddFolder("C:\\Data");
  ProfileFile f(files, kIni, true);
  EXPECT_EQ(f.GetString("s", "k", "D"), "D");
  EXPECT_TRUE(f.WriteString("s", "k", ""));  // removing from no file leaves an empty one
  EXPECT_EQ(files.Contents(kIni), "");
  files.FailOn(MemoryFileSystem::Op::WriteFileAtomic);
  EXPECT_TRUE(f.WriteString("s", "k", ""));  // removing from an empty file writes nothing
  files.ClearFailures();
  files.Remove(kIni);
  ASSERT_TRUE(f.WriteString("s", "k", "v  "));  // the first write creates the file
  ASSERT_TRUE(f.WriteString("s", "[odd", "x"));
  ASSERT_TRUE(f.WriteString("s", "two\r\nlines", "y"));
  // The later writes start from the file as read back, where the blanks are gone.
  EXPECT_EQ(files.Contents(kIni), "[s]\r\nk=v\r\n[odd=x\r\ntwo\r\nlines=y\r\n");
  EXPECT_EQ(f.GetString("s", "k"), "v");
  EXPECT_EQ(f.GetString("s", "[odd"), "x");
  EXPECT_EQ(f.GetString("s", "lines", "D"), "y");
  EXPECT_EQ(f.GetString("s", "two", "D"), "D");
}

TEST(ProfileFileReads, WrapperOperations) {
  MemoryFileSystem files;
  files.AddFile(kIni,
                "[s]\nb1=TRUE\nb2=1\nb3=Yes\nb4=true \nd1=2.5e1\nd2=\nd3=abc\nnoeq\n"
                "文件1=C:\\a.dwg,0\n文件1=dup\n[t]\n");
  ProfileFile f(files, kIni);
  const struct {
    const char* key;
    bool def, expected;
  } bools[] = {{"b1", false, true}, {"b2", false, true}, {"b3", true, false},
               {"b4", false, true}, {"missing", true, true}, {"missing", false, false}};
  for (const auto& c : bools) EXPECT_EQ(f.GetBool("s", c.key, c.def), c.expected) << c.key;
  EXPECT_DOUBLE_EQ(f.GetDouble("s", "d1", 0), 25);
  EXPECT_DOUBLE_EQ(f.GetDouble("s", "d2", 7), 7);
  EXPECT_DOUBLE_EQ(f.GetDouble("s", "d3", 7), 0);
  std::vector<std::string> keys{"kept"};
  EXPECT_EQ(f.GetSectionKeys("s", keys), 10u);
  EXPECT_EQ(keys.front(), "kept");
  EXPECT_EQ(keys[8], "noeq");
  EXPECT_EQ(keys[9], "文件1");
  std::map<std::string, std::string> map;
  f.GetSectionMap("S", map);
  EXPECT_EQ(map["noeq"], "");
  EXPECT_EQ(map["文件1"], "dup");
  std::vector<std::string> names;
  EXPECT_EQ(f.GetSectionNames(names), 2u);
  EXPECT_EQ(names, (std::vector<std::string>{"s", "t"}));
  unsigned char data[1];
  EXPECT_FALSE(f.GetStruct("s", "b1", data, 0));
  EXPECT_FALSE(f.CopySection("t", "u"));  // an empty source copies nothing
}

TEST(ProfileFileReads, SectionsAndNamesAreCutAtTheirBuffers) {
  MemoryFileSystem files;
  std::string text = "[big]\n";
  for (int i = 1; i <= 2000; ++i) text += "文件" + std::to_string(i) + "=C:\\dwg\\" + std::to_string(i) + ".dwg,0\n";
  for (int i = 0; i < 200; ++i) text += "[section number " + std::to_string(i) + "]\n";
  files.AddFile(kIni, text);
  ProfileFile f(files, kIni);
  std::vector<std::string> lines, names;
  f.GetSectionLines("big", lines);
  f.GetSectionNames(names);
  const auto bytes = [](const std::vector<std::string>& list) {
    std::size_t sum = 0;
    for (const std::string& item : list) sum += item.size() + 1;
    return sum;
  };
  EXPECT_LE(bytes(lines), 32000u);
  EXPECT_GT(bytes(lines), 31900u);
  EXPECT_LE(bytes(names), 2000u);
  EXPECT_GT(names.size(), 90u);
}

TEST(ProfileFileBadInput, ReadsGiveDefaultsAndFailedWritesChangeNothing) {
  MemoryFileSystem files;
  files.AddFile("C:\\Data\\nul.ini", std::string("[a]\nk=v\0w=1\n\0\0[b]\nz=2\n", 23));
  files.AddFile("C:\\Data\\huge.ini", "[a]\nk=" + std::string(10 * 1024 * 1024, 'h') + "\nwide=" +
                                          std::string(2400, '\xD6') + "\n[b]\nz=2\n");
  files.AddFile("C:\\Data\\ro.ini", "[a]\nk=v\n", /*readOnly=*/true);

  ProfileFile nul(files, "C:\\Data\\nul.ini");
  EXPECT_EQ(nul.GetString("a", "k"), "v");
  EXPECT_EQ(nul.GetString("a", "w", "D"), "D");
  // A line that starts with NUL is a nameless key, so "[b]" after it is no header.
  EXPECT_EQ(nul.GetInt("b", "z", 5), 5);
  EXPECT_EQ(nul.GetInt("a", "z", 5), 2);

  ProfileFile huge(files, "C:\\Data\\huge.ini");
  EXPECT_TRUE(huge.GetString("a", "k") == std::string(1999, 'h'));
  // 1200 characters fit in the buffer's 1999 characters, but only 999 of them in its
  // 1999 bytes.
  EXPECT_TRUE(huge.GetString("a", "wide") == std::string(1998, '\xD6'));
  EXPECT_EQ(huge.GetString("b", "z"), "2");

  ProfileFile missing(files, "C:\\Nowhere\\x.ini");
  EXPECT_EQ(missing.GetString("a", "k", "D"), "D");
  EXPECT_FALSE(missing.WriteString("a", "k", "v"));
  EXPECT_FALSE(files.Stat("C:\\Nowhere\\x.ini").exists);

  ProfileFile readOnly(files, "C:\\Data\\ro.ini");
  EXPECT_FALSE(readOnly.WriteString("a", "k", "changed"));
  EXPECT_FALSE(readOnly.DeleteSection("a"));
  EXPECT_EQ(files.Contents("C:\\Data\\ro.ini"), "[a]\nk=v\n");

  files.AddFile(kIni, "[a]\nk=v\n");
  ProfileFile f(files, kIni);
  files.FailOn(MemoryFileSystem::Op::WriteFileAtomic);
  EXPECT_FALSE(f.WriteString("a", "k", "new"));
  EXPECT_EQ(files.Contents(kIni), "[a]\nk=v\n");
  EXPECT_EQ(f.GetString("a", "k"), "v");
  files.FailPath(kIni, FileError::SharingViolation);
  EXPECT_EQ(f.GetString("a", "k", "D"), "D");
  EXPECT_FALSE(f.WriteString("a", "k", "new"));  // what can't be read is never replaced
  files.ClearFailures();
  EXPECT_EQ(files.Contents(kIni), "[a]\nk=v\n");
}

TEST(ProfileFileStream, CopiesTheStreamIntoAnOwnedTempFile) {
  MemoryFileSystem files("C:\\Temp");
  std::string path;
  {
    std::istringstream stream("[RESOURCES]\r\n*.dwg=1\nlast=2");
    ProfileFile f(files, stream);
    ASSERT_TRUE(f.OwnsTempFile());
    path = f.Path();
    EXPECT_EQ(path.rfind("C:\\Temp\\MV_", 0), 0u) << path;
    EXPECT_EQ(files.Contents(path), "[RESOURCES]\r\n*.dwg=1\r\nlast=2\r\n");
    EXPECT_EQ(f.GetInt("RESOURCES", "*.DWG", 0), 1);
  }
  EXPECT_FALSE(files.Stat(path).exists);
  EXPECT_FALSE(ProfileFile(files, kIni).OwnsTempFile());
}

}  // namespace
}  // namespace tavlet

namespace tavlet {
namespace {

std::string Utf16(const std::string& cp936) { return profile::EncodeFile(cp936, true); }

// Keys of every section, as "[name]key,key" lines, to compare parses in one string.
std::string Outline(const profile::Document& d) {
  std::string out;
  for (const profile::Section& s : d.sections) {
    out += "[" + s.name + "]";
    for (const profile::Entry& e : s.entries) out += e.name + (e.value ? "=" + *e.value : "") + ",";
  }
  return out;
}

// The platform reads by character and takes either CR or LF as a line end, wherever
// it stands; a "]" that is the trail byte of a character ends no section name.
TEST(ProfileEngine, LinesEndAtEitherBreakAndNamesAreReadByCharacter) {
  const struct {
    std::string file, outline;
  } cases[] = {
      {"[a]\r\nx=1\ry=2\r\n[b]\rz=3\n\r\nw=4", "[][a]x=1,y=2,[b]z=3,w=4,"},
      {"[a]\n\rx=1\r\r\n\ny=2", "[][a]x=1,y=2,"},
      {"[图\x81\x5D]\r\nk=v\r\n", "[][图\x81\x5D]k=v,"},
      {"[\xAA\x5D] \r\n[a\xAA\x5D\xAA\x5D]\r\nk=v\r\n", "[][\xAA\x5D][a\xAA\x5D\xAA\x5D]k=v,"},
      // No "]" of its own: the line is an entry, not a header.
      {"[ab\x81\x5D\r\nk=v\r\n", "[][ab\x81\x5D,k=v,"},
      // A lead byte without a trail byte after it is read as "?".
      {"[a]\r\nk=v\x81\nx=1\r\ny=\x81 \r\n\x81", "[][a]k=v?,x=1,y=?,?,"},
      {std::string("[a]\r\nk=v\x81\0\nx=1\r\n", 16), "[][a]k=v?,x=1,"},
  };
  for (const auto& c : cases) EXPECT_EQ(Outline(profile::Parse(c.file)), c.outline) << c.file;

  MemoryFileSystem files;
  files.AddFile(kIni, "[a]\r\nx=1\ry=2\r\n[图\x81\x5D]\rz=3\n");
  ProfileFile f(files, kIni);
  EXPECT_EQ(f.GetString("a", "y", "D"), "2");
  EXPECT_EQ(f.GetString("图\x81\x5D", "z", "D"), "3");
  ASSERT_TRUE(f.WriteString("a", "y", "two"));
  EXPECT_EQ(files.Contents(kIni), "[a]\r\nx=1\r\ny=two\r\n[图\x81\x5D]\r\nz=3\r\n");
  // What is written goes through the same reading: a lone lead byte is "?".
  ASSERT_TRUE(f.WriteString("x\x81", "k\x81", "v\x81"));
  EXPECT_EQ(f.GetString("x?", "k?", "D"), "v?");
  EXPECT_EQ(f.GetString("x\x81", "k\x81", "D"), "v?");
  EXPECT_EQ(files.Contents(kIni)->substr(files.Contents(kIni)->find("[x")), "[x?]\r\nk?=v?\r\n");
}

// A section list ends with one NUL after its last string's; a list cut at the buffer
// has both, and so has one that fills the buffer. Past that nothing is written.
TEST(ProfileEngine, SectionListsEndWhereThePlatformEndsThem) {
  const profile::Document d = profile::Parse("[a]\nx=12345\ny=67\n;c=1\n[e]\n[b]\nnoeq\nx=1\n");
  const struct {
    const char* section;
    std::uint32_t size;
    const char* expected;
    std::uint32_t ret;
  } cases[] = {
      {"a", 20, "x=12345|y=67||######", 13}, {"a", 16, "x=12345|y=67||##", 13},
      {"a", 15, "x=12345|y=67||#", 13},      {"a", 14, "x=12345|y=67||", 12},
      {"b", 7, "noeq|||", 5},                {"b", 12, "noeq|x=1||##", 9},
      {"e", 6, "||####", 0},                 {"missing", 3, "||#", 0},
  };
  for (const auto& c : cases) {
    char buffer[32];
    std::memset(buffer, '#', sizeof buffer);
    EXPECT_EQ(profile::GetSection(d, c.section, buffer, c.size), c.ret) << c.size;
    EXPECT_EQ(Show(buffer, c.size), c.expected) << c.size;
    EXPECT_EQ(buffer[c.size], '#') << c.size;
  }
}

TEST(ProfileEngine, KeyListDefaultKeepsItsTrailingBlanks) {
  const profile::Document d = profile::Parse("[e]\n[a]\nnoeq\n");
  const struct {
    const char* section;
    const char* def;
    const char* expected;
    std::uint32_t ret;
  } cases[] = {
      {"missing", "dflt  ", "dflt  |#", 6}, {"e", " ", " |######", 1},
      {"a", "中  ", "D6D0  |###", 4},        {"a", "\"q\"  ", "\"q\"  |##", 5},
  };
  for (const auto& c : cases) {
    char buffer[8];
    std::memset(buffer, '#', sizeof buffer);
    EXPECT_EQ(profile::GetKeyList(d, c.section, c.def, buffer, 8), c.ret) << c.def;
    EXPECT_EQ(Show(buffer, 8), c.expected) << c.def;
  }
}

TEST(ProfileFileWrites, NullStructDeletesTheKey) {
  MemoryFileSystem files;
  files.AddFile(kIni, "[a]\nx=1\ns=01AB20CC\n");
  ProfileFile f(files, kIni);
  EXPECT_TRUE(f.WriteStruct("a", "s", nullptr, 3));
  EXPECT_EQ(files.Contents(kIni), "[a]\r\nx=1\r\n");
  EXPECT_TRUE(f.WriteStruct("new", "s", nullptr, 3));  // nothing to delete: nothing written
  EXPECT_EQ(files.Contents(kIni), "[a]\r\nx=1\r\n");
  // A deletion from a file that isn't there leaves an empty file, as on Windows.
  files.Remove(kIni);
  EXPECT_TRUE(f.WriteStruct("a", "s", nullptr, 3));
  EXPECT_EQ(files.Contents(kIni), "");
  files.Remove(kIni);
  EXPECT_TRUE(f.DeleteSection("a"));
  EXPECT_EQ(files.Contents(kIni), "");
  EXPECT_FALSE(ProfileFile(files, "C:\\Nowhere\\x.ini").DeleteSection("a"));
}

TEST(ProfileFileUtf16, IsReadAsUtf16AndWrittenBackSo) {
  MemoryFileSystem files;
  files.AddFile(kIni, Utf16("[工作集]\r\n文件1=C:\\图纸\\表.dwg,0\r\n[b]\rk=v\r\n"));
  ProfileFile f(files, kIni);
  EXPECT_EQ(f.GetString("工作集", "文件1"), "C:\\图纸\\表.dwg,0");
  std::vector<std::string> names;
  f.GetSectionNames(names);
  EXPECT_EQ(names, (std::vector<std::string>{"工作集", "b"}));
  ASSERT_TRUE(f.WriteString("工作集", "文件2", "D:\\总图.dwg,1"));
  EXPECT_EQ(files.Contents(kIni),
            Utf16("[工作集]\r\n文件1=C:\\图纸\\表.dwg,0\r\n文件2=D:\\总图.dwg,1\r\n[b]\r\nk=v\r\n"));
  EXPECT_EQ(files.Contents(kIni)->substr(0, 4), std::string("\xFF\xFE[\0", 4));

  // A mark alone is an empty UTF-16 file, and stays UTF-16.
  files.AddFile(kIni, "\xFF\xFE");
  ASSERT_TRUE(f.WriteString("s", "k", "v"));
  EXPECT_EQ(files.Contents(kIni), Utf16("[s]\r\nk=v\r\n"));
}

TEST(ProfileFileUtf16, CharactersOutsideTheCodePageAreNeverLost) {
  // U+0E01 (Thai) and U+1F600 (a surrogate pair) have no code-page 936 form.
  std::string file = "\xFF\xFE";
  for (char16_t unit : std::u16string(u"[a]\r\nk=\u0E01\r\nx=\U0001F600\r\ny=1\r\n")) {
    file += static_cast<char>(unit & 0xFF);
    file += static_cast<char>(unit >> 8);
  }
  MemoryFileSystem files;
  files.AddFile(kIni, file);
  ProfileFile f(files, kIni);
  EXPECT_EQ(f.GetString("a", "k"), "?");
  EXPECT_EQ(f.GetInt("a", "y", 0), 1);
  EXPECT_FALSE(f.WriteString("a", "y", "2"));
  EXPECT_EQ(files.Contents(kIni), file);
  // An odd last byte is not written back either.
  files.AddFile(kIni, Utf16("[a]\r\ny=1\r\n") + "\x01");
  EXPECT_EQ(f.GetInt("a", "y", 0), 1);
  EXPECT_FALSE(f.WriteString("a", "y", "2"));
}

// The Windows folder is a parameter of the file system, so the rule holds natively.
TEST(ProfileFilePaths, ABareNameIsInTheWindowsFolder) {
  const struct {
    const char *name, *folder, *path;
  } cases[] = {
      {"w.ini", "C:\\Win", "C:\\Win\\w.ini"},
      {"w.ini", "C:\\", "C:\\w.ini"},
      {"\x95\x5C.ini", "C:\\Win", "C:\\Win\\\x95\x5C.ini"},  // a trail byte 0x5C is no separator
      {"w.ini", "C:\\\x95\x5C", "C:\\\x95\x5C\\w.ini"},
      {".\\w.ini", "C:\\Win", ".\\w.ini"},
      {"sub/w.ini", "C:\\Win", "sub/w.ini"},
      {"C:w.ini", "C:\\Win", "C:w.ini"},
      {"w.ini", "", "w.ini"},
      {"", "C:\\Win", ""},
  };
  for (const auto& c : cases) EXPECT_EQ(profile::ProfilePath(c.name, c.folder), c.path) << c.name;

  MemoryFileSystem files("C:\\Temp", "C:\\Win");
  files.AddFolder("C:\\Win");
  ProfileFile f(files, "w.ini");
  EXPECT_EQ(f.Path(), "C:\\Win\\w.ini");
  ASSERT_TRUE(f.WriteString("s", "k", "v"));
  EXPECT_EQ(files.Contents("C:\\Win\\w.ini"), "[s]\r\nk=v\r\n");

  const std::string folder = ::testing::TempDir() + "tavlet_windows_folder";
  std::unique_ptr<FileSystem> native = MakeNativeFileSystem(folder);
  ASSERT_EQ(native->CreateFolders(folder), FileError::None);
  ASSERT_TRUE(ProfileFile(*native, "bare.ini").WriteString("s", "k", "v"));
  std::string bytes;
  EXPECT_EQ(native->ReadFile(folder + "/bare.ini", bytes), FileError::None);
  EXPECT_EQ(bytes, "[s]\r\nk=v\r\n");
  native->Remove(folder + "/bare.ini");
}

}  // namespace
}  // namespace tavlet
