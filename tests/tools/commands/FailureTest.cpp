// What tolmara answers to what cannot be done: one line, the documented code, nothing left behind.
#include <signal.h>
#include <sndfile.h>

#include <algorithm>
#include <cmath>
#include <filesystem>

#include "tests/tools/ToolRun.h"

namespace fs = std::filesystem;

namespace {

constexpr int kWav16 = SF_FORMAT_WAV | SF_FORMAT_PCM_16;

class FailureTest : public ToolTest {
 protected:
  void SetUp() override {
    Write("in.wav", NoiseSound(2, 44100, 5000, kWav16));
    Write("three.wav", NoiseSound(3, 44100, 100, kWav16));
    Write("void.wav", {1, 44100, kWav16, {}});
    Write("nan.wav", {1, 44100, SF_FORMAT_WAV | SF_FORMAT_FLOAT, {0, NAN}});
    Write("cut.flac", NoiseSound(1, 44100, 50000, SF_FORMAT_FLAC | SF_FORMAT_PCM_16));
    const std::string whole = Bytes("cut.flac");
    PutBytes("cut.flac", whole.substr(0, whole.size() / 2));
    PutBytes("text.wav", "This is no sound at all, whatever its name says.");
    PutBytes("nothing.wav", "");
    PutBytes("text.so", "This is no shared object.");
    fs::create_directory(mFolder / "folder");
    fs::create_symlink("in.wav", mFolder / "link.wav");
    fs::create_hard_link(mFolder / "in.wav", mFolder / "twin.wav");
  }

  void Expect(const Words& arguments, int code, const std::string& line,
              const RunLimits& limits = {}) {
    const Words before = Files();
    const std::string input = Bytes("in.wav");
    const Ended ended = Tolmara(arguments, limits);
    std::string shown;
    for (const std::string& argument : arguments) shown += " " + argument;
    EXPECT_EQ(ended.code, code) << shown << "\n" << ended.err;
    EXPECT_NE(ended.err.find(line), std::string::npos) << shown << "\n" << ended.err;
    EXPECT_EQ(std::count(ended.err.begin(), ended.err.end(), '\n'), 1) << shown << ended.err;
    EXPECT_TRUE(ended.err.starts_with("tolmara: ")) << ended.err;
    EXPECT_EQ(Files(), before) << shown;
    EXPECT_EQ(Bytes("in.wav"), input) << shown;
  }
  // Of a render from in.wav to out.wav.
  void ExpectOfRender(const Words& options, int code, const std::string& line) {
    Expect(Words{"render", "in.wav", "out.wav"} + options, code, line);
  }
};

TEST_F(FailureTest, NamesWhatIsWrongWithTheCommandLine) {
  Expect({}, 2, "subcommand");
  Expect({"--frobnicate"}, 2, "a command comes first");
  Expect({"rende", "in.wav", "out.wav"}, 2, "the nearest is \"render\"");
  Expect({"render", "in.wav"}, 2, "OUT");
  Expect({"params", "--set", "Level"}, 2, "Name=value");
  ExpectOfRender({"--blok", "5"}, 2, "--blok");
  ExpectOfRender({"--block", "0"}, 2, "--block");
  ExpectOfRender({"--tail", "long"}, 2, "--tail");
  ExpectOfRender({"--tail", "nan"}, 2, "--tail");
  ExpectOfRender({"--depth", "12"}, 2, "--depth");
}

TEST_F(FailureTest, NamesWhatIsWrongWithTheInput) {
  const char* const cases[][2] = {
      {"missing.wav", "cannot read missing.wav: No such file"},
      {"folder", "no regular file"},
      {"text.wav", "text.wav is no sound file"},
      {"nothing.wav", "nothing.wav is empty"},
      {"void.wav", "void.wav is empty: it holds no sound"},
      {"three.wav", "three.wav has 3 channels"},
      {"cut.flac", "cut.flac is damaged: it ends after"},
      {"nan.wav", "nan.wav is damaged: it holds samples that are no numbers"},
  };
  for (const auto& [input, line] : cases) Expect({"render", input, "out.wav"}, 3, line);
}

TEST_F(FailureTest, NamesTheRangeOrTheNearestNameOfASetting) {
  const char* const cases[][2] = {
      {"Lefel=2", "no parameter is called \"Lefel\"; the nearest is \"Level\""},
      {"Level=4.01", "Level goes from 0.00 to 4.00 x; 4.01 is outside"},
      {"Level=much", "Level takes a number, not \"much\""},
      {"Level=inf", "Level takes a number"},
      {"Level=", "Level takes a number"},
      {"Echo=2.5", "Echo takes whole numbers from 0 to 5000 ms"},
      {"Invert=maybe", "Invert is one of off, on, not \"maybe\""},
      {"Invert=2", "Invert is one of off, on"},
      {"Twin=0.5", "several parameters are called Twin"},
      {"6=1", "parameter ids go from 0 to 5; 6 is outside"},
  };
  for (const auto& [setting, line] : cases) ExpectOfRender({"--set", setting}, 4, line);
  ExpectOfRender({"--preset", "Double"}, 4,
                 "no preset is called \"Double\"; the nearest is \"Doubled\"");
  ExpectOfRender({"--preset", "No Such Place"}, 4, "no preset is called \"No Such Place\"");
  ExpectOfRender({"--preset", "3"}, 4, "no preset is called \"3\"");
  ExpectOfRender({"--preset", ""}, 2, "--preset: the name is empty");
}

TEST_F(FailureTest, NamesWhyASharedObjectCannotBeUsed) {
  const char* const cases[][2] = {
      {"missing.so", "cannot load missing.so"},
      {"text.so", "cannot load text.so"},
      {"folder", "cannot load folder"},
      {"no_entry.so", "is no VST2 plug-in: it exports neither VSTPluginMain nor main"},
      {"null_entry.so", "refused to make an effect"},
      {"wrong_magic.so", "is no VST2 plug-in: what its entry point returns"},
      {"plain_effect.so", "cannot take sound of 2 channels"},
  };
  for (const auto& [plugin, line] : cases) ExpectOfRender({"--plugin", plugin}, 5, line);
}

TEST_F(FailureTest, NamesWhyTheOutputCannotBeWritten) {
  const char* const cases[][2] = {
      {"in.wav", "in.wav is the file to read"},
      {"./folder/../in.wav", "is the file to read"},
      {"link.wav", "link.wav is the file to read"},
      {"twin.wav", "twin.wav is the file to read"},
      {"folder", "cannot write folder: it is a folder"},
      {"missing/out.wav", "cannot write missing/out.wav: No such file or directory"},
      {"/dev/null", "cannot write /dev/null: it is not a regular file"},
      {"out.mp3", "no format is known for \".mp3\""},
  };
  for (const auto& [output, line] : cases) Expect({"render", "in.wav", output}, 6, line);
  Expect({"render", "in.wav", "out.flac", "--depth", "float"}, 6, "has no such depth");
}

TEST_F(FailureTest, LeavesNothingAndChangesNothingWhenTheDiskIsFull) {
  Works({"render", "in.wav", "whole.ogg"});
  const long size = static_cast<long>(Bytes("whole.ogg").size());
  for (const auto& [name, limit] : {std::pair{"out.wav", 4096L}, {"out.ogg", size - 50}}) {
    PutBytes(name, "the former content");
    Expect({"render", "in.wav", name}, 6, std::string("cannot write ") + name, {.fileSize = limit});
    Expect({"save-bank", name}, 6, "cannot write", {.fileSize = 100});
    EXPECT_EQ(Bytes(name), "the former content");
  }
  Expect({"params", "--json"}, 6, "cannot write the standard output", {.fileSize = 100});
  Expect({"--help"}, 6, "cannot write the standard output", {.fileSize = 100});
}

TEST_F(FailureTest, LeavesNothingWhenASignalEndsIt) {
  const Words before = Files();
  for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE}) {
    const Ended ended = Tolmara({"render", "in.wav", "out.wav", "--tail", "3600"},
                                {.signal = signal, .signalOnFile = "out.wav"});
    EXPECT_EQ(ended.code, 128 + signal);
    EXPECT_EQ(Files(), before);
  }
}

