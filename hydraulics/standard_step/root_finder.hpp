// Brent's root finder: inverse quadratic and secant steps, each checked against bisection. A template,
// so that the balances it solves are inlined into it.
#pragma once

#include <algorithm>
#include <cmath>

namespace cauce::standard_step {

/* A root of f in a bracket.
   Input:  f; lo, hi with values flo = f(lo), fhi = f(hi) of opposite signs (or one of them 0); tol, m.
   Output: x with |x - root| <= tol (the bracket shrinks every step, so at most a few dozen calls).
   Purpose: every balance of the march; a fast step is taken only when it stays inside the bracket
            and shrinks it quickly enough, otherwise the step bisects. */
template <class F>
double FindRoot(const F& f, double lo, double hi, double flo, double fhi, double tol) {
    if (flo == 0) return lo;
    if (fhi == 0) return hi;
    double a = lo, b = hi, fa = flo, fb = fhi;
    double c = a, fc = fa, d = b - a, e = d;
    for (int iter = 0; iter < 200; ++iter) {
        if ((fb > 0) == (fc > 0)) {
            c = a;
            fc = fa;
            d = e = b - a;
        }
        if (std::fabs(fc) < std::fabs(fb)) {
            a = b;
            b = c;
            c = a;
            fa = fb;
            fb = fc;
            fc = fa;
        }
        const double tol1 = 2 * 1e-15 * std::fabs(b) + tol / 2;
        const double xm = (c - b) / 2;
        if (std::fabs(xm) <= tol1 || fb == 0) return b;
        if (std::fabs(e) >= tol1 && std::fabs(fa) > std::fabs(fb)) {
            double p, q;
            const double s = fb / fa;
            if (a == c) {
                p = 2 * xm * s;
                q = 1 - s;
            } else {
                const double qq = fa / fc, r = fb / fc;
                p = s * (2 * xm * qq * (qq - r) - (b - a) * (r - 1));
                q = (qq - 1) * (r - 1) * (s - 1);
            }
            if (p > 0) q = -q;
            p = std::fabs(p);
            if (2 * p < std::min(3 * xm * q - std::fabs(tol1 * q), std::fabs(e * q))) {
                e = d;
                d = p / q;
            } else {
                d = xm;
                e = d;
            }
        } else {
            d = xm;
            e = d;
        }
        a = b;
        fa = fb;
        b += std::fabs(d) > tol1 ? d : (xm > 0 ? tol1 : -tol1);
        fb = f(b);
    }
    return b;
}

}  // namespace cauce::standard_step
