// A rectangle of whole numbers; right and bottom lie just outside of it.
#pragma once

#include <algorithm>

struct FXRect {
    void SetZero() { *this = {}; }
    void Set(int l, int t, int r, int b) { *this = {l, t, r, b}; }
    bool IsEmpty() const { return left >= right || top >= bottom; }

    // The smallest rectangle around both; one that is empty adds nothing.
    void CombineOr(const FXRect& other) {
        if (IsEmpty())
            *this = other;
        else if (!other.IsEmpty())
            *this = {std::min(left, other.left), std::min(top, other.top), std::max(right, other.right),
                     std::max(bottom, other.bottom)};
    }
    // What both cover; all zero when that is nothing.
    void CombineAnd(const FXRect& other) {
        *this = {std::max(left, other.left), std::max(top, other.top), std::min(right, other.right),
                 std::min(bottom, other.bottom)};
        if (IsEmpty())
            SetZero();
    }

    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;
};
