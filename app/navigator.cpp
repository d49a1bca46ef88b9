#include "app/navigator.hpp"

#include <QHBoxLayout>
#include <QLabel>
#include <QToolButton>

namespace cauce::app {

QString PositionText(int record, int count, bool open) {
    if (!open) return QStringLiteral("Sin libro abierto");
    if (count == 0) return QStringLiteral("Hoja sin registros");
    return QStringLiteral("Registro %1 de %2").arg(record).arg(count);
}

Navigator::Navigator(QWidget* parent) : QWidget(parent) {
    auto make = [this](const QString& text, const QString& tip) {
        auto* b = new QToolButton(this);
        b->setText(text);
        b->setToolTip(tip);
        b->setAutoRaise(false);
        b->setFocusPolicy(Qt::TabFocus);
        b->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Expanding);
        return b;
    };
    first_ = make(QStringLiteral("|◀"), QStringLiteral("Primer registro"));
    previous_ = make(QStringLiteral("◀"), QStringLiteral("Registro anterior"));
    next_ = make(QStringLiteral("▶"), QStringLiteral("Registro siguiente"));
    last_ = make(QStringLiteral("▶|"), QStringLiteral("Último registro"));
    add_ = make(QStringLiteral("+"), QStringLiteral("Agregar registro"));
    delete_ = make(QStringLiteral("−"), QStringLiteral("Eliminar registro"));
    add_->setAccessibleName(QStringLiteral("Agregar registro"));
    delete_->setAccessibleName(QStringLiteral("Eliminar registro"));
    caption_ = new QLabel(this);
    position_ = new QLabel(this);
    position_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    auto* middle = new QFrame(this);
    middle->setFrameShape(QFrame::StyledPanel);
    auto* ml = new QHBoxLayout(middle);
    ml->setContentsMargins(6, 0, 6, 0);
    ml->addWidget(caption_, 1);
    ml->addWidget(position_);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(1);
    layout->addWidget(first_);
    layout->addWidget(previous_);
    layout->addWidget(middle, 1);
    layout->addWidget(next_);
    layout->addWidget(last_);
    layout->addWidget(add_);
    layout->addWidget(delete_);
    connect(first_, &QToolButton::clicked, this, &Navigator::firstRequested);
    connect(previous_, &QToolButton::clicked, this, &Navigator::previousRequested);
    connect(next_, &QToolButton::clicked, this, &Navigator::nextRequested);
    connect(last_, &QToolButton::clicked, this, &Navigator::lastRequested);
    connect(add_, &QToolButton::clicked, this, &Navigator::addRequested);
    connect(delete_, &QToolButton::clicked, this, &Navigator::deleteRequested);
    Show(QString(), 0, 0, false);
}

void Navigator::Show(const QString& caption, int record, int count, bool open) {
    caption_->setText(caption);
    position_->setText(PositionText(record, count, open));
    first_->setEnabled(count > 0 && record > 1);
    previous_->setEnabled(count > 0 && record > 1);
    next_->setEnabled(count > 0 && record < count);
    last_->setEnabled(count > 0 && record < count);
    add_->setEnabled(open);
    delete_->setEnabled(open && count > 1);
}

QString Navigator::Caption() const {
    return caption_->text();
}
QString Navigator::Position() const {
    return position_->text();
}

}  // namespace cauce::app
