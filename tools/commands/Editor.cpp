// tolmara editor: the effect's own editor in a window, with silence running through the effect.
#include <poll.h>
#include <xcb/xcb.h>

#include <cstdlib>
#include <cstring>
#include <memory>

#include "tools/commands/Commands.h"
#include "tools/commands/Settings.h"
#include "tools/host/BlockRunner.h"
#include "tools/io/Failure.h"

namespace {

constexpr double kRate = 44100;  // Hz
constexpr int kBlock = 1024;     // frames
constexpr int kBlockTime_ms = 23;

// A window of a fixed size with the usual frame and close button.
class HostWindow {
 public:
  HostWindow(int width, int height, const std::string& title)
      : mConnection(xcb_connect(nullptr, nullptr)) {
    if (xcb_connection_has_error(mConnection.get())) {
      throw Failure(ExitCode::kPlugin, "there is no X server to show the editor on: DISPLAY is " +
                                           std::string(Display()));
    }
    xcb_connection_t* const c = mConnection.get();
    const xcb_screen_t& screen = *xcb_setup_roots_iterator(xcb_get_setup(c)).data;
    mId = xcb_generate_id(c);
    const std::uint32_t values[] = {screen.black_pixel, XCB_EVENT_MASK_STRUCTURE_NOTIFY};
    xcb_create_window(c, XCB_COPY_FROM_PARENT, mId, screen.root, 0, 0,
                      static_cast<std::uint16_t>(width), static_cast<std::uint16_t>(height), 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, screen.root_visual,
                      XCB_CW_BACK_PIXEL | XCB_CW_EVENT_MASK, values);
    SetProperty(XCB_ATOM_WM_NAME, XCB_ATOM_STRING, 8, static_cast<std::uint32_t>(title.size()),
                title.data());
    FixSize(width, height);
    mProtocols = Atom("WM_PROTOCOLS");
    mDelete = Atom("WM_DELETE_WINDOW");
    SetProperty(mProtocols, XCB_ATOM_ATOM, 32, 1, &mDelete);
    xcb_map_window(c, mId);
    Sync();
  }

  xcb_window_t Id() const { return mId; }

  // Waits for events; false when the window was closed.
  bool Stays(int time_ms) {
    pollfd fd{xcb_get_file_descriptor(mConnection.get()), POLLIN, 0};
    poll(&fd, 1, time_ms);
    while (const auto event = Owned(xcb_poll_for_event(mConnection.get()))) {
      if (IsClosing(*event)) return false;
    }
    return xcb_connection_has_error(mConnection.get()) == 0;
  }

 private:
  struct Disconnect {
    void operator()(xcb_connection_t* c) const { xcb_disconnect(c); }
  };
  struct Free {
    void operator()(void* p) const { std::free(p); }
  };
  template <class T>
  static std::unique_ptr<T, Free> Owned(T* p) {
    return std::unique_ptr<T, Free>(p);
  }
  static const char* Display() {
    const char* const display = std::getenv("DISPLAY");
    return display ? display : "not set";
  }

  xcb_atom_t Atom(const char* name) const {
    xcb_connection_t* const c = mConnection.get();
    const auto length = static_cast<std::uint16_t>(std::strlen(name));
    const auto reply =
        Owned(xcb_intern_atom_reply(c, xcb_intern_atom(c, 0, length, name), nullptr));
    return reply ? reply->atom : XCB_NONE;
  }
  void SetProperty(xcb_atom_t name, xcb_atom_t type, std::uint8_t format, std::uint32_t count,
                   const void* data) const {
    xcb_change_property(mConnection.get(), XCB_PROP_MODE_REPLACE, mId, name, type, format, count,
                        data);
  }
  void FixSize(int width, int height) const {
    const auto w = static_cast<std::uint32_t>(width);
    const auto h = static_cast<std::uint32_t>(height);
    // Flags, 4 unused, least and largest size, 8 unused.
    constexpr std::uint32_t kMinMax = 1 << 4 | 1 << 5;
    const std::uint32_t hints[18] = {kMinMax, 0, 0, 0, 0, w, h, w, h};
    SetProperty(XCB_ATOM_WM_NORMAL_HINTS, XCB_ATOM_WM_SIZE_HINTS, 32, 18, hints);
  }
  // The editor comes over another connection and has to find the window there.
  void Sync() const {
    xcb_connection_t* const c = mConnection.get();
    Owned(xcb_get_input_focus_reply(c, xcb_get_input_focus(c), nullptr));
  }
  bool IsClosing(const xcb_generic_event_t& event) const {
    if ((event.response_type & 0x7F) == XCB_DESTROY_NOTIFY) return true;
    if ((event.response_type & 0x7F) != XCB_CLIENT_MESSAGE) return false;
    const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(event);
    return message.type == mProtocols && message.data.data32[0] == mDelete;
  }

  std::unique_ptr<xcb_connection_t, Disconnect> mConnection;
  xcb_window_t mId = XCB_NONE;
  xcb_atom_t mProtocols = XCB_NONE, mDelete = XCB_NONE;
};

// The effect's editor, open for a scope.
class OpenEditor {
 public:
  OpenEditor(PluginHost& host, xcb_window_t parent) : mHost(host) {
    void* const window = reinterpret_cast<void*>(static_cast<std::uintptr_t>(parent));
    if (mHost.Dispatch(effEditOpen, 0, 0, window) == 0) {
      throw Failure(ExitCode::kPlugin, mHost.EffectName() + " did not open its editor");
    }
  }
  ~OpenEditor() { mHost.Dispatch(effEditClose); }
  OpenEditor(const OpenEditor&) = delete;
  OpenEditor& operator=(const OpenEditor&) = delete;

 private:
  PluginHost& mHost;
};

void ShowEditor(const Settings& settings) {
  const std::unique_ptr<PluginHost> host = OpenPlugin(settings);
  ERect* size = nullptr;
  if (host->Dispatch(effEditGetRect, 0, 0, &size) == 0 || size == nullptr) {
    throw Failure(ExitCode::kPlugin, host->EffectName() + " has no editor");
  }
  BlockRunner runner(*host, 2, kRate, kBlock);
  ApplySettings(*host, settings);
  HostWindow window(size->right - size->left, size->bottom - size->top, host->EffectName());
  const OpenEditor editor(*host, window.Id());
  // An effect works its changes out between blocks, so that there have to be some.
  std::vector<double> silence(2 * kBlock, 0.0), out(silence.size());
  while (window.Stays(kBlockTime_ms)) {
    host->Dispatch(effEditIdle);
    runner.Process(silence.data(), kBlock, out.data());
  }
}

constexpr const char* kExamples =
    "The window stays until it is closed. What is changed in it is not kept.\n"
    "\n"
    "Examples:\n"
    "  tolmara editor\n"
    "  tolmara editor --preset Cathedral\n";

}  // namespace

void AddEditorCommand(CLI::App& app) {
  auto settings = std::make_shared<Settings>();
  CLI::App* const command = app.add_subcommand("editor", "Show the effect's editor in a window");
  AddSettingsOptions(*command, *settings);
  command->footer(kExamples);
  command->callback([settings] { ShowEditor(*settings); });
}
