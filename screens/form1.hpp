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

class Form1 : public forms::Screen {
  public:
    Form1();
    const prismatic::State& State() const { return st_; }

  private:
    void DeclareControls();
    void FormLoad();

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
