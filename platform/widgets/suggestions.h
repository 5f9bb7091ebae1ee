#pragma once

#include "platform/widgets/grid.h"

#include <QPointer>

/// Drops a list of suggestions down under a field while its text is typed. The list never takes the focus: typing goes
/// on, and all keys keep their way but these: Down and Up choose in the list, Esc closes it and leaves the text alone.
/// In a combo box Down opens it again.
/// With a suggestion chosen, Enter puts it into the field first and then does what it always does there; a click on one
/// is choice and Enter. There is no list while an input method composes. What fails is told through `runCommand`.
class Suggestions : public QObject
{
    Q_OBJECT

public:
    /// @param name of the list, a grid
    Suggestions(QLineEdit* field, const QString& name, const QList<GridColumn>& columns);
    ~Suggestions() override;

    /// The rows for what is typed, the best first; none shows no list.
    std::function<QList<QStringList>(const QString& typed)> find;
    /// Puts the chosen row into the field.
    std::function<void(const QStringList& row)> take;

    bool shown() const;
    void close();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void follow();
    void place();
    bool key(int key);
    bool closedKey(int key);
    void choose(int row);

    QLineEdit* field_;
    QWidget* focus_; ///< that the keys go to: the field, or the combo box that it is part of
    QString name_;
    QString typed_; ///< what the list was last asked for
    QList<GridColumn> columns_;
    QPointer<Grid> list_; ///< a plain child of the form, made at first need
};
