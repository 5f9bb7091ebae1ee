#include "ledger/store_error.h"

#include "platform/base/text.h"

struct StoreError::Shared
{
    Details details;
    QByteArray utf8; // kept beside the details, since `what` hands out a pointer
};

StoreError::StoreError(Details details)
    : shared_(std::make_shared<Shared>(Shared{std::move(details), {}}))
{
    shared_->utf8 = description().toUtf8();
}

StoreError::Kind StoreError::kind() const
{
    return shared_->details.kind;
}

const StoreError::Details& StoreError::details() const
{
    return shared_->details;
}

QString StoreError::description() const
{
    const Details& details = shared_->details;
    QString text = details.what;
    if (!details.aftermath.isEmpty())
        text += u'\n' + details.aftermath;
    if (!details.engineMessage.isEmpty())
        text += u"\n\n（"_s + details.engineMessage + u'）';
    return text;
}

const char* StoreError::what() const noexcept
{
    return shared_->utf8.constData();
}

void StoreError::setAftermath(const QString& text) const
{
    shared_->details.aftermath = text;
    shared_->utf8 = description().toUtf8();
}
