// Tests the effects of CFileBinaryStream::ToFile() on existing files, through every kind of path.

#include <fcntl.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "expect_failure.h"
#include "quillon9/xmlio/streams.h"
#include "xmlio/file_replacement.h"

namespace Quillon9 {
namespace {

namespace fs = std::filesystem;

constexpr uid_t kUser = 1001;
constexpr uid_t kOtherUser = 1002;
constexpr gid_t kGroup = 2001;
constexpr gid_t kOtherGroup = 2002;

/// Sets other effective identities, without supplementary groups, for the duration of a scope. Only root may do this.
class Identity {
 public:
  Identity(uid_t user, gid_t group) {
    m_groups.resize(static_cast<std::size_t>(::getgroups(0, nullptr)));
    EXPECT_EQ(static_cast<int>(m_groups.size()), ::getgroups(static_cast<int>(m_groups.size()), m_groups.data()));
    EXPECT_EQ(0, ::setgroups(0, nullptr));
    EXPECT_EQ(0, ::setegid(group));
    EXPECT_EQ(0, ::seteuid(user));
  }
  Identity(Identity const&) = delete;
  Identity& operator=(Identity const&) = delete;
  ~Identity() {
    EXPECT_EQ(0, ::seteuid(0));
    EXPECT_EQ(0, ::setegid(0));
    EXPECT_EQ(0, ::setgroups(m_groups.size(), m_groups.data()));
  }

 private:
  std::vector<gid_t> m_groups;
};

/// Whether a user can reach the files in a folder, which takes a right to search it and each folder above it.
bool CanReach(std::string const& folder, uid_t user, gid_t group) {
  Identity const identity(user, group);
  return ::faccessat(AT_FDCWD, folder.c_str(), X_OK, AT_EACCESS) == 0;
}

constexpr char kUnreachable[] = "other users cannot reach the folder for temporary files, which TMPDIR can change";

/// Makes files above this size impossible to write for the duration of a scope, as a full disk would for every user.
class SizeLimit {
 public:
  explicit SizeLimit(rlim_t size) : m_handler(std::signal(SIGXFSZ, SIG_IGN)) {
    EXPECT_EQ(0, ::getrlimit(RLIMIT_FSIZE, &m_limit));
    rlimit limit = m_limit;
    limit.rlim_cur = size;
    EXPECT_EQ(0, ::setrlimit(RLIMIT_FSIZE, &limit));
  }
  SizeLimit(SizeLimit const&) = delete;
  SizeLimit& operator=(SizeLimit const&) = delete;
  ~SizeLimit() {
    ::setrlimit(RLIMIT_FSIZE, &m_limit);
    std::signal(SIGXFSZ, m_handler);
  }

 private:
  void (*m_handler)(int);
  rlimit m_limit{};
};

void WriteWithStream(std::string const& path, std::string const& bytes) {
  CFileBinaryStream(path.c_str(), XmlEncoding_Default, CBinaryData(bytes.c_str())).ToFile();
}

void WriteInPieces(std::string const& path, std::string const& bytes) {
  CFileReplacement file(path);
  file.Begin();
  for (char const byte : bytes) file.Add({&byte, 1});
  file.Finish(CFileReplacement::Sync::Yes);
}

std::string NotWritten(std::string const& path) { return "Failed to write data to the file [" + path + "]"; }

std::string Read(std::string const& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

struct stat StatusOf(std::string const& path) {
  struct stat status {};
  EXPECT_EQ(0, ::stat(path.c_str(), &status)) << path;
  return status;
}

mode_t ModeOf(std::string const& path) { return StatusOf(path).st_mode & 07777; }

/// Each test has its own empty folder.
class FileReplacement : public testing::Test {
 protected:
  void SetUp() override {
    std::string path = testing::TempDir() + "quillon9-files.XXXXXX";
    ASSERT_NE(nullptr, ::mkdtemp(path.data()));
    m_folder = path;
    ASSERT_EQ(0, ::chmod(path.c_str(), 0777));
  }
  void TearDown() override { fs::remove_all(m_folder); }

  std::string PathOf(std::string const& name) const { return m_folder + '/' + name; }
  std::string Make(std::string const& name, std::string const& text = "old", mode_t mode = 0644) const {
    std::string path = PathOf(name);
    std::ofstream(path) << text;
    EXPECT_EQ(0, ::chmod(path.c_str(), mode));
    return path;
  }
  std::string MakeFor(uid_t user, gid_t group, mode_t mode) const {
    std::string path = Make("a.xml");
    EXPECT_EQ(0, ::chown(path.c_str(), user, group));
    EXPECT_EQ(0, ::chmod(path.c_str(), mode));
    return path;
  }
  std::size_t CountFiles() const {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(m_folder), fs::directory_iterator()));
  }

