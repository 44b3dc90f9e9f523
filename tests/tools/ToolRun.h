// Running the command-line programs for real, in a folder of their own.
#pragma once
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

using Words = std::vector<std::string>;
Words operator+(Words a, const Words& b);

struct Ended {
  int code;         // 128 + the signal if one ended it
  std::string out;  // its stdout
  std::string err;  // its stderr
  long peakMemory;  // kB
};

struct RunLimits {
  long fileSize = 0;           // bytes that the program may write to a file, 0 for any number
  int signal = 0;              // to send, 0 for none, ...
  std::string signalOnFile{};  // once a file of this folder begins so
};

struct Sound {
  int channels = 1;
  int rate = 44100;  // Hz
  int format = 0;    // libsndfile's code
  std::vector<double> samples;
  std::size_t Frames() const { return samples.size() / static_cast<std::size_t>(channels); }
  bool operator==(const Sound&) const = default;
};

// A fresh folder that is the working directory of the programs and goes with the test.
class ToolTest : public ::testing::Test {
 protected:
  ToolTest();
  ~ToolTest() override;

  Ended Run(const std::string& program, Words arguments, const RunLimits& limits = {});
  // tolmara with `arguments`, of which the name of a test effect finds that effect.
  Ended Tolmara(Words arguments, const RunLimits& limits = {});
  // The same, with the expectation that it goes well. Gives its stdout.
  std::string Works(const Words& arguments);

  std::string In(const std::string& name) const { return (mFolder / name).string(); }
  Words Files() const;  // names in the folder, sorted
  std::string Bytes(const std::string& name) const;
  void PutBytes(const std::string& name, const std::string& bytes) const;
  Sound Read(const std::string& name) const;
  void Write(const std::string& name, const Sound& sound) const;

  std::filesystem::path mFolder;
  std::string mPlugin = "full_effect.so";  // for all runs that name none themselves
};

// Noise of 16 bits, half of full scale.
Sound NoiseSound(int channels, int rate, std::size_t frames, int format);
