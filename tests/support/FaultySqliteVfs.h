#pragma once

#include <cstddef>
#include <memory>

namespace TestSupport {

// How a call of SQLite's into the file system goes wrong.
enum class SqliteFault {
  Error,       // every kind of call: the error of that kind; nothing is done
  Busy,        // locking: somebody else has the lock
  DiskFull,    // writing, and opening a file to write: nothing is written
  ShortWrite,  // writing: half of the bytes are written, then the disk is full
};

// The default file system of every SQLite connection that is opened while the object lives: the
// real one, where any single call can be made to fail. Nothing waits for the disk. Connections must
// be closed before the object goes. One at a time; safe from any thread.
class FaultySqliteVfs {
 public:
  FaultySqliteVfs();
  ~FaultySqliteVfs();
  FaultySqliteVfs(const FaultySqliteVfs&) = delete;
  FaultySqliteVfs& operator=(const FaultySqliteVfs&) = delete;

  enum class Duration { Once, FromThenOn };

  // Of the calls from now on that can fail in this way, the `number`-th fails, counted from 1, and
  // for FromThenOn every later one.
  void FailCall(std::size_t number, SqliteFault fault, Duration duration);

  // No call fails any more.
  void Heal();

  // How many calls could have failed, and how many did, since FailCall was last called.
  std::size_t Calls() const;
  std::size_t FailedCalls() const;

 private:
  class Faults;
  struct Registration;

  std::unique_ptr<Faults> faults_;
  std::unique_ptr<Registration> registration_;
};

}  // namespace TestSupport
