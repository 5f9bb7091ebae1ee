#include "platform/widgets/look.h"

#include "platform/base/desktop.h"
#include "platform/base/number.h"
#include "platform/widgets/form.h"

#include <QApplication>
#include <QKeyEvent>

#include <algorithm>

namespace {

const QString lookSettings = u"Vemaroware"_s;
const QString lookSection = u"Look"_s;
const QString schemeKey = u"Scheme"_s;
const QString pointsKey = u"Points"_s;

constexpr std::array<QStringView, 3> schemeNames = {u"system", u"light", u"dark"}; // in the order of Scheme

/// The size that stands nearest.
int fontSizeOf(double points)
{
    const auto nearest = std::ranges::min_element(
        fontSizes, {}, [points](const FontSize& size) { return std::abs(size.points - points); });
    return int(nearest - fontSizes.begin());
}

constexpr auto ownKeysProperty = "ownFontKeys";

class FontKeys : public QObject
{
public:
    using QObject::QObject;

    bool eventFilter(QObject*, QEvent* event) override
    {
        if (event->type() != QEvent::KeyPress)
            return false;
        const auto* key = static_cast<QKeyEvent*>(event);
        // Plus stands over another sign on most keyboards.
        if ((key->modifiers() & ~(Qt::ShiftModifier | Qt::KeypadModifier)) != Qt::ControlModifier)
            return false;
        if (const QWidget* window = QApplication::activeWindow(); window && window->property(ownKeysProperty).toBool())
            return false;
        switch (key->key()) {
        case Qt::Key_Plus:
        case Qt::Key_Equal:
            step(1);
            return true;
        case Qt::Key_Minus:
        case Qt::Key_Underscore:
            step(-1);
            return true;
        case Qt::Key_0:
            choose(fontSizeOf(style::standardPoints));
            return true;
        default:
            return false;
        }
    }

private:
    static void step(int by) { choose(std::clamp(presentFontSize() + by, 0, int(fontSizes.size()) - 1)); }
    static void choose(int size)
    {
        if (size != presentFontSize())
            runCommand([size] { changeLook({style::look().scheme, fontSizes[size_t(size)].points}); });
    }
};

} // namespace

style::Look keptLook()
{
    style::Look look;
    const QString scheme = GetSetting(lookSettings, lookSection, schemeKey);
    const auto named = std::ranges::find(schemeNames, QStringView(scheme));
    if (named != schemeNames.end())
        look.scheme = style::Scheme(named - schemeNames.begin());
    if (const double points = Val(GetSetting(lookSettings, lookSection, pointsKey)); points > 0)
        look.points = fontSizes[size_t(fontSizeOf(points))].points;
    return look;
}

void changeLook(const style::Look& look)
{
    style::apply(*qApp, look);
    SaveSetting(lookSettings, lookSection, schemeKey, schemeNames[size_t(look.scheme)].toString());
    SaveSetting(lookSettings, lookSection, pointsKey, plainText(look.points));
}

int presentFontSize()
{
    return fontSizeOf(style::look().points);
}

void keepFontKeys(QWidget* window)
{
    window->setProperty(ownKeysProperty, true);
}

void listenForFontKeys()
{
    qApp->installEventFilter(new FontKeys(qApp));
}
