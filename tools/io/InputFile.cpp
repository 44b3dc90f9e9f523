// Small files read whole, and why one cannot be read.
#include "tools/io/InputFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>

#include "iplug/FileBytes.h"
#include "tools/io/Failure.h"

namespace fs = std::filesystem;

namespace {

[[noreturn]] void Fail(const std::string& line) { throw Failure(ExitCode::kInput, line); }

}  // namespace

void RequireReadable(const std::string& path) {
  std::error_code error;
  const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (descriptor < 0) Fail("cannot read " + path + ": " + std::strerror(errno));
  close(descriptor);
  if (!fs::is_regular_file(path, error)) Fail("cannot read " + path + ": it is no regular file");
  if (fs::file_size(path, error) == 0) Fail(path + " is empty");
}

std::vector<std::uint8_t> ReadWholeFile(const std::string& path) {
  RequireReadable(path);
  std::error_code error;
  const std::uintmax_t size = fs::file_size(path, error);
  if (error || size > kLargestFile) Fail("cannot read " + path + ": it has more than 64 MiB");
  std::vector<std::uint8_t> bytes;
  if (!ReadFileBytes(path.c_str(), &bytes)) Fail("cannot read " + path + " to its end");
  return bytes;
}
