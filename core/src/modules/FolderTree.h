#pragma once

#include <string>

#include "VelmoraCore/FileSystemServiceInterface.h"

namespace Velmora::FolderTree {

// Deletes a folder with all that is in it. It must hold no links: they would be followed. True when
// it is gone; else `problem` says why it is not, and some of it may be left.
bool Delete(FileSystemServiceInterface& files, const std::string& path, std::string& problem);

}  // namespace Velmora::FolderTree
