#include "app/help_actions.hpp"

#include <QDialog>
#include <QDialogButtonBox>
#include <QFile>
#include <QMenu>
#include <QMessageBox>
#include <QTextBrowser>
#include <QVBoxLayout>

// The guide is a resource of a static library: it is registered before its first use.
static void InitGuide() {
    Q_INIT_RESOURCE(guia);
}

namespace cauce::app {

QString GuideText() {
    InitGuide();
    QFile file(QStringLiteral(":/cauce/guia_de_uso.md"));
    if (!file.open(QIODevice::ReadOnly))
        return QStringLiteral("La guía no está disponible en esta instalación.");
    return QString::fromUtf8(file.readAll());
}

QString Version() {
    return QStringLiteral(CAUCE_VERSION);
}

void AddHelpActions(QMenu& help, QWidget* parent) {
    QAction* guide = help.addAction(QStringLiteral("&Guía de uso"), parent, [parent] {
        auto* dialog = new QDialog(parent);
        dialog->setAttribute(Qt::WA_DeleteOnClose);
        dialog->setWindowTitle(QStringLiteral("Guía de uso de Cauce"));
        auto* layout = new QVBoxLayout(dialog);
        auto* text = new QTextBrowser(dialog);
        text->setMarkdown(GuideText());
        text->setOpenExternalLinks(false);
        layout->addWidget(text);
        auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, dialog);
        QObject::connect(buttons, &QDialogButtonBox::rejected, dialog, &QDialog::close);
        layout->addWidget(buttons);
        dialog->resize(720, 640);
        dialog->show();
    });
    guide->setShortcut(QKeySequence::HelpContents);
    help.addAction(QStringLiteral("&Acerca de Cauce"), parent, [parent] {
        QMessageBox::about(
            parent, QStringLiteral("Acerca de Cauce"),
            QStringLiteral("<b>Cauce %1</b><p>Cálculo hidráulico de canales abiertos: perfiles en "
                           "cauces naturales y canales prismáticos, flujo uniforme en canales y "
                           "conductos circulares, socavación general.</p>")
                .arg(Version()));
    });
}

}  // namespace cauce::app
