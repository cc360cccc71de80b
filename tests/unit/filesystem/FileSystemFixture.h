#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include <gmock/gmock.h>

#include "VelmoraCore/FileHandlerInterface.h"
#include "support/FakeHost.h"
#include "support/LogCapture.h"
#include "support/TemporaryDirectory.h"

// An empty directory on a device whose faults can be switched on. Any log line that a test does not
// expect fails it.
class FileSystemFixture : public testing::Test {
 protected:
  std::string PathOf(const std::string& name) const { return folder_.PathOf(name); }
  std::string WriteFile(const std::string& name, const std::string& contents = "contents") const {
    return folder_.WriteFile(name, contents);
  }
  static bool Exists(const std::string& path) {
    return std::filesystem::exists(std::filesystem::symlink_status(path));
  }

  static std::uint32_t Write(Velmora::FileHandlerInterface& handler, std::string_view text) {
    return handler.Write(static_cast<std::uint32_t>(text.size()),
                         reinterpret_cast<const std::uint8_t*>(text.data()));
  }

  static std::string Read(Velmora::FileHandlerInterface& handler, std::uint32_t count) {
    std::string text(count, '?');
    text.resize(handler.Read(count, reinterpret_cast<std::uint8_t*>(text.data())));
    return text;
  }

  TestSupport::TemporaryDirectory folder_;
  TestSupport::FakeHost host_;
  TestSupport::LogCapture log_;
};

// Makes `path` the process's current directory for as long as the object lives.
class ScopedCurrentDirectory {
 public:
  explicit ScopedCurrentDirectory(const std::string& path) { std::filesystem::current_path(path); }
  ~ScopedCurrentDirectory() { std::filesystem::current_path(former_); }
  ScopedCurrentDirectory(const ScopedCurrentDirectory&) = delete;
  ScopedCurrentDirectory& operator=(const ScopedCurrentDirectory&) = delete;

 private:
  const std::filesystem::path former_ = std::filesystem::current_path();
};
