// What tolmara answers to what cannot be done: one line, the documented code, nothing left behind.
#include <sndfile.h>

#include <algorithm>
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

  void Expect(const std::vector<std::string>& arguments, int code, const std::string& line,
              const RunLimits& limits = {}) {
    const std::vector<std::string> before = Files();
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
};

TEST_F(FailureTest, NamesWhatIsWrongWithTheCommandLine) {
  Expect({}, 2, "subcommand");
  Expect({"rende", "in.wav", "out.wav"}, 2, "the nearest is \"render\"");
  Expect({"render", "in.wav"}, 2, "OUT");
  Expect({"render", "in.wav", "out.wav", "--blok", "5"}, 2, "--blok");
  Expect({"render", "in.wav", "out.wav", "--block", "0"}, 2, "--block");
  Expect({"render", "in.wav", "out.wav", "--tail", "long"}, 2, "--tail");
  Expect({"render", "in.wav", "out.wav", "--tail", "nan"}, 2, "--tail");
  Expect({"render", "in.wav", "out.wav", "--depth", "12"}, 2, "--depth");
  Expect({"params", "--plugin", "full_effect.so", "--set", "Level"}, 2, "Name=value");
}

TEST_F(FailureTest, NamesWhatIsWrongWithTheInput) {
  struct Case {
    const char *input, *line;
  };
  const Case cases[] = {
      {"missing.wav", "cannot read missing.wav: No such file"},
      {"folder", "no regular file"},
      {"text.wav", "text.wav is no sound file"},
      {"nothing.wav", "nothing.wav is empty"},
      {"void.wav", "void.wav is empty: it holds no sound"},
      {"three.wav", "three.wav has 3 channels"},
      {"cut.flac", "cut.flac is damaged: it ends after"},
  };
  for (const Case& c : cases)
    Expect({"render", c.input, "out.wav", "--plugin", "full_effect.so"}, 3, c.line);
}

TEST_F(FailureTest, NamesTheRangeOrTheNearestNameOfASetting) {
  struct Case {
    const char *option, *value, *line;
  };
  const Case cases[] = {
      {"--set", "Lefel=2", "no parameter is called \"Lefel\"; the nearest is \"Level\""},
      {"--set", "Level=4.01", "Level goes from 0.00 to 4.00 x; 4.01 is outside"},
      {"--set", "Level=-1", "Level goes from 0.00 to 4.00 x"},
      {"--set", "Level=much", "Level takes a number, not \"much\""},
      {"--set", "Level=inf", "Level takes a number"},
      {"--set", "Level=1x", "Level takes a number"},
      {"--set", "Level=", "Level takes a number"},
      {"--set", "Echo=2.5", "Echo takes whole numbers from 0 to 5000 ms"},
      {"--set", "Invert=maybe", "Invert is one of off, on, not \"maybe\""},
      {"--set", "Invert=2", "Invert is one of off, on"},
      {"--set", "Twin=0.5", "several parameters are called Twin"},
      {"--set", "6=1", "parameter ids go from 0 to 5; 6 is outside"},
      {"--preset", "Double", "no preset is called \"Double\"; the nearest is \"Doubled\""},
  };
  for (const Case& c : cases) {
    Expect({"render", "in.wav", "out.wav", "--plugin", "full_effect.so", c.option, c.value}, 4,
           c.line);
  }
}

TEST_F(FailureTest, NamesWhyASharedObjectCannotBeUsed) {
  struct Case {
    const char *plugin, *line;
  };
  const Case cases[] = {
      {"missing.so", "cannot load missing.so"},
      {"text.so", "cannot load text.so"},
      {"folder", "cannot load folder"},
      {"no_entry.so", "is no VST2 plug-in: it exports no VSTPluginMain"},
      {"null_entry.so", "refused to make an effect"},
      {"wrong_magic.so", "is no VST2 plug-in: what its VSTPluginMain returns"},
      {"plain_effect.so", "cannot take sound of 2 channels"},
  };
  for (const Case& c : cases)
    Expect({"render", "in.wav", "out.wav", "--plugin", c.plugin}, 5, c.line);
}

