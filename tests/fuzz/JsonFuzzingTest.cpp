// The fuzzers' checks over the texts that the fuzzers start from, and over what a few simple
// changes make of them.

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "fuzz/JsonFuzzing.h"

namespace {

std::vector<std::string> Corpus() {
  std::vector<std::string> texts;
  for (const auto& entry : std::filesystem::directory_iterator(JSON_CORPUS)) {
    std::ifstream file(entry.path(), std::ios::binary);
    texts.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
  }
  return texts;
}

void ExpectAllHold(const std::string& text) {
  EXPECT_EQ(JsonFuzzing::CheckObject(text), "") << text;
  EXPECT_EQ(JsonFuzzing::CheckArray(text), "") << text;
  EXPECT_EQ(JsonFuzzing::CheckPaths(text), "") << text;
}

TEST(JsonFuzzing, HoldsForTheCorpus) {
  const std::vector<std::string> corpus = Corpus();
  ASSERT_THAT(corpus, testing::SizeIs(testing::Ge(15U)));
  for (const std::string& text : corpus) ExpectAllHold(text);
}

TEST(JsonFuzzing, HoldsForEveryBeginningOfATextOfTheCorpus) {
  for (const std::string& text : Corpus()) {
    for (std::size_t length = 0; length < text.size(); ++length) {
      ExpectAllHold(text.substr(0, length));
    }
  }
}

TEST(JsonFuzzing, HoldsWhenAnyOneByteIsAnother) {
  for (const std::string& text : Corpus()) {
    for (std::size_t at = 0; at < text.size(); ++at) {
      for (const char other : {'\0', '"', '\\', '{', ']', ',', '0', '\xff'}) {
        std::string changed = text;
        changed[at] = other;
        ExpectAllHold(changed);
      }
    }
  }
}

TEST(JsonFuzzing, HoldsForEachTextInsideAnother) {
  const std::vector<std::string> corpus = Corpus();
  for (const std::string& text : corpus) {
    ExpectAllHold("[" + text + "]");
    ExpectAllHold("{\"inner\":" + text + ",\"inner\":" + text + "}");
    ExpectAllHold(text + text);
  }
}

}  // namespace
