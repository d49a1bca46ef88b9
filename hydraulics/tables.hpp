// Form-level arrays of the legacy screens: sections 0..50, levels 0..20. A subscript outside those
// bounds is a fault, as it was a run-time error of the legacy program.
#pragma once

#include <array>
#include <string>

#include "hydraulics/checked_math.hpp"

namespace cauce {

inline constexpr int kMaxSection = 50;
inline constexpr int kMaxLevel = 20;

[[noreturn]] inline void SubscriptFault(int index, int upper) {
    raise(FaultCode::Subscript, "Subíndice fuera del intervalo: " + std::to_string(index) +
                                    " no está entre 0 y " + std::to_string(upper));
}

template <typename T>
class Arr1 {
  public:
    T& operator()(int i) {
        if (i < 0 || i > kMaxSection) SubscriptFault(i, kMaxSection);
        return v_[static_cast<std::size_t>(i)];
    }
    const T& operator()(int i) const { return const_cast<Arr1&>(*this)(i); }
    void fill(const T& x) { v_.fill(x); }

  private:
    std::array<T, kMaxSection + 1> v_{};
};

class Arr2 {
  public:
    double& operator()(int i, int j) {
        if (i < 0 || i > kMaxSection) SubscriptFault(i, kMaxSection);
        if (j < 0 || j > kMaxLevel) SubscriptFault(j, kMaxLevel);
        return v_[static_cast<std::size_t>(i)][static_cast<std::size_t>(j)];
    }
    double operator()(int i, int j) const { return const_cast<Arr2&>(*this)(i, j); }

  private:
    std::array<std::array<double, kMaxLevel + 1>, kMaxSection + 1> v_{};
};

}  // namespace cauce
