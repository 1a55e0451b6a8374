#include "tnbase/WorkAhead.h"

#include <algorithm>
#include <atomic>
#include <gtest/gtest.h>
#include <new>
#include <thread>
#include <vector>

namespace bomparser {
namespace {

using Items = WorkAhead<std::size_t>;

/// Takes all items; those that are left to the consumer count as made as well.
std::vector<std::size_t> TakeAll(Items& items, std::size_t count) {
  std::vector<std::size_t> taken;
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t* const item = items.Take(i);
    taken.push_back(item != nullptr ? *item : i * i);
  }
  return taken;
}

std::vector<std::size_t> Squares(std::size_t count) {
  std::vector<std::size_t> squares;
  for (std::size_t i = 0; i < count; ++i)
    squares.push_back(i * i);
  return squares;
}

TEST(WorkAhead, ItemsComeInOrderWhateverTheThreads) {
  constexpr std::size_t kCount = 500;
  for (std::size_t workers = 0; workers < 5; ++workers) {
    for (const std::size_t window : {1, 2, 7, 1000}) {
      Items items(workers, kCount, window, [](std::size_t, std::size_t index, std::size_t& item) {
        item = index * index;
        return true;
      });
      EXPECT_EQ(TakeAll(items, kCount), Squares(kCount));
    }
  }
}

TEST(WorkAhead, WithoutThreadsAllIsLeftToTheConsumer) {
  Items items(0, 10, 4, [](std::size_t, std::size_t, std::size_t& item) {
    item = 7;
    return true;
  });
  for (std::size_t i = 0; i < 10; ++i)
    EXPECT_EQ(items.Take(i), nullptr);
}

TEST(WorkAhead, AnItemIsMadeOnce) {
  constexpr std::size_t kCount = 300;
  std::vector<std::atomic<int>> made(kCount);
  Items items(3, kCount, 8, [&made](std::size_t, std::size_t index, std::size_t&) {
    ++made[index];
    return true;
  });
  for (std::size_t i = 0; i < kCount; ++i) {
    if (items.Take(i) == nullptr) ++made[i];
  }
  for (const auto& times : made)
    EXPECT_EQ(times.load(), 1);
}

TEST(WorkAhead, NoWorkerIsFurtherAheadThanTheWindow) {
  constexpr std::size_t kWindow = 4;
  std::atomic<std::size_t> taken{0};
  std::atomic<std::size_t> furthest{0};
  Items items(3, 200, kWindow, [&](std::size_t, std::size_t index, std::size_t&) {
    const std::size_t ahead = index - std::min(index, taken.load());
    if (ahead > furthest.load()) furthest = ahead;
    return true;
  });
  for (std::size_t i = 0; i < 200; ++i) {
    items.Take(i);
    taken = i;
  }
  // The count here lags one behind.
  EXPECT_LE(furthest.load(), kWindow + 1);
}

TEST(WorkAhead, EachWorkerAndTheConsumerHaveTheirOwnNumber) {
  std::vector<std::atomic<int>> inside(3);
  std::atomic<bool> met{false};
  std::atomic<bool> unknown{false};
  Items items(2, 500, 8, [&](std::size_t worker, std::size_t, std::size_t&) {
    if (worker >= inside.size()) {
      unknown = true;
      return true;
    }
    if (++inside[worker] > 1) met = true;
    --inside[worker];
    return true;
  });
  TakeAll(items, 500);
  EXPECT_FALSE(unknown.load());
  EXPECT_FALSE(met.load());
}

TEST(WorkAhead, AnItemForWhichMemoryEndsIsLeftToTheConsumer) {
  Items items(2, 100, 8, [](std::size_t, std::size_t index, std::size_t& item) {
    if (index % 3 == 0) throw std::bad_alloc();
    item = index * index;
    return true;
  });
  for (std::size_t i = 0; i < 100; ++i) {
    const std::size_t* const item = items.Take(i);
    EXPECT_TRUE(item == nullptr || (i % 3 != 0 && *item == i * i)) << i;
  }
}

TEST(WorkAhead, AnItemThatIsNotMadeIsLeftToTheConsumer) {
  Items items(2, 100, 8, [](std::size_t, std::size_t, std::size_t&) { return false; });
  for (std::size_t i = 0; i < 100; ++i)
    EXPECT_EQ(items.Take(i), nullptr);
}

TEST(WorkAhead, WaitingEndsWhenTheWorkIsCalledOff) {
  std::atomic<bool> begun{false};
  std::atomic<bool> off{false};
  const auto makeUntilCalledOff = [&](std::size_t, std::size_t, std::size_t&) {
    begun = true;
    while (!off.load())
      std::this_thread::yield();
    return true;
  };
  int asked = 0;
  Items items(1, 1, 1, makeUntilCalledOff, [&] { return ++asked == 3; });
  while (!begun.load())
    std::this_thread::yield();
  EXPECT_EQ(items.Take(0), nullptr);
  EXPECT_EQ(asked, 3);
  off = true;
}

TEST(WorkAhead, ItemsMayBePassedOver) {
  Items items(2, 1000, 4, [](std::size_t, std::size_t index, std::size_t& item) {
    item = index * index;
    return true;
  });
  for (std::size_t i = 0; i < 1000; i += 37) {
    const std::size_t* const item = items.Take(i);
    EXPECT_TRUE(item == nullptr || *item == i * i) << i;
  }
}

TEST(WorkAhead, MayEndBeforeAllIsTaken) {
  for (int i = 0; i < 50; ++i) {
    Items items(3, 1000, 8, [](std::size_t, std::size_t, std::size_t& item) {
      item = 1;
      return true;
    });
    items.Take(0);
  }
}

}  // namespace
}  // namespace bomparser
