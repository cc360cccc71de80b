#pragma once

#include <string>

#include "VelmoraCore/SdkError.h"

// The errors of the archive reader. Each notes the line that asks for it and the calling thread's
// stack.
namespace Velmora::ZipErrors {

SdkError CannotOpen(int line = __builtin_LINE());
SdkError CannotRead(int line = __builtin_LINE());
SdkError Corrupted(const std::string& message, int line = __builtin_LINE());
SdkError CannotWrite(const std::string& name, int line = __builtin_LINE());
SdkError CannotInitialize(int line = __builtin_LINE());
SdkError CannotDecompress(int line = __builtin_LINE());
SdkError CannotFinalize(int line = __builtin_LINE());
SdkError SizeMismatch(const std::string& name, int line = __builtin_LINE());
SdkError ChecksumMismatch(const std::string& name, int line = __builtin_LINE());

}  // namespace Velmora::ZipErrors
