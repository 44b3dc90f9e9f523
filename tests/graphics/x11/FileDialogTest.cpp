// Files and pages: what is asked of the desktop, and what becomes of the answer.
#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <thread>

#include "graphics/x11/DBusConnection.h"
#include "tests/graphics/x11/EditorHost.h"

namespace fs = std::filesystem;

namespace {

// A folder of programs that stand before all others, and without a session's bus.
class FileDialogTest : public EditorHostTest {
 protected:
  FileDialogTest() : mPath(getenv("PATH")) {
    char name[] = "/tmp/tolmara-test-XXXXXX";
    mFolder = mkdtemp(name);
    setenv("HOME", mFolder.c_str(), 1);
    setenv("PATH", (mFolder + ":/usr/bin:/bin").c_str(), 1);
    setenv("DBUS_SESSION_BUS_ADDRESS", ("unix:path=" + mFolder + "/none").c_str(), 1);
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
    std::ofstream(path) << "#!/bin/sh\nprintf '%s|' \"$@\" > " << mFolder << "/" << name
                        << ".called\n"
                        << body << "\n";
    chmod(path.c_str(), 0755);
  }
  std::string Called(const std::string& name) {
    std::string text;
    std::getline(std::ifstream(mFolder + "/" + name + ".called"), text, '\0');
    return text;
  }
  // The answer on the host's thread.
  std::string Ask(int action, const char* extensions, const char* file = "", const char* dir = "") {
    HeapString path(file);
    mDir.Set(dir);
    mPlug->Graphics()->PromptForFile(&path, action, &mDir, extensions);
    return path.Get();
  }

  std::string mPath, mFolder;
  HeapString mDir;
};

TEST_F(FileDialogTest, WithoutAnyDialogNothingIsChosen) {
  if (system("command -v zenity kdialog >/dev/null") == 0) GTEST_SKIP() << "dialogs are installed";
  EXPECT_EQ(Ask(IGraphics::kFileOpen, "fxp", "old.fxp"), "");
  EXPECT_STREQ(mDir.Get(), "~/Desktop");
}

TEST_F(FileDialogTest, TheFirstProgramThatIsThereAnswers) {
  MakeProgram("kdialog", "echo /tmp/from/kde.fxp");
  EXPECT_EQ(Ask(IGraphics::kFileOpen, "fxp fxb", "", "/music/"), "/tmp/from/kde.fxp");
  EXPECT_STREQ(mDir.Get(), "/tmp/from/");
  EXPECT_EQ(Called("kdialog"), "--getopenfilename|/music/|*.fxp *.fxb|");

  MakeProgram("zenity", "echo '/tmp/a b/my preset'");
  EXPECT_EQ(Ask(IGraphics::kFileSave, "fxp", "name.fxp"), "/tmp/a b/my preset.fxp");
  EXPECT_STREQ(mDir.Get(), "/tmp/a b/");
  EXPECT_EQ(Called("zenity"),
            "--file-selection|--title=Save As|--save|--confirm-overwrite|"
            "--filename=" +
                mFolder + "/Desktop/name.fxp|--file-filter=*.fxp|");
  MakeProgram("zenity", "echo /tmp/UPPER.FXP");
  EXPECT_EQ(Ask(IGraphics::kFileSave, "fxp"), "/tmp/UPPER.FXP");

  MakeProgram("zenity", "exit 1");  // dismissed
  EXPECT_EQ(Ask(IGraphics::kFileOpen, "", "old"), "");
  MakeProgram("zenity", "exit 255");  // cannot show itself
  EXPECT_EQ(Ask(IGraphics::kFileOpen, ""), "/tmp/from/kde.fxp");
  Close();
  EXPECT_EQ(Ask(IGraphics::kFileOpen, "", "old"), "");
}

TEST_F(FileDialogTest, TheEditorGoesOnBehindADialogAndTakesItAlong) {
  const int descriptors = DescriptorCount();
  MakeProgram("zenity", "exec sleep 60");
  mPlug->onProbe = [this] { mPlug->Notes().Note("asked" + Ask(IGraphics::kFileOpen, "")); };
  Point(195, 15);
  mUser.Click();
  ASSERT_TRUE(Eventually([&] { return ChildCount() == 2; }));  // with the server
  Point(HostedPlug::kLevelRect);
  mUser.Click();  // waits for the dialog
  const auto before = mUser.Picture(Window(), HostedPlug::kLevelRect);
  AEffect* effect = mPlug->GetAEffect();
  effect->setParameter(effect, kLevel, 0.9F);
  EXPECT_TRUE(
      Eventually([&] { return mUser.Picture(Window(), HostedPlug::kLevelRect) != before; }));
  Close();
  EXPECT_EQ(ChildCount(), 1);
  const auto entries = mPlug->Notes().Take();
  EXPECT_EQ(std::count(entries.begin(), entries.end(), "asked"), 1);
  EXPECT_EQ(std::count(entries.begin(), entries.end(), "begin 0"), 0);
  EXPECT_LT(DescriptorCount(), descriptors);  // the editor's own are gone as well
}

TEST_F(FileDialogTest, PagesOpenInAProgramThatIsLeftAlone) {
  setenv("LD_LIBRARY_PATH", "/the/hosts/own", 1);
  MakeProgram(
      "xdg-open",
      "echo \"$LD_LIBRARY_PATH\" > \"$HOME/env\"; ls /proc/self/fd > \"$HOME/fds\"; sleep 1");
  EXPECT_TRUE(mPlug->Graphics()->OpenURL("https://www.example.com/a?b=c&d='e f'"));
  unsetenv("LD_LIBRARY_PATH");
  EXPECT_EQ(ChildCount(), 1);  // the server; nothing is left to be waited for
  ASSERT_TRUE(Eventually([&] { return Called("xdg-open") != ""; }));
  EXPECT_EQ(Called("xdg-open"), "https://www.example.com/a?b=c&d='e f'|");
  std::string inherited;
  ASSERT_TRUE(Eventually([&] { return fs::exists(mFolder + "/fds"); }));
  std::getline(std::ifstream(mFolder + "/env"), inherited);
  EXPECT_EQ(inherited, "");
  // Nothing, and what would be an option, count as opened.
  fs::remove(mFolder + "/xdg-open.called");
  EXPECT_TRUE(mPlug->Graphics()->OpenURL(""));
  EXPECT_TRUE(mPlug->Graphics()->OpenURL("--version"));
  EXPECT_EQ(Called("xdg-open"), "");
}

TEST_F(FileDialogTest, APageThatCannotBeOpenedIsReportedOnce) {
  setenv("PATH", mFolder.c_str(), 1);  // no xdg-open
  mPlug->onProbe = [this] {
    mPlug->Graphics()->OpenURL("https://a", "Homepage unavailable");
    mPlug->Graphics()->OpenURL("https://b", "Homepage unavailable");
    mPlug->onProbe = nullptr;
  };
  Point(195, 15);
  mUser.Click();
  ASSERT_TRUE(Eventually([&] { return mUser.ChildrenOf(Window()).size() == 1; }));
  mUser.Type(0xFF1B);
  ASSERT_TRUE(Eventually([&] { return mUser.ChildrenOf(Window()).empty(); }));
  std::this_thread::sleep_for(std::chrono::milliseconds(100));
  EXPECT_TRUE(mUser.ChildrenOf(Window()).empty());
}

// The desktop's portal, on a bus of its own: takes one question and gives one answer.
class FakePortal {
 public:
  explicit FakePortal(std::string uri)
      : mBusProgram({"dbus-daemon", "--session", "--nofork", "--print-address=1",
                     "--address=unix:tmpdir=/tmp"}) {
    setenv("DBUS_SESSION_BUS_ADDRESS", mBusProgram.FirstLine().c_str(), 1);
    mBus = DBusConnection::Open();
    if (!mBus) {
      ADD_FAILURE() << "no bus";
      return;
    }
    DBusWriter name;
    name.String("org.freedesktop.portal.Desktop");
    name.U32(0);
    mBus->Send(ToBus("RequestName", "su", name));
    mThread = std::thread([this, uri] { Serve(uri); });
  }
  ~FakePortal() {
    mEnd = true;
    if (mThread.joinable()) mThread.join();
  }
  // After the answer: what was asked.
  const DBusMessage& Question() {
    if (mThread.joinable()) mThread.join();
    return mQuestion;
  }

