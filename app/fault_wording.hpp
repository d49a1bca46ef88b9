// The words the desktop's dialog uses for a fault that stopped a click. The screens keep their own
// messages; the dialog says in plain Spanish what went wrong, which quantity to check and in which
// box, and keeps the run time's own text as a detail.
#pragma once

#include <string>
#include <vector>

#include "base/fault.hpp"

namespace cauce::app {

// A data box that is blank or zero where the computation divides by it or takes its root.
struct Suspect {
    std::string caption;  // "Pendiente"
    std::string value;    // the box's text, "" when blank
};

// The message of the dialog for the fault that stopped the click on `button` (its caption).
std::string WordFault(const Fault& fault, const std::string& button, const std::vector<Suspect>& suspects);

// Captions of the quantities that a blank or zero makes a computation divide by zero.
bool IsDivisor(const std::string& caption);

}  // namespace cauce::app
