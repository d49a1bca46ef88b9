// A reach computed headless on its profile screen, exactly as a person would on the desktop: the
// workbook bound to the screen's Data1, every record shown in turn and "(Y?)" pressed on it (the
// section numbered N last, as the screen requires), then the depth typed and "Perfiles" pressed. The
// numbers reported are the texts the screen shows, and the values its state holds for the boxes it
// does not show (the bank-full discharge); nothing is computed here.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "forms/screen.hpp"
#include "hydraulics/standard_step/reach.hpp"

namespace cauce::reach {

// A profile screen and the sheet it binds: Form2 "Persecc", Form4 "Percanal", Form3 "secciones ".
struct ReachKind {
    const char* form;        // "Form2"
    const char* sheet;       // Data1's sheet
    const char* title;       // what the screen computes, for people
    const char* depth_name;  // "Y inicial" (Form2, Form4) or "Y final" (Form3)
    const char* option;      // "--y-inicial" or "--y-final"
    bool scour;              // the table has a scour column (Form3)
};

const std::vector<ReachKind>& ReachKinds();
// The kind whose sheet is named so, without regard to case or blanks at the ends; nullptr if none.
const ReachKind* KindOfSheet(std::string_view sheet);
// The box of the screen where the depth at the last section is typed.
forms::ControlName DepthBox(const ReachKind& kind);
// "Persecc (Form2), Percanal (Form4) o \"secciones \" (Form3)", for messages.
std::string KindList();

// One record's data as the screen showed them (the workbook's texts).
struct SectionInput {
    std::string secid, sections;                              // "SecId", "No# secciones"
    std::vector<std::pair<std::string, std::string>> levels;  // (z, t) up to the first empty elevation
    std::string roughness, slope, discharge, flood_width, flood_roughness;
    std::string chainage;    // Form3's own "Abscisa"; "" on Form2 and Form4 (their table holds it)
    std::string grain_size;  // Form3's "Darrastre", mm
};

// "(Y?)" on one record.
struct SectionResult {
    int record = 0;   // 1-based row of the sheet
    int section = 0;  // the section number the screen computed (its state's i)
    SectionInput input;
    std::string yn, yc;     // the result boxes, as shown ("0.00")
    std::string qlleno;     // bank-full discharge, "0.00" as the uniform-flow screen shows it
    bool overflow = false;  // the discharge leaves the banks
    bool computed = false;  // results were written for this section
    std::string notice;     // the screen's messages about this section ("" when none)
    std::string error;      // the fault that stopped the click ("" when none)
    bool faulty = false;    // the data are wrong: a fault, a section-table message, a refused flood zone
};

// One row of the profile table (sections 1..min(N, 15)).
struct ProfileRow {
    int section = 0;
    std::string chainage;  // "0.00"
    std::string type;      // "M1", "M2", "S1", "S2"
    std::string zw, v;     // as shown
    std::string ysoc;      // Form3 with a grain size only
    // The section at its profile depth as the march evaluated it (the screen-wide n): depth, Froude
    // number, specific energy and Manning's friction slope. Not shown by the screen; empty when the
    // section cannot be evaluated there.
    std::string y, froude, energy, sf;
};

struct ReachResult {
    std::string path;  // the workbook as given
    std::string file;  // the file Data1 opened (or saved to)
    const ReachKind* kind = nullptr;
    std::string depth;  // the depth typed, as typed
    int n_sections = 0;
    std::vector<SectionResult> sections;  // in the order they were computed
    std::vector<std::string> notices;     // records left out, and why
    std::vector<ProfileRow> profile;      // empty when the profile was not run
    bool scour = false;                   // the profile has scour values
    // The standard-step profile beside it and the warnings about the screen's own profile, when the
    // caller asked for them (AddStandard).
    std::optional<standard_step::Result> standard;
    std::vector<std::string> legacy_warnings;
    bool saved = false;
    std::string save_note;
    std::string error;  // why the reach could not be completed ("" when it was)

    bool Ok() const { return error.empty(); }
};

struct ReachOptions {
    std::string sheet;      // "" to take the first profile sheet the workbook has
    std::string y_initial;  // text for Form2 and Form4
    std::string y_final;    // text for Form3
    bool save = false;      // save the table into the workbook as the binding does
};

// Called after "(Y?)" of each record, with the screen as it stands then (the desktop would show
// that section's results and figure), and once more after "Perfiles" with section == 0.
using SectionObserver = std::function<void(const forms::Screen& screen, const SectionResult* section)>;

// Runs the reach of one workbook. Never throws for bad data or a workbook that cannot be read: the
// result's error says what stopped it. Needs the workbook opener installed (InstallWorkbooks).
ReachResult RunReach(const std::string& path, const ReachOptions& options,
                     const SectionObserver& observer = {});

// After "Perfiles" (the observer's call with no section): the standard-step profile of the reach the
// screen holds, for the depth the options give its screen, and the warnings about the screen's own
// profile, into res.
void AddStandard(const forms::Screen& screen, const ReachOptions& reach,
                 const standard_step::Options& options, std::optional<double> y_upstream, ReachResult& res);

// The profile sheet a workbook holds first (Persecc, Percanal, "secciones "), or "" with a reason.
std::string DefaultSheet(const std::string& path, std::string& why);

}  // namespace cauce::reach
