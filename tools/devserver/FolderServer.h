#pragma once

#include <filesystem>
#include <fstream>
#include <mutex>

#include <httplib.h>

#include "Pauses.h"

namespace DevServer {

// What the development server answers.
//
// GET gives the files of one folder, with "ETag", "Last-Modified" and content codings, and heeds
// "If-None-Match", "If-Modified-Since" and "Range". POST takes what it is sent, whatever the path,
// and writes it as a line of JSON. The query of either can ask for trouble:
//
//   delay=<milliseconds>   before anything is said
//   status=<code>          that status, with a line of text, in place of the file
//   fault=truncate         half of the file, then the connection ends
//   fault=drip             a byte every tenth of a second
//   fault=hang             nothing at all
class FolderServer {
 public:
  // What POST brings is appended to `collected`; nowhere when that is empty.
  FolderServer(std::filesystem::path root, const std::filesystem::path& collected);

  void AttachTo(httplib::Server& server);

  // Ends all waiting, so that the server can stop.
  void End() { pauses_.End(); }

 private:
  void Get(const httplib::Request& request, httplib::Response& response);
  void Post(const httplib::Request& request, httplib::Response& response);
  bool MakeTrouble(const httplib::Request& request, httplib::Response& response);
  void SendFile(const httplib::Request& request, httplib::Response& response,
                const std::filesystem::path& path);
  void SendFaultily(const std::string& fault, std::string body, const std::string& type,
                    httplib::Response& response);

  const std::filesystem::path root_;
  Pauses pauses_;
  std::mutex mutex_;
  std::ofstream collected_;  // guarded by mutex_
};

}  // namespace DevServer
