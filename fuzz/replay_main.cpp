// Runs a fuzz target over files, or over all files of folders, so that a test run needs no libFuzzer.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size);

namespace {

namespace fs = std::filesystem;

std::vector<fs::path> FilesOf(int count, char** arguments) {
  std::vector<fs::path> files;
  for (int i = 1; i < count; ++i) {
    if (fs::is_regular_file(arguments[i])) files.emplace_back(arguments[i]);
    if (!fs::is_directory(arguments[i])) continue;
    for (fs::directory_entry const& entry : fs::recursive_directory_iterator(arguments[i])) {
      if (entry.is_regular_file()) files.push_back(entry.path());
    }
  }
  std::sort(files.begin(), files.end());
  return files;
}

}  // namespace

/// Fails when there is nothing to run. A finding ends the process; the last file named is its input.
int main(int count, char** arguments) {
  std::vector<fs::path> const files = FilesOf(count, arguments);
  for (fs::path const& file : files) {
    std::printf("%s\n", file.c_str());
    std::fflush(stdout);
    std::ifstream stream(file, std::ios::binary);
    std::vector<char> const bytes((std::istreambuf_iterator<char>(stream)), std::istreambuf_iterator<char>());
    // An exact copy on the heap, so that AddressSanitizer detects reads beyond it.
    std::vector<std::uint8_t> const input(bytes.begin(), bytes.end());
    LLVMFuzzerTestOneInput(input.data(), input.size());
  }
  std::printf("%zu inputs\n", files.size());
  return files.empty() ? 1 : 0;
}
