#include "modules/RulesArchive.h"

#include <memory>
#include <optional>

#include "VelmoraCore/TryCatch.h"

namespace Velmora::RulesArchive {
namespace {

using Problem = std::string;
using Services = const PlatformServicesInterface&;

std::uint8_t* BytesOf(std::string& text) { return reinterpret_cast<std::uint8_t*>(text.data()); }
const std::uint8_t* BytesOf(const std::string& text) {
  return reinterpret_cast<const std::uint8_t*>(text.data());
}

// The device is what it is: a file may grow, shrink or go while it is read.
std::optional<std::string> ReadFile(Services services, const std::string& path, Problem& problem) {
  const auto file = services.GetFileSystemService()->CreateFileHandler(path);
  const std::int64_t size = file->Size();
  if (size > std::int64_t{kMaxBytes}) {
    problem = "it is larger than 16 MiB";
    return std::nullopt;
  }
  std::string bytes(static_cast<std::size_t>(size), '\0');
  const auto count = static_cast<std::uint32_t>(size);
  const bool isRead = file->OpenForReading() && file->Read(count, BytesOf(bytes)) == count;
  file->Close();
  if (isRead) return bytes;
  problem = "it cannot be read";
  return std::nullopt;
}

// What is unpacked is what was checked, whatever becomes of the downloaded file meanwhile.
bool WriteFile(Services services, const std::string& path, const std::string& bytes) {
  const auto file = services.GetFileSystemService()->CreateFileHandler(path);
  const auto count = static_cast<std::uint32_t>(bytes.size());
  const bool isWritten = file->OpenForWriting() && file->Write(count, BytesOf(bytes)) == count;
  return file->Close() && isWritten;
}

Problem Unpack(Services services, const std::string& bytes, const std::string& folder) {
  const auto files = services.GetFileSystemService();
  const std::string destination = RulesFolder::PathOf(services, folder);
  const std::string archive = destination + ".zip";
  Problem problem;
  TryCatch(
      [&] {
        if (!files->MakeDirectory(destination) || !WriteFile(services, archive, bytes)) {
          problem = "it cannot be written to " + RulesFolder::Root(services);
        } else if (!services.GetCompressedFileService()->Extract(archive, CompressedFileType::Zip,
                                                                 destination)) {
          problem = "zip archives are not served";
        }
      },
      [&](SdkError& error) { problem = error.what(); });
  TrySwallow([&] { files->DeleteFile(archive); });
  return problem;
}

}  // namespace

Expected<Bytes, std::string> ReadChecked(Services services, const std::string& path,
                                         const std::string& sha256) {
  Problem problem;
  std::optional<std::string> bytes = ReadFile(services, path, problem);
  if (!bytes) return problem;
  const std::string found = services.GetCryptoService()->GetSha256Hash(*bytes);
  if (found == sha256) return Bytes{std::move(*bytes)};
  return "its SHA-256 is " + found + ", and not " + sha256;
}

Expected<InstalledRules, std::string> Install(Services services, const Bytes& archive,
                                              const std::string& sha256) {
  const std::string folder = RulesFolder::FreshName(services);
  const Problem problem = Unpack(services, archive.bytes, folder);
  Expected<InstalledRules, std::string> installed =
      problem.empty() ? RulesFolder::Load(services, folder, sha256)
                      : Expected<InstalledRules, std::string>(problem);
  if (!installed) RulesFolder::Delete(services, folder);
  return installed;
}

}  // namespace Velmora::RulesArchive
