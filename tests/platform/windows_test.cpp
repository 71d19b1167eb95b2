#include "platform/windows.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace {

class RecordingWindow : public platform::Window {
 public:
  void Show(int32_t command) override { commands.push_back(command); }
  std::vector<int32_t> commands;
};

TEST(Windows, HandlesReachLiveWindowsOnly) {
  auto window = std::make_shared<RecordingWindow>();
  const int32_t handle = platform::RegisterWindow(window);
  const int32_t other = platform::RegisterWindow(window);
  EXPECT_NE(handle, 0);
  EXPECT_NE(handle, other);

  EXPECT_TRUE(platform::ShowWindow(handle, platform::kSwRestore));
  EXPECT_TRUE(platform::ShowWindow(other, platform::kSwMinimize));
  EXPECT_EQ(window->commands, (std::vector<int32_t>{9, 6}));

  EXPECT_FALSE(platform::ShowWindow(0, platform::kSwRestore));
  platform::UnregisterWindow(other);
  EXPECT_FALSE(platform::ShowWindow(other, platform::kSwRestore));

  window.reset();  // the table holds windows weakly
  EXPECT_FALSE(platform::ShowWindow(handle, platform::kSwRestore));
}

}  // namespace
