// Lists, preset files and bank files of the command-line host.
#include <nlohmann/json.hpp>

#include "tests/tools/ToolRun.h"

namespace {

using Json = nlohmann::json;

class StateFilesTest : public ToolTest {
 protected:
  Json JsonOf(const Words& arguments) { return Json::parse(Works(arguments + Words{"--json"})); }
};

TEST_F(StateFilesTest, ListsTellWhatTheEffectTells) {
  const Json params = JsonOf({"params", "--preset", "Echoing", "--set", "Level=3"});
  ASSERT_EQ(params.size(), 6U);
  EXPECT_EQ(params[0], Json::parse(R"({"id": 0, "name": "Level", "value": 0.75, "text": "3.00",
      "label": "x", "stepped": false, "min": 0, "max": 4})"));
  EXPECT_EQ(params[1]["text"], "100");
  EXPECT_EQ(params[1]["stepped"], true);
  EXPECT_EQ(params[5]["choices"], (Json{"off", "on"}));
  const Json presets = JsonOf({"presets"});
  ASSERT_EQ(presets.size(), 3U);
  EXPECT_EQ(presets[2], (Json{{"index", 2}, {"name", "Echoing"}}));
  for (const auto& [number, name] : {std::pair("1", "Doubled"), std::pair("2", "Echoing")}) {
    EXPECT_EQ(JsonOf({"params", "--preset", number}), JsonOf({"params", "--preset", name}));
  }
  EXPECT_EQ(JsonOf({"params", "--plugin", "main_only.so"}), JsonOf({"params"}));
  const std::string table = Works({"params", "--set", "0=1"});
  EXPECT_NE(table.find("1   Echo    0      0 to 5000     ms"), std::string::npos) << table;
}

TEST_F(StateFilesTest, APresetComesBackFromItsFileAsItWasSaved) {
  Works({"save-preset", "one.fxp", "--preset", "Doubled", "--set", "Decay=0.125", "--name",
         "A\nname of more than twenty-seven letters"});
  const std::string bytes = Bytes("one.fxp");
  ASSERT_EQ(bytes.size(), 56U + 6 * 4);
  EXPECT_EQ(bytes.substr(0, 4) + bytes.substr(8, 4) + bytes.substr(16, 4), "CcnKFxCkTest");
  const Json shown = JsonOf({"show", "one.fxp"});
  EXPECT_EQ(shown["effect"], "Test effect");
  EXPECT_EQ(shown["presets"][0]["name"], "A\nname of more than twenty-");
  EXPECT_EQ(shown["presets"][0]["parameters"][2]["value"], 0.125);
  EXPECT_EQ(shown["presets"][0]["parameters"], JsonOf({"params", "--load-fxp", "one.fxp"}));
  const std::string text = Works({"show", "one.fxp"});
  EXPECT_NE(text.find("\"A?name of"), std::string::npos) << "no control characters in " << text;
}

TEST_F(StateFilesTest, ABankHoldsEveryPresetAndTheSettingsAskedFor) {
  Works({"save-bank", "all.fxb", "--preset", "Doubled", "--set", "Decay=0.25"});
  const Json shown = JsonOf({"show", "all.fxb"});
  ASSERT_EQ(shown["presets"].size(), 3U);
  for (const Json& preset : shown["presets"]) {
    Json expected = JsonOf({"params", "--preset", preset["name"]});
    if (preset["name"] == "Doubled") expected[2].update({{"value", 0.25}, {"text", "0.25"}});
    EXPECT_EQ(preset["parameters"], expected) << preset["name"];
  }
  EXPECT_EQ(JsonOf({"show", "all.fxb", "--preset", "echoing"})["presets"].size(), 1U);
  EXPECT_EQ(Tolmara({"show", "all.fxb", "--preset", "x"}).code, 4);
}

TEST_F(StateFilesTest, ADamagedFileGetsOneLineThatSaysWhatIsWrongWithIt) {
  Works({"save-preset", "one.fxp"});
  Works({"save-bank", "all.fxb"});
  struct Case {
    const char* file;
    std::size_t place;  // of the byte to change, or the length to cut to
    int byte;           // -1 to cut
    const char* line;
  };
  const Case cases[] = {
      {"one.fxp", 0, 'X', "magic"},      {"one.fxp", 16, 'X', "another"},
      {"one.fxp", 79, -1, "too short"},  {"one.fxp", 56, 0x7F, "range"},
      {"all.fxb", 16, 'X', "another"},   {"all.fxb", 27, 9, "too short"},
      {"all.fxb", 200, -1, "too short"}, {"one.fxp", 0, -1, "is empty"},
  };
  for (const Case& c : cases) {
    std::string bytes = Bytes(c.file);
    if (c.byte < 0)
      bytes.resize(c.place);
    else
      bytes[c.place] = static_cast<char>(c.byte);
    PutBytes("damaged", bytes);
    const Ended ended = Tolmara({"show", "damaged"});
    EXPECT_EQ(ended.code, 3) << c.file << " " << c.place;
    EXPECT_EQ(ended.out, "") << c.file << " " << c.place;
    EXPECT_NE(ended.err.find(c.line), std::string::npos) << c.place << ": " << ended.err;
  }
  const Ended bank = Tolmara({"params", "--load-fxp", "all.fxb"});
  EXPECT_EQ(bank.code, 3);
  EXPECT_NE(bank.err.find("a bank, not a preset"), std::string::npos) << bank.err;
}

}  // namespace