 private:
  static std::string Text(const DBusWriter& w) { return {w.Bytes().begin(), w.Bytes().end()}; }
  static DBusMessage ToBus(const char* member, const char* signature, const DBusWriter& body) {
    DBusMessage m;
    m.destination = m.interface = "org.freedesktop.DBus";
    m.path = "/org/freedesktop/DBus";
    m.member = member;
    m.signature = signature;
    m.body = Text(body);
    return m;
  }

  void Serve(const std::string& uri) {
    while (!mEnd) {
      pollfd fd{mBus->Fd(), POLLIN, 0};
      if (poll(&fd, 1, 20) > 0 && !mBus->Receive()) return;
      while (const auto message = mBus->Next()) {
        if (message->type != DBusMessage::kCall || message->path.empty()) continue;
        mQuestion = *message;
        Answer(*message, uri);
        return;
      }
    }
  }
  void Answer(const DBusMessage& call, const std::string& uri) {
    const std::string handle = "/org/freedesktop/portal/desktop/request/elsewhere";
    DBusWriter path;
    path.String(handle);
    DBusMessage reply;
    reply.type = DBusMessage::kReturn;
    reply.replySerial = call.serial;
    reply.destination = call.sender;
    reply.signature = "o";
    reply.body = Text(path);
    mBus->Send(reply);

    DBusWriter w;
    w.U32(uri.empty() ? 1 : 0);
    const size_t results = w.OpenArray(8);
    w.Align(8);
    w.String("choices");  // something that has to be skipped
    w.Signature("a(ss)");
    const size_t choices = w.OpenArray(8);
    w.Align(8);
    w.String("encoding");
    w.String("utf8");
    w.CloseArray(choices);
    w.Align(8);
    w.String("uris");
    w.Signature("as");
    const size_t uris = w.OpenArray(4);
    if (!uri.empty()) w.String(uri);
    w.CloseArray(uris);
    w.CloseArray(results);
    DBusMessage signal;
    signal.type = DBusMessage::kSignal;
    signal.path = handle;
    signal.interface = "org.freedesktop.portal.Request";
    signal.member = "Response";
    signal.destination = call.sender;
    signal.signature = "ua{sv}";
    signal.body = Text(w);
    mBus->Send(signal);
  }

