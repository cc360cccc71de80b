#pragma once

#include <cstdint>
#include <string>

// Numbers of an archive in words, for people. Nothing depends on the texts.
namespace Velmora::ZipDescriptions {

std::string OfMethod(std::uint16_t method);

// The system that is named in the high byte of `versionMadeBy`.
std::string OfCreator(std::uint16_t versionMadeBy);

// "2024-05-31 17:04:58". Fields that are out of range show as they are.
std::string OfTime(std::uint16_t date, std::uint16_t time);

}  // namespace Velmora::ZipDescriptions
