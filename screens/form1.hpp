// Form1, "ZORVENA EN FLUJO UNIFORME": prismatic channels (trapezoid, rectangle, triangle, with an
// optional flood zone) and circular conduits in uniform flow. The user picks the family with a type
// button, enters the data and presses "Yn?" (normal depth for a discharge) or "Q ?" (discharge for a
// depth). Data1 binds Text1..Text4 to the sheet "Canales".
#pragma once

#include <memory>
#include <string>

#include "forms/screen.hpp"
#include "hydraulics/prismatic/state.hpp"

namespace cauce::screens {

// Form1's controls by meaning. The conduit's layout gives four boxes of the channel's data another
// meaning; both names are declared.
namespace form1 {
using forms::ControlName;

namespace box {
// The channel's data (Data1 binds the first four).
inline constexpr ControlName Roughness{"Text1"};
inline constexpr ControlName Slope{"Text2"};
inline constexpr ControlName Base{"Text3"};
inline constexpr ControlName Diameter{"Text3"};  // conduit layout
inline constexpr ControlName SideSlope{"Text4"};
inline constexpr ControlName BankHeight{"Text5"};
inline constexpr ControlName FloodWidth{"Text6"};
inline constexpr ControlName FloodRoughness{"Text7"};
// The conduit's results shown in the channel's data boxes.
inline constexpr ControlName FullDischarge{"Text4"};
inline constexpr ControlName MaxDischarge{"Text5"};
inline constexpr ControlName DepthRatio{"Text6"};     // Yn/D
inline constexpr ControlName VelocityRatio{"Text7"};  // Vn/Vlleno
// Discharge and depth: data or result by workflow.
inline constexpr ControlName Discharge{"Text8"};
inline constexpr ControlName NormalDepth{"Text9"};
// Results: the whole channel's column.
inline constexpr ControlName TopWidth{"Text10"};
inline constexpr ControlName Velocity{"Text11"};
inline constexpr ControlName CriticalDepth{"Text12"};
inline constexpr ControlName CriticalVelocity{"Text13"};
inline constexpr ControlName BankfullDischarge{"Text14"};
inline constexpr ControlName DischargeRatio{"Text14"};  // conduit layout: Q/Qlleno
inline constexpr ControlName Area{"Text24"};
inline constexpr ControlName Froude{"Text26"};
// Results over the banks: the main channel's and the flood zone's columns.
inline constexpr ControlName MainDischarge{"Text15"};
inline constexpr ControlName MainArea{"Text16"};
inline constexpr ControlName MainTopWidth{"Text17"};
inline constexpr ControlName MainVelocity{"Text18"};
inline constexpr ControlName MainFroude{"Text27"};
inline constexpr ControlName FloodDischarge{"Text19"};
inline constexpr ControlName FloodArea{"Text20"};
inline constexpr ControlName FloodTopWidth{"Text21"};
inline constexpr ControlName FloodVelocity{"Text22"};
inline constexpr ControlName FloodFroude{"Text23"};
}  // namespace box

namespace label {
// The caption beside each box of the same name.
inline constexpr ControlName Roughness{"Label1"};
inline constexpr ControlName Slope{"Label2"};
inline constexpr ControlName Base{"Label3"};
inline constexpr ControlName SideSlope{"Label4"};
inline constexpr ControlName BankHeight{"Label5"};
inline constexpr ControlName FloodWidth{"Label6"};
inline constexpr ControlName FloodRoughness{"Label7"};
inline constexpr ControlName Discharge{"Label8"};
inline constexpr ControlName NormalDepth{"Label9"};
inline constexpr ControlName TopWidth{"Label10"};
inline constexpr ControlName Velocity{"Label11"};
inline constexpr ControlName CriticalDepth{"Label12"};
inline constexpr ControlName CriticalVelocity{"Label13"};
inline constexpr ControlName BankfullDischarge{"Label14"};
inline constexpr ControlName Froude{"Label22"};
inline constexpr ControlName Area{"Label24"};
inline constexpr ControlName Diameter{"Label3"};  // conduit layout
inline constexpr ControlName FullDischarge{"Label4"};
inline constexpr ControlName MaxDischarge{"Label5"};
inline constexpr ControlName DepthRatio{"Label6"};
inline constexpr ControlName VelocityRatio{"Label7"};
inline constexpr ControlName DischargeRatio{"Label14"};
// Headings, instructions and messages.
inline constexpr ControlName MainChannel{"Label15"};  // "CANAL PRINCIPAL" over the channel's data
inline constexpr ControlName FloodZone{"Label16"};    // "ZONA INUNDABLE  (opcional)"
inline constexpr ControlName Instructions{"Label17"};
inline constexpr ControlName WholeColumn{"Label18"};  // the result columns' headings over the banks
inline constexpr ControlName MainColumn{"Label19"};
inline constexpr ControlName FloodColumn{"Label20"};
inline constexpr ControlName Message{"Label21"};
inline constexpr ControlName Title{"Label23"};
}  // namespace label

namespace button {
inline constexpr ControlName Trapezoidal{"Command1"};  // the type buttons; their captions name the shape
inline constexpr ControlName Circular{"Command2"};
inline constexpr ControlName Exit{"Command3"};
inline constexpr ControlName NormalDepth{"Command4"};  // "Yn?" of the trapezoidal family
inline constexpr ControlName Discharge{"Command5"};    // "Q ?"
inline constexpr ControlName ConduitNormalDepth{"Command6"};
inline constexpr ControlName ConduitDischarge{"Command7"};
}  // namespace button

namespace picture {
inline constexpr ControlName Section{"Picture1"};
}  // namespace picture
}  // namespace form1

class Form1 : public forms::Screen {
  public:
    Form1();
    const prismatic::State& State() const { return st_; }

  private:
    void DeclareControls();
    void FormLoad();
    bool Refused(bool refused, const char* message);  // true after writing the message to Label21

    // The type buttons: each sets its layout and clears the data and the results.
    void Command1Click();  // trapezoidal family
    void Command2Click();  // circular conduit
    void Inicial1();       // clears the data boxes Text1..Text9
    void Inicial2();       // clears the results and the result labels

    // Trapezoidal family.
    void Command4Click();  // "Yn?"
    void Command5Click();  // "Q ?"
    void Datos();          // reads the data; the type button and figure show the shape
    void Lleno();          // bank-full discharge into Text14
    void Trapecio();
    void Critica();  // critical depth for st_.Qc into Text12, Text13
    void Qdesbord();
    void Qdesbord3();

    // Circular conduit.
    void Command6Click();  // "Yn?"
    void Command7Click();  // "Q ?"
    bool ConduitData();    // the checks on n, S and D; false when one stopped the workflow
    void Maximo();
    void Final();
    void Clleno();

    prismatic::State st_;
};

std::unique_ptr<forms::Screen> MakeForm1();

}  // namespace cauce::screens
