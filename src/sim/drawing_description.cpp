#include "sim/drawing_description.h"

#include <cstdlib>
#include <functional>
#include <map>
#include <stdexcept>

#include "text/codepage.h"

namespace tavlet::sim {

namespace {

struct Token {
  std::string text;
  bool quoted = false;
};

// Thrown inside the parser only; turned into a ParseResult at its edge.
struct LineError {
  std::string what;
};

std::vector<Token> SplitLine(const std::string& line) {
  std::vector<Token> tokens;
  std::size_t i = 0;
  while (i < line.size()) {
    char c = line[i];
    if (c == ' ' || c == '\t' || c == '\r') {
      ++i;
    } else if (c == '#') {
      break;
    } else if (c == '"') {
      Token t{"", true};
      ++i;
      bool closed = false;
      while (i < line.size()) {
        if (line[i] == '"') {
          if (i + 1 < line.size() && line[i + 1] == '"') {
            t.text += '"';
            i += 2;
            continue;
          }
          closed = true;
          ++i;
          break;
        }
        t.text += line[i++];
      }
      if (!closed) throw LineError{"unterminated quoted text"};
      tokens.push_back(Token{text::FromUtf8(t.text), true});
    } else {
      Token t;
      while (i < line.size() && line[i] != ' ' && line[i] != '\t' && line[i] != '\r' && line[i] != '#')
        t.text += line[i++];
      tokens.push_back(Token{text::FromUtf8(t.text), false});
    }
  }
  return tokens;
}

class Cursor {
 public:
  explicit Cursor(std::vector<Token> tokens) : tokens_(std::move(tokens)) {}
  bool AtEnd() const { return pos_ >= tokens_.size(); }
  const std::string& Keyword() const { return tokens_[0].text; }
  std::string Text(const char* what) {
    if (AtEnd()) throw LineError{std::string("missing ") + what};
    return tokens_[pos_++].text;
  }
  std::string Word(const char* what) {
    if (AtEnd() || tokens_[pos_].quoted) throw LineError{std::string("expected ") + what};
    return tokens_[pos_++].text;
  }
  double Number(const char* what) {
    std::string w = Word(what);
    char* end = nullptr;
    double v = std::strtod(w.c_str(), &end);
    if (w.empty() || *end) throw LineError{std::string("expected a number for ") + what + ", found '" + w + "'"};
    return v;
  }
  int Integer(const char* what) {
    std::string w = Word(what);
    char* end = nullptr;
    long v = std::strtol(w.c_str(), &end, 0);
    if (w.empty() || *end) throw LineError{std::string("expected an integer for ") + what + ", found '" + w + "'"};
    return static_cast<int>(v);
  }
  bool YesNo(const char* what) {
    std::string w = Word(what);
    if (w == "yes") return true;
    if (w == "no") return false;
    throw LineError{std::string("expected yes or no for ") + what + ", found '" + w + "'"};
  }
  bool Peek(const char* word) const { return !AtEnd() && !tokens_[pos_].quoted && tokens_[pos_].text == word; }
  bool Accept(const char* word) {
    if (!Peek(word)) return false;
    ++pos_;
    return true;
  }
  void Done() {
    if (!AtEnd()) throw LineError{"unexpected '" + tokens_[pos_].text + "'"};
  }

