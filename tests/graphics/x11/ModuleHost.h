// The built module in a host with a window, loaded from its file.
#pragma once

#include <dlfcn.h>

#include <string>
#include <vector>

#include "tests/graphics/x11/EditorHost.h"

// An opened effect of 256 samples a block.
class ModuleHostTest : public HostTest {
 protected:
  static constexpr const char* kModule = TOLMARA_BINARY_DIR "/Tolmara.so";

  explicit ModuleHostTest(const std::string& server = "-screen 0 1200x700x24")
      : HostTest(960, 600, server), mModule(dlopen(kModule, RTLD_LAZY | RTLD_LOCAL)) {
    EXPECT_NE(mModule, nullptr) << dlerror();
    mEffect = reinterpret_cast<AEffect* (*)(audioMasterCallback)>(dlsym(mModule, "VSTPluginMain"))(
        &ModuleHostTest::Answer);
    mEffect->user = &mJournal;
    Dispatch(effOpen);
    Dispatch(effSetBlockSize, 0, 256);
    Dispatch(effMainsChanged, 0, 1);
    mUser.SetFocus(mParent);
  }
  ~ModuleHostTest() override {
    Dispatch(effClose);
    dlclose(mModule);
  }

  void PlayBlock() {
    std::vector<float> in(256, 0.1f), left(256), right(256);
    float* inputs[] = {in.data(), in.data()};
    float* outputs[] = {left.data(), right.data()};
    mEffect->processReplacing(mEffect, inputs, outputs, 256);
  }

  Journal mJournal;
  void* mModule;
};
