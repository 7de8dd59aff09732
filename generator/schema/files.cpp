#include "schema/files.h"

#include <sys/stat.h>

#include <cerrno>

namespace Quillon9Generator::Schema {

Files::~Files() = default;

bool Files::IsFile(std::string const& path) const {
  Status const status = Find(path);
  return status.error == 0 && !status.isFolder;
}

Files::Status SystemFiles::Find(std::string const& path) const {
  struct stat status = {};
  if (stat(path.c_str(), &status) != 0) return {errno, false, {}};
  return {0, S_ISDIR(status.st_mode), {status.st_dev, status.st_ino}};
}

void SystemFiles::Load(Quillon9::CXmlDocument& document, std::string const& path) const { document.Load(path.c_str()); }

}  // namespace Quillon9Generator::Schema
