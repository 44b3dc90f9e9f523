// Files and pages: what is asked of the desktop, and what becomes of the answer.
#include <signal.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>

#include "graphics/x11/desktop/ChildProcess.h"
#include "tests/graphics/x11/EditorHost.h"

namespace fs = std::filesystem;

namespace {

// A folder of programs that come before all others in PATH.
class FileDialogTest : public EditorHostTest {
 protected:
  FileDialogTest() : mPath(getenv("PATH")) {
    char name[] = "/tmp/tolmara-test-XXXXXX";
    mFolder = mkdtemp(name);
    setenv("HOME", mFolder.c_str(), 1);
    setenv("PATH", (mFolder + ":/usr/bin:/bin").c_str(), 1);
    EXPECT_TRUE(Open());
  }
  ~FileDialogTest() override {
    Close();
    setenv("PATH", mPath.c_str(), 1);
    fs::remove_all(mFolder);
  }

  // A script that writes down how it was called, then runs `body`.
  void MakeProgram(const std::string& name, const std::string& body) {
    const std::string path = mFolder + "/" + name;
    std::ofstream(path) << "#!/bin/sh\nprintf '%s|' \"$@\" > " << path << ".part; mv " << path
                        << ".part " << path << ".called\n"
                        << body << "\n";
    chmod(path.c_str(), 0755);
  }
  std::string Read(const std::string& name) {
    std::string text;
    std::getline(std::ifstream(mFolder + "/" + name), text, '\0');
    return text;
  }
  std::string Ask(int action, const char* extensions, const char* file = "", const char* dir = "") {
    HeapString path(file);
    mDir.Set(dir);
    Graphics().PromptForFile(&path, action, &mDir, extensions);
    return path.Get();
  }

