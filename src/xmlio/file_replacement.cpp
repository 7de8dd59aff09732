#include "xmlio/file_replacement.h"

#include <fcntl.h>
#include <linux/magic.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <system_error>
#include <utility>

namespace Quillon9 {

namespace {

constexpr std::size_t kBlock = 0x100000;
constexpr int kMaxLinks = 40;  // the system's own limit
constexpr int kMaxNames = 100;
constexpr char kAccessList[] = "system.posix_acl_access";

[[noreturn]] void Throw(int error) { throw std::system_error(error, std::generic_category()); }

struct stat StatusOf(CFileDescriptor const& file) {
  struct stat status {};
  if (::fstat(file.Get(), &status) != 0) ThrowSystemError();
  return status;
}

bool IsRegular(CFileDescriptor const& file) { return S_ISREG(StatusOf(file).st_mode); }

/// Open the existing file at \p path for writing; -1 if there is none. O_CREAT is passed because only with it does the
/// system check for files that strangers have put into world-writable folders.
int OpenExisting(std::string const& path) {
  struct stat status {};
  if (::stat(path.c_str(), &status) != 0) {
    if (errno != ENOENT) ThrowSystemError();
    return -1;
  }
  int const descriptor = ::open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC | O_NOCTTY, 0666);
  if (descriptor == -1) ThrowSystemError();
  return descriptor;
}

// ---- Symbolic links

/// Return the length of the folder in \p path, including its slash.
std::size_t FolderLength(std::string const& path) { return path.rfind('/') + 1; }

std::string FolderOf(std::string const& path) {
  std::size_t const length = FolderLength(path);
  return length == 0 ? "." : path.substr(0, length);
}

/// Return the target of the symbolic link \p path; empty if it is not a link.
std::string ReadLink(std::string const& path) {
  std::string text(PATH_MAX, '\0');
  ssize_t const length = ::readlink(path.c_str(), text.data(), text.size());
  text.resize(length > 0 ? static_cast<std::size_t>(length) : 0);
  return text;
}

/// Return whether the target of the symbolic link \p link is really the path of the file and no other user can have
/// placed it there. A link in /proc stands for an open file, whose user would not notice that its name was given away.
/// A stranger's link in a folder like /tmp is left to the system, which may be configured to refuse it.
bool MayFollow(std::string const& link) {
  std::string const folder = FolderOf(link);
  struct statfs fileSystem {};
  struct stat ofLink {};
  struct stat ofFolder {};
  if (::statfs(folder.c_str(), &fileSystem) != 0 || fileSystem.f_type == PROC_SUPER_MAGIC) return false;
  if (::lstat(link.c_str(), &ofLink) != 0 || ::stat(folder.c_str(), &ofFolder) != 0) return false;
  bool const isForAll = (ofFolder.st_mode & S_ISVTX) != 0 && (ofFolder.st_mode & S_IWOTH) != 0;
  return !isForAll || ofLink.st_uid == ::geteuid() || ofLink.st_uid == ofFolder.st_uid;
}

/// Return the path of the file, existing or not, that \p path reaches through symbolic links; nothing if one of them
/// may not be followed.
std::optional<std::string> FollowLinks(std::string path) {
  for (int i = 0; i < kMaxLinks; ++i) {
    std::string const text = ReadLink(path);
    if (text.empty()) return path;
    if (!MayFollow(path)) return std::nullopt;
    path = text[0] == '/' ? text : path.substr(0, FolderLength(path)) + text;
  }
  Throw(ELOOP);
}

// ---- Rights

/// Give \p file the access control list of \p old, or none if \p old has none. A new file may inherit one from its
/// folder.
/// \returns false if \p old has a list that \p file did not get.
bool TakeOverAccessList(CFileDescriptor const& old, CFileDescriptor const& file, bool mayKeep) {
  if (::fremovexattr(file.Get(), kAccessList) != 0 && errno != ENODATA && errno != EOPNOTSUPP) return false;
  ssize_t const size = ::fgetxattr(old.Get(), kAccessList, nullptr, 0);
  if (size < 0) return errno == ENODATA || errno == EOPNOTSUPP;
  if (!mayKeep) return false;
  std::string list(static_cast<std::size_t>(size), '\0');
  return ::fgetxattr(old.Get(), kAccessList, list.data(), list.size()) == size &&
         ::fsetxattr(file.Get(), kAccessList, list.data(), list.size(), 0) == 0;
}

/// Return the permission bits for a file that replaces one with \p mode but has another owner or group, so that no user
/// gains rights: the old owner now has those of the group or of others, and members of either group may have become
/// others, and vice versa.
mode_t Reduced(mode_t mode, bool hasOwner, bool hasGroup) {
  mode_t const owner = mode >> 6 & 07;
  mode_t group = mode >> 3 & 07;
  mode_t others = mode & 07;
  if (!hasGroup) group = others = group & others;
  if (!hasOwner) {
    group &= owner;
    others &= owner;
  }
  return owner << 6 | group << 3 | others;
}

/// Give \p file, which only its owner may use so far, the owner, group and rights of \p old as far as the system
/// allows.
void TakeOverRights(CFileDescriptor const& old, CFileDescriptor const& file) {
  struct stat const before = StatusOf(old);
  constexpr uid_t kSame = static_cast<uid_t>(-1);
  static_cast<void>(::fchown(file.Get(), before.st_uid, before.st_gid) == 0 ||
                    ::fchown(file.Get(), kSame, before.st_gid) == 0);
  struct stat const after = StatusOf(file);
  bool const hasOwner = after.st_uid == before.st_uid;
  bool const hasGroup = after.st_gid == before.st_gid;
  mode_t mode = Reduced(before.st_mode & 0777, hasOwner, hasGroup);
  // The permission bits do not show which users the list of a file excludes.
  if (!TakeOverAccessList(old, file, hasOwner && hasGroup)) mode &= 0700;
  if ((StatusOf(file).st_mode & 07777) != mode && ::fchmod(file.Get(), mode) != 0) ThrowSystemError();
}

// ---- The temporary file

/// ".quillon9-" and 16 digits: short, because the file's own name may already be as long as the system allows.
std::string RandomName() {
  std::uint64_t number = 0;
  if (::getrandom(&number, sizeof number, GRND_NONBLOCK) != static_cast<ssize_t>(sizeof number)) {
    number = static_cast<std::uint64_t>(std::chrono::steady_clock::now().time_since_epoch().count());
  }
  char name[32];
  std::snprintf(name, sizeof name, ".quillon9-%016llx", static_cast<unsigned long long>(number));
  return name;
}

}  // namespace

