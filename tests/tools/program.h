#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace Quillon9::Testing {

/// The result of a run of the program.
struct Outcome {
  int status;
  std::string output;
  std::string errors;
};

inline std::string ReadFile(std::filesystem::path const& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

inline void WriteFile(std::filesystem::path const& path, std::string const& bytes) {
  std::ofstream(path, std::ios::binary) << bytes;
}

/// Runs each test of the program in its own empty folder, which is the program's current folder.
class ProgramTest : public testing::Test {
 protected:
  void SetUp() override {
    std::string path = (std::filesystem::temp_directory_path() / "quillon9-tools.XXXXXX").string();
    ASSERT_NE(::mkdtemp(path.data()), nullptr);
    m_root = path;
    std::filesystem::create_directory(Folder());
  }
  void TearDown() override { std::filesystem::remove_all(m_root); }

  std::filesystem::path Folder() const { return m_root / "work"; }
  /// Return the names of the files in it.
  std::vector<std::string> Files() const {
    std::vector<std::string> names;
    for (auto const& entry : std::filesystem::directory_iterator(Folder())) names.push_back(entry.path().filename());
    return names;
  }

  /// Run the program with \p arguments, in shell syntax, and with \p input as its standard input, after the shell has
  /// run \p preparation.
  Outcome Run(std::string const& arguments, std::string const& input = "",
              std::string const& preparation = "true") const {
    WriteFile(m_root / "in", input);
    std::string const command = "cd '" + Folder().string() + "' && " + preparation +
                                " && " QUILLON9_PROGRAM " <../in >../out 2>../err " + arguments;
    int const status = std::system(command.c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, ReadFile(m_root / "out"), ReadFile(m_root / "err")};
  }

  void Write(std::string const& name, std::string const& bytes) const { WriteFile(Folder() / name, bytes); }
  std::string Read(std::string const& name) const { return ReadFile(Folder() / name); }

 private:
  std::filesystem::path m_root;
};

}  // namespace Quillon9::Testing
