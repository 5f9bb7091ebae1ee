#pragma once

#include <QString>

/// What the personal settings ask of the background behind the child forms.
class Background
{
public:
    virtual ~Background() = default;
    /// Shows that picture file, whatever its format; nothing changes when it can't be read.
    /// @return whether it could
    virtual bool loadPicture(const QString& path) = 0;
    virtual void setBigCaption(const QString& text) = 0;
    virtual QString bigCaption() const = 0;
    virtual void setCaptionVisible(bool visible) = 0;
};

/// Where an operator's own picture lies. Characters of an account that can't stand in a file name on every platform
/// are written as "%" and their number, so that no account leads out of the folder or to another's picture.
QString operatorPicture(const QString& account);
/// The picture of everybody who has none of their own.
QString commonPicture();
/// The operator's own picture with the big caption over it, else the common one without.
void dressFor(Background& background, const QString& account);
/// Keeps a copy of that file as the operator's own picture, in one step: the one before stays whole if it fails.
/// @return whether it could
bool keepOperatorPicture(const QString& account, const QString& source);
/// Takes the operator's own picture away; none is no failure.
/// @return whether none is left
bool dropOperatorPicture(const QString& account);
