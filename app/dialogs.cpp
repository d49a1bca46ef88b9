#include "app/dialogs.hpp"

#include <QFileDialog>
#include <QInputDialog>
#include <QMessageBox>

namespace cauce::app {

void DialogPrompter::Fault(QWidget* parent, const QString& message) {
    QMessageBox::warning(parent, QStringLiteral("Cauce"), message);
}

void DialogPrompter::Note(QWidget* parent, const QString& message) {
    QMessageBox::information(parent, QStringLiteral("Cauce"), message);
}

bool DialogPrompter::Ask(QWidget* parent, const QString& question) {
    return QMessageBox::question(parent, QStringLiteral("Cauce"), question,
                                 QMessageBox::Yes | QMessageBox::No, QMessageBox::No) == QMessageBox::Yes;
}

QString DialogPrompter::WorkbookPath(QWidget* parent, const QString& start) {
    return QFileDialog::getOpenFileName(
        parent, QStringLiteral("Abrir libro"), start,
        QStringLiteral("Libros de Excel (*.xlsx *.xls);;Todos los archivos (*)"));
}

QString DialogPrompter::Text(QWidget* parent, const QString& question, const QString& initial) {
    bool ok = false;
    const QString text =
        QInputDialog::getText(parent, QStringLiteral("Cauce"), question, QLineEdit::Normal, initial, &ok);
    return ok ? text : QString();
}

}  // namespace cauce::app
