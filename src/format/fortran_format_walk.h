// Internal: steps through a compiled format in processing order (groups, their repeats, reversion).
#pragma once

#include <array>
#include <cstddef>
#include <stdexcept>

#include "format/fortran_format.h"

namespace corvinet::format_detail {

// Deepest group nesting accepted; CompileFormat rejects deeper formats.
inline constexpr int kMaxGroupDepth = 32;

// Yields the items of a format other than GroupOpen/GroupClose, in the order
// Fortran processes them: groups are entered and repeated here, repeat counts of
// single items are left to the caller. Next() returns nullptr at the end of the
// format; Revert() then continues at the reversion point, whose group (if any)
// is entered again with its repeat count.
class FormatWalker {
 public:
  explicit FormatWalker(const CompiledFormat& format) : format_(format) {}

  const FormatItem* Next() {
    const auto& items = format_.items;
    while (pc_ < items.size()) {
      const FormatItem& item = items[pc_];
      if (item.kind == FormatItem::Kind::GroupOpen) {
        if (depth_ == kMaxGroupDepth)
          throw std::invalid_argument("format groups nested too deeply");
        loops_[depth_++] = Loop{pc_, item.repeat};
        ++pc_;
      } else if (item.kind == FormatItem::Kind::GroupClose) {
        if (depth_ == 0) throw std::invalid_argument("format group closed without being opened");
        Loop& top = loops_[depth_ - 1];
        if (--top.left > 0) {
          pc_ = top.open + 1;
        } else {
          --depth_;
          ++pc_;
        }
      } else {
        ++pc_;
        return &item;
      }
    }
    return nullptr;
  }

  void Revert() {
    pc_ = static_cast<std::size_t>(format_.reversionStart);
    depth_ = 0;
  }

 private:
  struct Loop {
    std::size_t open = 0;  // index of the GroupOpen item
    int left = 0;          // passes through the group still to make, this one included
  };
  const CompiledFormat& format_;
  std::size_t pc_ = 0;
  int depth_ = 0;
  std::array<Loop, kMaxGroupDepth> loops_{};
};

}  // namespace corvinet::format_detail
