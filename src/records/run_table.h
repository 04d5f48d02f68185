// One-based tables whose size is chosen at run time, before the work that fills them.
#pragma once

#include <algorithm>
#include <cassert>
#include <cstddef>
#include <vector>

namespace corvinet {

// A table indexed 1..size(), contiguous, sized by what the run needs. It is
// sized once before the work that fills it (never inside a point loop); the
// indexing and the loops read as those of a Table1.
template <typename T>
struct RunTable1 {
  std::vector<T> data;

  RunTable1() = default;
  explicit RunTable1(int n) : data(static_cast<std::size_t>(std::max(n, 0))) {}

  int size() const { return static_cast<int>(data.size()); }
  // Makes room for n entries; the entries already held keep their values.
  void Grow(int n) {
    if (n > size()) data.resize(static_cast<std::size_t>(n));
  }
  // Makes entry i valid, growing by at least half at a time so that a
  // table filled one entry after another is copied a few times only.
  void MakeRoomFor(int i) {
    if (i > size()) Grow(std::max(i, size() + size() / 2));
  }
  T& operator[](int i) {
    assert(i >= 1 && i <= size());
    return data[static_cast<std::size_t>(i - 1)];
  }
  const T& operator[](int i) const {
    assert(i >= 1 && i <= size());
    return data[static_cast<std::size_t>(i - 1)];
  }
  void Fill(const T& value) { std::fill(data.begin(), data.end(), value); }
  T* begin() { return data.data(); }
  T* end() { return data.data() + data.size(); }
  const T* begin() const { return data.data(); }
  const T* end() const { return data.data() + data.size(); }
  // Pointer to entry 1, for loops the compiler can vectorise.
  T* ptr() { return data.data(); }
  const T* ptr() const { return data.data(); }
};

// A two-dimensional table indexed [1..rows()][1..cols()], stored row after row.
template <typename T>
struct RunTable2 {
  std::vector<T> data;
  int r = 0;
  int c = 0;

  RunTable2() = default;
  RunTable2(int rows, int cols) { Resize(rows, cols); }

  int rows() const { return r; }
  int cols() const { return c; }
  // Gives the table rows x cols entries, all value-initialised.
  void Resize(int rows, int cols) {
    r = std::max(rows, 0);
    c = std::max(cols, 0);
    std::vector<T>(static_cast<std::size_t>(r) * static_cast<std::size_t>(c)).swap(data);
  }
  T& operator()(int i, int j) {
    assert(i >= 1 && i <= r && j >= 1 && j <= c);
    return data[static_cast<std::size_t>(i - 1) * static_cast<std::size_t>(c) +
                static_cast<std::size_t>(j - 1)];
  }
  const T& operator()(int i, int j) const {
    assert(i >= 1 && i <= r && j >= 1 && j <= c);
    return data[static_cast<std::size_t>(i - 1) * static_cast<std::size_t>(c) +
                static_cast<std::size_t>(j - 1)];
  }
  void Fill(const T& value) { std::fill(data.begin(), data.end(), value); }
};

}  // namespace corvinet
