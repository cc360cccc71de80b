#include "support/FaultySqliteVfs.h"

#include <mutex>
#include <new>
#include <stdexcept>

#include <sqlite3.h>

namespace TestSupport {
namespace {

constexpr const char* kName = "qexcore-faulty";

enum class Call {
  Open,
  OpenToWrite,
  Delete,
  Access,
  FullPathname,
  Read,
  Write,
  Truncate,
  Sync,
  FileSize,
  Lock,
  Unlock,
  CheckReservedLock,
};

int ErrorOf(Call call) {
  switch (call) {
    case Call::Open:
    case Call::OpenToWrite:
    case Call::FullPathname:
      return SQLITE_CANTOPEN;
    case Call::Delete:
      return SQLITE_IOERR_DELETE;
    case Call::Access:
      return SQLITE_IOERR_ACCESS;
    case Call::Read:
      return SQLITE_IOERR_READ;
    case Call::Write:
      return SQLITE_IOERR_WRITE;
    case Call::Truncate:
      return SQLITE_IOERR_TRUNCATE;
    case Call::Sync:
      return SQLITE_IOERR_FSYNC;
    case Call::FileSize:
      return SQLITE_IOERR_FSTAT;
    case Call::Lock:
      return SQLITE_IOERR_LOCK;
    case Call::Unlock:
      return SQLITE_IOERR_UNLOCK;
    case Call::CheckReservedLock:
      return SQLITE_IOERR_CHECKRESERVEDLOCK;
  }
  return SQLITE_IOERR;
}

// SQLITE_OK where the call cannot fail in this way.
int CodeOf(SqliteFault fault, Call call) {
  switch (fault) {
    case SqliteFault::Error:
      return ErrorOf(call);
    case SqliteFault::Busy:
      return call == Call::Lock ? SQLITE_BUSY : SQLITE_OK;
    case SqliteFault::DiskFull:
      return call == Call::Write || call == Call::OpenToWrite ? SQLITE_FULL : SQLITE_OK;
    case SqliteFault::ShortWrite:
      return call == Call::Write ? SQLITE_FULL : SQLITE_OK;
  }
  return SQLITE_OK;
}

}  // namespace

class FaultySqliteVfs::Faults {
 public:
  void Set(std::size_t first, SqliteFault fault, Duration duration) {
    const std::lock_guard lock(mutex_);
    calls_ = failedCalls_ = 0;
    firstToFail_ = first;
    fault_ = fault;
    duration_ = duration;
  }
  void Clear() {
    const std::lock_guard lock(mutex_);
    firstToFail_ = 0;
  }

  // The code with which the call is to fail, or SQLITE_OK. `fault` may be null.
  int Next(Call call, SqliteFault* fault = nullptr) {
    const std::lock_guard lock(mutex_);
    if (fault != nullptr) *fault = fault_;
    const int code = CodeOf(fault_, call);
    if (code == SQLITE_OK) return SQLITE_OK;
    ++calls_;
    const bool isDue = firstToFail_ != 0 && (duration_ == Duration::Once ? calls_ == firstToFail_
                                                                         : calls_ >= firstToFail_);
    if (!isDue) return SQLITE_OK;
    ++failedCalls_;
    return code;
  }

  std::size_t Calls() const {
    const std::lock_guard lock(mutex_);
    return calls_;
  }
  std::size_t FailedCalls() const {
    const std::lock_guard lock(mutex_);
    return failedCalls_;
  }

 private:
  mutable std::mutex mutex_;
  std::size_t calls_ = 0;
  std::size_t failedCalls_ = 0;
  std::size_t firstToFail_ = 0;
  SqliteFault fault_ = SqliteFault::Error;
  Duration duration_ = Duration::Once;
};

// What SQLite is given. The former default is what really does the work.
struct FaultySqliteVfs::Registration {
  explicit Registration(Faults& itsFaults);
  ~Registration();
  Registration(const Registration&) = delete;
  Registration& operator=(const Registration&) = delete;

  // A file as SQLite sees it; the real one follows it in the same memory.
  struct File {
    sqlite3_file base;
    Faults* faults;

    static File& Of(sqlite3_file* file) { return *reinterpret_cast<File*>(file); }
    sqlite3_file* Real() { return reinterpret_cast<sqlite3_file*>(this + 1); }
    const sqlite3_io_methods& Do() { return *Real()->pMethods; }
  };

  static Registration& Of(sqlite3_vfs* vfs) { return *static_cast<Registration*>(vfs->pAppData); }
  static const sqlite3_io_methods& FileMethods();

