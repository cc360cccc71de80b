#include <chrono>
#include <cstdint>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "QEXCore_iOS/Platform/Date.h"
#include "platform/linux/PropertyList.h"

namespace {

using Platform::kMaximumPropertyListDepth;
using Platform::kMaximumPropertyListSize;
using Platform::NumberType;
using Platform::ParsePropertyList;
using Platform::Value;

// What this element reads as.
Value Read(const std::string& element) {
  return ParsePropertyList("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">" +
                           element + "</plist>\n");
}

std::string Repeated(const std::string& text, int times) {
  std::string all;
  for (int i = 0; i < times; ++i) all += text;
  return all;
}

std::string Nested(int depth) { return Repeated("<array>", depth) + Repeated("</array>", depth); }

TEST(XmlPropertyList, ReadsAWholeFile) {
  const std::string file =
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
      "<!DOCTYPE plist PUBLIC \"-//Someone//DTD PLIST 1.0//EN\" \"http://localhost/plist.dtd\">\n"
      "<plist version=\"1.0\">\n<dict>\n"
      "  <!-- a comment -->\n"
      "  <key>CFBundleName</key>\n  <string>Shop</string>\n"
      "  <key>Modes</key>\n  <array>\n    <string>audio</string>\n    <true/>\n  </array>\n"
      "</dict>\n</plist>\n";
  EXPECT_EQ(ParsePropertyList(file),
            (Value{{"CFBundleName", "Shop"}, {"Modes", Value::Array({"audio", true})}}));
}

TEST(XmlPropertyList, ReadsEveryKindOfValue) {
  EXPECT_EQ(Read("<string>text</string>"), Value("text"));
  EXPECT_EQ(Read("<string></string>"), Value(""));
  EXPECT_EQ(Read("<integer>-7</integer>"), Value(-7));
  EXPECT_EQ(Read("<integer>7</integer>").StorageType(), NumberType::SInt64);
  EXPECT_EQ(Read("<real>1.5</real>"), Value(1.5));
  EXPECT_EQ(Read("<real>1</real>").StorageType(), NumberType::Float64);
  EXPECT_EQ(Read("<true/>"), Value(true));
  EXPECT_EQ(Read("<false/>"), Value(false));
  EXPECT_EQ(Read("<data>AAEC</data>").AsData(), (std::vector<std::uint8_t>{0, 1, 2}));
  EXPECT_EQ(Read("<array/>"), Value::Array());
  EXPECT_EQ(Read("<dict/>"), Value::Dictionary());
}

TEST(XmlPropertyList, ReadsDates) {
  const auto date = Read("<date>2024-02-29T12:30:00Z</date>").AsObjectOf<Platform::Date>();
  ASSERT_NE(date, nullptr);
  EXPECT_EQ(date->SecondsSince1970(), 1'709'209'800);
}

TEST(XmlPropertyList, ReadsEntitiesAndVerbatimText) {
  EXPECT_EQ(Read("<string>&lt;&amp;&gt;</string>"), Value("<&>"));
  EXPECT_EQ(Read("<string><![CDATA[<a>]]></string>"), Value("<a>"));
  EXPECT_EQ(Read("<string>\u00e4\U0001F600</string>"), Value("\u00e4\U0001F600"));
}

TEST(XmlPropertyList, LeavesOutTextsThatAreNoUtf8) {
  EXPECT_EQ(Read("<array><string>a</string><string>\xFF</string></array>"), Value::Array({"a"}));
  EXPECT_EQ(Read("<dict><key>\xFF</key><true/><key>k</key><true/></dict>"), (Value{{"k", true}}));
}

TEST(XmlPropertyList, RefusesWhatIsNoPropertyList) {
  for (const char* text : {"", " ", "x", "<", "<plist>", "<plist/>", "<html></html>", "{\"a\": 1}",
                           "{ a = 1; }", "<?xml version=\"1.0\"?>", "<!DOCTYPE plist"}) {
    EXPECT_TRUE(ParsePropertyList(text).IsAbsent()) << text;
  }
}

TEST(XmlPropertyList, RefusesBrokenElements) {
  for (const char* element :
       {"<dict>", "<dict><true/></dict>", "<array><string>a</array>", "<unknown/>", "<string>a"}) {
    EXPECT_TRUE(Read(element).IsAbsent()) << element;
  }
}

TEST(XmlPropertyList, ReadsListsAsDeepAsTheLimit) {
  EXPECT_TRUE(Read(Nested(kMaximumPropertyListDepth)).IsArray());
  EXPECT_TRUE(Read(Nested(kMaximumPropertyListDepth + 1)).IsAbsent());
}

TEST(XmlPropertyList, RefusesDeepNesting) {
  EXPECT_TRUE(Read(Nested(1'000)).IsAbsent());
  EXPECT_TRUE(Read(Nested(60'000)).IsAbsent());
  EXPECT_TRUE(Read(Repeated("<array>", 100'000)).IsAbsent());
  EXPECT_TRUE(Read(Repeated("<dict><key>k</key>", 50'000)).IsAbsent());
  EXPECT_TRUE(ParsePropertyList(Repeated("<plist>", 100'000)).IsAbsent());
}

TEST(XmlPropertyList, IsNotMisledByCommentsAboutTheDepth) {
  EXPECT_TRUE(Read(Repeated("<array><!-- </array> -->", 30'000)).IsAbsent());
}

TEST(XmlPropertyList, ExpandsNoEntitiesOfTheFilesOwn) {
  const std::string file =
      "<!DOCTYPE plist [<!ENTITY a \"xxxxxxxxxx\"><!ENTITY b \"&a;&a;&a;&a;\">]>"
      "<plist><string>&b;</string></plist>";
  EXPECT_EQ(ParsePropertyList(file).AsString().find("xxxx"), std::string::npos);
}

TEST(XmlPropertyList, RefusesListsBeyondTheSizeLimit) {
  EXPECT_TRUE(
      Read("<string>" + std::string(kMaximumPropertyListSize - 200, 'x') + "</string>").IsString());
  EXPECT_TRUE(
      Read("<string>" + std::string(kMaximumPropertyListSize, 'x') + "</string>").IsAbsent());
  EXPECT_TRUE(Read("<string>" + std::string(10'000'000, 'x') + "</string>").IsAbsent());
}

TEST(XmlPropertyList, ReadsAMegabyteOfKeysSwiftly) {
  std::string entries;
  int count = 0;
  for (; entries.size() < kMaximumPropertyListSize - 300; ++count) {
    entries += "<key>k" + std::to_string(count) + "</key><true/>";
  }
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(Read("<dict>" + entries + "</dict>").Count(), static_cast<std::size_t>(count));
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(30));
}

TEST(XmlPropertyList, SurvivesZeroBytesAnywhere) {
  const std::string whole = "<plist><dict><key>k</key><string>text</string></dict></plist>";
  for (std::size_t position = 0; position <= whole.size(); ++position) {
    std::string changed = whole;
    changed.insert(position, 1, '\0');
    EXPECT_LE(ParsePropertyList(changed).Count(), 1U);
  }
}

TEST(XmlPropertyList, SurvivesBeingCutOffAnywhere) {
  const std::string whole =
      "<?xml version=\"1.0\"?><!DOCTYPE plist><plist version=\"1.0\"><!-- c --><dict><key>k</key>"
      "<array><string>&amp;<![CDATA[x]]></string><data>AAEC</data><real>1</real>"
      "<date>2024-02-29T12:30:00Z</date></array></dict></plist>";
  for (std::size_t length = 0; length + 8 < whole.size(); ++length) {
    EXPECT_TRUE(ParsePropertyList(whole.substr(0, length)).IsAbsent()) << length;
  }
}

TEST(XmlPropertyList, SurvivesRandomOrdersOfItsParts) {
  const std::vector<std::string> parts = {
      "<plist>",     "</plist>", "<dict>",   "</dict>",   "<array>", "</array>", "<key>",
      "</key>",      "k",        "<string>", "</string>", "<!--",    "-->",      "<![CDATA[",
      "]]>",         "<true/>",  "<data>",   "</data>",   "AAEC",    "<date>",   "</date>",
      "<integer>7",  "</",       ">",        "&amp;",     "&",       "<?",       "?>",
      "<!DOCTYPE [", "]>",       "<dict/>",  "<array/>",  "<real>1", "\"",       "</integer>"};
  std::mt19937 random(20240229);
  for (int round = 0; round < 20'000; ++round) {
    std::string text = "<plist>";
    const std::size_t length = random() % 24;
    for (std::size_t i = 0; i < length; ++i) text += parts[random() % parts.size()];
    EXPECT_LE(ParsePropertyList(text).Count(), 24U);
  }
}

}  // namespace
