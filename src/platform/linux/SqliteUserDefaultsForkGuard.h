#pragma once

namespace Platform {

// Takes part in every fork(2) of this process, so that no connection is open across one: SQLite
// keeps its file locks per process, and a child would believe that it holds those of its parent.
class SqliteUserDefaultsForkGuard {
 public:
  SqliteUserDefaultsForkGuard(const SqliteUserDefaultsForkGuard&) = delete;
  SqliteUserDefaultsForkGuard& operator=(const SqliteUserDefaultsForkGuard&) = delete;

 protected:
  SqliteUserDefaultsForkGuard();
  ~SqliteUserDefaultsForkGuard() = default;

  // For the last class to call first thing when it is made, and when it goes: the operations below
  // may be called as soon as, or as long as, it takes part. Both wait for a fork to end.
  void BeginTakingPart();
  void EndTakingPart();

 private:
  friend struct SqliteUserDefaultsForkHandlers;

  // Called on the thread that forks; no other thread may use the connection between the two.
  virtual void BeforeFork() = 0;

  // Called in the parent and in the child.
  virtual void AfterFork() = 0;
};

}  // namespace Platform