/// A new file in a folder. The destructor removes it unless it has been renamed.
class CFileReplacement::TemporaryFile {
 public:
  TemporaryFile(std::string const& folder, mode_t mode)
      : m_folder(::open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC)), m_file(Create(mode)) {}
  TemporaryFile(TemporaryFile const&) = delete;
  TemporaryFile& operator=(TemporaryFile const&) = delete;
  ~TemporaryFile() {
    if (!m_name.empty()) ::unlinkat(m_folder.Get(), m_name.c_str(), 0);
  }

  CFileDescriptor& GetFile() { return m_file; }
  void Rename(std::string const& name) {
    if (::renameat(m_folder.Get(), m_name.c_str(), m_folder.Get(), name.c_str()) != 0) ThrowSystemError();
    m_name.clear();
  }

 private:
  int Create(mode_t mode) {
    if (!m_folder.IsOpen()) ThrowSystemError();
    for (int i = 0; i < kMaxNames; ++i) {
      std::string name = RandomName();
      int const file = ::openat(m_folder.Get(), name.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, mode);
      if (file == -1 && errno == EEXIST) continue;
      if (file == -1) ThrowSystemError();
      m_name = std::move(name);
      return file;
    }
    Throw(EEXIST);
  }

  CFileDescriptor m_folder;
  std::string m_name;
  CFileDescriptor m_file;
};

namespace {

/// Return whether \p error means that the folder or the file system does not allow a replacement, such as that of
/// another user's file in a folder like /tmp, or of a file that is a mount point. In /proc no file can be created, and
/// the error is the same as for a missing folder.
bool IsRefusal(int error) {
  switch (error) {
    case EACCES:
    case EBUSY:
    case ENOENT:
    case ENOSYS:
    case EOPNOTSUPP:
    case EPERM:
    case EROFS:
    case EXDEV: return true;
    default: return false;
  }
}

void Check(CFileReplacement::Checkpoint const& checkpoint) {
  if (checkpoint) checkpoint();
}

/// Append all of \p from to \p to.
void Copy(CFileDescriptor const& from, CFileDescriptor const& to) {
  std::string block(kBlock, '\0');
  for (off_t at = 0;;) {
    ssize_t const count = ::pread(from.Get(), block.data(), block.size(), at);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) ThrowSystemError();
    if (count == 0) return;
    to.Write({block.data(), static_cast<std::size_t>(count)});
    at += count;
  }
}

}  // namespace

