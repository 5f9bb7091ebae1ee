#include "tools/typing.h"

#include <QApplication>
#include <QTest>
#include <QWindow>

namespace {

QWidget* typingTarget()
{
    if (QWidget* popup = QApplication::activePopupWidget())
        return popup->focusWidget() ? popup->focusWidget() : popup;
    return QApplication::focusWidget() ? QApplication::focusWidget() : QApplication::activeWindow();
}

void typeCharacter(QWidget* widget, const QString& character)
{
    const QChar c = character[0];
    if (c == u'\n') {
        QTest::sendKeyEvent(QTest::Click, widget, Qt::Key_Return, u"\r"_s, Qt::NoModifier);
    } else if (c == u'\t') {
        QTest::sendKeyEvent(QTest::Click, widget, Qt::Key_Tab, u"\t"_s, Qt::NoModifier);
    } else if (c >= u' ' && c < u'\x7f') {
        const auto shift = c.isUpper() ? Qt::ShiftModifier : Qt::NoModifier;
        QTest::sendKeyEvent(QTest::Click, widget, Qt::Key(c.toUpper().unicode()), character, shift);
    } else { // the toolkit's own keyClicks stops at a character outside ASCII
        QTest::sendKeyEvent(QTest::Click, widget, Qt::Key_unknown, character, Qt::NoModifier);
    }
}

template <class Target>
void typeEach(const QString& text, Target target)
{
    for (qsizetype i = 0; i < text.size();) {
        const qsizetype length = text[i].isHighSurrogate() && i + 1 < text.size() ? 2 : 1;
        if (QWidget* widget = target())
            typeCharacter(widget, text.sliced(i, length));
        i += length;
    }
}

} // namespace

void typeText(const QString& text)
{
    typeEach(text, typingTarget); // a key may have moved the focus
}

void typeText(QWidget* widget, const QString& text)
{
    const QPointer<QWidget> kept = widget;
    typeEach(text, [&kept] { return kept.data(); });
}

void pressKey(Qt::Key key, Qt::KeyboardModifiers modifiers, const QString& text)
{
    QWindow* window = QGuiApplication::focusWindow();
    if (!window && QApplication::activeWindow())
        window = QApplication::activeWindow()->windowHandle();
    if (window)
        QTest::sendKeyEvent(QTest::Click, window, key, text, modifiers);
}
