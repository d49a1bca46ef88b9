// Uniform flow computed headless on the screens that compute it, as a person would: Form1 for the
// trapezoidal family and the circular conduit (type button, data boxes, "Yn?" or "Q ?"), Form5 for a
// natural section typed in from a workbook record. Results are read from the boxes the screen wrote.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "forms/binding.hpp"
#include "forms/screen.hpp"

namespace cauce::cli {

// The data boxes of Form1, as typed ("" leaves a box empty, as a person who skips it).
struct ChannelInput {
    std::string n, S, b, z, h, Bz, nz;
};
struct ConduitInput {
    std::string n, S, D;
};

// What is given: the discharge ("Yn?" finds the normal depth) or the depth ("Q ?" the discharge).
enum class Given { Discharge, Depth };

// A fresh Form1 after the type button, the data, the given value and the computation button.
std::unique_ptr<forms::Screen> RunChannel(const ChannelInput& in, Given given, const std::string& value);
std::unique_ptr<forms::Screen> RunConduit(const ConduitInput& in, Given given, const std::string& value);

// A row of what the screen shows: the caption beside it and its boxes' texts (one, or one per column
// of the flood-zone table: "Canal", "Canal principal", "Planicie inundable").
struct ShownRow {
    std::string label;
    std::vector<std::string> values;
};
struct Shown {
    std::string section;               // the type button's caption: "TRAPEZOIDAL", "CIRCULAR", ...
    std::vector<std::string> columns;  // column headings when the flood zone flows, else empty
    std::vector<ShownRow> data;        // the data boxes as they stand after the click
    std::vector<ShownRow> results;     // rows with something written
    std::string message;               // Label21
    std::string error;                 // the fault of the click
    bool answered = false;             // the unknown asked for has a value
};
Shown ShownOnForm1(const forms::Screen& screen, bool conduit, Given given);

// A natural section of a workbook record typed into a fresh Form5 with the discharge given, and
// "(Y?)" pressed. The record's slope may be in "Si" or "So" (the prismatic profile sheet).
std::unique_ptr<forms::Screen> RunNaturalSection(const forms::RecordSource& source, int record,
                                                 const std::string& discharge);

}  // namespace cauce::cli
