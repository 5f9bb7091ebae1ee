#include "documents/document_form.h"
#include "documents/line_entry.h"
#include "documents/new_goods_panel.h"
#include "ledger/Module1.h"
#include "ledger/identity.h"
#include "ledger/literal.h"
#include "platform/base/desktop.h"
#include "platform/base/dialogs.h"
#include "platform/base/files.h"
#include "platform/widgets/controls.h"
#include "platform/widgets/grid.h"

#include <QFileInfo>
#include <QLabel>
#include <QTimer>

/// Documents that begin with what is there already: the copy of another, and an entry that a dead process left.

namespace {

constexpr std::chrono::seconds betweenKeeps(2);
constexpr qsizetype mostNews = 12; ///< in one box

/// Where entries are kept; "" where there is no such place.
QString keptFolder()
{
    const QString folder = userFolder(gProgramName);
    return folder.isEmpty() ? folder : folder + u"/drafts"_s;
}

QString canonicalLedger()
{
    return QFileInfo(resolvedPath(gLedgerFile)).canonicalFilePath();
}

/// What was left out or is another now, told in one box.
void tellNews(const QString& heading, QStringList news)
{
    if (news.isEmpty())
        return;
    if (const qsizetype more = news.size() - mostNews; more > 0)
        news = news.first(mostNews) << u"…… 另有 %1 项"_s.arg(more);
    MsgBox(heading + u"\n\n"_s + news.join(u'\n'));
}

} // namespace

// A copy -------------------------------------------------------------------------------------------------------------

void DocumentForm::Menu_copy()
{
    if (listEmpty())
        return MsgBox(u"没有单据可复制！"_s);
    const QString number = listCell(Number);
    const Recordset header =
        gDB.OpenRecordset(u"select F3,F10 from "_s + kind_.header + u" where F1="_s + sqlText(number));
    if (header.isEOF())
        return MsgBox(u"单据 "_s + number + u" 已经不在帐本里，可能刚被别人删除。请按 F5 重新读入列表！"_s);
    const QString partner = header.Fields(0).text();
    Recordset stored = gDB.OpenRecordset(u"select F1,F6,F8 from "_s + kind_.lineTable() + u" where F0="_s +
                                         sqlText(number) + u" order by F1"_s);
    beginAdding(numberAgain({}));
    QStringList news;
    if (!CmbLB) {
        Txt[PartnerName]->setText(partner);
    } else if (const QString name =
                   LookupValue(gDB, u"select F2 from "_s + kind_.partners + u" where F1="_s + sqlText(partner));
               name != u"NoFound") {
        CmbLB->setEditText(entryOf(partner, name));
    } else {
        CmbLB->setCurrentIndex(-1);
        CmbLB->clearEditText();
        news += Lab[PartnerName]->text() + u"资料里已经没有 "_s + partner + u"，请另选"_s;
    }
    Txt[Remark]->setText(header.Fields(1).text());
    {
        const ReadRun reads(gDB);
        for (; !stored.isEOF(); stored.MoveNext())
            if (QString why =
                    lines->takeOver(stored.Fields(0).text(), stored.Fields(1).number(), stored.Fields(2).text());
                !why.isEmpty())
                news += why.remove(u'\n');
    }
    emit lines->changed();
    lines->openNextRow();
    tellNews(u"单据 "_s + number + u" 中有几项没有复制过来："_s, news);
}

// Kept against a crash -----------------------------------------------------------------------------------------------

KeptEntry DocumentForm::entryNow() const
{
    KeptEntry entry = keptAs_;
    entry.number = Txt[Number]->text();
    entry.date = Txt[Date]->text();
    entry.partner = CmbLB ? CmbLB->currentText() : Txt[PartnerName]->text();
    entry.remark = Txt[Remark]->text();
    std::tie(entry.code, entry.quantity) = lines->panelTexts();
    entry.lines = lines->shownLines();
    if (const auto cell = lines->openCell()) {
        entry.cell = cell->text;
        entry.cellColumn = QString::number(cell->column);
        entry.cellCode = cell->code;
    }
    if (lines->newGoods)
        entry.newGoods = lines->newGoods->texts();
    return entry;
}

void DocumentForm::beginKeeping()
{
    const QString folder = keptFolder();
    keptAs_ = KeptEntry();
    keptAs_.form = Name();
    keptAs_.ledger = canonicalLedger();
    if (!folder.isEmpty())
        keptAs_.identity = ledgerIdentity(gDB);
    keptAs_.account = gOperId;
    keptAs_.clerk = gOperName;
    keptAs_.costs = gCanSeeCost;
    keptAs_.editing = Edstu == Editing;
    keptAs_.reserved = ReservedNo;
    try {
        if (keptAs_.editing)
            keptAs_.original = storedDigest(ReservedNo);
    } catch (const StoreError&) { // it is taken for changed then
    }
    untouched_ = entryNow().content();
    if (folder.isEmpty())
        return;
    kept_.emplace(folder, Name(), keptAs_.ledger);
    keeping_->start(betweenKeeps);
}

