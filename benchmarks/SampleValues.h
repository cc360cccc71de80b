#pragma once

#include <cstddef>
#include <string>

#include "QEXCore_iOS/Platform/Value.h"

namespace Benchmarks {

// A dictionary like those that apps and servers send, whose compact JSON text has about `bytes`
// bytes: records of texts, integers, decimals, booleans, an array and a nested dictionary.
Platform::Value SampleValue(std::size_t bytes);

// The compact JSON text of SampleValue(bytes).
std::string SampleJson(std::size_t bytes);

}  // namespace Benchmarks
