// The report's part about the standard-step profile: its table, with the difference from the
// screen's levels, the jump, its notes and the warnings about the screen's profile, as plain text
// the report lays out.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "reach/run.hpp"

namespace cauce::cli {

using reach::ReachResult;

struct ReportPart {
    std::string heading;
    std::string intro;
    std::vector<std::string> head;
    std::vector<std::vector<std::string>> rows;
    std::vector<double> weights;
    std::vector<std::string> bullets;
};

// Nothing when the reach was run without the standard step.
std::optional<ReportPart> StandardReportPart(const ReachResult& r);

}  // namespace cauce::cli