void DocumentForm::keepEntry()
{
    if (!kept_)
        return;
    const KeptEntry entry = entryNow();
    if (entry.content() == untouched_)
        return;
    untouched_.clear();
    LabKept->setVisible(!kept_->write(entry));
}

/// From the commit on the entry must not be offered any more, also when the process dies right behind it: then the
/// ledger has what is noted here. A save that is refused or fails leaves the note, which says nothing as long as the
/// ledger doesn't have that document, until the entry is kept again.
void DocumentForm::noteSaving(const QString& number, const QString& partnerCode)
{
    if (!kept_ || !untouched_.isEmpty())
        return;
    KeptEntry entry = entryNow();
    QStringList texts;
    for (const DocumentLine& line : lines->lines())
        texts += QStringList{line.code, plainText(line.quantity), plainText(kind_.sheet->counted ? line.book : 0),
                             plainText(line.price), line.remark}
                     .join(u'\t');
    entry.savedNumber = number;
    entry.saved = documentDigest({Txt[Date]->text(), partnerCode, Txt[Clerk]->text(), QString(),
                                  plainText(Val(Txt[Total]->text())), Txt[Remark]->text()},
                                 texts);
    kept_->write(entry);
}

void DocumentForm::endKeeping()
{
    keeping_->stop();
    LabKept->hide();
    if (kept_)
        kept_->remove();
    kept_.reset();
}

/// "" when there is no such document.
QString DocumentForm::storedDigest(const QString& number) const
{
    const Recordset header =
        gDB.OpenRecordset(u"select F2,F3,F5,F6,F9,F10 from "_s + kind_.header + u" where F1="_s + sqlText(number));
    if (header.isEOF())
        return {};
    QStringList texts;
    for (const int field : {0, 1, 2, 3, 4, 5})
        texts += field == 4 ? plainText(header.Fields(field).number()) : header.Fields(field).text();
    QStringList stored;
    const bool counted = kind_.sheet->counted;
    Recordset rows = gDB.OpenRecordset((counted ? u"select F1,F6,F7,F8,F5 from "_s : u"select F1,F6,F7,F8 from "_s) +
                                       kind_.lineTable() + u" where F0="_s + sqlText(number));
    for (; !rows.isEOF(); rows.MoveNext())
        stored += QStringList{rows.Fields(0).text(), plainText(rows.Fields(1).number()),
                              plainText(counted ? rows.Fields(4).number() : 0), plainText(rows.Fields(2).number()),
                              rows.Fields(3).text()}
                      .join(u'\t');
    return documentDigest(texts, stored);
}

// Taken up again -----------------------------------------------------------------------------------------------------

void DocumentForm::open()
{
    damaged_.clear();
    const QString folder = keptFolder();
    if (folder.isEmpty() || Edstu != Viewing || !hasRight(kind_.right))
        return Show();
    KeptSearch search(folder, Name(), canonicalLedger(), gOperId);
    for (const QString& path : search.damaged)
        damaged_ += (damaged_.isEmpty() ? QString() : u"\n"_s) + u"有一份没有保存的"_s + kind_.documentName() +
                    u"录入已经损坏，打不开，留在文件 "_s + path + u" 里。"_s;
    Show();
    for (auto& [entry, file] : search.found) {
        if (!entry.identity.isEmpty() && entry.identity != ledgerIdentity(gDB))
            continue; // another ledger stands in the place of the one that it was for
        if (!entry.saved.isEmpty() && storedDigest(entry.savedNumber) == entry.saved) {
            file.remove(); // the process died behind the save
            continue;
        }
        if (askYesNo(keptQuestion(entry)))
            return reopen(entry, &file);
        file.remove();
        if (!entry.editing && ownReservation(entry.reserved))
            DanNoRelease(entry.reserved);
    }
}

QString DocumentForm::keptQuestion(const KeptEntry& entry) const
{
    QString text = u"上次有一张"_s + kind_.documentName() + (entry.editing ? u"没有改完"_s : u"没有录完"_s) +
                   u"，程序就中断了：\n\n"_s + entry.moment + u"，单号 "_s + entry.number + u"，货品 "_s +
                   QString::number(entry.lines.size()) + u" 种"_s;
    if (!Trim(entry.partner).isEmpty())
        text += u"，"_s + kind_.partner + u" "_s + entry.partner;
    return text + u"\n\n要接着录入吗？选“否”，这份录入就删除了。"_s;
}

