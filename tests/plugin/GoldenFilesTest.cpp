// What version 1.0 told and saved, which every later version tells and reads.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>

#include "plugin/ParamTable.h"
#include "tests/plugin/HostedPlugin.h"

namespace {

std::string Golden(const std::string& name) {
  std::ifstream file(TOLMARA_SOURCE_DIR "/tests/golden/" + name, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

std::string Chunk(const HostedPlugin& plugin, bool program) {
  void* data = nullptr;
  const auto size = plugin.Dispatch(effGetChunk, program, 0, &data);
  return {static_cast<const char*>(data), static_cast<size_t>(size)};
}

bool Restores(const HostedPlugin& plugin, std::string chunk, bool program) {
  return plugin.Dispatch(effSetChunk, program, static_cast<VstIntPtr>(chunk.size()),
                         chunk.data()) == 1;
}

}  // namespace

TEST(GoldenFiles, ParametersKeepTheirIdsNamesRangesDefaultsAndUnits) {
  const HostedPlugin plugin;
  std::string table;
  for (int id = 0; id < kNumParams; ++id) {
    table += std::to_string(id) + "|" + plugin.Text(effGetParamName, id);
    table += "|" + plugin.Text(effGetParamDisplay, id);
    const std::string unit = plugin.Text(effGetParamLabel, id);
    for (const float end : {0.0f, 1.0f}) {
      plugin.SetNormalized(id, end);
      table += "|" + plugin.Text(effGetParamDisplay, id);
    }
    table += "|" + unit + "\n";
  }
  EXPECT_EQ(table, Golden("parameters-1.0.txt"));
}

// Both hold settings of every parameter, each at another place of its range.
TEST(GoldenFiles, HostStateComesBackByteForByte) {
  for (const bool program : {true, false}) {
    const HostedPlugin plugin;
    const std::string saved = Golden(program ? "program-1.0.chunk" : "bank-1.0.chunk");
    ASSERT_FALSE(saved.empty());
    EXPECT_NE(Chunk(plugin, program), saved);
    EXPECT_TRUE(Restores(plugin, saved, program));
    EXPECT_EQ(Chunk(plugin, program), saved);
    for (int id = 0; id < kNumParams; ++id) {
      const ParamSpec& row = kParamTable[static_cast<size_t>(id)];
      const double step = row.kind == ParamKind::Double ? 0.0 : 1.0 / (row.max - row.min);
      EXPECT_NEAR(plugin.GetNormalized(id), (id * 7 + 3) % 46 / 46.0, step / 2 + 1e-7) << id;
    }
    EXPECT_EQ(plugin.Text(effGetProgramName, 0), program ? "Default" : "Golden");
  }
}
