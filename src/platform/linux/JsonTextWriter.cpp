#include "platform/linux/JsonTextWriter.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string_view>
#include <utility>
#include <vector>

#include <rapidjson/prettywriter.h>
#include <rapidjson/writer.h>

#include "platform/linux/JsonTextStream.h"
#include "platform/linux/ThreadLease.h"

namespace rapidjson {

// Several characters at a time, and false for what is not UTF-8; RapidJSON's own takes them one by
// one and checks nothing.
template <>
inline bool Writer<Platform::JsonTextStream>::WriteString(const char* text, SizeType length) {
  return os_->PutQuoted({text, length});
}

// The blanks at the start of a line; no other character indents.
template <>
inline void PrettyWriter<Platform::JsonTextStream>::WriteIndent() {
  os_->Reserve(Platform::JsonTextStream::kMaximumBlanks);
  os_->PutBlanksUnsafe(level_stack_.GetSize() / sizeof(Level) * indentCharCount_);
}

// What comes before a key or a value, with one element a line. RapidJSON's own asks for room at
// each character. That the order makes sense is seen to by TextWriter.
template <>
inline void PrettyWriter<Platform::JsonTextStream>::PrettyPrefix(Type) {
  if (level_stack_.Empty()) return;
  Level& level = *level_stack_.Top<Level>();
  const bool isMemberValue = !level.inArray && level.valueCount % 2 == 1;
  os_->Reserve(2);
  if (isMemberValue) {
    os_->PutUnsafe(':');
    os_->PutUnsafe(' ');
  } else {
    if (level.valueCount > 0) os_->PutUnsafe(',');
    os_->PutUnsafe('\n');
    WriteIndent();
  }
  ++level.valueCount;
}

}  // namespace rapidjson

namespace Platform {
namespace {

constexpr unsigned kIndentation = 2;

// Few texts nest deeper.
constexpr std::size_t kUsualDepth = 8;

constexpr const char* kNoNesting = "The parts do not nest";

// A stream that has held a longer text than this does not outlive the call.
constexpr std::size_t kMaximumKeptCapacity = std::size_t{512} * 1024;

class KeptStream : public JsonTextStream {
 public:
  bool IsWorthKeeping() const { return Capacity() <= kMaximumKeptCapacity; }
};

void Prepare(rapidjson::PrettyWriter<JsonTextStream>& writer) {
  writer.SetIndent(' ', kIndentation);
}
void Prepare(rapidjson::Writer<JsonTextStream>&) {}

// Hands on to RapidJSON what can be written, in an order that makes sense; it checks neither.
template <class RapidWriter>
class TextWriter final : public JsonVisitor {
 public:
  explicit TextWriter(JsonTextStream& stream) : stream_(stream), writer_(stream) {
    Prepare(writer_);
    outer_.reserve(kUsualDepth);
  }

  std::optional<std::string> Finish(std::string& problem) {
    if (state_ != State::End) Fail(kNoNesting);
    if (problem_ == nullptr) return stream_.Text();
    problem = problem_;
    return std::nullopt;
  }

  void BeginObject() override {
    if (Enter(State::Name)) writer_.StartObject();
  }

  void EndObject() override {
    if (state_ != State::Name) return Fail(kNoNesting);
    writer_.EndObject();
    Leave();
  }

  void BeginArray() override {
    if (Enter(State::Element)) writer_.StartArray();
  }

  void EndArray() override {
    if (state_ != State::Element) return Fail(kNoNesting);
    writer_.EndArray();
    Leave();
  }

  void Key(std::string_view key) override {
    if (state_ != State::Name) return Fail(kNoNesting);
    state_ = State::Member;
    PutText(key);
  }

  void String(std::string_view text) override {
    if (BeginScalar()) PutText(text);
  }

  void Integer(std::int64_t number) override {
    if (BeginScalar()) writer_.Int64(number);
  }

  void Double(double number) override {
    if (!std::isfinite(number)) return Fail("A number is infinite or not a number");
    if (BeginScalar()) writer_.Double(number);
  }

  void Boolean(bool value) override {
    if (BeginScalar()) writer_.Bool(value);
  }

  void Null() override {
    if (BeginScalar()) writer_.Null();
  }

 private:
  // What may come next.
  enum class State : std::uint8_t { Root, Name, Member, Element, End, Failed };

  void Fail(const char* problem) {
    if (problem_ == nullptr) problem_ = problem;
    state_ = State::Failed;
  }

  // True when a value may come here, which is then taken as come.
  bool BeginValue() {
    if (state_ == State::Element) return true;
    if (state_ == State::Member) {
      state_ = State::Name;
      return true;
    }
    Fail(kNoNesting);
    return false;
  }

  bool BeginScalar() {
    if (state_ == State::Root) Fail("The root is neither a dictionary nor an array");
    return BeginValue();
  }

  bool Enter(State inside) {
    if (state_ == State::Root) {
      state_ = State::End;
    } else if (!BeginValue()) {
      return false;
    }
    if (outer_.size() == std::size_t{JsonSerialization::kMaximumDepth}) {
      Fail("Containers are nested deeper than 1024 levels");
      return false;
    }
    outer_.push_back(std::exchange(state_, inside));
    return true;
  }

  void Leave() {
    state_ = outer_.back();
    outer_.pop_back();
  }

  void PutText(std::string_view text) {
    if (text.size() > std::numeric_limits<rapidjson::SizeType>::max()) {
      return Fail("A string is too long");
    }
    const auto length = static_cast<rapidjson::SizeType>(text.size());
    if (!writer_.String(text.data(), length)) Fail("A string is not UTF-8");
  }

  JsonTextStream& stream_;
  RapidWriter writer_;
  std::vector<State> outer_;  // of the containers around
  State state_ = State::Root;
  const char* problem_ = nullptr;
};

template <class RapidWriter>
std::optional<std::string> WriteWith(const std::function<void(JsonVisitor&)>& tell,
                                     std::string& problem) {
  const ThreadLease<KeptStream> stream;
  stream->Clear();
  TextWriter<RapidWriter> writer(*stream);
  tell(writer);
  return writer.Finish(problem);
}

}  // namespace

std::optional<std::string> WriteJsonText(const std::function<void(JsonVisitor&)>& tell,
                                         JsonLayout layout, std::string& problem) {
  if (layout == JsonLayout::Pretty) {
    return WriteWith<rapidjson::PrettyWriter<JsonTextStream>>(tell, problem);
  }
  return WriteWith<rapidjson::Writer<JsonTextStream>>(tell, problem);
}

}  // namespace Platform
