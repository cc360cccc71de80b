#include "services/filesystem/ZipDescriptions.h"

#include <array>
#include <cstdio>

namespace Velmora::ZipDescriptions {
namespace {

constexpr std::array kMethods = {
    "no compression",
    "shrunk",
    "reduced with factor 1",
    "reduced with factor 2",
    "reduced with factor 3",
    "reduced with factor 4",
    "imploded",
    "reserved",
    "deflated",
    "enhanced deflated",
    "library imploded",
    "reserved",
    "BZIP2",
    "reserved",
    "LZMA",
    "reserved",
    "reserved",
    "reserved",
    "TERSE",
    "LZ77",
};

constexpr std::array kCreators = {
    "MS-DOS and OS/2",
    "Amiga",
    "OpenVMS",
    "UNIX",
    "VM/CMS",
    "Atari ST",
    "OS/2 HPFS",
    "Macintosh",
    "Z-System",
    "CP/M",
    "NTFS",
    "MVS",
    "VSE",
    "Acorn RISC",
    "VFAT",
    "alternate MVS",
    "BeOS",
    "Tandem",
    "OS/400",
    "OS X (Darwin)",
};

template <class Texts>
std::string TextAt(const Texts& texts, std::size_t number) {
  return number < texts.size() ? texts[number] : "Unknown";
}

}  // namespace

std::string OfMethod(std::uint16_t method) { return TextAt(kMethods, method); }

std::string OfCreator(std::uint16_t versionMadeBy) { return TextAt(kCreators, versionMadeBy >> 8); }

std::string OfTime(std::uint16_t date, std::uint16_t time) {
  constexpr unsigned kFirstYear = 1980;
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%04u-%02u-%02u %02u:%02u:%02u",
                kFirstYear + (date >> 9U), (date >> 5U) & 0xFU, date & 0x1FU, time >> 11U,
                (time >> 5U) & 0x3FU, (time & 0x1FU) * 2U);
  return text.data();
}

}  // namespace Velmora::ZipDescriptions
