#pragma once

#include <functional>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <system_error>

#include "xmlio/file_descriptor.h"

namespace Quillon9 {

/// Writes a whole file under a path, so that a regular file appears, or changes, only when all bytes have been written:
/// they go to a temporary file in the same folder, which then takes the name. Symbolic links are followed. The new file
/// gets the permission bits, the owner, the group and the POSIX access control list of the one that it replaces. Where
/// the system does not allow that, it has fewer permission bits, so that no user gains rights.
///
/// Pipes, devices and other special files are written directly. So are files that are reached through a descriptor in
/// /proc (such as /dev/stdout), and files that the system does not allow to be replaced.
///
/// The library and the command-line program both compile this class. It belongs to one thread.
class CFileReplacement {
 public:
  enum class Sync {
    No,  ///< after a power failure the file may have the old contents or the new ones
    Yes  ///< wait until the contents are on the disk before the file gets its name
  };
  /// Called by Write() from time to time. It may throw to abandon the file.
  using Checkpoint = std::function<void()>;

  /// Find out what exists at \p path, and open it if there is something; opening a pipe waits for its reader. Nothing
  /// is created or changed.
  /// \throws std::system_error if the path leads to a directory, to nowhere or to a file that may not be written.
  explicit CFileReplacement(std::string const& path);
  CFileReplacement(CFileReplacement const&) = delete;
  CFileReplacement& operator=(CFileReplacement const&) = delete;
  ~CFileReplacement();

  /// Return whether Write() creates a temporary file.
  bool NeedsTemporaryFile() const { return !m_name.empty(); }

  /// Write the file, whose contents are \p pieces one after another. Call this once. \p checkpoint is called before
  /// each MiB of a temporary file, and before that file takes its name.
  /// \throws std::system_error if not all bytes reached the file; whatever \p checkpoint throws. The temporary file is
  ///         gone then, and a regular file is unchanged, unless it was written directly.
  void Write(std::initializer_list<std::string_view> pieces, Sync sync, Checkpoint const& checkpoint = nullptr);

  /// The same for contents of any length: Begin() once, Add() for each piece, and Finish(). Without Finish(), a regular
  /// file stays as it was, unless it is written directly.
  /// \throws std::system_error as Write().
  ///@{
  void Begin();
  void Add(std::string_view piece) const;
  void Finish(Sync sync);
  ///@}

 private:
  class TemporaryFile;
  using Pieces = std::initializer_list<std::string_view>;

  bool WriteBeside(Pieces pieces, Sync sync, Checkpoint const& checkpoint) const;
  void WriteDirectly(Pieces pieces, Sync sync);
  bool IsRefused(std::system_error const& failure) const;
  void PutInPlace(TemporaryFile& temporary, Sync sync, Checkpoint const& checkpoint) const;
  void BeginDirectly() const;
  void FinishDirectly(Sync sync);

  CFileDescriptor m_old;                   // the existing file at the path, if any
  std::string m_folder;                    // of the file that is replaced
  std::string m_name;                      // of the file that is replaced, in its folder; empty for direct writing
  std::unique_ptr<TemporaryFile> m_begun;  // between Begin() and Finish(); null for direct writing
};

}  // namespace Quillon9
