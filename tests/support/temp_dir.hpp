// A temporary directory for archives written by a test, removed afterwards.
#pragma once

#include <filesystem>
#include <string>

namespace respcore::testing {

class TempDir {
 public:
  TempDir();
  ~TempDir();
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;

  const std::filesystem::path& path() const { return path_; }
  // Path of NAME inside the directory, as a string.
  std::string file(const std::string& name) const { return (path_ / name).string(); }

 private:
  std::filesystem::path path_;
};

}  // namespace respcore::testing
