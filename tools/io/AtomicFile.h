// A file that appears under its name only when it is whole.
#pragma once
#include <optional>
#include <string>

#include "iplug/FileBytes.h"

// Writes beside the target and renames at the end. Until Commit the target keeps its former
// content; without Commit, or after an interrupt, nothing is left behind. A symbolic link as target
// stays one: the file it points at is replaced. Throws Failure (ExitCode::kOutput) when the target
// cannot be written or is something else than a regular file.
class AtomicFile {
 public:
  explicit AtomicFile(const std::string& target);
  ~AtomicFile();
  AtomicFile(const AtomicFile&) = delete;
  AtomicFile& operator=(const AtomicFile&) = delete;

  const std::string& Path() const { return mFile->Path(); }  // where to write meanwhile
  void Write(const void* data, std::size_t size);            // the whole content
  void Commit();

 private:
  void Require(bool done);

  std::string mShown;  // the target as the user wrote it
  std::optional<FileReplacement> mFile;
};

// Writes `size` bytes to `target` in one go, whole or not at all.
void WriteWholeFile(const std::string& target, const void* data, std::size_t size);

// Throws Failure when `output` is the very file that is being read, under whatever name.
void RequireOtherFile(const std::string& input, const std::string& output);

// From here on the signals by which users and shells end a program first remove the unfinished
// file.
void RemoveUnfinishedFileOnSignals();
