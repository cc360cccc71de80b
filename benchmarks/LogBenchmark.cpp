#include <benchmark/benchmark.h>

#include "VelmoraCore/Log.h"
#include "services/system/NativeLoggingService.h"

namespace {

using Velmora::Log;
using Velmora::LoggingMode;

void LogLineFiltered(benchmark::State& state) {
  Log::SetLogLevel(LoggingMode::Error);
  for (auto _ : state) Log::Debug("Benchmark", "event %d of %s", 17, "storefront");
}
BENCHMARK(LogLineFiltered);

// Through the log sink to standard error.
void LogLineWritten(benchmark::State& state) {
  Log::SetLoggingService(Velmora::CreateNativeLoggingService());
  Log::SetLogLevel(LoggingMode::Debug);
  for (auto _ : state) Log::Debug("Benchmark", "event %d of %s", 17, "storefront");
  Log::SetLogLevel(LoggingMode::Error);
}
BENCHMARK(LogLineWritten);

}  // namespace
