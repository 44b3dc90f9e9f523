// Reading and replacing whole files.
#include "iplug/FileBytes.h"

#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <system_error>

namespace {

constexpr std::size_t kLargestFile = std::size_t{64} << 20;

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

bool WriteAndClose(const char* path, const void* data, std::size_t size) {
  std::FILE* file = std::fopen(path, "wb");
  if (!file) return false;
  const bool written = std::fwrite(data, 1, size, file) == size;
  return std::fclose(file) == 0 && written;
}

}  // namespace

bool ReadFileBytes(const char* path, std::vector<std::uint8_t>* bytes) {
  bytes->clear();
  const File file(path ? std::fopen(path, "rb") : nullptr);
  if (!file) return false;
  std::uint8_t block[16384];
  while (const std::size_t n = std::fread(block, 1, sizeof block, file.get())) {
    if (bytes->size() + n > kLargestFile) return false;
    bytes->insert(bytes->end(), block, block + n);
  }
  return std::ferror(file.get()) == 0;
}

bool WriteFileBytes(const char* path, const void* data, std::size_t size) {
  if (!path || !*path) return false;
  std::error_code error;
  const std::filesystem::file_status status = std::filesystem::status(path, error);
  if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status)) return false;
  const std::string beside = std::string(path) + ".part";
  bool done = WriteAndClose(beside.c_str(), data, size);
  if (done) {
    std::filesystem::rename(beside, path, error);
    done = !error;
  }
  if (!done) std::filesystem::remove(beside, error);
  return done;
}