CFileReplacement::~CFileReplacement() = default;

CFileReplacement::CFileReplacement(std::string const& path) : m_old(OpenExisting(path)) {
  if (m_old.IsOpen() && !IsRegular(m_old)) return;
  std::optional<std::string> const target = FollowLinks(path);
  if (!target && m_old.IsOpen()) return;
  if (!target) Throw(EACCES);
  if (target->empty()) Throw(ENOENT);
  m_folder = FolderOf(*target);
  m_name = target->substr(FolderLength(*target));
  if (m_name.empty()) Throw(EISDIR);
}

void CFileReplacement::Write(Pieces pieces, Sync sync, Checkpoint const& checkpoint) {
  if (!NeedsTemporaryFile() || !WriteBeside(pieces, sync, checkpoint)) WriteDirectly(pieces, sync);
}

/// \returns false if a replacement is not allowed and there is a file that can be written directly.
bool CFileReplacement::WriteBeside(Pieces pieces, Sync sync, Checkpoint const& checkpoint) const {
  try {
    TemporaryFile temporary(m_folder, m_old.IsOpen() ? 0600 : 0666);
    CFileDescriptor& file = temporary.GetFile();
    for (std::string_view piece : pieces) {
      for (; !piece.empty(); piece.remove_prefix(std::min(kBlock, piece.size()))) {
        Check(checkpoint);
        file.Write(piece.substr(0, kBlock));
      }
    }
    PutInPlace(temporary, sync, checkpoint);
    return true;
  } catch (std::system_error const& failure) {
    if (!IsRefused(failure)) throw;
    return false;
  }
}

void CFileReplacement::WriteDirectly(Pieces pieces, Sync sync) {
  BeginDirectly();
  for (std::string_view const piece : pieces) m_old.Write(piece);
  FinishDirectly(sync);
}

bool CFileReplacement::IsRefused(std::system_error const& failure) const {
  return m_old.IsOpen() && IsRefusal(failure.code().value());
}

void CFileReplacement::PutInPlace(TemporaryFile& temporary, Sync sync, Checkpoint const& checkpoint) const {
  CFileDescriptor& file = temporary.GetFile();
  if (m_old.IsOpen()) TakeOverRights(m_old, file);
  if (sync == Sync::Yes) file.Sync();
  file.Close();
  Check(checkpoint);
  temporary.Rename(m_name);
}

void CFileReplacement::BeginDirectly() const {
  if (IsRegular(m_old) && ::ftruncate(m_old.Get(), 0) != 0) ThrowSystemError();
}

void CFileReplacement::FinishDirectly(Sync sync) {
  if (sync == Sync::Yes && IsRegular(m_old)) m_old.Sync();
  m_old.Close();
}

void CFileReplacement::Begin() {
  try {
    if (NeedsTemporaryFile()) m_begun = std::make_unique<TemporaryFile>(m_folder, m_old.IsOpen() ? 0600 : 0666);
  } catch (std::system_error const& failure) {
    if (!IsRefused(failure)) throw;
  }
  if (m_begun == nullptr) BeginDirectly();
}

void CFileReplacement::Add(std::string_view piece) const {
  (m_begun != nullptr ? m_begun->GetFile() : m_old).Write(piece);
}

void CFileReplacement::Finish(Sync sync) {
  std::unique_ptr<TemporaryFile> const temporary = std::move(m_begun);
  if (temporary == nullptr) return FinishDirectly(sync);
  CFileDescriptor const contents(::dup(temporary->GetFile().Get()));
  if (!contents.IsOpen()) ThrowSystemError();
  try {
    return PutInPlace(*temporary, sync, nullptr);
  } catch (std::system_error const& failure) {
    if (!IsRefused(failure)) throw;
  }
  BeginDirectly();
  Copy(contents, m_old);
  FinishDirectly(sync);
}

}  // namespace Quillon9