 private:
  std::vector<Token> tokens_;
  std::size_t pos_ = 1;
};

std::string FirstLine(const std::string& bytes) {
  std::size_t end = bytes.find('\n');
  std::string line = bytes.substr(0, end);
  while (!line.empty() && (line.back() == '\r' || line.back() == ' ')) line.pop_back();
  if (line.size() >= 3 && line.compare(0, 3, "\xEF\xBB\xBF") == 0) line.erase(0, 3);
  return line;
}

// Runs `handle` on each non-empty line after the header, turning LineError into
// a message that names the file and the line.
ParseResult ParseLines(const std::string& utf8, const std::string& fileName, const std::string& header,
                       const std::function<void(Cursor&)>& handle, const std::function<void(int)>& finish) {
  ParseResult result;
  int lineNumber = 0;
  auto fail = [&](int line, const std::string& what) {
    result.ok = false;
    result.line = line;
    result.message = fileName + ":" + std::to_string(line) + ": " + what;
    return result;
  };
  if (FirstLine(utf8) != header) return fail(1, "expected '" + header + "' on the first line");
  std::size_t start = utf8.find('\n');
  lineNumber = 1;
  while (start != std::string::npos) {
    ++start;
    std::size_t end = utf8.find('\n', start);
    std::string line = utf8.substr(start, end == std::string::npos ? std::string::npos : end - start);
    // Text after the last line feed is a line only when it holds something.
    if (end == std::string::npos && line.empty()) break;
    ++lineNumber;
    start = end;
    try {
      std::vector<Token> tokens = SplitLine(line);
      if (tokens.empty()) continue;
      if (tokens[0].quoted) throw LineError{"a line starts with a keyword, not a quoted text"};
      Cursor cursor(std::move(tokens));
      handle(cursor);
    } catch (const LineError& e) {
      return fail(lineNumber, e.what);
    }
  }
  try {
    finish(lineNumber);
  } catch (const LineError& e) {
    return fail(lineNumber, e.what);
  }
  return result;
}

const std::map<std::string, int> kSummaryFields = {
    {"author", 0},   {"title", 1},        {"subject", 2},  {"keywords", 3},
    {"comments", 4}, {"last-saved-by", 5}, {"revision", 6}, {"hyperlink-base", 7},
};

void ReadHyperlinks(Cursor& c, std::vector<std::string>& links) {
  while (c.Accept("hyperlink")) links.push_back(c.Text("hyperlink"));
}

}  // namespace

bool LooksLikeDrawingDescription(const std::string& bytes) { return FirstLine(bytes) == "tavlet-drawing 1"; }
bool LooksLikeSheetSetDescription(const std::string& bytes) { return FirstLine(bytes) == "tavlet-sheetset 1"; }

ParseResult ParseDrawingDescription(const std::string& utf8, const std::string& fileName, DrawingDescription& out) {
  out = DrawingDescription();
  bool inPicture = false;
  auto knownLayout = [&](const std::string& name) {
    if (name == "Model") return;
    for (const auto& l : out.layouts)
      if (l == name) return;
    throw LineError{"unknown layout '" + name + "'"};
  };
  auto knownBlock = [&](const std::string& name) {
    for (const auto& b : out.blocks)
      if (b.name == name) return;
    throw LineError{"unknown block '" + name + "' (a block is declared before what it holds)"};
  };
  auto handle = [&](Cursor& c) {
    const std::string keyword = c.Keyword();
    if (keyword == "line" || keyword == "rect" || keyword == "fill") {
      if (!inPicture) throw LineError{"'" + keyword + "' outside a picture"};
      PictureItem item;
      item.kind = keyword == "line" ? PictureItem::Kind::Line
                  : keyword == "rect" ? PictureItem::Kind::Rect
                                      : PictureItem::Kind::Fill;
      item.x0 = c.Integer("x0");
      item.y0 = c.Integer("y0");
      item.x1 = c.Integer("x1");
      item.y1 = c.Integer("y1");
      item.color = static_cast<std::uint32_t>(c.Integer("colour"));
      c.Done();
      out.picture.items.push_back(item);
      return;
    }
    inPicture = false;
    if (keyword == "path") {
      out.path = c.Text("path");
    } else if (keyword == "version") {
      out.version = c.Word("version");
    } else if (keyword == "read-only") {
      out.readOnly = c.YesNo("read-only");
    } else if (keyword == "layout") {
      std::string name = c.Text("layout name");
      if (name == "Model") throw LineError{"'Model' is always there and is not listed"};
      out.layouts.push_back(name);
    } else if (keyword == "active-layout") {
      out.activeLayout = c.Text("layout name");
      knownLayout(out.activeLayout);
    } else if (keyword == "cvport") {
      out.cvport = c.Integer("cvport");
    } else if (keyword == "dbmod") {
      out.dbmodOnOpen = c.Integer("dbmod");
    } else if (keyword == "viewport") {
      ViewportDesc v;
      v.layout = c.Text("layout");
      knownLayout(v.layout);
      v.number = c.Integer("number");
      v.renderMode = c.Integer("render mode");
      out.viewports.push_back(v);
    } else if (keyword == "view") {
      NamedViewDesc v;
      v.name = c.Text("view name");
      std::string space = c.Word("model or paper");
      if (space != "model" && space != "paper") throw LineError{"expected model or paper, found '" + space + "'"};
      v.paperSpace = space == "paper";
      v.centerX = c.Number("centre x");
      v.centerY = c.Number("centre y");
      v.width = c.Number("width");
      v.height = c.Number("height");
      while (!c.AtEnd()) {
        if (c.Accept("dependent")) {
          v.dependent = true;
        } else if (c.Accept("layout")) {
          v.xdata = {{1001, "MRVN_TAVLET"}, {1000, c.Text("layout")}};
        } else if (c.Accept("xdata")) {
          v.xdata.push_back({1001, c.Text("application")});
          v.xdata.push_back({1000, c.Text("text")});
        } else {
          c.Done();
        }
      }
      out.views.push_back(v);
    } else if (keyword == "layer-state") {
      out.layerStates.push_back(c.Text("layer state"));
    } else if (keyword == "no-layer-state-manager") {
      out.hasLayerStateManager = false;
    } else if (keyword == "xref") {
      XrefDesc x;
      x.block = c.Text("block name");
      x.path = c.Text("path");
      std::string state = c.Word("resolved or unresolved");
      if (state != "resolved" && state != "unresolved")
        throw LineError{"expected resolved or unresolved, found '" + state + "'"};
      x.resolved = state == "resolved";
      out.xrefs.push_back(x);
    } else if (keyword == "image" || keyword == "ole" || keyword == "entity") {
      EntityDesc e;
      if (c.Accept("block")) {
        e.block = c.Text("block name");
        knownBlock(e.block);
      } else {
        e.layout = c.Text("layout");
        knownLayout(e.layout);
      }
      if (keyword == "image") {
        e.kind = EntityDesc::Kind::Image;
        e.path = c.Text("image file");
      } else if (keyword == "ole") {
        e.kind = EntityDesc::Kind::Ole;
        std::string how = c.Word("linked or embedded");
        if (how == "linked") {
          e.linked = true;
          e.path = c.Text("link source");
        } else if (how != "embedded") {
          throw LineError{"expected linked or embedded, found '" + how + "'"};
        }
      }
      e.erased = c.Accept("erased");
      ReadHyperlinks(c, e.hyperlinks);
      c.Done();
      out.entities.push_back(e);
    } else if (keyword == "block") {
      BlockDesc b;
      b.name = c.Text("block name");
      ReadHyperlinks(c, b.hyperlinks);
      c.Done();
      out.blocks.push_back(b);
    } else if (keyword == "regapp") {
      out.regApps.push_back(c.Text("application"));
    } else if (keyword == "summary") {
      std::string field = c.Word("summary field");
      auto it = kSummaryFields.find(field);
      if (it == kSummaryFields.end()) throw LineError{"unknown summary field '" + field + "'"};
      out.summary[it->second] = c.Text("value");
    } else if (keyword == "custom") {
      std::string key = c.Text("key");
      out.custom.push_back({key, c.Text("value")});
    } else if (keyword == "picture") {
      if (out.hasPicture) throw LineError{"a second picture"};
      out.hasPicture = true;
      inPicture = true;
      out.picture.width = c.Integer("picture width");
      out.picture.height = c.Integer("picture height");
      if (out.picture.width <= 0 || out.picture.height <= 0) throw LineError{"a picture needs a positive size"};
      if (!c.Accept("background")) throw LineError{"expected background"};
      out.picture.background = static_cast<std::uint32_t>(c.Integer("background colour"));
    } else {
      throw LineError{"unknown element '" + keyword + "'"};
    }
    c.Done();
  };
  auto finish = [&](int) {
    if (!out.hasPicture) throw LineError{"missing picture"};
  };
  return ParseLines(utf8, fileName, "tavlet-drawing 1", handle, finish);
}

ParseResult ParseSheetSetDescription(const std::string& utf8, const std::string& fileName,
                                     SheetSetDescription& out) {
  out = SheetSetDescription();
  SubsetDesc* subset = nullptr;
  bool named = false;
  auto handle = [&](Cursor& c) {
    const std::string keyword = c.Keyword();
    if (keyword == "name") {
      out.name = c.Text("name");
      named = true;
    } else if (keyword == "description") {
      out.description = c.Text("description");
    } else if (keyword == "sheet") {
      SheetDesc s;
      s.name = c.Text("sheet name");
      while (!c.AtEnd()) {
        if (c.Accept("number")) s.number = c.Text("number");
        else if (c.Accept("title")) s.title = c.Text("title");
        else if (c.Accept("description")) s.description = c.Text("description");
        else if (c.Accept("file")) s.file = c.Text("file");
        else c.Done();
      }
      (subset ? subset->sheets : out.sheets).push_back(s);
    } else if (keyword == "subset") {
      if (subset) throw LineError{"a subset inside a subset"};
      out.subsets.push_back({c.Text("subset name"), "", {}});
      subset = &out.subsets.back();
      if (c.Accept("description")) subset->description = c.Text("description");
    } else if (keyword == "end-subset") {
      if (!subset) throw LineError{"'end-subset' without a subset"};
      subset = nullptr;
    } else if (keyword == "resource-folder") {
      out.resourceFolders.push_back(c.Text("folder"));
    } else {
      throw LineError{"unknown element '" + keyword + "'"};
    }
    c.Done();
  };
  auto finish = [&](int) {
    if (subset) throw LineError{"subset '" + subset->name + "' has no 'end-subset'"};
    if (!named) throw LineError{"missing name"};
  };
  return ParseLines(utf8, fileName, "tavlet-sheetset 1", handle, finish);
}

}  // namespace tavlet::sim
