// One-based fixed-capacity tables, so that formulas index as the program's tables are numbered.
#pragma once

#include <algorithm>
#include <array>
#include <cassert>
#include <cstddef>

namespace corvinet {

// A table of N entries indexed 1..N. Storage is contiguous and inline.
template <typename T, std::size_t N>
struct Table1 {
  std::array<T, N> data{};

  static constexpr int size() { return static_cast<int>(N); }
  T& operator[](int i) {
    assert(i >= 1 && i <= static_cast<int>(N));
    return data[static_cast<std::size_t>(i - 1)];
  }
  const T& operator[](int i) const {
    assert(i >= 1 && i <= static_cast<int>(N));
    return data[static_cast<std::size_t>(i - 1)];
  }
  void Fill(const T& value) { std::fill(data.begin(), data.end(), value); }
  T* begin() { return data.data(); }
  T* end() { return data.data() + N; }
  const T* begin() const { return data.data(); }
  const T* end() const { return data.data() + N; }
  // Pointer to entry 1, for loops the compiler can vectorise.
  T* ptr() { return data.data(); }
  const T* ptr() const { return data.data(); }
};

// A two-dimensional table indexed [1..R][1..C], stored row after row.
template <typename T, std::size_t R, std::size_t C>
struct Table2 {
  std::array<T, R * C> data{};

  static constexpr int rows() { return static_cast<int>(R); }
  static constexpr int cols() { return static_cast<int>(C); }
  T& operator()(int i, int j) {
    assert(i >= 1 && i <= static_cast<int>(R) && j >= 1 && j <= static_cast<int>(C));
    return data[static_cast<std::size_t>(i - 1) * C + static_cast<std::size_t>(j - 1)];
  }
  const T& operator()(int i, int j) const {
    assert(i >= 1 && i <= static_cast<int>(R) && j >= 1 && j <= static_cast<int>(C));
    return data[static_cast<std::size_t>(i - 1) * C + static_cast<std::size_t>(j - 1)];
  }
  void Fill(const T& value) { std::fill(data.begin(), data.end(), value); }
};

}  // namespace corvinet