TEST_F(FailureTest, NamesWhyTheOutputCannotBeWritten) {
  struct Case {
    const char *output, *line;
  };
  const Case cases[] = {
      {"in.wav", "in.wav is the file to read"},
      {"./folder/../in.wav", "is the file to read"},
      {"link.wav", "link.wav is the file to read"},
      {"twin.wav", "twin.wav is the file to read"},
      {"folder", "cannot write folder: it is a folder"},
      {"missing/out.wav", "cannot write missing/out.wav: No such file or directory"},
      {"/dev/null", "cannot write /dev/null: it is not a regular file"},
  };
  for (const Case& c : cases)
    Expect({"render", "in.wav", c.output, "--plugin", "full_effect.so"}, 6, c.line);
  Expect({"render", "in.wav", "out.flac", "--depth", "float", "--plugin", "full_effect.so"}, 6,
         "has no such depth");
}

TEST_F(FailureTest, LeavesNothingAndChangesNothingWhenTheDiskIsFull) {
  const std::string former = "the former content";
  PutBytes("out.wav", former);
  const RunLimits limits{.fileSize = 4096};
  Expect({"render", "in.wav", "out.wav", "--plugin", "full_effect.so"}, 6, "cannot write out.wav",
         limits);
  EXPECT_EQ(Bytes("out.wav"), former);
  Expect({"save-bank", "out.wav", "--plugin", "full_effect.so"}, 6, "cannot write out.wav",
         {.fileSize = 100});
  EXPECT_EQ(Bytes("out.wav"), former);
}

TEST_F(FailureTest, LeavesNothingWhenInterrupted) {
  const std::vector<std::string> before = Files();
  const Ended ended =
      Tolmara({"render", "in.wav", "out.wav", "--tail", "3600", "--plugin", "full_effect.so"},
              {.interruptOnFile = "out.wav"});
  EXPECT_EQ(ended.code, 130);
  EXPECT_EQ(Files(), before);
}

TEST_F(FailureTest, RefusesAtOnceWhatWouldNotFitTheFormat) {
  // A WAV file of 3 GB, of which only the header takes room.
  Write("huge.wav", NoiseSound(2, 44100, 10, kWav16));
  std::string header = Bytes("huge.wav").substr(0, 44);
  const std::uint32_t size = 3000000000U;
  for (const auto& [place, value] : {std::pair{4U, size + 36}, std::pair{40U, size}})
    for (unsigned b = 0; b < 4; ++b) header[place + b] = static_cast<char>(value >> (8 * b));
  PutBytes("huge.wav", header);
  fs::resize_file(mFolder / "huge.wav", 3000000044U);
  Expect({"render", "huge.wav", "out.wav", "--depth", "32", "--plugin", "full_effect.so"}, 6,
         "it would pass 4 GB");
}

TEST_F(FailureTest, WritesThroughALinkAndKeepsThePermissionsOfWhatItReplaces) {
  PutBytes("real.wav", "old");
  fs::permissions(mFolder / "real.wav", fs::perms{0640});
  fs::create_symlink("real.wav", mFolder / "alias.wav");
  Works({"render", "in.wav", "alias.wav", "--plugin", "full_effect.so"});
  EXPECT_TRUE(fs::is_symlink(mFolder / "alias.wav"));
  EXPECT_EQ(Read("real.wav").samples, Read("in.wav").samples);
  EXPECT_EQ(fs::status(mFolder / "real.wav").permissions(), fs::perms{0640});
}

TEST_F(FailureTest, EveryCommandExplainsItselfWithExamples) {
  const std::string help = Works({"--help"});
  EXPECT_NE(help.find("Exit codes:"), std::string::npos);
  for (const char* const command :
       {"render", "response", "params", "presets", "save-preset", "save-bank", "show"}) {
    EXPECT_NE(help.find(command), std::string::npos) << command;
    const std::string text = Works({command, "--help"});
    EXPECT_NE(text.find(std::string("  tolmara ") + command), std::string::npos) << command;
  }
}

}  // namespace
