#pragma once

// Shared by the import tests: a closer for the message box an import may show, and the
// texts a table widget shows.

#include "libtesting.h"

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QTableWidget>
#include <QTimer>

namespace importtest {

// What a message box showed before the test closed it.
struct ShownMessage
{
    QString title;
    QString text;
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    QString buttonText;
};

// Closes every message box that opens while it lives, through the button a user would
// press, and remembers what each one showed.
class MessageBoxCloser
{
public:
    MessageBoxCloser()
    {
        QObject::connect(&m_timer, &QTimer::timeout, [this] { closeOpenBoxes(); });
        m_timer.start(5);
    }

    const QList<ShownMessage>& shown() const { return m_shown; }

private:
    void closeOpenBoxes()
    {
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            auto* box = qobject_cast<QMessageBox*>(widget);
            if (!box || !box->isVisible())
                continue;
            QAbstractButton* close = box->button(QMessageBox::Close);
            m_shown.append({box->windowTitle(), box->text(), box->icon(),
                            close ? close->text() : QString()});
            if (close)
                close->click();
            else
                box->reject();
        }
    }

    QTimer m_timer;
    QList<ShownMessage> m_shown;
};

using Shown = std::vector<QStringList>;

// The texts of the widget's rows, "-" where a cell has no item.
inline Shown shownRows(const QTableWidget& table)
{
    Shown texts(table.rowCount());
    for (int r = 0; r < table.rowCount(); ++r) {
        for (int c = 0; c < table.columnCount(); ++c)
            texts[r] << (table.item(r, c) ? table.item(r, c)->text() : QStringLiteral("-"));
    }
    return texts;
}

} // namespace importtest

using ImportTest = LibraryTest;
