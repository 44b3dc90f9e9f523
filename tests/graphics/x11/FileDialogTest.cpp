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
  // On the editor's thread.
  void AskByClick(int action, const char* extensions = "", const char* file = "",
                  const char* dir = "") {
    mPlug->onProbe = [=, this] { Notes().Note("got " + Ask(action, extensions, file, dir)); };
    Point(195, 15);
    mUser.Click();
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
    AskByClick(IGraphics::kFileOpen);
    ASSERT_TRUE(Eventually([&] { return Read("zenity.called") != ""; }));
    Point(HostedPlug::kLevelRect);
    mUser.Click();  // waits for the dialog
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
  setenv("LD_LIBRARY_PATH", "/the/hosts/own", 1);
  MakeProgram("xdg-open",
              "cd \"$HOME\"; { echo \"$LD_LIBRARY_PATH\"; ls /proc/self/fd; grep SigBlk "
              "/proc/self/status; } > out; mv out all; exec sleep 3");
  // From a thread that holds back all signals, as the editor's does.
  mPlug->onProbe = [this] {
    Notes().Note(Graphics().OpenURL("https://www.example.com/a?b=c&d='e f'") ? "opened" : "not");
  };
  Point(195, 15);
  mUser.Click();
  ASSERT_TRUE(Notes().Comes("opened"));
  unsetenv("LD_LIBRARY_PATH");
  EXPECT_EQ(ChildCount(), 1);  // the server; nothing is left to be waited for
  ASSERT_TRUE(Eventually([&] { return Read("all") != ""; }));
  EXPECT_EQ(Read("xdg-open.called"), "https://www.example.com/a?b=c&d='e f'|");
  // Neither the variable nor a descriptor, but for the one by which `ls` reads the folder.
  EXPECT_EQ(Read("all"), "\n0\n1\n2\n3\nSigBlk:\t0000000000000000\n");
  // Nothing, and what would be an option, count as opened.
  fs::remove(mFolder + "/xdg-open.called");
  EXPECT_TRUE(Graphics().OpenURL(""));
  EXPECT_TRUE(Graphics().OpenURL("--version"));
  EXPECT_EQ(Read("xdg-open.called"), "");
}

TEST_F(FileDialogTest, APageThatCannotBeOpenedIsReportedOnce) {
  setenv("PATH", mFolder.c_str(), 1);  // no xdg-open
  mPlug->onProbe = [this] {
    Graphics().OpenURL("https://a", "Homepage unavailable");
    Graphics().OpenURL("https://b", "Homepage unavailable");
    mPlug->onProbe = nullptr;
  };
  Point(195, 15);
  mUser.Click();
  ASSERT_TRUE(Eventually([&] { return HasChild(); }));
  mUser.Type(0xFF1B);
  ASSERT_TRUE(Eventually([&] { return !HasChild(); }));
  Point(205, 15);
  mUser.Click();  // which a second message would take
  EXPECT_TRUE(Notes().Comes("down 205 15 L"));
}

constexpr const char* kBus =
    "dbus-daemon --session --nofork --print-address=1 --address=unix:tmpdir=/tmp";

// The desktop's portal, on a bus of its own: takes one question and gives one answer.
class FakePortal {
 public:
  explicit FakePortal(const std::string& uri) : mBusProgram(kBus) {
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
    mThread = std::thread([this, uri] { Serve(uri); });
  }
  ~FakePortal() {
    mEnd = true;
    if (mThread.joinable()) mThread.join();
  }
  // After the answer: what was asked.
  const DBusMessage& Question() {
    mThread.join();
    return mQuestion;
  }

 private:
  static DBusMessage Make(DBusMessage::EType type, const char* signature, const DBusWriter& body) {
    DBusMessage m;
    m.type = type;
    m.signature = signature;
    m.body = {body.Bytes().begin(), body.Bytes().end()};
    return m;
  }
  void Serve(const std::string& uri) {
    while (!mEnd) {
      pollfd fd{mBus->Fd(), POLLIN, 0};
      if (poll(&fd, 1, 20) > 0 && !mBus->Receive()) return;
      while (const auto message = mBus->Next()) {
        if (message->type != DBusMessage::kCall || message->path.empty()) continue;
        mQuestion = *message;
        return Answer(*message, uri);
      }
    }
  }
  void Answer(const DBusMessage& call, const std::string& uri) {
    const char* handle = "/org/freedesktop/portal/desktop/request/elsewhere";
    DBusWriter path;
    path.String(handle);
    DBusMessage reply = Make(DBusMessage::kReturn, "o", path);
    reply.replySerial = call.serial;
    reply.destination = call.sender;
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
    DBusMessage signal = Make(DBusMessage::kSignal, "ua{sv}", w);
    signal.path = handle;
    signal.interface = "org.freedesktop.portal.Request";
    signal.member = "Response";
    signal.destination = call.sender;
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
  AskByClick(IGraphics::kFileSave, "fxp fxb", "mine.fxp", "/music/");
  ASSERT_TRUE(Notes().Comes("got /tmp/a b/\xE2\x82\xAC.fxp"));
  EXPECT_STREQ(mDir.Get(), "/tmp/a b/");
  EXPECT_EQ(Read("zenity.called"), "");

  const DBusMessage& question = portal.Question();
  EXPECT_EQ(question.interface, "org.freedesktop.portal.FileChooser");
  EXPECT_EQ(question.member, "SaveFile");
  EXPECT_EQ(question.signature, "ssa{sv}");
  DBusReader r(question.body);
  char owner[32];
  std::snprintf(owner, sizeof owner, "x11:%x", mParent);
  EXPECT_EQ(r.String(), owner);
  EXPECT_EQ(r.String(), "Save As");
  Entries options;
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
  EXPECT_EQ(options, (Entries{"handle_token", "filters", "current_folder", "current_name"}));
}

TEST_F(FileDialogTest, ADismissedPortalIsAnAnswerAndAMissingOneIsNot) {
  MakeProgram("zenity", "echo /tmp/other");
  for (const char* uri : {"", "https://a/b", "file:nothing"}) {
    const FakePortal portal(uri);
    EXPECT_EQ(Ask(IGraphics::kFileOpen, ""), "") << uri;
  }
  const TestProgram bus(kBus);  // that nobody with that name is on
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
  message.member = "Z";
  message.signature = "ua{sv}";
  message.body = {w.Bytes().begin(), w.Bytes().end()};
  const auto bytes = message.Bytes();
  const std::string whole(bytes.begin(), bytes.end());

  const auto readAll = [](const DBusMessage& m) {
    DBusReader r(m.body);
    std::string_view types = m.signature;
    while (r.IsGood() && !types.empty()) r.Skip(types);
    return r;
  };
  bool broken = false;
  std::string input = whole + "l";
  const auto taken = DBusMessage::TakeFrom(input, broken);
  ASSERT_TRUE(taken);
  EXPECT_EQ(input, "l");
  EXPECT_EQ(taken->member, "Z");
  EXPECT_EQ(taken->body, message.body);
  const DBusReader reader = readAll(*taken);
  EXPECT_TRUE(reader.IsGood());
  EXPECT_EQ(reader.At(), message.body.size());
  for (size_t i = 0; i < whole.size(); ++i) {
    input = whole.substr(0, i);
    EXPECT_FALSE(DBusMessage::TakeFrom(input, broken)) << i;
    // Every byte wrong in turn: anything may come out, if only it comes out.
    input = whole;
    input[i] = static_cast<char>(~input[i]);
    if (const auto odd = DBusMessage::TakeFrom(input, broken)) readAll(*odd);
  }
}

}  // namespace
