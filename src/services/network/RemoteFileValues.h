#pragma once

#include <map>
#include <string>
#include <vector>

// What a cached file's name tells of its server's answer, and how a request asks with it. The name
// is "<digest>.<seconds since 1970>_<entity tag in hexadecimal>". Safe from any thread.
namespace Velmora {

// The part of a cached file's name that follows the digest and the dot. `lastModified` and
// `entityTag` are the headers as they came; empty ones are logged with `url`.
std::string CacheFileExtension(const std::string& lastModified, const std::string& entityTag,
                               const std::string& url);

// The values in the name of the cached file at `path`: seconds, then hexadecimal, as far as they
// are there. A name of another form is logged, and yields what can be had of it.
std::vector<std::string> CacheFileValues(const std::string& path);

// The headers that ask the server whether the file at `path` is still good.
//
// An entity tag with bytes below 16 does not come back from its name as it was, since hexadecimal
// pads the first byte only: such a file is downloaded again each time. Where what comes back could
// not be a header's value at all, the tag is left out, with a debug line.
std::map<std::string, std::string> RevalidationHeaders(const std::string& path);

}  // namespace Velmora