  /// Whether the test can act as other users in its folder.
  bool OthersCanReach() const {
    return CanReach(m_folder, kUser, kGroup) && CanReach(m_folder, kOtherUser, kOtherGroup);
  }

  std::string m_folder;
};

TEST_F(FileReplacement, FullDiskLeavesTheOldFileAndNoOther) {
  std::string const old = Make("old.xml");
  std::string const missing = PathOf("new.xml");
  std::string const large(100000, 'x');
  {
    SizeLimit const limit(0x10000);
    EXPECT_FAILURE(CQnException, NotWritten(old), WriteWithStream(old, large));
    EXPECT_FAILURE(CQnException, NotWritten(missing), WriteWithStream(missing, large));
  }
  EXPECT_FAILURE(CQnException, NotWritten(old), WriteWithStream(old, ""));
  EXPECT_EQ("old", Read(old));
  EXPECT_EQ(1U, CountFiles());
}

TEST_F(FileReplacement, ReadersSeeWholeFilesOnly) {
  std::string const path = PathOf("a.xml");
  WriteWithStream(path, std::string(300000, 'a'));
  auto const writer = [&path](char letter) {
    for (int i = 0; i < 30; ++i) WriteWithStream(path, std::string(300000, letter));
  };
  std::thread first(writer, 'a');
  std::thread second(writer, 'b');
  int torn = 0;
  for (int i = 0; i < 100; ++i) {
    std::string const text = Read(path);
    if (text.size() != 300000 || text.find_first_not_of(text[0]) != std::string::npos) ++torn;
  }
  first.join();
  second.join();
  EXPECT_EQ(0, torn);
  EXPECT_EQ(1U, CountFiles());
}

TEST_F(FileReplacement, PiecesBecomeAFileWhenTheyAreComplete) {
  std::string const path = Make("a.xml", "old", 0640);
  std::string const missing = PathOf("new.xml");
  for (std::string const& file : {path, missing}) {
    CFileReplacement replacement(file);
    replacement.Begin();
    replacement.Add("lost");
  }
  EXPECT_EQ("old", Read(path));
  EXPECT_EQ(1U, CountFiles());
  WriteInPieces(missing, "new");
  EXPECT_EQ("new", Read(missing));
  WriteInPieces(path, "new");
  EXPECT_EQ("new", Read(path));
  EXPECT_EQ(0640U, ModeOf(path));
  EXPECT_EQ(2U, CountFiles());
}

TEST_F(FileReplacement, RightsAreThoseOfTheOldFileOrOfANewOne) {
  struct {
    mode_t before;
    mode_t after;
  } const rows[] = {{0600, 0600}, {0640, 0640}, {0604, 0604}, {0666, 0666}, {06755, 0755}};
  for (auto const& row : rows) {
    std::string const path = Make("a.xml", "old", row.before);
    WriteWithStream(path, "new");
    EXPECT_EQ("new", Read(path));
    EXPECT_EQ(row.after, ModeOf(path)) << row.before;
  }
  mode_t const mask = ::umask(027);
  WriteWithStream(PathOf("new.xml"), "new");
  ::umask(mask);
  EXPECT_EQ(0640U, ModeOf(PathOf("new.xml")));
}

TEST_F(FileReplacement, OwnerAndGroupStayOrNobodyGetsMoreRights) {
  if (::geteuid() != 0) GTEST_SKIP() << "only root can act as several users";
  if (!OthersCanReach()) GTEST_SKIP() << kUnreachable;
  struct {
    uid_t writer;
    gid_t group;
    mode_t before;
    uid_t newOwner;
    gid_t newGroup;
    mode_t after;
  } const rows[] = {
      {0, 0, 0640, kUser, kGroup, 0640},
      {kUser, kOtherGroup, 0640, kUser, kOtherGroup, 0600},
      {kUser, kOtherGroup, 0664, kUser, kOtherGroup, 0644},
      {kUser, kOtherGroup, 0606, kUser, kOtherGroup, 0600},
      {kOtherUser, kGroup, 0660, kOtherUser, kGroup, 0660},
      {kOtherUser, kGroup, 0464, kOtherUser, kGroup, 0444},
      {kOtherUser, kOtherGroup, 0646, kOtherUser, kOtherGroup, 0644},
  };
  for (auto const& row : rows) {
    std::string const path = MakeFor(kUser, kGroup, row.before);
    {
      Identity const identity(row.writer, row.group);
      WriteWithStream(path, "new");
    }
    struct stat const after = StatusOf(path);
    EXPECT_EQ("new", Read(path));
    EXPECT_EQ(row.newOwner, after.st_uid) << row.before;
    EXPECT_EQ(row.newGroup, after.st_gid) << row.before;
    EXPECT_EQ(row.after, after.st_mode & 07777) << row.before;
    fs::remove(path);
  }
}

/// An access list as the system stores it: user::rw-, user:1002:r--, group::---, mask::r--, other::---.
std::string AccessList() {
  static constexpr unsigned char kList[] = {2,    0, 0, 0,                          //
                                            0x01, 0, 6, 0, 0xFF, 0xFF, 0xFF, 0xFF,  //
                                            0x02, 0, 4, 0, 0xEA, 0x03, 0,    0,     //
                                            0x04, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF,  //
                                            0x10, 0, 4, 0, 0xFF, 0xFF, 0xFF, 0xFF,  //
                                            0x20, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF};
  return {reinterpret_cast<char const*>(kList), sizeof kList};
}

constexpr char kAccess[] = "system.posix_acl_access";

std::string AccessListOf(std::string const& path) {
  char list[1024];
  ssize_t const size = ::getxattr(path.c_str(), kAccess, list, sizeof list);
  return size < 0 ? "" : std::string(list, static_cast<std::size_t>(size));
}

TEST_F(FileReplacement, AccessListIsThatOfTheOldFile) {
  std::string const listed = Make("listed.xml");
  std::string const plain = Make("plain.xml");
  std::string const list = AccessList();
  if (::setxattr(listed.c_str(), kAccess, list.data(), list.size(), 0) != 0 ||
      ::setxattr(m_folder.c_str(), "system.posix_acl_default", list.data(), list.size(), 0) != 0) {
    GTEST_SKIP() << "the file system has no access lists";
  }
  WriteWithStream(listed, "new");
  WriteWithStream(plain, "new");
  EXPECT_EQ(list, AccessListOf(listed));
  EXPECT_EQ("", AccessListOf(plain));
  EXPECT_EQ(0644U, ModeOf(plain));

  if (::geteuid() != 0) return;
  if (!OthersCanReach()) GTEST_SKIP() << kUnreachable;
  ASSERT_EQ(0, ::chown(listed.c_str(), kUser, kGroup));
  {
    Identity const identity(kUser, kOtherGroup);
    WriteWithStream(listed, "newer");
  }
  EXPECT_EQ("newer", Read(listed));
  EXPECT_EQ("", AccessListOf(listed));
  EXPECT_EQ(0600U, ModeOf(listed));
}

TEST_F(FileReplacement, LinksAreFollowedAndStay) {
  std::string const file = Make("file.xml", "old", 0640);
  fs::create_directory(PathOf("links"));
  fs::create_symlink("../file.xml", PathOf("links/relative"));
  fs::create_symlink(PathOf("links/relative"), PathOf("absolute"));
  fs::create_symlink("links/missing.xml", PathOf("dangling"));
  fs::create_symlink("round", PathOf("loop"));
  fs::create_symlink("loop", PathOf("round"));
  fs::create_hard_link(file, PathOf("hard"));

  WriteWithStream(PathOf("absolute"), "new");
  WriteWithStream(PathOf("dangling"), "newer");
  EXPECT_FAILURE(CQnException, NotWritten(PathOf("loop")), WriteWithStream(PathOf("loop"), "new"));
  EXPECT_EQ("new", Read(file));
  EXPECT_EQ(0640U, ModeOf(file));
  EXPECT_EQ("newer", Read(PathOf("links/missing.xml")));
  EXPECT_EQ("old", Read(PathOf("hard")));
  for (char const* name : {"absolute", "links/relative", "dangling"}) EXPECT_TRUE(fs::is_symlink(PathOf(name))) << name;
}

TEST_F(FileReplacement, DirectoriesAreRefused) {
  for (std::string const& path : {m_folder, m_folder + '/', PathOf("missing/"), PathOf(".")}) {
    EXPECT_FAILURE(CQnException, NotWritten(path), WriteWithStream(path, "new"));
  }
  EXPECT_EQ(0U, CountFiles());
}

TEST_F(FileReplacement, PipesAndOpenFilesAreWrittenDirectly) {
  std::string const pipe = PathOf("pipe");
  ASSERT_EQ(0, ::mkfifo(pipe.c_str(), 0600));
  int const reader = ::open(pipe.c_str(), O_RDONLY | O_NONBLOCK);
  WriteWithStream(pipe, "new");
  char bytes[8];
  EXPECT_EQ(3, ::read(reader, bytes, sizeof bytes));
  ::close(reader);
  EXPECT_TRUE(fs::is_fifo(pipe));

  std::string const file = Make("file.xml", "old contents");
  int const opened = ::open(file.c_str(), O_RDWR);
  WriteWithStream("/proc/self/fd/" + std::to_string(opened), "new");
  EXPECT_EQ(3, ::read(opened, bytes, sizeof bytes));
  ::close(opened);
  EXPECT_EQ(2U, CountFiles());

  std::string const before = Read("/proc/self/comm");
  WriteWithStream("/proc/self/comm", "new");
  EXPECT_EQ("new\n", Read("/proc/self/comm"));
  WriteWithStream("/proc/self/comm", before);
}

TEST_F(FileReplacement, LongestAndRelativeNamesWork) {
  fs::path const before = fs::current_path();
  fs::current_path(m_folder);
  for (std::string const& name : {std::string(255, 'n'), std::string("a"), std::string("./b")}) {
    Make(name);
    WriteWithStream(name, "new");
    EXPECT_EQ("new", Read(name));
  }
  fs::current_path(before);
  EXPECT_EQ(3U, CountFiles());
}

TEST_F(FileReplacement, ProtectedFilesAreRefusedAndProtectedFoldersWrittenInPlace) {
  if (::geteuid() == 0 && !OthersCanReach()) GTEST_SKIP() << kUnreachable;
  std::string const path = Make("a.xml", "old", 0444);
  ASSERT_EQ(0, ::chmod(m_folder.c_str(), 0755));
  std::optional<Identity> identity;
  if (::geteuid() == 0) {
    ASSERT_EQ(0, ::chown(path.c_str(), kUser, kGroup));
    identity.emplace(kUser, kGroup);
  } else {
    ASSERT_EQ(0, ::chmod(m_folder.c_str(), 0555));
  }
  EXPECT_FAILURE(CQnException, NotWritten(path), WriteWithStream(path, "new"));
  EXPECT_EQ("old", Read(path));
  ASSERT_EQ(0, ::chmod(path.c_str(), 0644));
  ino_t const inode = StatusOf(path).st_ino;
  for (auto* const write : {&WriteWithStream, &WriteInPieces}) {
    write(path, "n");
    EXPECT_EQ("n", Read(path));
    EXPECT_EQ(inode, StatusOf(path).st_ino);
    write(path, "longer");
  }
  EXPECT_FAILURE(CQnException, NotWritten(PathOf("new")), WriteWithStream(PathOf("new"), "new"));
  identity.reset();
  EXPECT_EQ(0, ::chmod(m_folder.c_str(), 0755));
}

bool IsGuarded(char const* what) { return Read(std::string("/proc/sys/fs/protected_") + what).substr(0, 1) != "0"; }

TEST_F(FileReplacement, FilesAndLinksOfOthersInAStickyFolderAreLeftToTheSystem) {
  if (::geteuid() != 0) GTEST_SKIP() << "only root can act as several users";
  if (!OthersCanReach()) GTEST_SKIP() << kUnreachable;
  if (IsGuarded("regular") || IsGuarded("symlinks")) GTEST_SKIP() << "the system refuses to write such files";
  ASSERT_EQ(0, ::chmod(m_folder.c_str(), 01777));
  std::string const path = MakeFor(kOtherUser, kOtherGroup, 0666);
  fs::create_directory(PathOf("mine"));
  ASSERT_EQ(0, ::chown(PathOf("mine").c_str(), kUser, kGroup));
  std::string const target = Make("mine/b.xml", "old", 0666);
  fs::create_symlink(target, PathOf("link"));
  fs::create_symlink("mine/missing.xml", PathOf("dangling"));
  for (char const* name : {"link", "dangling"}) ASSERT_EQ(0, ::lchown(PathOf(name).c_str(), kOtherUser, kOtherGroup));
  ino_t const inode = StatusOf(target).st_ino;
  {
    Identity const identity(kUser, kGroup);
    WriteInPieces(path, "longer than new");
    EXPECT_EQ("longer than new", Read(path));
    WriteWithStream(path, "new");
    WriteInPieces(PathOf("link"), "new");
    WriteWithStream(PathOf("link"), "new");
    EXPECT_FAILURE(CQnException, NotWritten(PathOf("dangling")), WriteWithStream(PathOf("dangling"), "new"));
  }
  EXPECT_EQ("new", Read(path));
  EXPECT_EQ(kOtherUser, StatusOf(path).st_uid);
  EXPECT_EQ("new", Read(target));
  EXPECT_EQ(inode, StatusOf(target).st_ino);
  EXPECT_EQ(4U, CountFiles());
}

}  // namespace
}  // namespace Quillon9
