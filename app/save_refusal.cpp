#include "app/save_refusal.hpp"

#include <QString>

#include "app/dialogs.hpp"
#include "hydraulics/checked_math.hpp"

namespace cauce::app {

bool SaveSettling(forms::Screen& model, Prompter& prompter, QWidget* parent,
                  const std::function<void()>& op) {
    auto fault = [&](const char* message) {
        prompter.Fault(parent, QString::fromUtf8(message));
        return false;
    };
    for (int round = 0; round < 3; ++round) {
        try {
            op();
            return true;
        } catch (const forms::SaveRefused& refused) {
            const QString why = QString::fromUtf8(refused.what());
            try {
                if (refused.why() == forms::SaveRefused::Why::Conflict) {
                    const bool mine = prompter.Ask(
                        parent,
                        why + QStringLiteral("\n\n¿Conservar los valores de esta ventana?\nSí: se guardan "
                                             "sobre los del archivo. No: se toman los del archivo."));
                    model.ResolveConflict(mine);
                } else if (prompter.Ask(parent,
                                        why + QStringLiteral("\n\n¿Descartar los cambios de este registro "
                                                             "para seguir?"))) {
                    model.DiscardPending();
                } else {
                    return false;
                }
            } catch (const Fault& f) {
                return fault(f.what());
            }
        } catch (const Fault& f) {
            return fault(f.what());
        }
    }
    return false;
}

}  // namespace cauce::app