void DocumentForm::Menu_again()
{
    if (!cancelled_)
        return MsgBox(u"没有取消过的录入可以找回。"_s);
    reopen(*std::exchange(cancelled_, std::nullopt), nullptr);
}

/// @param file of an entry that a dead process left: its lock is taken over once the entry is open
void DocumentForm::reopen(const KeptEntry& entry, KeptFile* file)
{
    QStringList news;
    bool editing = entry.editing;
    if (editing) {
        const QString auditor =
            LookupValue(gDB, u"select F6 from "_s + kind_.header + u" where F1="_s + sqlText(entry.reserved));
        const QString why = auditor == u"NoFound"                            ? u"已经被删除"_s
                            : !Trim(auditor).isEmpty()                       ? u"已经审核"_s
                            : storedDigest(entry.reserved) != entry.original ? u"后来又改过"_s
                                                                             : QString();
        editing = why.isEmpty() && showStored(entry.reserved);
        if (!editing)
            news += u"原来的单据 "_s + entry.reserved + u' ' + (why.isEmpty() ? u"不能再修改"_s : why) +
                    u"，这份录入改作新的单据"_s;
    }
    QList<QStringList> rows;
    {
        const ReadRun reads(gDB);
        for (const QStringList& cells : entry.lines) {
            const QString code = cells.value(0);
            if (LookupValue(gDB, u"select F1 from TA4 where F1="_s + sqlText(code)) == u"NoFound")
                news += u"货品资料库中已经没有 "_s + code + u"，这一行没有恢复"_s;
            else
                rows += cells;
        }
    }
    // What the operator might see then and may not now.
    const bool withPrices = kind_.priceOffer == PriceOffer::Everybody || !entry.costs || gCanSeeCost;
    if (editing) {
        fillPartners();
        loadDetail();
        ReservedNo = entry.reserved;
        enter(Editing);
    } else {
        beginAdding(numberAgain(entry.editing ? QString() : entry.reserved));
        if (!entry.editing && ReservedNo != entry.reserved)
            news += u"单号 "_s + entry.reserved + u" 已经被占用，改用 "_s + ReservedNo;
    }
    if (entry.number != entry.reserved)
        Txt[Number]->setText(entry.number);
    Txt[Date]->setText(entry.date);
    if (CmbLB)
        CmbLB->setEditText(entry.partner);
    else
        Txt[PartnerName]->setText(entry.partner);
    Txt[Remark]->setText(entry.remark);
    lines->showLines(rows, withPrices);
    lines->openNextRow();
    if (!entry.code.isEmpty()) {
        lines->endEdit(); // the box before may not have given the focus back yet, whose loss closes a cell
        lines->showPanelTexts(entry.code, entry.quantity);
        lines->focusCode();
    }
    if (!entry.cellColumn.isEmpty())
        lines->reopenCell({entry.cellCode, entry.cellColumn.toInt(), entry.cell});
    if (lines->newGoods && !entry.newGoods.isEmpty())
        lines->newGoods->show(entry.newGoods);
    untouched_.clear();
    if (kept_ && file)
        *kept_ = std::move(*file);
    keepEntry(); // under the number that it has now
    tellNews(u"上次的录入已经打开，请注意："_s, news);
}

/// Makes a stored document the current one, also where the list doesn't have it.
bool DocumentForm::showStored(const QString& number)
{
    const auto select = [&] {
        for (int row = 1; row < GD->Rows(); ++row)
            if (sameText(GD->TextMatrix(row, Number), number)) {
                selectListRow(row);
                return true;
            }
        return false;
    };
    if (select())
        return true;
    listDrafts();
    if (select())
        return true;
    listAll(u" where "_s + kind_.header + u".F1="_s + sqlText(number));
    return select();
}

bool DocumentForm::ownReservation(const QString& number) const
{
    return LookupValue(gDB, u"select Other from DanNo where DanF1="_s + sqlText(number)) == gOperName &&
           LookupValue(gDB, u"select F1 from "_s + kind_.header + u" where F1="_s + sqlText(number)) == u"NoFound";
}

/// That number where it is this operator's reservation still, or free; else the next one. Reserved in any case.
QString DocumentForm::numberAgain(const QString& number)
{
    QString result = number;
    if (!number.isEmpty() && number != noNumberLeft && ownReservation(number))
        return result;
    const bool free =
        !number.isEmpty() && number != noNumberLeft && DanNoFree(result) &&
        LookupValue(gDB, u"select F1 from "_s + kind_.header + u" where F1="_s + sqlText(number)) == u"NoFound";
    if (!free)
        return NextDocNumberReserved(kind_.prefix.toString(), kind_.headerTable());
    DanNoReserve(result, 0);
    return result;
}
