// Buffers, strings, lists and the plug-in's lock.
#include <gtest/gtest.h>

#include <atomic>
#include <climits>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "iplug/Containers.h"
#include "iplug/PlugLock.h"

namespace {

TEST(HeapBuffer, ContentsSurviveEveryResize) {
  for (const int granularity : {16, 128, 4096}) {
    HeapBuffer buffer(granularity);
    EXPECT_EQ(buffer.Get(), nullptr);
    int kept = 0;
    for (const int size : {1, 15, 5000, 4000, 40, 41, 300000, 3, 70000}) {
      auto* data = static_cast<unsigned char*>(buffer.Resize(size));
      ASSERT_EQ(buffer.GetSize(), size);
      for (int i = 0; i < std::min(kept, size); ++i) ASSERT_EQ(data[i], i % 251) << size;
      for (int i = 0; i < size; ++i) data[i] = static_cast<unsigned char>(i % 251);
      kept = size;
    }
    EXPECT_EQ(buffer.Resize(0), nullptr);
  }
}

TEST(HeapBuffer, ImpossibleSizesLeaveTheOldContents) {
  HeapBuffer buffer(4096);
  std::memcpy(buffer.Resize(4), "abc", 4);
  buffer.Resize(INT_MAX);
  buffer.Resize(-1);
  EXPECT_EQ(buffer.GetSize(), 4);
  EXPECT_STREQ(static_cast<const char*>(buffer.Get()), "abc");
}

TEST(HeapString, TakesTextThatLiesInItself) {
  HeapString s;
  EXPECT_STREQ(s.Get(), "");
  s.Set("hello world");
  s.Set(s.Get() + 6);
  EXPECT_STREQ(s.Get(), "world");
  for (int i = 0; i < 9; ++i) s.Append(s.Get());
  EXPECT_EQ(s.GetLength(), 5 * 512);
  EXPECT_EQ(std::string(s.Get()).substr(2555), "world");
  s.Set("abc\0def", 7);
  EXPECT_STREQ(s.Get(), "abc");
  s.Set("abcdef", 2);
  EXPECT_STREQ(s.Get(), "ab");
  s.Set(nullptr);
  EXPECT_TRUE(s.IsEmpty());
}

TEST(PointerList, KeepsOrderThroughInsertAndDelete) {
  int items[6];
  PointerList<int> list;
  list.Add(&items[1]);
  list.Insert(0, &items[0]);
  list.Insert(99, &items[3]);
  list.Insert(2, &items[2]);
  ASSERT_EQ(list.GetSize(), 4);
  for (int i = 0; i < 4; ++i) EXPECT_EQ(list.Get(i), &items[i]);
  EXPECT_EQ(list.Get(4), nullptr);
  EXPECT_EQ(list.Get(-1), nullptr);
  list.Delete(1);
  list.Delete(9);
  EXPECT_EQ(list.Find(&items[2]), 1);
  EXPECT_EQ(list.Find(&items[1]), -1);
}

TEST(PointerList, OwnedItemsGoFromLastToFirst) {
  static std::vector<int> gone;
  gone.clear();
  struct Item {
    int id;
    ~Item() { gone.push_back(id); }
  };
  {
    OwnedPointerList<Item> list;
    for (int i = 0; i < 3; ++i) list.AddOwned(std::make_unique<Item>(Item{i}));
    gone.clear();
  }
  EXPECT_EQ(gone, (std::vector<int>{2, 1, 0}));
}

TEST(PlugLock, IsRecursiveAndKeepsOthersOut) {
  PlugLock lock;
  const PlugLock::Guard outer(lock);
  std::atomic<bool> entered{false};
  std::thread other;
  {
    const PlugLock::Guard inner(lock);
    other = std::thread([&] {
      const PlugLock::Guard guard(lock);
      entered = true;
    });
  }
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  EXPECT_TRUE(lock.IsMine());
  EXPECT_FALSE(entered) << "one of two holds was released, not both";
  {
    const PlugLock::Pause pause(lock);
    other.join();  // would hang if the lock were not given up
    EXPECT_FALSE(lock.IsMine());
  }
  EXPECT_TRUE(entered);
  EXPECT_TRUE(lock.IsMine());
}

TEST(PlugLock, RetakesAsDeepAsItWas) {
  PlugLock lock;
  EXPECT_EQ(lock.GiveUp(), 0) << "nobody holds it";
  lock.Take();
  lock.Take();
  lock.Take();
  const int holds = lock.GiveUp();
  EXPECT_EQ(holds, 3);
  lock.Retake(holds);
  lock.Release();
  lock.Release();
  EXPECT_TRUE(lock.IsMine());
  lock.Release();
  EXPECT_FALSE(lock.IsMine());
}

}  // namespace
