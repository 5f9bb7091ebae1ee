#pragma once

#include "platform/widgets/form.h"

#include <QTest>
#include <QTimer>

#include <functional>
#include <type_traits>

/// What a test does in a modal form once its loop runs: `act` gets the form and must end its modality. Queued before
/// the command that shows the form. A form that isn't there then fails the test.
template <class F = Form>
void inModal(const QString& name, std::type_identity_t<std::function<void(F&)>> act)
{
    QTimer::singleShot(0, qApp, [name, act = std::move(act)] {
        auto* form = static_cast<F*>(Form::loaded(name));
        if (!form || !form->isVisible()) {
            QTest::qFail(qPrintable(u"the form %1 isn't showing"_s.arg(name)), __FILE__, __LINE__);
            return;
        }
        act(*form);
    });
}
