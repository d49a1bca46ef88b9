// The standard-step profile and the warnings about the screen's own profile in the outputs of
// cauce perfil: text, CSV and JSON.
#pragma once

#include <nlohmann/json.hpp>
#include <ostream>
#include <string>
#include <vector>

#include "reach/run.hpp"

namespace cauce::cli {

using reach::ReachResult;

// CSV columns added after the screen's: the standard step's values per section.
inline constexpr const char* kStandardCsvColumns =
    "y_estandar_m,z_agua_estandar_m,z_energia_estandar_m,v_estandar_ms,froude_estandar,sf_estandar,"
    "regimen_estandar,yc_estandar_m,diferencia_m";

// The standard-step table, the jump, its notes and the warnings; with_legacy adds the difference
// from the screen's water level.
void PrintStandardText(std::ostream& out, const ReachResult& r, bool with_legacy);
// The standard step's fields of section `number` (empty when it has none).
void AppendStandardCsv(std::vector<std::string>& fields, const ReachResult& r, int number);
// Per section an object "estandar" (joined to the screen's rows), "resalto" at the top level.
void AddStandardJson(nlohmann::ordered_json& profile, nlohmann::ordered_json& reach, const ReachResult& r);
// The warnings about the screen's profile and the standard step's notes, after the reach's notices.
void AddStandardNotes(nlohmann::ordered_json& notices, const ReachResult& r);

}  // namespace cauce::cli
