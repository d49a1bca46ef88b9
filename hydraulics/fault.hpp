// Run-time faults of the hydraulic routines and the checked arithmetic that raises them.
//
// The legacy screens died on a division by zero, the square root of a negative number, a power that
// is not a real number or a subscript outside 0..50, and hung on marches that never end. Here each of
// those raises a Fault with a Spanish message at the point where it arises; the screen keeps what it
// had written and the program goes on.
#pragma once

#include <cmath>
#include <cstdint>
#include <stdexcept>
#include <string>

namespace cauce {

class Fault : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

namespace msg {
inline constexpr const char* kDivisionPorCero = "División por cero";
inline constexpr const char* kIndeterminado = "Desbordamiento: división de cero entre cero";
inline constexpr const char* kRaizNegativa = "Raíz cuadrada de un número negativo";
inline constexpr const char* kPotencia =
    "Potencia que no es un número real (base negativa o cero con exponente negativo)";
inline constexpr const char* kDesbordamiento = "Desbordamiento: el resultado es demasiado grande";
}  // namespace msg

[[noreturn]] inline void raise(const std::string& message) {
    throw Fault(message);
}

// A value that is no longer a finite number is an overflow of the legacy run time.
inline double Finite(double x) {
    if (!std::isfinite(x)) raise(msg::kDesbordamiento);
    return x;
}

inline double Div(double a, double b) {
    if (b == 0.0) raise(a == 0.0 ? msg::kIndeterminado : msg::kDivisionPorCero);
    return Finite(a / b);
}

inline double Sqr(double x) {
    if (x < 0.0) raise(msg::kRaizNegativa);
    return std::sqrt(x);
}

// a ^ b as the legacy run time computes it: a negative base needs a whole exponent, zero cannot be
// raised to a negative power.
inline double Pow(double a, double b) {
    if (a < 0.0 && b != std::floor(b)) raise(msg::kPotencia);
    if (a == 0.0 && b < 0.0) raise(msg::kDivisionPorCero);
    return Finite(std::pow(a, b));
}

// Every march counts its steps against a budget far beyond any real channel; running out of it is
// a fault that names the march instead of the legacy hang.
class StepBudget {
  public:
    StepBudget(std::int64_t limit, const char* what) : left_(limit), what_(what) {}
    void step() {
        if (--left_ < 0) raise(what_);
    }

  private:
    std::int64_t left_;
    const char* what_;
};

}  // namespace cauce
