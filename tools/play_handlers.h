#pragma once

#include "tools/play_player.h"

class Grid;

/// What the commands' handlers share.
namespace play {

QString quoted(const QString& text);
/// Line breaks compare as one character, whatever wrote them.
QString plainBreaks(QString text);
/// Fails when the texts differ.
void expectEqual(const QString& what, const QString& wanted, const QString& got);
/// Fails when it doesn't hold.
void expectState(const QString& what, bool holds, const QString& otherwise);
/// Fails for a control that is no grid.
Grid* gridOf(const ControlUse& use);

} // namespace play
