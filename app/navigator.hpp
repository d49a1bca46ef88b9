// The record navigator of a screen's Data1: first, previous, next and last record, the caption and
// the position ("Registro 3 de 12"), and the buttons that add a record after the current one and
// delete it. It only shows and asks; the screen view moves the model, the window's file actions
// add and delete.
#pragma once

#include <QWidget>

class QLabel;
class QToolButton;

namespace cauce::app {

class Navigator : public QWidget {
    Q_OBJECT
  public:
    explicit Navigator(QWidget* parent = nullptr);

    // record is 1-based; open says whether a workbook is bound at all.
    void Show(const QString& caption, int record, int count, bool open);

    QString Caption() const;
    QString Position() const;
    QToolButton* First() const { return first_; }
    QToolButton* Previous() const { return previous_; }
    QToolButton* Next() const { return next_; }
    QToolButton* Last() const { return last_; }
    QToolButton* Add() const { return add_; }
    QToolButton* Delete() const { return delete_; }

  signals:
    void firstRequested();
    void previousRequested();
    void nextRequested();
    void lastRequested();
    void addRequested();
    void deleteRequested();

  private:
    QToolButton *first_, *previous_, *next_, *last_, *add_, *delete_;
    QLabel *caption_, *position_;
};

// "Registro 3 de 12"; "Sin libro abierto" when there is none; "Hoja sin registros" when it is empty.
QString PositionText(int record, int count, bool open);

}  // namespace cauce::app
