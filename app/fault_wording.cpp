#include "app/fault_wording.hpp"

#include <algorithm>

namespace cauce::app {

namespace {

struct Wording {
    FaultCode code;     // a fault of the legacy run time's arithmetic
    const char* plain;  // what it means, for the dialog
};

// "Desbordamiento" is kept for water over the banks: the dialog does not use the word.
constexpr Wording kWordings[] = {
    {FaultCode::DivisionByZero, "hubo que dividir entre cero"},
    {FaultCode::ZeroOverZero, "hubo que dividir cero entre cero"},
    {FaultCode::NegativeRoot, "hubo que sacar la raíz cuadrada de un número negativo"},
    {FaultCode::NotRealPower, "una potencia no dio un número real"},
    {FaultCode::Overflow, "un resultado salió demasiado grande para calcularlo"},
};

constexpr const char* kDivisors[] = {"Rugosidad", "Pendiente", "Caudal", "Caudal Q",
                                     "Diametro",  "Yinicial",  "Yfinal", "Profundidad Yn"};

}  // namespace

bool IsDivisor(const std::string& caption) {
    const std::string first = caption.substr(0, caption.find(','));
    return std::find(std::begin(kDivisors), std::end(kDivisors), first) != std::end(kDivisors);
}

std::string WordFault(const Fault& fault, const std::string& button, const std::vector<Suspect>& suspects) {
    const Wording* w = nullptr;
    for (const auto& k : kWordings)
        if (fault.code() == k.code) w = &k;
    if (!w) return fault.what();  // the program's own messages already name what to check
    std::string text = "El cálculo de \"" + button + "\" se detuvo: " + w->plain + ".\n";
    if (suspects.empty()) {
        text +=
            "Revise los datos: las cotas deben subir y los anchos no achicarse de un punto al siguiente, y "
            "la rugosidad, la pendiente y el caudal deben ser mayores que cero.";
    } else {
        text += suspects.size() == 1 ? "Revise la casilla " : "Revise las casillas ";
        for (std::size_t k = 0; k < suspects.size(); ++k) {
            if (k > 0) text += k + 1 == suspects.size() ? " y " : ", ";
            text += "\"" + suspects[k].caption + "\" (" +
                    (suspects[k].value.empty() ? "vacía" : "vale " + suspects[k].value) + ")";
        }
        text += ".";
    }
    return text;
}

}  // namespace cauce::app
