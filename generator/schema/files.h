#pragma once

#include <string>
#include <utility>

#include "quillon9/quillon9.h"

namespace Quillon9Generator::Schema {

/// What documents and catalogs are read from. The fuzz target keeps its files in memory.
class Files {
 public:
  struct Status {
    int error = 0;  ///< 0, or the errno that says why there is no file
    bool isFolder = false;
    std::pair<unsigned long, unsigned long> identity;  ///< the same for two paths of one file, different for two files
  };

  Files() = default;
  virtual ~Files();
  Files(Files const&) = delete;
  Files& operator=(Files const&) = delete;

  virtual Status Find(std::string const& path) const = 0;
  /// \throws what CXmlDocument::Load() throws.
  virtual void Load(Quillon9::CXmlDocument& document, std::string const& path) const = 0;

  /// Return whether \p path is an existing file that is not a folder.
  bool IsFile(std::string const& path) const;
};

/// The files of the system.
class SystemFiles : public Files {
 public:
  Status Find(std::string const& path) const override;
  void Load(Quillon9::CXmlDocument& document, std::string const& path) const override;
};

}  // namespace Quillon9Generator::Schema