  std::string mPath, mFolder;
  HeapString mDir;
};

TEST_F(FileDialogTest, WithoutAnyDialogAMessageSaysSoAndNothingIsChosen) {
  setenv("PATH", mFolder.c_str(), 1);
  EXPECT_EQ(Ask(IGraphics::kFileOpen, "fxp", "old.fxp"), "");  // no window for a message here
  EXPECT_STREQ(mDir.Get(), "~/Desktop");
  mPlug->onProbe = [this] { Notes().Note("got " + Ask(IGraphics::kFileOpen, "fxp", "old.fxp")); };
  ClickAt(195, 15);
  ASSERT_TRUE(Eventually([&] { return HasChild(); }));
  mUser.Type(kX11Escape);
  EXPECT_TRUE(Notes().Comes("got "));
}

TEST_F(FileDialogTest, TheFirstProgramThatIsThereAnswers) {
  MakeProgram("kdialog", "echo /tmp/from/kde.fxp");
  EXPECT_EQ(Ask(IGraphics::kFileOpen, "fxp fxb", "", "/music/"), "/tmp/from/kde.fxp");
  EXPECT_STREQ(mDir.Get(), "/tmp/from/");
  EXPECT_EQ(Read("kdialog.called"), "--getopenfilename|/music/|*.fxp *.fxb|");

  MakeProgram("zenity", "echo '/tmp/a b/my preset'");
  EXPECT_EQ(Ask(IGraphics::kFileSave, "fxp", "name.fxp"), "/tmp/a b/my preset.fxp");
  EXPECT_STREQ(mDir.Get(), "/tmp/a b/");
  EXPECT_EQ(Read("zenity.called"),
            "--file-selection|--title=Save As|--save|--confirm-overwrite|--filename=" + mFolder +
                "/Desktop/name.fxp|--file-filter=*.fxp|");

  const std::pair<const char*, const char*> answers[] = {
      {"echo /tmp/UPPER.FXP", "/tmp/UPPER.FXP"},
      {"exit 1", ""},                     // dismissed
      {"exit 255", "/tmp/from/kde.fxp"},  // cannot show itself
      {"echo nowhere", ""},
      {"", ""},
      {"exec yes", ""}};
  for (const auto& [body, path] : answers) {
    MakeProgram("zenity", body);
    EXPECT_EQ(Ask(IGraphics::kFileSave, "fxp", "old"), path) << body;
  }
  Close();
  EXPECT_EQ(Ask(IGraphics::kFileOpen, "", "old"), "");
}

TEST_F(FileDialogTest, TheEditorGoesOnBehindADialogAndTakesItAlong) {
  const int descriptors = DescriptorCount();
  // The second one has closed its output and goes on.
  for (const char* body : {"sleep 600", "exec >&-; sleep 600"}) {
    MakeProgram("zenity", body);
    mPlug->onProbe = [this] { Notes().Note("got " + Ask(IGraphics::kFileOpen, "")); };
    ClickAt(195, 15);
    ASSERT_TRUE(Eventually([&] { return Read("zenity.called") != ""; }));
    ClickAt(HostedPlug::kLevelRect);  // waits for the dialog
    const auto before = mUser.Picture(Window(), HostedPlug::kLevelRect);
    Set(kLevel, 1.0 - Normalized(kLevel));
    EXPECT_TRUE(
        Eventually([&] { return mUser.Picture(Window(), HostedPlug::kLevelRect) != before; }));
    Close();
    EXPECT_EQ(ChildCount(), 1);  // the server
    EXPECT_TRUE(Notes().Comes("got "));
    EXPECT_LT(DescriptorCount(), descriptors);  // the editor's own are gone as well
    ASSERT_TRUE(Open());
    fs::remove(mFolder + "/zenity.called");
  }
}

TEST_F(FileDialogTest, PagesOpenInAProgramThatIsLeftAlone) {
  MakeProgram("xdg-open", "exec sleep 3");
  EXPECT_TRUE(Graphics().OpenURL("https://www.example.com/a?b=c&d='e f'"));
  EXPECT_EQ(ChildCount(), 1);  // the server; nothing is left to be waited for
  ASSERT_TRUE(Eventually([&] { return Read("xdg-open.called") != ""; }));
  EXPECT_EQ(Read("xdg-open.called"), "https://www.example.com/a?b=c&d='e f'|");
  // Nothing, and what would be an option, count as opened.
  fs::remove(mFolder + "/xdg-open.called");
  EXPECT_TRUE(Graphics().OpenURL(""));
  EXPECT_TRUE(Graphics().OpenURL("--version"));
  EXPECT_EQ(Read("xdg-open.called"), "");
}

TEST(ChildProcess, InheritsNothingOfTheHost) {
  const FileDescriptor open(dup(2));  // not closed by what is started
  setenv("LD_LIBRARY_PATH", "/the/hosts/own", 1);
  const std::pair<std::vector<std::string>, std::string> cases[] = {
      {{"ls", "/proc/self/fd"}, "0\n1\n2\n3\n"},  // the last is that of the folder
      {{"grep", "SigBlk", "/proc/self/status"}, "SigBlk:\t0000000000000000\n"},
      {{"printenv", "LD_LIBRARY_PATH"}, ""}};
  sigset_t all, before;
  sigfillset(&all);
  pthread_sigmask(SIG_SETMASK, &all, &before);  // as in the editor's thread
  for (const auto& [command, expected] : cases) {
    auto program = ChildProcess::Start(command);
    ASSERT_TRUE(program);
    program->Wait();
    char output[100] = "";
    EXPECT_GE(read(program->Output(), output, sizeof output - 1), 0);
    EXPECT_EQ(output, expected);
  }
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
  unsetenv("LD_LIBRARY_PATH");
}

TEST_F(FileDialogTest, APageThatCannotBeOpenedIsReportedOnce) {
  setenv("PATH", mFolder.c_str(), 1);  // no xdg-open
  mPlug->onProbe = [this] {
    Graphics().OpenURL("https://a", "Homepage unavailable");
    Graphics().OpenURL("https://b", "Homepage unavailable");
    mPlug->onProbe = nullptr;
  };
  ClickAt(195, 15);
  ASSERT_TRUE(Eventually([&] { return HasChild(); }));
  mUser.Type(kX11Escape);
  ASSERT_TRUE(Eventually([&] { return !HasChild(); }));
  ClickAt(205, 15);  // which a second message would take
  EXPECT_TRUE(Notes().Comes("down 205 15 L"));
}

}  // namespace
