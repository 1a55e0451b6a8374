#include "tnbase/GrowArray.h"

#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <new>
#include <utility>
#include <vector>

namespace bomparser {
namespace {

using Numbers = GrowArray<std::int32_t>;

std::vector<std::int32_t> ValuesOf(const Numbers& numbers) {
  return {numbers.begin(), numbers.end()};
}

Numbers Counting(std::int32_t count) {
  Numbers numbers;
  for (std::int32_t i = 0; i < count; ++i) {
    numbers.Push(i);
  }
  return numbers;
}

/// While it lives, the allocations after the next `count` fail.
class MemoryRunsOut {
 public:
  explicit MemoryRunsOut(int count) {
    s_left = count;
    s_real = SetReallocateFunction(Reallocate);
  }
  MemoryRunsOut(const MemoryRunsOut&) = delete;
  MemoryRunsOut& operator=(const MemoryRunsOut&) = delete;
  ~MemoryRunsOut() { SetReallocateFunction(s_real); }

 private:
  static void* Reallocate(void* old, std::size_t bytes) {
    if (bytes > 0 && s_left-- <= 0) {
      return nullptr;
    }
    return s_real(old, bytes);
  }

  static inline int s_left = 0;
  static inline ReallocateFunction s_real = nullptr;
};

TEST(Reallocate, KeepsWhatWasThere) {
  auto* text = static_cast<char*>(Reallocate(nullptr, 1));
  ASSERT_NE(text, nullptr);
  text[0] = 'a';
  text = static_cast<char*>(Reallocate(text, 100000));
  ASSERT_NE(text, nullptr);
  EXPECT_EQ(text[0], 'a');
  EXPECT_EQ(Reallocate(text, 0), nullptr);
}

TEST(Reallocate, TheUsualFunctionComesBackWithNull) {
  const ReallocateFunction usual =
      SetReallocateFunction([](void*, std::size_t) -> void* { return nullptr; });
  EXPECT_EQ(Reallocate(nullptr, 1), nullptr);
  SetReallocateFunction(nullptr);
  EXPECT_EQ(SetReallocateFunction(usual), usual);
}

TEST(GrowArray, StartsWithoutMemory) {
  const Numbers numbers;
  EXPECT_EQ(numbers.Size(), 0U);
  EXPECT_EQ(numbers.Capacity(), 0U);
  EXPECT_EQ(numbers.Data(), nullptr);
}

TEST(GrowArray, KeepsItsValuesWhileItGrows) {
  const Numbers numbers = Counting(1000);
  ASSERT_EQ(numbers.Size(), 1000U);
  for (std::int32_t i = 0; i < 1000; ++i) {
    ASSERT_EQ(numbers[static_cast<std::size_t>(i)], i);
  }
}

TEST(GrowArray, GrowsByHalf) {
  Numbers numbers;
  numbers.Reserve(100);
  numbers.MakeRoom(100);
  numbers.Advance(100);
  EXPECT_EQ(numbers.Capacity(), 100U);
  numbers.MakeRoom(1);
  EXPECT_EQ(numbers.Capacity(), 150U);
}

TEST(GrowArray, GrowsFurtherWhereMoreRoomIsAskedFor) {
  Numbers numbers = Counting(10);
  numbers.MakeRoom(500);
  EXPECT_EQ(numbers.Capacity(), 510U);
}

TEST(GrowArray, IsFilledInPlace) {
  Numbers numbers = Counting(2);
  std::int32_t* const room = numbers.MakeRoom(3);
  room[0] = 7;
  room[1] = 8;
  room[2] = 9;
  numbers.Advance(2);
  EXPECT_EQ(ValuesOf(numbers), (std::vector<std::int32_t>{0, 1, 7, 8}));
}

TEST(GrowArray, CutForgetsTheLastValuesAndKeepsTheMemory) {
  Numbers numbers = Counting(16);
  const std::int32_t* const before = numbers.Data();
  numbers.Cut(2);
  numbers.Push(5);
  EXPECT_EQ(ValuesOf(numbers), (std::vector<std::int32_t>{0, 1, 5}));
  EXPECT_EQ(numbers.Data(), before);
}

TEST(GrowArray, PushesAValueOfItsOwnWhileItGrows) {
  Numbers numbers = Counting(16);
  ASSERT_EQ(numbers.Capacity(), numbers.Size());
  numbers.Push(numbers[3]);
  EXPECT_EQ(numbers[16], 3);
}

TEST(GrowArray, ShrinkToFitGivesMemoryBack) {
  Numbers numbers = Counting(3);
  numbers.ShrinkToFit();
  EXPECT_EQ(numbers.Capacity(), 3U);
  EXPECT_EQ(ValuesOf(numbers), (std::vector<std::int32_t>{0, 1, 2}));
  numbers.Cut(0);
  numbers.ShrinkToFit();
  EXPECT_EQ(numbers.Data(), nullptr);
}

TEST(GrowArray, MovingEmptiesTheSource) {
  Numbers source = Counting(2);
  Numbers target = Counting(5);
  target = std::move(source);
  EXPECT_EQ(ValuesOf(target), (std::vector<std::int32_t>{0, 1}));
  EXPECT_EQ(source.Size(), 0U);  // NOLINT(bugprone-use-after-move): what is left is promised.
  EXPECT_EQ(source.Data(), nullptr);
}

TEST(GrowArray, KeepsItsValuesWhenMemoryRunsOut) {
  Numbers numbers = Counting(16);
  {
    const MemoryRunsOut none(0);
    EXPECT_THROW(numbers.Push(16), std::bad_alloc);
    EXPECT_THROW(numbers.MakeRoom(1), std::bad_alloc);
    EXPECT_THROW(numbers.Reserve(17), std::bad_alloc);
  }
  EXPECT_EQ(ValuesOf(numbers), ValuesOf(Counting(16)));
  numbers.Push(16);
  EXPECT_EQ(ValuesOf(numbers), ValuesOf(Counting(17)));
}

TEST(GrowArray, RefusesMoreThanMemoryCanHold) {
  Numbers numbers = Counting(1);
  constexpr std::size_t kAll = std::numeric_limits<std::size_t>::max();
  EXPECT_THROW(numbers.MakeRoom(kAll), std::bad_alloc);
  EXPECT_THROW(numbers.MakeRoom(kAll / sizeof(std::int32_t)), std::bad_alloc);
  EXPECT_THROW(numbers.Reserve(kAll / 2), std::bad_alloc);
  EXPECT_EQ(numbers.Size(), 1U);
}

}  // namespace
}  // namespace bomparser
