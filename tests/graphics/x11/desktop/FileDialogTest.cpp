// Files and pages: what is asked of the desktop, and what becomes of the answer.
#include <signal.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>

#include "graphics/x11/desktop/ChildProcess.h"
#include "graphics/x11/desktop/DBusConnection.h"
#include "graphics/x11/desktop/FileDialog.h"
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

TEST_F(FileDialogTest, WithoutAnyDialogNothingIsChosen) {
  setenv("PATH", mFolder.c_str(), 1);
  EXPECT_EQ(Ask(IGraphics::kFileOpen, "fxp", "old.fxp"), "");
  EXPECT_STREQ(mDir.Get(), "~/Desktop");
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

DBusMessage Make(DBusMessage::EType type, const char* signature, const DBusWriter& body) {
  DBusMessage m;
  m.type = type;
  m.signature = signature;
  m.body = {body.Bytes().begin(), body.Bytes().end()};
  return m;
}

DBusReader ReadAll(const DBusMessage& message) {
  DBusReader r(message.body);
  std::string_view types = message.signature;
  while (r.IsGood() && !types.empty()) r.Skip(types);
  return r;
}

constexpr const char* kBus =
    "dbus-daemon --session --nofork --print-address=1 --address=unix:tmpdir=/tmp";

// The desktop's portal, on a bus of its own: takes one question and gives one answer.
class FakePortal {
 public:
  FakePortal() : mBusProgram(kBus) {
    setenv("DBUS_SESSION_BUS_ADDRESS", mBusProgram.FirstLine().c_str(), 1);
    mBus = DBusConnection::Open();
    DBusWriter name;
    name.String("org.freedesktop.portal.Desktop");
    name.U32(0);
    DBusMessage request = Make(DBusMessage::kCall, "su", name);
    request.destination = request.interface = "org.freedesktop.DBus";
    request.path = "/org/freedesktop/DBus";
    request.member = "RequestName";
    mBus->Send(request);
  }
  // The path that comes of an answer with this one.
  std::string Ask(const FileQuestion& question, const std::string& uri) {
    mQuestion = {};
    return AskForFile(question, [&](int) { return !mQuestion.path.empty() || Answer(uri); });
  }
  const DBusMessage& Question() const { return mQuestion; }

 private:
  bool Answer(const std::string& uri) {
    if (!Eventually([this] { return mBus->Receive() && TakeQuestion(); })) return false;
    const char* handle = "/org/freedesktop/portal/desktop/request/elsewhere";
    DBusWriter path;
    path.String(handle);
    DBusMessage reply = Make(DBusMessage::kReturn, "o", path);
    reply.replySerial = mQuestion.serial;
    reply.destination = mQuestion.sender;
    mBus->Send(reply);

    DBusWriter w;
    w.U32(uri.empty() ? 1 : 0);
    const size_t results = w.OpenArray(8);
    w.Align(8);
    w.String("writable");  // something that has to be skipped
    w.Signature("b");
    w.Bool(true);
    w.Align(8);
    w.String("uris");
    w.Signature("as");
    const size_t uris = w.OpenArray(4);
    if (!uri.empty()) w.String(uri);
    w.CloseArray(uris);
    w.CloseArray(results);
    DBusMessage signal = Make(DBusMessage::kSignal, "ua{sv}", w);
    signal.path = handle;
    signal.interface = "org.freedesktop.portal.Request";
    signal.member = "Response";
    signal.destination = mQuestion.sender;
    return mBus->Send(signal) != 0;
  }
  bool TakeQuestion() {
    while (auto message = mBus->Next()) {
      if (message->member == "SaveFile" || message->member == "OpenFile") mQuestion = *message;
    }
    return !mQuestion.path.empty();
  }

  TestProgram mBusProgram;
  std::unique_ptr<DBusConnection> mBus;
  DBusMessage mQuestion;
};

TEST_F(FileDialogTest, ThePortalComesFirst) {
  MakeProgram("zenity", "echo /wrong");
  FakePortal portal;
  const FileQuestion question{true, "/music/", "mine.fxp", {"fxp", "fxb"}, 0xABC};
  EXPECT_EQ(portal.Ask(question, "file:///tmp/a%20b/%E2%82%AC.fxp"), "/tmp/a b/\xE2\x82\xAC.fxp");
  EXPECT_EQ(portal.Question().interface, "org.freedesktop.portal.FileChooser");
  EXPECT_EQ(portal.Question().member, "SaveFile");
  EXPECT_EQ(portal.Question().signature, "ssa{sv}");
  const std::string& body = portal.Question().body;
  for (const char* text : {"x11:abc", "Save As", "*.fxb", "/music/", "mine.fxp"}) {
    EXPECT_NE(body.find(text), std::string::npos) << text;
  }
  EXPECT_EQ(ReadAll(portal.Question()).At(), body.size());
  // Dismissed, and no file of this machine.
  for (const char* uri : {"", "https://a/b", "file:nothing"}) {
    EXPECT_EQ(portal.Ask({}, uri), "") << uri;
  }
  EXPECT_EQ(portal.Question().member, "OpenFile");
}

TEST_F(FileDialogTest, ABusWithoutAPortalIsNoAnswer) {
  MakeProgram("zenity", "echo /tmp/other");
  const TestProgram bus(kBus);
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
  DBusMessage message = Make(DBusMessage::kSignal, "ua{sv}", w);
  message.path = "/a/b";
  message.member = "Z";
  const auto bytes = message.Bytes();
  const std::string whole(bytes.begin(), bytes.end());

  bool broken = false;
  std::string input = whole + "l";
  const auto taken = DBusMessage::TakeFrom(input, broken);
  ASSERT_TRUE(taken);
  EXPECT_EQ(input, "l");
  EXPECT_EQ(taken->member, "Z");
  EXPECT_EQ(taken->body, message.body);
  EXPECT_TRUE(ReadAll(*taken).IsGood());
  for (size_t i = 0; i < whole.size(); ++i) {
    input = whole.substr(0, i);
    EXPECT_FALSE(DBusMessage::TakeFrom(input, broken)) << i;
    // Every byte wrong in turn: anything may come out, if only it comes out.
    input = whole;
    input[i] = static_cast<char>(~input[i]);
    if (const auto odd = DBusMessage::TakeFrom(input, broken)) ReadAll(*odd);
  }
}

}  // namespace
