// Parse plus random edits: the first bytes up to a NUL are the document, the rest
// choose a sequence of moves and edits. After every edit that changes the text
// the index must still agree with the text and with a fresh parse.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "markup/markup_random.h"
#include "worksets/markup_doc.h"

namespace {

struct ByteChooser {
  const std::uint8_t* data;
  std::size_t size;
  std::size_t at = 0;
  unsigned operator()(unsigned n) {
    if (at >= size) return 0;
    return data[at++] % n;
  }
  bool Done() const { return at >= size; }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  const std::size_t split = input.find('\0');
  const std::string_view text = input.substr(0, split);
  tavlet::MarkupDoc doc;
  doc.SetDoc(text);
  const std::string first = doc.VerifyIndex();
  if (!first.empty()) {
    std::fprintf(stderr, "index wrong after parse: %s\n", first.c_str());
    std::abort();
  }
  if (split == std::string_view::npos) return 0;
  ByteChooser choose{data + split + 1, size - split - 1};
  for (int step = 0; step < 64 && !choose.Done(); ++step) {
    const std::string before = doc.GetDoc();
    const std::string what = tavlet::testing::RandomStep(doc, choose);
    if (doc.GetDoc() == before) continue;
    const std::string problem = doc.VerifyIndex();
    if (!problem.empty()) {
      std::fprintf(stderr, "index wrong after %s: %s\n", what.c_str(), problem.c_str());
      std::abort();
    }
  }
  return 0;
}
