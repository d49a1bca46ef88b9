// The checked arithmetic of the legacy routines: each operation the legacy run time would have died
// on raises a Fault (base/fault.hpp) with its message at the point where it arises.
#pragma once

#include <cmath>
#include <cstdint>
#include <string>

#include "base/fault.hpp"

namespace cauce {

namespace msg {
inline constexpr const char* kDivisionPorCero = "División por cero";
inline constexpr const char* kIndeterminado = "Desbordamiento: división de cero entre cero";
inline constexpr const char* kRaizNegativa = "Raíz cuadrada de un número negativo";
inline constexpr const char* kPotencia =
    "Potencia que no es un número real (base negativa o cero con exponente negativo)";
inline constexpr const char* kDesbordamiento = "Desbordamiento: el resultado es demasiado grande";
}  // namespace msg

// A value that is no longer a finite number is an overflow of the legacy run time.
inline double Finite(double x) {
    if (!std::isfinite(x)) raise(FaultCode::Overflow, msg::kDesbordamiento);
    return x;
}

inline double Div(double a, double b) {
    if (b == 0.0) {
        if (a == 0.0) raise(FaultCode::ZeroOverZero, msg::kIndeterminado);
        raise(FaultCode::DivisionByZero, msg::kDivisionPorCero);
    }
    return Finite(a / b);
}

inline double Sqr(double x) {
    if (x < 0.0) raise(FaultCode::NegativeRoot, msg::kRaizNegativa);
    return std::sqrt(x);
}

// a ^ b as the legacy run time computes it: a negative base needs a whole exponent, zero cannot be
// raised to a negative power.
inline double Pow(double a, double b) {
    if (a < 0.0 && b != std::floor(b)) raise(FaultCode::NotRealPower, msg::kPotencia);
    if (a == 0.0 && b < 0.0) raise(FaultCode::DivisionByZero, msg::kDivisionPorCero);
    return Finite(std::pow(a, b));
}

// Every march counts its steps against a budget far beyond any real channel; running out of it is
// a fault that names the march instead of the legacy hang.
class StepBudget {
  public:
    StepBudget(std::int64_t limit, FaultCode code, const char* what)
        : left_(limit), code_(code), what_(what) {}
    void step() {
        if (--left_ < 0) raise(code_, what_);
    }

  private:
    std::int64_t left_;
    FaultCode code_;
    const char* what_;
};

}  // namespace cauce
