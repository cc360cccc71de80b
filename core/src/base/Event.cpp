#include "VelmoraCore/Event.h"

#include <array>
#include <atomic>
#include <charconv>
#include <random>
#include <utility>

namespace Velmora {
namespace {

// Different from one process to the next, so that ids that outlive a process stay unlike.
std::uint64_t ProcessPart() {
  static const std::uint64_t part = [] {
    std::random_device device;
    return (std::uint64_t{device()} << 32U) | device();
  }();
  return part;
}

std::string NewId() {
  static constinit std::atomic<std::uint64_t> counter{0};
  constexpr int kHexadecimal = 16;
  std::array<char, 40> text{};
  char* const end = text.data() + text.size();
  char* position = std::to_chars(text.data(), end, ProcessPart(), kHexadecimal).ptr;
  *position++ = '-';
  position = std::to_chars(position, end, counter.fetch_add(1, std::memory_order_relaxed)).ptr;
  return {text.data(), position};
}

}  // namespace

Event::Event(std::string name, std::string type, std::string source)
    : Event(std::move(name), std::move(type), std::move(source), nullptr) {}

Event::Event(std::string name, std::string type, std::string source,
             const std::shared_ptr<const EventData>& data)
    : name_(std::move(name)),
      type_(std::move(type)),
      source_(std::move(source)),
      data_(data == nullptr ? nullptr : data->Copy()),
      id_(NewId()),
      creationTime_(Clock::now()) {}

const std::string& Event::GetName() const { return name_; }

const std::string& Event::GetType() const { return type_; }

const std::string& Event::GetSource() const { return source_; }

std::shared_ptr<const EventData> Event::GetData() const { return data_; }

const std::string& Event::GetId() const { return id_; }

Event::Clock::time_point Event::GetCreationTime() const { return creationTime_; }

std::int64_t Event::GetNumber() const { return number_; }

const std::optional<std::string>& Event::GetRequestId() const { return requestId_; }

std::shared_ptr<Event> Event::WithNumber(std::int64_t number) const {
  auto copy = std::make_shared<Event>(*this);
  copy->number_ = number;
  return copy;
}

std::shared_ptr<Event> Event::AsResponseTo(const Event& request) const {
  auto copy = std::make_shared<Event>(*this);
  copy->requestId_ = request.GetId();
  return copy;
}

}  // namespace Velmora
