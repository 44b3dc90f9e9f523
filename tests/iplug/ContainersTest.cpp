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

TEST(HeapBuffer, ContentsSurviveEveryResizeEvenImpossibleOnes) {
  for (const int granularity : {16, 128, 4096}) {
    HeapBuffer buffer(granularity);
    EXPECT_EQ(buffer.Get(), nullptr);
    int kept = 0;
    for (const int size : {1, 15, 5000, 4000, 40, 41, 300000, 3, 70000}) {
      auto* data = static_cast<unsigned char*>(buffer.Resize(size));
      buffer.Resize(INT_MAX);
      buffer.Resize(-1);
      ASSERT_EQ(buffer.GetSize(), size);
      for (int i = 0; i < std::min(kept, size); ++i) ASSERT_EQ(data[i], i % 251) << size;
      for (int i = 0; i < size; ++i) data[i] = static_cast<unsigned char>(i % 251);
      kept = size;
    }
    EXPECT_EQ(buffer.Resize(0), nullptr);
  }
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

TEST(PointerList, KeepsOrderThroughInsertAndDeleteAndGoesFromLastToFirst) {
  struct Item {
    std::string* gone;
    char id;
    ~Item() { *gone += id; }
  };
  std::string gone;
  {
    OwnedPointerList<Item> list;
    const auto make = [&](char id) { return new Item{&gone, id}; };
    list.Add(make('b'));
    list.Insert(0, make('a'));
    list.Insert(99, make('d'));
    list.Insert(2, make('c'));
    EXPECT_EQ(list.Get(4), nullptr);
    EXPECT_EQ(list.Get(-1), nullptr);
    EXPECT_EQ(list.Get(0)->id, 'a');
    list.Delete(1, true);
    list.Delete(9, true);
    EXPECT_EQ(gone, "b");
  }
  EXPECT_EQ(gone, "bdca");
}

TEST(PlugLock, KeepsOthersOutUntilItIsReleasedAsOftenAsTaken) {
  PlugLock lock;
  EXPECT_EQ(lock.GiveUp(), 0) << "nobody holds it";
  std::atomic<bool> entered{false};
  for (int i = 0; i < 4; ++i) lock.Take();
  lock.Release();
  std::thread other([&] {
    const PlugLock::Guard guard(lock);
    entered = true;
  });
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  EXPECT_TRUE(lock.IsMine());
  EXPECT_FALSE(entered) << "only one of four holds was released";
  {
    const PlugLock::Pause pause(lock);
    other.join();  // would hang if the lock were not given up
    EXPECT_FALSE(lock.IsMine());
  }
  for (int i = 0; i < 3; ++i) {
    EXPECT_TRUE(lock.IsMine()) << "retaken as deep as it was";
    lock.Release();
  }
  EXPECT_FALSE(lock.IsMine());
}

}  // namespace
