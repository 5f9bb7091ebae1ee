#include "ledger/store.h"
#include "platform/base/files.h"
#include "platform/report/preview_probe.h"
#include "platform/widgets/grid.h"
#include "shell/session.h"
#include "tools/play_handlers.h"
#include "tools/play_session.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QImage>
#include <QPixmap>
#include <QRegularExpression>

#include <algorithm>
#include <climits>
#include <functional>

namespace play {

QString quoted(const QString& text)
{
    return u'"' + oneLine(text) + u'"';
}

QString plainBreaks(QString text)
{
    return text.replace(u"\r\n"_s, u"\n"_s).replace(u'\r', u'\n');
}

void expectEqual(const QString& what, const QString& wanted, const QString& got)
{
    if (wanted != got)
        fail(u"%1 %2"_s.arg(what, quoted(wanted)), quoted(got));
}

void expectState(const QString& what, bool holds, const QString& otherwise)
{
    if (!holds)
        fail(what, otherwise);
}

Grid* gridOf(const ControlUse& use)
{
    auto* grid = qobject_cast<Grid*>(use.found.widget);
    if (!grid)
        fail(u"a grid"_s, use.name);
    return grid;
}

namespace {

/// A grid's rows with the captions, cells separated by tabs.
QStringList rowsOf(const Grid* grid)
{
    QStringList rows;
    for (int row = 0; row < grid->Rows(); ++row) {
        QStringList cells;
        for (int column = 0; column < grid->Cols(); ++column)
            cells += grid->TextMatrix(row, column);
        rows += cells.join(u'\t');
    }
    return rows;
}

/// All files below a folder that the pattern's parts lead to; names meet without regard to case.
bool anyMatch(const QString& folder, const QStringList& parts)
{
    const QString part = QString(parts.first()).replace(u"["_s, u"[[]"_s);
    if (parts.size() == 1)
        return !QDir(folder).entryList({part}, QDir::Files | QDir::Hidden | QDir::System).isEmpty();
    const auto folders = part == u".."
                             ? QStringList{part}
                             : QDir(folder).entryList({part}, QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot);
    return std::ranges::any_of(folders,
                               [&](const QString& name) { return anyMatch(folder + u'/' + name, parts.mid(1)); });
}

PreviewProbe& preview()
{
    PreviewProbe* open = openPreview();
    if (!open)
        fail(u"an open report preview"_s, u"none"_s);
    return *open;
}

void makeFolderOf(const QString& path)
{
    if (!QDir().mkpath(QFileInfo(path).path()))
        fail(u"the folder of "_s + path, u"a failure to make it"_s);
}

int distance(QRgb one, QRgb other)
{
    return std::abs(qRed(one) - qRed(other)) + std::abs(qGreen(one) - qGreen(other)) +
           std::abs(qBlue(one) - qBlue(other));
}

/// A window has few colours besides a photograph: its picture with 256 of them is a third as large, and looks the same.
QImage withFewColours(const QImage& picture)
{
    constexpr qsizetype most = 256;
    constexpr qsizetype frequent = 232; // the others are those farthest off: a figure in red is few dots
    constexpr double enough = 0.97;     // of the dots, exactly as they are
    const QImage image = picture.convertToFormat(QImage::Format_RGB32);
    QHash<QRgb, int> dots;
    for (int y = 0; y < image.height(); ++y)
        for (const auto *dot = reinterpret_cast<const QRgb*>(image.constScanLine(y)), *end = dot + image.width();
             dot != end; ++dot)
            ++dots[*dot];
    QList<QRgb> colours = dots.keys();
    std::ranges::sort(colours, std::ranges::greater(),
                      [&dots](QRgb colour) { return std::pair(dots[colour], colour); });
    QList<std::pair<int, QRgb>> rare; // with the distance to the nearest colour that stays
    for (const QRgb colour : colours.mid(frequent))
        rare += {INT_MAX, colour};
    colours.resize(std::min(frequent, colours.size()));
    for (qsizetype i = 0; i < colours.size(); ++i) {
        for (auto& [nearest, colour] : rare)
            nearest = std::min(nearest, distance(colour, colours[i]));
        if (i + 1 == colours.size() && colours.size() < most && !rare.isEmpty()) {
            const auto farthest = std::ranges::max_element(rare);
            colours += farthest->second;
            rare.erase(farthest);
        }
    }
    qint64 exact = 0;
    QHash<QRgb, uchar> places;
    for (qsizetype i = 0; i < colours.size(); ++i) {
        exact += dots[colours[i]];
        places[colours[i]] = uchar(i);
    }
    if (double(exact) < enough * image.width() * image.height())
        return image;
    const auto placeOf = [&](QRgb colour) {
        if (const auto known = places.constFind(colour); known != places.constEnd())
            return *known;
        const auto far = [colour](QRgb other) { return distance(colour, other); };
        return places[colour] = uchar(std::ranges::min_element(colours, {}, far) - colours.begin());
    };
    QImage result(image.size(), QImage::Format_Indexed8);
    result.setColorTable(colours);
    result.setDevicePixelRatio(image.devicePixelRatio());
    for (int y = 0; y < image.height(); ++y) {
        const auto* from = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        std::transform(from, from + image.width(), result.scanLine(y), placeOf);
    }
    return result;
}

} // namespace

void Player::claimBox(const QString& text, bool part)
{
    const QString wanted = u"a box %1%2"_s.arg(part ? u"with "_s : QString(), quoted(text));
    if (state_.boxes.isEmpty())
        fail(wanted, u"no box"_s);
    const KeptBox box = state_.boxes.takeFirst();
    const QString got = plainBreaks(box.text);
    expectState(wanted, part ? got.contains(text) : got == text, quoted(box.text));
    state_.claimedTitle = box.title;
}

void Player::addBoxes()
{
    handlers_[u"answer"_s] = [this](const Line& line, int) {
        state_.answers += line.operands[0];
        return false;
    };
    handlers_[u"expect-box"_s] = [this](const Line& line, int) {
        claimBox(line.operands[0], false);
        return false;
    };
    handlers_[u"expect-box-has"_s] = [this](const Line& line, int) {
        claimBox(line.operands[0], true);
        return false;
    };
    handlers_[u"expect-title"_s] = [this](const Line& line, int) {
        if (!state_.claimedTitle)
            fail(u"a claimed box with the title "_s + quoted(line.operands[0]), u"no claimed box"_s);
        expectEqual(u"the box's title"_s, line.operands[0], plainBreaks(*state_.claimedTitle));
        return false;
    };
    handlers_[u"expect-no-box"_s] = [this](const Line&, int) {
        if (!state_.boxes.isEmpty())
            fail(u"no box"_s, quoted(state_.boxes.first().text));
        return false;
    };
    handlers_[u"expect-shell"_s] = [this](const Line& line, int) {
        const QString wanted = u"a call of the shell with "_s + quoted(line.operands[0]);
        if (state_.shellCalls.isEmpty())
            fail(wanted, u"none"_s);
        const QString call = state_.shellCalls.takeFirst();
        expectState(wanted, call.contains(line.operands[0]), quoted(call));
        return false;
    };
}

QString Player::inProgramFolder(const QString& path) const
{
    return resolvedPath(QDir(order_.programFolder).absoluteFilePath(localPath(path)));
}

bool Player::anyFile(const QString& pattern) const
{
    const QString local = QDir::fromNativeSeparators(localPath(pattern));
    const QString folder = QDir::isAbsolutePath(local) ? QDir::rootPath() : order_.programFolder;
    const QStringList parts = QDir::cleanPath(local).split(u'/', Qt::SkipEmptyParts);
    return !parts.isEmpty() && anyMatch(folder, parts);
}

void Player::addFolder()
{
    const auto needNotOpen = [](const QString& path) {
        if (gDB.isOpen() && QFileInfo(path) == QFileInfo(resolvedPath(gLedgerFile)))
            fail(u"a file that isn't in use"_s, u"the open ledger "_s + path);
    };
    handlers_[u"set-up"_s] = [this, needNotOpen](const Line& line, int) {
        const QString from = QFileInfo(order_.scriptFile).dir().absoluteFilePath(localPath(line.operands[1]));
        const QString to = inProgramFolder(line.operands[0]);
        if (!QFileInfo(from).isFile())
            fail(u"the file "_s + from, u"none"_s);
        needNotOpen(to);
        makeFolderOf(to);
        const bool copied = (!QFileInfo::exists(to) || QFile::remove(to)) && QFile::copy(from, to) &&
                            QFile::setPermissions(to, QFile::permissions(to) | QFile::ReadOwner | QFile::WriteOwner);
        expectState(u"a copy of %1 as %2"_s.arg(from, to), copied, u"a failure to write it"_s);
        return false;
    };
    handlers_[u"remove"_s] = [this, needNotOpen](const Line& line, int) {
        const QString path = inProgramFolder(line.operands[0]);
        needNotOpen(path);
        if (QFileInfo::exists(path))
            expectState(path + u" to be removed"_s, QFile::remove(path), u"a failure to remove it"_s);
        return false;
    };
    handlers_[u"expect-file"_s] = [this](const Line& line, int) {
        expectState(u"the file "_s + line.operands[0], anyFile(line.operands[0]), u"none"_s);
        return false;
    };
    handlers_[u"expect-no-file"_s] = [this](const Line& line, int) {
        expectState(u"no file "_s + line.operands[0], !anyFile(line.operands[0]), u"one"_s);
        return false;
    };
}

void Player::withLedger(const std::function<void(Database&)>& use)
{
    try {
        if (gDB.isOpen())
            return use(gDB);
        // The program closes its ledger by ending; what it left there can still be looked at.
        if (lastLedger_.isEmpty())
            fail(u"an open ledger"_s, u"none"_s);
        Database ledger = DBEngine::OpenDatabase(lastLedger_, ledgerConnect.toString());
        use(ledger);
    } catch (const StoreError& error) { // a script's own statement; the program's commands never pass here
        fail(u"the statement to run"_s, quoted(error.description()));
    }
}

void Player::runSql(const QString& sql)
{
    withLedger([&sql](Database& ledger) {
        static const QRegularExpression query(u"^\\s*select\\b"_s, QRegularExpression::CaseInsensitiveOption);
        if (!sql.contains(query))
            return ledger.Execute(sql);
        for (Recordset rows = ledger.OpenRecordset(sql); !rows.isEOF(); rows.MoveNext()) {
            QStringList cells;
            for (qsizetype i = 0; i < rows.fieldCount(); ++i)
                cells += oneLine(rows.Fields(i).text());
            printLine(cells.join(u'\t'));
        }
    });
}

bool Player::playBeside(const QString& path, int phase)
{
    if (phase == 0) {
        WorkerOrder order = order_;
        const auto beside = [&path](const QString& script) {
            return QDir::cleanPath(QFileInfo(script).dir().filePath(localPath(path)));
        };
        order.script = beside(order_.script);
        order.scriptFile = beside(order_.scriptFile);
        const auto script = readScript(order.scriptFile, order.script);
        if (const auto* fault = std::get_if<QString>(&script))
            fail(u"a script to play beside"_s, *fault);
        order.sessionFolder += u"/beside%1"_s.arg(played_);
        if (!QDir().mkpath(order.sessionFolder))
            fail(u"the folder "_s + order.sessionFolder, u"a failure to make it"_s);
        beside_ = std::make_unique<Session>(order, order.script + u": "_s);
        beside_->start(0); // the driver's limit holds for both
    }
    if (!beside_->ended())
        return true;
    expectState(beside_->name() + u" to hold"_s, beside_->status() == 0, u"its failure"_s);
    beside_.reset();
    return false;
}

QString Player::shotPath(const QString& name) const
{
    const QString path = QDir(order_.shots).absoluteFilePath(localPath(name));
    makeFolderOf(path);
    return path;
}

void Player::addKeeping()
{
    handlers_[u"expect-page"_s] = [](const Line& line, int) {
        QStringList seen;
        for (int page = 1; page <= preview().pageCount(); ++page)
            seen += preview().pageTexts(page);
        const bool found = std::ranges::any_of(
            seen, [&](const QString& text) { return plainBreaks(text).contains(line.operands[0]); });
        expectState(u"a page with "_s + quoted(line.operands[0]), found, quoted(seen.join(u" | "_s)));
        return false;
    };
    handlers_[u"expect-pages"_s] = [](const Line& line, int) {
        const int pages = preview().pageCount();
        expectState(line.operands[0] + u" pages"_s, pages == line.integer(0), QString::number(pages));
        return false;
    };
    handlers_[u"expect-sql"_s] = [this](const Line& line, int) {
        withLedger([&line](Database& ledger) {
            expectEqual(line.operands[0] + u" =>"_s, line.operands[1],
                        plainBreaks(LookupValue(ledger, line.operands[0])));
        });
        return false;
    };
    handlers_[u"sql"_s] = [this](const Line& line, int) {
        runSql(line.operands[0]);
        return false;
    };
    look(u"dump"_s, [](const ControlUse& use) {
        for (const QString& row : rowsOf(gridOf(use)))
            printLine(oneLine(row));
    });
    handlers_[u"shot"_s] = [this](const Line& line, int phase) {
        if (phase < 2) // layouts and the cursor of a cell editor take some turns more
            return true;
        QWidget* window = world::windowInFront();
        if (!window)
            fail(u"a window to take a picture of"_s, u"none"_s);
        const QString path = shotPath(line.operands[0]);
        expectState(u"the picture "_s + path, withFewColours(window->grab().toImage()).save(path),
                    u"a failure to write it"_s);
        return false;
    };
    handlers_[u"pdf"_s] = [this](const Line& line, int) {
        const PreviewProbe& open = preview();
        const QString path = shotPath(line.operands[0]);
        expectState(u"the document "_s + path, open.savePdf(path), u"a failure to write it"_s);
        return false;
    };
    handlers_[u"size"_s] = [](const Line& line, int) {
        const auto main = world::find(u"MForm"_s);
        if (!main.form)
            fail(u"a main window"_s, u"none"_s);
        main.form->resize(line.integer(0), line.integer(1));
        return false;
    };
    handlers_[u"say"_s] = [](const Line& line, int) {
        printLine(line.operands[0]);
        return false;
    };
    handlers_[u"end"_s] = [this](const Line&, int) {
        leaveHeld();
        return false;
    };
}

} // namespace play
