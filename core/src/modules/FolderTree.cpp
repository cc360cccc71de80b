#include "modules/FolderTree.h"

#include <string>
#include <utility>
#include <vector>

#include "VelmoraCore/TryCatch.h"

namespace Velmora::FolderTree {
namespace {

struct Folder {
  std::string path;
  bool isEmptied = false;
};

bool DeleteUnguarded(FileSystemServiceInterface& files, const std::string& path) {
  std::vector<Folder> folders{{path}};
  while (!folders.empty()) {
    const std::string current = folders.back().path;
    if (folders.back().isEmptied) {
      if (!files.DeleteDirectory(current)) return false;
      folders.pop_back();
      continue;
    }
    folders.back().isEmptied = true;
    for (const std::string& name : files.GetDirectoryContents(current)) {
      std::string item = current;
      item.append(files.GetPathSeparator()).append(name);
      if (files.IsDirectory(item)) {
        folders.push_back({std::move(item)});
      } else if (!files.DeleteFile(item)) {
        return false;
      }
    }
  }
  return true;
}

}  // namespace

bool Delete(FileSystemServiceInterface& files, const std::string& path, std::string& problem) {
  bool isGone = false;
  TryCatch(
      [&] {
        isGone = DeleteUnguarded(files, path);
        if (!isGone) problem = "something in it cannot be deleted";
      },
      [&](SdkError& error) { problem = error.GetMessage(); });
  return isGone;
}

}  // namespace Velmora::FolderTree
