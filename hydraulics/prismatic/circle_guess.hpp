// The exact circle (full-precision pi) as a smooth function of its half angle, solved by Newton for
// the depths the conduit's marches look for. These are only guesses of where a march stops: the
// searches confirm them on the march's own depths and arithmetic.
#pragma once

namespace cauce::prismatic {

// The depth, at most ytop, at which Manning's discharge (sqrt S / n) A^(5/3) / P^(2/3) is q.
double NormalDepthGuess(double D, double coef, double q, double ytop);

// The depth at which q flows critically, A^3 / T = q^2 / g.
double CriticalDepthGuess(double D, double q);

}  // namespace cauce::prismatic
