#pragma once

#include <QByteArray>
#include <QList>

/// What reads bytes or text from outside, one target each: it must come to an end, and either take the input or refuse
/// it. Each target also holds what must be true of everything that was taken.
struct FuzzTarget
{
    const char* name;
    void (*run)(const QByteArray& input);
    QList<QByteArray> words; ///< pieces that inputs of this kind are made of
};

/// Made at the first call, which needs a QApplication.
const QList<FuzzTarget>& fuzzTargets();