  static int Open(sqlite3_vfs* vfs, sqlite3_filename name, sqlite3_file* file, int flags,
                  int* outFlags);
  static int Delete(sqlite3_vfs* vfs, const char* name, int syncDirectory);
  static int Access(sqlite3_vfs* vfs, const char* name, int flags, int* result);
  static int FullPathname(sqlite3_vfs* vfs, const char* name, int size, char* path);

  static int Close(sqlite3_file* file);
  static int Read(sqlite3_file* file, void* buffer, int size, sqlite3_int64 offset);
  static int Write(sqlite3_file* file, const void* bytes, int size, sqlite3_int64 offset);
  static int Truncate(sqlite3_file* file, sqlite3_int64 size);
  static int Sync(sqlite3_file* file, int flags);
  static int FileSize(sqlite3_file* file, sqlite3_int64* size);
  static int Lock(sqlite3_file* file, int level);
  static int Unlock(sqlite3_file* file, int level);
  static int CheckReservedLock(sqlite3_file* file, int* result);
  static int FileControl(sqlite3_file* file, int operation, void* argument);
  static int SectorSize(sqlite3_file* file);
  static int DeviceCharacteristics(sqlite3_file* file);

  Faults& faults;
  sqlite3_vfs* const real = ::sqlite3_vfs_find(nullptr);
  sqlite3_vfs vfs = {};
};

FaultySqliteVfs::Registration::Registration(Faults& itsFaults) : faults(itsFaults) {
  if (::sqlite3_vfs_find(kName) != nullptr) throw std::logic_error("one FaultySqliteVfs at a time");
  vfs.iVersion = 1;
  vfs.szOsFile = static_cast<int>(sizeof(File)) + real->szOsFile;
  vfs.mxPathname = real->mxPathname;
  vfs.zName = kName;
  vfs.pAppData = this;
  vfs.xOpen = Open;
  vfs.xDelete = Delete;
  vfs.xAccess = Access;
  vfs.xFullPathname = FullPathname;
  vfs.xRandomness = [](sqlite3_vfs* self, int size, char* bytes) {
    return Of(self).real->xRandomness(Of(self).real, size, bytes);
  };
  vfs.xSleep = [](sqlite3_vfs* self, int microseconds) {
    return Of(self).real->xSleep(Of(self).real, microseconds);
  };
  vfs.xCurrentTime = [](sqlite3_vfs* self, double* now) {
    return Of(self).real->xCurrentTime(Of(self).real, now);
  };
  vfs.xGetLastError = [](sqlite3_vfs* self, int size, char* text) {
    return Of(self).real->xGetLastError(Of(self).real, size, text);
  };
  if (::sqlite3_vfs_register(&vfs, 1) != SQLITE_OK) throw std::runtime_error("not registered");
}

FaultySqliteVfs::Registration::~Registration() {
  ::sqlite3_vfs_unregister(&vfs);
  ::sqlite3_vfs_register(real, 1);
}

const sqlite3_io_methods& FaultySqliteVfs::Registration::FileMethods() {
  // Version 1: no shared memory, so no write-ahead log, and no memory-mapped files.
  static const sqlite3_io_methods methods = [] {
    sqlite3_io_methods made = {};
    made.iVersion = 1;
    made.xClose = Close;
    made.xRead = Read;
    made.xWrite = Write;
    made.xTruncate = Truncate;
    made.xSync = Sync;
    made.xFileSize = FileSize;
    made.xLock = Lock;
    made.xUnlock = Unlock;
    made.xCheckReservedLock = CheckReservedLock;
    made.xFileControl = FileControl;
    made.xSectorSize = SectorSize;
    made.xDeviceCharacteristics = DeviceCharacteristics;
    return made;
  }();
  return methods;
}

int FaultySqliteVfs::Registration::Open(sqlite3_vfs* vfs, sqlite3_filename name, sqlite3_file* file,
                                        int flags, int* outFlags) {
  Registration& self = Of(vfs);
  File& opened = *new (file) File{{nullptr}, &self.faults};
  opened.Real()->pMethods = nullptr;
  const Call call = (flags & SQLITE_OPEN_CREATE) != 0 ? Call::OpenToWrite : Call::Open;
  if (const int code = self.faults.Next(call); code != SQLITE_OK) return code;
  const int code = self.real->xOpen(self.real, name, opened.Real(), flags, outFlags);
  // With methods SQLite will close the file, whatever the code.
  if (opened.Real()->pMethods != nullptr) opened.base.pMethods = &FileMethods();
  return code;
}

int FaultySqliteVfs::Registration::Delete(sqlite3_vfs* vfs, const char* name,
                                          int /*syncDirectory*/) {
  Registration& self = Of(vfs);
  if (const int code = self.faults.Next(Call::Delete); code != SQLITE_OK) return code;
  return self.real->xDelete(self.real, name, 0);
}

int FaultySqliteVfs::Registration::Access(sqlite3_vfs* vfs, const char* name, int flags,
                                          int* result) {
  Registration& self = Of(vfs);
  *result = 0;
  if (const int code = self.faults.Next(Call::Access); code != SQLITE_OK) return code;
  return self.real->xAccess(self.real, name, flags, result);
}

int FaultySqliteVfs::Registration::FullPathname(sqlite3_vfs* vfs, const char* name, int size,
                                                char* path) {
  Registration& self = Of(vfs);
  if (const int code = self.faults.Next(Call::FullPathname); code != SQLITE_OK) return code;
  return self.real->xFullPathname(self.real, name, size, path);
}

int FaultySqliteVfs::Registration::Close(sqlite3_file* file) {
  File& self = File::Of(file);
  return self.Do().xClose(self.Real());
}

int FaultySqliteVfs::Registration::Read(sqlite3_file* file, void* buffer, int size,
                                        sqlite3_int64 offset) {
  File& self = File::Of(file);
  if (const int code = self.faults->Next(Call::Read); code != SQLITE_OK) return code;
  return self.Do().xRead(self.Real(), buffer, size, offset);
}

int FaultySqliteVfs::Registration::Write(sqlite3_file* file, const void* bytes, int size,
                                         sqlite3_int64 offset) {
  File& self = File::Of(file);
  SqliteFault fault = SqliteFault::Error;
  const int code = self.faults->Next(Call::Write, &fault);
  if (code == SQLITE_OK) return self.Do().xWrite(self.Real(), bytes, size, offset);
  if (fault == SqliteFault::ShortWrite) self.Do().xWrite(self.Real(), bytes, size / 2, offset);
  return code;
}

int FaultySqliteVfs::Registration::Truncate(sqlite3_file* file, sqlite3_int64 size) {
  File& self = File::Of(file);
  if (const int code = self.faults->Next(Call::Truncate); code != SQLITE_OK) return code;
  return self.Do().xTruncate(self.Real(), size);
}

int FaultySqliteVfs::Registration::Sync(sqlite3_file* file, int /*flags*/) {
  return File::Of(file).faults->Next(Call::Sync);
}

int FaultySqliteVfs::Registration::FileSize(sqlite3_file* file, sqlite3_int64* size) {
  File& self = File::Of(file);
  if (const int code = self.faults->Next(Call::FileSize); code != SQLITE_OK) return code;
  return self.Do().xFileSize(self.Real(), size);
}

int FaultySqliteVfs::Registration::Lock(sqlite3_file* file, int level) {
  File& self = File::Of(file);
  if (const int code = self.faults->Next(Call::Lock); code != SQLITE_OK) return code;
  return self.Do().xLock(self.Real(), level);
}

int FaultySqliteVfs::Registration::Unlock(sqlite3_file* file, int level) {
  File& self = File::Of(file);
  if (const int code = self.faults->Next(Call::Unlock); code != SQLITE_OK) return code;
  return self.Do().xUnlock(self.Real(), level);
}

int FaultySqliteVfs::Registration::CheckReservedLock(sqlite3_file* file, int* result) {
  File& self = File::Of(file);
  *result = 0;
  if (const int code = self.faults->Next(Call::CheckReservedLock); code != SQLITE_OK) return code;
  return self.Do().xCheckReservedLock(self.Real(), result);
}

int FaultySqliteVfs::Registration::FileControl(sqlite3_file* file, int operation, void* argument) {
  File& self = File::Of(file);
  return self.Do().xFileControl(self.Real(), operation, argument);
}

int FaultySqliteVfs::Registration::SectorSize(sqlite3_file* file) {
  File& self = File::Of(file);
  return self.Do().xSectorSize(self.Real());
}

int FaultySqliteVfs::Registration::DeviceCharacteristics(sqlite3_file* file) {
  File& self = File::Of(file);
  return self.Do().xDeviceCharacteristics(self.Real());
}

FaultySqliteVfs::FaultySqliteVfs()
    : faults_(std::make_unique<Faults>()),
      registration_(std::make_unique<Registration>(*faults_)) {}

FaultySqliteVfs::~FaultySqliteVfs() = default;

void FaultySqliteVfs::FailCall(std::size_t number, SqliteFault fault, Duration duration) {
  faults_->Set(number, fault, duration);
}

void FaultySqliteVfs::Heal() { faults_->Clear(); }

std::size_t FaultySqliteVfs::Calls() const { return faults_->Calls(); }

std::size_t FaultySqliteVfs::FailedCalls() const { return faults_->FailedCalls(); }

}  // namespace TestSupport