TEST_F(FailureTest, RefusesAtOnceWhatWouldNotFitTheFormat) {
  // A WAV file of 3 GB, of which only the header takes room.
  std::string header = Bytes("in.wav").substr(0, 44);
  const std::uint32_t size = 3000000000U;
  for (const auto& [place, value] : {std::pair{4U, size + 36}, std::pair{40U, size}})
    for (unsigned b = 0; b < 4; ++b) header[place + b] = static_cast<char>(value >> (8 * b));
  PutBytes("huge.wav", header);
  fs::resize_file(mFolder / "huge.wav", 3000000044U);
  Expect({"render", "huge.wav", "out.wav", "--depth", "32"}, 6, "it would pass 4 GB");
}

TEST_F(FailureTest, WritesThroughALinkAndKeepsThePermissionsOfWhatItReplaces) {
  PutBytes("real.wav", "old");
  fs::permissions(mFolder / "real.wav", fs::perms{0640});
  for (const std::string name : {"real.wav", "new.wav"}) {
    fs::create_symlink(name, mFolder / ("to_" + name));
    Works({"render", "in.wav", "to_" + name});
    EXPECT_TRUE(fs::is_symlink(mFolder / ("to_" + name)));
    EXPECT_TRUE(Read(name) == Read("in.wav")) << name;
  }
  EXPECT_EQ(fs::status(mFolder / "real.wav").permissions(), fs::perms{0640});
}

TEST_F(FailureTest, EveryCommandExplainsItselfWithExamples) {
  const std::string help = Works({"--help"});
  EXPECT_NE(help.find("Exit codes:"), std::string::npos);
  EXPECT_EQ(Works({"help"}), help);
  EXPECT_EQ(Works({"--version"}), Works({"-V"}));
  EXPECT_TRUE(Works({"-V"}).starts_with("tolmara 1."));
  for (const char* const command : {"render", "response", "params", "presets", "save-preset",
                                    "save-bank", "show", "screenshot"}) {
    EXPECT_NE(help.find(command), std::string::npos) << command;
    const std::string text = Works({command, "--help"});
    EXPECT_NE(text.find(std::string("  tolmara ") + command), std::string::npos) << command;
    EXPECT_EQ(Works({"help", command}), text);
  }
}

}  // namespace
