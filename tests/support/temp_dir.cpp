#include "support/temp_dir.hpp"

#include <stdlib.h>

#include <stdexcept>

namespace respcore::testing {

TempDir::TempDir() {
  std::string templ = (std::filesystem::temp_directory_path() / "respcore-XXXXXX").string();
  if (mkdtemp(templ.data()) == nullptr) throw std::runtime_error("mkdtemp failed");
  path_ = templ;
}

TempDir::~TempDir() {
  std::error_code ec;
  std::filesystem::remove_all(path_, ec);
}

}  // namespace respcore::testing