  TestProgram mBusProgram;
  std::unique_ptr<DBusConnection> mBus;
  std::atomic<bool> mEnd{false};
  DBusMessage mQuestion;
  std::thread mThread;
};

TEST_F(FileDialogTest, ThePortalComesFirst) {
  MakeProgram("zenity", "echo /wrong");
  FakePortal portal("file:///tmp/a%20b/%E2%82%AC.fxp");
  mPlug->onProbe = [this] {
    mPlug->Notes().Note(Ask(IGraphics::kFileSave, "fxp fxb", "mine.fxp", "/music/"));
  };
  Point(195, 15);
  mUser.Click();
  ASSERT_TRUE(mPlug->Notes().Comes("/tmp/a b/\xE2\x82\xAC.fxp"));
  EXPECT_STREQ(mDir.Get(), "/tmp/a b/");
  EXPECT_EQ(Called("zenity"), "");

  const DBusMessage& question = portal.Question();
  EXPECT_EQ(question.interface, "org.freedesktop.portal.FileChooser");
  EXPECT_EQ(question.member, "SaveFile");
  EXPECT_EQ(question.signature, "ssa{sv}");
  DBusReader r(question.body);
  char owner[32];
  std::snprintf(owner, sizeof owner, "x11:%x", mParent);
  EXPECT_EQ(r.String(), owner);
  EXPECT_EQ(r.String(), "Save As");
  std::vector<std::string> options;
  const size_t end = r.Array(8);
  while (!r.AtEnd(end)) {
    r.Align(8);
    options.push_back(r.String());
    const std::string type = r.Signature();
    std::string_view types = type;
    if (options.back() == "current_name") {
      EXPECT_EQ(r.String(), "mine.fxp");
    } else {
      r.Skip(types);
    }
  }
  EXPECT_TRUE(r.IsGood());
  EXPECT_EQ(options, (std::vector<std::string>{"handle_token", "filters", "current_folder",
                                               "current_name"}));
}

TEST_F(FileDialogTest, ADismissedPortalIsAnAnswerAndAMissingOneIsNot) {
  MakeProgram("zenity", "echo /tmp/other");
  {
    const FakePortal portal("");
    EXPECT_EQ(Ask(IGraphics::kFileOpen, ""), "");
  }
  // A bus that nobody with that name is on.
  const TestProgram bus(
      {"dbus-daemon", "--session", "--nofork", "--print-address=1", "--address=unix:tmpdir=/tmp"});
  setenv("DBUS_SESSION_BUS_ADDRESS", bus.FirstLine().c_str(), 1);
  EXPECT_EQ(Ask(IGraphics::kFileOpen, ""), "/tmp/other");
}

TEST(DBusMessage, ReadsNothingBeyondItsBytes) {
  DBusWriter w;
  w.U32(0);
  const size_t array = w.OpenArray(8);
  w.Align(8);
  w.String("name");
  w.Signature("(yv)");
  w.Align(8);
  w.Byte(7);
  w.Signature("as");
  const size_t texts = w.OpenArray(4);
  w.String("text");
  w.CloseArray(texts);
  w.CloseArray(array);
  DBusMessage message;
  message.type = DBusMessage::kSignal;
  message.path = "/a/b";
  message.interface = "x.y";
  message.member = "Z";
  message.signature = "ua{sv}";
  message.serial = 3;
  message.body = std::string(w.Bytes().begin(), w.Bytes().end());
  const auto bytes = message.Bytes();
  const std::string whole(bytes.begin(), bytes.end());

  bool broken = false;
  std::string input = whole + "l";
  const auto taken = DBusMessage::TakeFrom(input, broken);
  ASSERT_TRUE(taken);
  EXPECT_EQ(input, "l");
  EXPECT_EQ(taken->member, "Z");
  EXPECT_EQ(taken->body, message.body);
  std::string_view types = "ua{sv}";
  DBusReader reader(taken->body);
  reader.Skip(types);
  reader.Skip(types);
  EXPECT_TRUE(reader.IsGood());
  EXPECT_EQ(reader.At(), message.body.size());

  for (size_t i = 0; i < whole.size(); ++i) {
    input = whole.substr(0, i);
    EXPECT_FALSE(DBusMessage::TakeFrom(input, broken)) << i;
    // Every byte wrong in turn: anything may come out, if only it comes out.
    input = whole;
    input[i] = static_cast<char>(~input[i]);
    if (const auto odd = DBusMessage::TakeFrom(input, broken)) {
      DBusReader r(odd->body);
      std::string_view t = odd->signature;
      while (r.IsGood() && !t.empty()) r.Skip(t);
    }
  }
}

}  // namespace
