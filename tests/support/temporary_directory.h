// temporary_directory.h -- a fresh directory that goes with its owner.

#ifndef NQ_TESTS_SUPPORT_TEMPORARY_DIRECTORY_H
#define NQ_TESTS_SUPPORT_TEMPORARY_DIRECTORY_H

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>

class TemporaryDirectory {
 public:
  TemporaryDirectory() {
    std::random_device random;
    do {
      path_ = std::filesystem::temp_directory_path() /
              ("nq" + std::to_string(random()) + std::to_string(random()));
    } while (!std::filesystem::create_directory(path_));
  }
  ~TemporaryDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TemporaryDirectory(const TemporaryDirectory&) = delete;
  TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

  std::string path() const { return path_.string(); }
  std::string file(const std::string& name) const { return (path_ / name).string(); }

  void put(const std::string& name, const std::string& contents) const {
    std::ofstream(file(name), std::ios::binary) << contents;
  }
  std::string contents(const std::string& name) const {
    std::ifstream stream(file(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
  }

 private:
  std::filesystem::path path_;
};

#endif  // NQ_TESTS_SUPPORT_TEMPORARY_DIRECTORY_H
