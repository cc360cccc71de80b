#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "VelmoraCore/EventData.h"
#include "VelmoraCore/Export.h"

namespace Velmora {

// Something that happened, on its way through the event hub. Never changes; may be read on any
// thread. What the hub adds to an event, it adds to a copy.
class VELMORA_CORE_API Event {
 public:
  using Clock = std::chrono::system_clock;

  // An event created now, with an id of its own and without data.
  Event(std::string name, std::string type, std::string source);

  // The same with a copy of `data`; an empty pointer means without data.
  Event(std::string name, std::string type, std::string source,
        const std::shared_ptr<const EventData>& data);

  Event(const Event&) = default;
  Event& operator=(const Event&) = delete;

  // The hub takes any name. A type and a source must each be 1 to 255 bytes of UTF-8 without blanks
  // and control characters; upper and lower case differ.
  const std::string& GetName() const;
  const std::string& GetType() const;
  const std::string& GetSource() const;

  // An empty pointer when the event carries no data.
  std::shared_ptr<const EventData> GetData() const;

  // A text that no other event has; copies made by the two operations below keep it.
  const std::string& GetId() const;

  Clock::time_point GetCreationTime() const;

  // The place in the order of dispatch, from 1; 0 before the hub has given one.
  std::int64_t GetNumber() const;

  // The id of the event that this one answers.
  const std::optional<std::string>& GetRequestId() const;

  std::shared_ptr<Event> WithNumber(std::int64_t number) const;
  std::shared_ptr<Event> AsResponseTo(const Event& request) const;

 private:
  std::string name_;
  std::string type_;
  std::string source_;
  std::shared_ptr<const EventData> data_;
  std::string id_;
  Clock::time_point creationTime_;
  std::int64_t number_ = 0;
  std::optional<std::string> requestId_;
};

}  // namespace Velmora
