// A folder of a test's own, and the files in it.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace halvenor {

/// Made empty in the folder for temporary files, and removed with all that is in it.
class ScratchFolder {
public:
  ScratchFolder() {
    std::string pattern = std::filesystem::temp_directory_path() / "halvenor-test-XXXXXX";
    path_ = mkdtemp(pattern.data());
    std::filesystem::permissions(path_, std::filesystem::perms(0755));
  }
  ~ScratchFolder() {
    std::error_code ignored; // a server that is just ending may still write here
    std::filesystem::remove_all(path_, ignored);
  }
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;

  [[nodiscard]] const std::filesystem::path& Path() const { return path_; }
  [[nodiscard]] std::filesystem::path operator/(const std::string& name) const {
    return path_ / name;
  }

private:
  std::filesystem::path path_;
};

/// Writes `file`, and makes the folders above it.
inline void WriteText(const std::filesystem::path& file, const std::string& text) {
  std::filesystem::create_directories(file.parent_path());
  std::ofstream(file, std::ios::binary) << text;
}

/// The whole file; empty when it cannot be read.
inline std::string ReadText(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

} // namespace halvenor
