// Archives as common tools write them, unpacked and compared with what unzip makes of them.

#include <filesystem>

#include <gmock/gmock.h>

#include "ArchiveFixture.h"

namespace {

namespace fs = std::filesystem;

// How an archive "a.zip" is made of the directory "tree".
struct Tool {
  std::string name;
  std::string line;
};

constexpr const char* kCannotDecompress =
    "compressed-file.decompression-failed: Failed to decompress zipped file";

std::ostream& operator<<(std::ostream& out, const Tool& tool) { return out << tool.line; }

std::string NameOf(const testing::TestParamInfo<Tool>& tool) { return tool.param.name; }

std::vector<Tool> Tools() {
  std::vector<Tool> tools = {
      {"ZipToAPipe", "cd tree; zip -qr - . | cat > ../a.zip"},
      {"ZipOfOneFileFromAPipe", "cat tree/zeros | zip -q a.zip -"},
      {"ZipWithoutDirectories", "cd tree; zip -qrD ../a.zip ."},
      {"ZipWithoutExtraFields", "cd tree; zip -qrX ../a.zip ."},
      {"ZipWithLocalZip64Fields",
       "python3 -c 'import zipfile\n"
       "with zipfile.ZipFile(\"a.zip\", \"w\") as z:\n"
       "  with z.open(\"large\", \"w\", force_zip64=True) as f: f.write(b\"x\" * 100000)'"},
      {"PythonWithALongComment",
       "python3 -c 'import zipfile\n"
       "with zipfile.ZipFile(\"a.zip\", \"w\", zipfile.ZIP_DEFLATED) as z:\n"
       "  z.write(\"tree/zeros\")\n"
       "  z.comment = b\"c\" * 65535'"},
      {"ZipWithAComment", "cd tree; echo a comment | zip -qrz ../a.zip . "},
      {"SevenZipDeflate64WithoutFarMatches", "7z a -tzip -mm=Deflate64 a.zip ./tree/zeros >log"},
      {"SevenZipUtf8Names", "cd tree; 7z a -tzip -mcu=on ../a.zip . >../log"},
      {"BsdtarStored", "bsdtar --format zip --options zip:compression=store -cf a.zip -C tree ."},
      {"BsdtarWithoutZip64", "bsdtar --format zip --options 'zip:!zip64' -cf a.zip -C tree ."},
      {"PythonStored", "cd tree; python3 -m zipfile -c ../a.zip *"},
      {"PythonToAPipe",
       "python3 -c 'import os, sys, zipfile\n"
       "with zipfile.ZipFile(sys.stdout.buffer, \"w\", zipfile.ZIP_DEFLATED) as z:\n"
       "  for place, _, names in os.walk(\"tree\"):\n"
       "    for name in names: z.write(os.path.join(place, name))' | cat > a.zip"},
  };
  for (int level = 0; level <= 9; ++level) {
    const std::string number = std::to_string(level);
    tools.push_back({"ZipLevel" + number, "cd tree; zip -qr -" + number + " ../a.zip ."});
    tools.push_back(
        {"BsdtarLevel" + number,
         "bsdtar --format zip --options zip:compression=deflate,zip:compression-level=" + number +
             " -cf a.zip -C tree ."});
    tools.push_back({"PythonLevel" + number,
                     "python3 -c 'import os, zipfile\n"
                     "with zipfile.ZipFile(\"a.zip\", \"w\", zipfile.ZIP_DEFLATED, compresslevel=" +
                         number +
                         ") as z:\n"
                         "  for place, _, names in os.walk(\"tree\"):\n"
                         "    for name in names: z.write(os.path.join(place, name))'"});
    tools.push_back(
        {"SevenZipLevel" + number, "cd tree; 7z a -tzip -mx=" + number + " ../a.zip . >../log"});
  }
  return tools;
}

class ArchivesOfTools : public ArchiveFixture, public testing::WithParamInterface<Tool> {};

TEST_P(ArchivesOfTools, UnpackToTheSameBytesAsWithUnzip) {
  MakeVariedTree(folder_.PathOf("tree"));
  RunShell(GetParam().line, folder_.Path());
  ExpectSameAsUnzip();
}

INSTANTIATE_TEST_SUITE_P(Matrix, ArchivesOfTools, testing::ValuesIn(Tools()), NameOf);

// What the reader does not decode: the methods and the encryption that tools offer. Those that it
// takes for deflated data are found out by the data.
std::vector<Tool> ToolsOfOtherMethods() {
  return {
      {"SevenZipBzip2", "7z a -tzip -mm=BZip2 a.zip ./tree/zeros >log"},
      {"SevenZipLzma", "7z a -tzip -mm=LZMA a.zip ./tree/zeros >log"},
      {"SevenZipPpmd", "7z a -tzip -mm=PPMd a.zip ./tree/zeros >log"},
      {"SevenZipDeflate64",
       "head -c 50000 tree/random >once; cat once once >twice; 7z a -tzip -mm=Deflate64 a.zip "
       "twice >log"},
      {"SevenZipEncrypted", "7z a -tzip -psecret a.zip ./tree/zeros >log"},
      {"SevenZipAes", "7z a -tzip -psecret -mem=AES256 a.zip ./tree/zeros >log"},
      {"ZipBzip2", "zip -q -Z bzip2 a.zip tree/zeros"},
      {"ZipEncrypted", "zip -q -P secret a.zip tree/zeros"},
      {"PythonBzip2",
       "python3 -c 'import zipfile\n"
       "with zipfile.ZipFile(\"a.zip\", \"w\", zipfile.ZIP_BZIP2) as z: z.write(\"tree/zeros\")'"},
      {"PythonLzma",
       "python3 -c 'import zipfile\n"
       "with zipfile.ZipFile(\"a.zip\", \"w\", zipfile.ZIP_LZMA) as z: z.write(\"tree/zeros\")'"},
  };
}

class ArchivesOfOtherMethods : public ArchiveFixture, public testing::WithParamInterface<Tool> {};

TEST_P(ArchivesOfOtherMethods, FailAtTheEntry) {
  MakeVariedTree(folder_.PathOf("tree"));
  RunShell(GetParam().line, folder_.Path());
  const std::string archive = TestSupport::ReadFileBytes(folder_.PathOf("a.zip"));
  EXPECT_EQ(Extract(), kCannotDecompress);
  EXPECT_TRUE(TestSupport::ReadFileBytes(folder_.PathOf("a.zip")) == archive);
}

INSTANTIATE_TEST_SUITE_P(Matrix, ArchivesOfOtherMethods, testing::ValuesIn(ToolsOfOtherMethods()),
                         NameOf);

class ForeignArchives : public ArchiveFixture {
 protected:
  // An archive of so many small files.
  void MakeSmallFiles(int count) const {
    RunShell(
        "python3 -c 'import zipfile\n"
        "with zipfile.ZipFile(\"a.zip\", \"w\") as z:\n"
        "  for i in range(" +
            std::to_string(count) + "): z.writestr(f\"{i % 50}/{i}\", str(i))'",
        folder_.Path());
  }
};

TEST_F(ForeignArchives, ThatAreStoredAndEncryptedHaveAWrongSize) {
  folder_.WriteFile("tree/a", "contents");
  RunShell("zip -q -0 -P secret a.zip tree/a", folder_.Path());
  EXPECT_EQ(Extract(),
            "compressed-file.decompression-failed: Uncompressed file size mismatch for tree/a");
}

TEST_F(ForeignArchives, OfTenThousandEntriesUnpack) {
  MakeSmallFiles(10'000);
  ExpectSameAsUnzip();
}

TEST_F(ForeignArchives, OfMoreEntriesAreRefused) {
  MakeSmallFiles(10'001);
  EXPECT_EQ(Extract(), "compressed-file.corrupted: Zip file has more than 10000 entries");
  EXPECT_FALSE(fs::exists(folder_.PathOf("ours")));
}

TEST_F(ForeignArchives, OfZip64AreRefused) {
  const std::string refusal = "compressed-file.corrupted: ZIP64 files are not supported";
  MakeSmallFiles(65'536);
  EXPECT_EQ(Extract(), refusal);
  fs::remove(folder_.PathOf("a.zip"));
  folder_.WriteFile("tree/a", "contents");
  RunShell("zip -qr -fz a.zip tree", folder_.Path());
  EXPECT_EQ(Extract(), refusal);
}

TEST_F(ForeignArchives, OfSeveralDisksAreRefused) {
  folder_.WriteFile("tree/random", RandomBytes(300'000));
  RunShell("zip -qr -s 64k a.zip tree", folder_.Path());
  EXPECT_EQ(Extract(), "compressed-file.corrupted: Multi-disk zip files are not supported");
}

TEST_F(ForeignArchives, UnpackWithoutWhatOnlyTheirMakersNeed) {
  folder_.WriteFile("tree/a", "contents");
  folder_.WriteFile("tree/d/.DS_Store", "settings");
  folder_.WriteFile("tree/__MACOSX/d/._a", "fork");
  RunShell("cd tree; zip -qr ../a.zip a d/.DS_Store __MACOSX", folder_.Path());
  EXPECT_EQ(Extract(), "");
  EXPECT_EQ(DifferenceOf(Ours(), {{"a", "contents"}}), "");
}

TEST_F(ForeignArchives, ThatHoldArchivesUnpack) {
  MakeVariedTree(folder_.PathOf("tree"));
  RunShell("zip -qr inner.zip tree; zip -q0 a.zip inner.zip; zip -q a.zip tree/text.txt",
           folder_.Path());
  ExpectSameAsUnzip();
}

}  // namespace
