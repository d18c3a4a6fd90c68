// Random documents and random edit sequences for MarkupDoc, shared by the property
// test and the fuzzer. A `Choose` is any callable `unsigned(unsigned n)` that
// answers a number below n: a seeded generator in the test, the fuzzer's bytes in
// the fuzz target.
#pragma once

#include <string>

#include "worksets/markup_doc.h"

namespace tavlet::testing {

inline constexpr const char* kRandomNames[] = {"a", "b", "item", "名", "x:y", "_k", "\x95\x5c", "ab"};
inline constexpr const char* kRandomTexts[] = {
    "", "t", "1 < 2 & 3 > 0", "a]]>b", "中文", "&amp;", "\"q\" 'a'", " ", "\x81<", "]]", "x\r\ny",
};

template <class Choose>
const char* Pick(Choose& choose, const char* const* items, unsigned count) {
  return items[choose(count)];
}

template <class Choose>
std::string RandomName(Choose& choose) {
  return Pick(choose, kRandomNames, sizeof kRandomNames / sizeof *kRandomNames);
}

template <class Choose>
std::string RandomText(Choose& choose) {
  return Pick(choose, kRandomTexts, sizeof kRandomTexts / sizeof *kRandomTexts);
}

template <class Choose>
std::string RandomSpace(Choose& choose) {
  static constexpr const char* kSpaces[] = {"", "", " ", "\r\n", "\r\n  ", "\t"};
  return Pick(choose, kSpaces, 6);
}

// An element with attributes, text, CDATA, comments and children, `depth` levels
// at most.
template <class Choose>
std::string RandomElement(Choose& choose, int depth) {
  const std::string name = RandomName(choose);
  std::string out = "<" + name;
  for (unsigned i = choose(3); i > 0; --i) {
    const char quote = choose(2) ? '"' : '\'';
    out += " " + RandomName(choose) + "=" + quote + "v&lt;" + std::to_string(i) + quote;
  }
  if (choose(4) == 0) return out + (choose(2) ? "/>" : " />");
  out += ">";
  for (unsigned i = depth > 0 ? choose(5) : 0; i > 0; --i) {
    out += RandomSpace(choose);
    switch (choose(6)) {
      case 0: out += "text &amp; more"; break;
      case 1: out += "<![CDATA[<raw> & ]]>"; break;
      case 2: out += "<!-- note 'x' -->"; break;
      case 3: out += "<?pi data?>"; break;
      default: out += RandomElement(choose, depth - 1); break;
    }
  }
  out += RandomSpace(choose);
  return out + "</" + name + (choose(3) ? ">" : " >");
}

template <class Choose>
std::string RandomDocument(Choose& choose) {
  std::string out;
  if (choose(2)) out += "<?xml version=\"1.0\" encoding=\"GB2312\"?>\r\n";
  if (choose(3) == 0) out += "<!DOCTYPE r [<!ELEMENT r ANY> <!-- in -->]>\r\n";
  out += RandomElement(choose, 4);
  out += RandomSpace(choose);
  if (choose(3) == 0) out += "<!-- tail -->\r\n";
  return out;
}

// One random step: a move or an edit. Returns a short description for failures.
template <class Choose>
std::string RandomStep(MarkupDoc& doc, Choose& choose) {
  switch (choose(20)) {
    case 0: doc.ResetPos(); return "ResetPos";
    case 1: doc.FindElement(); return "FindElement";
    case 2: doc.FindChildElement(); return "FindChildElement";
    case 3: { const std::string n = RandomName(choose); doc.FindChildElement(n); return "FindChildElement " + n; }
    case 4: doc.EnterChild(); return "EnterChild";
    case 5: doc.LeaveToParent(); return "LeaveToParent";
    case 6: { const std::string n = RandomName(choose); const std::string t = RandomText(choose);
              doc.AddElement(n, t); return "AddElement " + n + " " + t; }
    case 7: { const std::string n = RandomName(choose); const std::string t = RandomText(choose);
              doc.InsertElement(n, t); return "InsertElement " + n + " " + t; }
    case 8: { const std::string n = RandomName(choose); const std::string t = RandomText(choose);
              doc.AddChildElement(n, t); return "AddChildElement " + n + " " + t; }
    case 9: { const std::string n = RandomName(choose); const std::string t = RandomText(choose);
              doc.InsertChildElement(n, t); return "InsertChildElement " + n + " " + t; }
    case 10: doc.RemoveElement(); return "RemoveElement";
    case 11: doc.RemoveChildElement(); return "RemoveChildElement";
    case 12: { const std::string t = RandomText(choose); const bool cdata = choose(2) != 0;
               doc.SetContent(t, cdata); return "SetContent " + t + (cdata ? " cdata" : ""); }
    case 13: { const std::string n = RandomName(choose); const std::string t = RandomText(choose);
               doc.SetAttribute(n, t); return "SetAttribute " + n + " " + t; }
    case 14: { const std::string sub = RandomElement(choose, 2);
               if (choose(2)) doc.AddChildSubDocument(sub); else doc.InsertSubDocument(sub);
               return "SubDocument " + sub; }
    case 15: doc.SavePosition(RandomName(choose)); return "SavePosition";
    case 16: doc.RestorePosition(RandomName(choose)); return "RestorePosition";
    case 17: { const std::string sub = RandomElement(choose, 1);
               if (choose(2)) doc.AddSubDocument(sub); else doc.InsertChildSubDocument(sub);
               return "SubDocument " + sub; }
    case 18: doc.GetContent(); doc.GetSubDocument(); doc.GetAttributeName(static_cast<int>(choose(3)));
             return "reads";
    default: doc.SetAttribute(RandomName(choose), static_cast<int>(choose(1000)) - 500); return "SetAttribute int";
  }
}

}  // namespace tavlet::testing
