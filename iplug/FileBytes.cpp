// Reading and replacing whole files.
#include "iplug/FileBytes.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <system_error>

namespace fs = std::filesystem;

namespace {

constexpr int kMostLinks = 40;  // in a row, the system's own limit

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

// The file that symbolic links lead to, which need not exist yet.
std::string Resolved(const std::string& target) {
  std::error_code ignored;
  fs::path path = target;
  for (int i = 0; i < kMostLinks && !fs::exists(path, ignored) && fs::is_symlink(path, ignored);
       ++i) {
    path = path.parent_path() / fs::read_symlink(path, ignored);
  }
  path = fs::weakly_canonical(path, ignored);
  return path.empty() ? target : path.string();
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

FileReplacement::FileReplacement(const std::string& target) : mTarget(Resolved(target)) {
  if (CanReplace()) MakeFile();
}

FileReplacement::~FileReplacement() {
  if (!mPath.empty()) unlink(mPath.c_str());
}

bool FileReplacement::CanReplace() {
  struct stat status {};
  if (stat(mTarget.c_str(), &status) != 0) return true;
  if (S_ISDIR(status.st_mode)) {
    mFault = "it is a folder";
  } else if (!S_ISREG(status.st_mode)) {
    mFault = "it is not a regular file";
  } else if (access(mTarget.c_str(), W_OK) != 0) {
    mFault = std::strerror(errno);
  }
  return mFault.empty();
}

void FileReplacement::MakeFile() {
  static std::atomic<unsigned> count{0};
  int descriptor;
  do {
    mPath = mTarget + ".part-" + std::to_string(getpid()) + "-" + std::to_string(++count);
    descriptor = open(mPath.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
  } while (descriptor < 0 && errno == EEXIST);
  if (descriptor < 0) {
    mFault = std::strerror(errno);
    mPath.clear();
    return;
  }
  struct stat status {};
  if (stat(mTarget.c_str(), &status) == 0) fchmod(descriptor, status.st_mode & 07777);
  close(descriptor);
}

bool FileReplacement::Write(const void* data, std::size_t size) {
  if (!mFault.empty()) return false;
  File file(std::fopen(mPath.c_str(), "wb"));
  const bool written = file && std::fwrite(data, 1, size, file.get()) == size;
  const int error = errno;
  const bool closed = file && std::fclose(file.release()) == 0;
  if (!written || !closed) mFault = std::strerror(written ? errno : error);
  return mFault.empty();
}

bool FileReplacement::Commit() {
  if (!mFault.empty()) return false;
  if (std::rename(mPath.c_str(), mTarget.c_str()) != 0) {
    mFault = std::strerror(errno);
    return false;
  }
  mPath.clear();
  return true;
}

bool WriteFileBytes(const char* path, const void* data, std::size_t size) {
  if (!path || !*path) return false;
  FileReplacement file(path);
  return file.Write(data, size) && file.Commit();
}
