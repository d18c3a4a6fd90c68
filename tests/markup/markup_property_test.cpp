// Edits keep the index true: after random edit sequences on random documents,
// every live record still points at its tags and a fresh parse of the text gives
// the same tree.
#include <gtest/gtest.h>

#include <random>
#include <string>

#include "markup/markup_random.h"
#include "worksets/markup_doc.h"

namespace tavlet {
namespace {

struct Generator {
  std::mt19937 engine;
  unsigned operator()(unsigned n) { return static_cast<unsigned>(engine() % n); }
};

TEST(MarkupProperty, RandomDocumentsParseAndVerify) {
  Generator choose{std::mt19937(1234)};
  for (int round = 0; round < 300; ++round) {
    const std::string text = testing::RandomDocument(choose);
    MarkupDoc doc;
    ASSERT_TRUE(doc.SetDoc(text)) << text << "\n" << doc.GetError();
    ASSERT_EQ(doc.VerifyIndex(), "") << text;
  }
}

TEST(MarkupProperty, RandomEditsKeepTheIndexTrue) {
  Generator choose{std::mt19937(98765)};
  int changed = 0;
  for (int round = 0; round < 200; ++round) {
    MarkupDoc doc;
    if (round % 10 != 0) {
      ASSERT_TRUE(doc.SetDoc(testing::RandomDocument(choose)));
    }
    std::string history;
    for (int step = 0; step < 60; ++step) {
      const std::string before = doc.GetDoc();
      history += testing::RandomStep(doc, choose) + "\n";
      if (doc.GetDoc() == before) continue;
      ++changed;
      const std::string problem = doc.VerifyIndex();
      ASSERT_EQ(problem, "") << "round " << round << " after:\n" << history << "text:\n" << doc.GetDoc();
    }
  }
  // The sequences must really edit, or the property proves nothing.
  EXPECT_GT(changed, 2000);
}

}  // namespace
}  // namespace tavlet
