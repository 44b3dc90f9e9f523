// Whole files as bytes, and files that are replaced whole or not at all. Tolmara itself writes no
// file; its command-line host uses all of it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

inline constexpr std::size_t kLargestFile = std::size_t{64} << 20;  // that is read, bytes

// False when the file cannot be read or holds more than kLargestFile.
bool ReadFileBytes(const char* path, std::vector<std::uint8_t>* bytes);

// A new content for a file, written beside it. Until Commit the target keeps what it has, and
// without Commit nothing is left. A symbolic link as target stays one: the file that it points at
// is replaced. The permissions are those of the replaced file, else the usual ones.
class FileReplacement {
 public:
  explicit FileReplacement(const std::string& target);
  ~FileReplacement();
  FileReplacement(const FileReplacement&) = delete;
  FileReplacement& operator=(const FileReplacement&) = delete;

  const std::string& Path() const { return mPath; }    // where to write
  const std::string& Fault() const { return mFault; }  // why that cannot be, "" while it can
  // Both are false, with the reason in Fault, when they or an earlier step failed.
  bool Write(const void* data, std::size_t size);  // the whole content
  bool Commit();

 private:
  bool CanReplace();
  void MakeFile();

  std::string mTarget;  // with symbolic links resolved
  std::string mPath;    // in the target's folder; "" when there is no file to remove
  std::string mFault;
};

// Replaces the target's content in one go. False when that fails, or when the target is there and
// no regular file.
bool WriteFileBytes(const char* path, const void* data, std::size_t size);
