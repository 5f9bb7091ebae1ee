#pragma once

#include "platform/base/text.h"

#include <QList>
#include <QSizeF>
#include <QString>

#include <functional>
#include <memory>
#include <optional>

/// The boxes that a command may show. One replaceable host stands behind them: windows in the program, a script in
/// tests and `play`.

enum class BoxIcon { None, Information, Exclamation, Question };
enum class BoxButtons { Ok, YesNo };
enum class BoxKind { Message, Error }; ///< Error: the one box that tells a failure nothing else caught
enum class Answer { Ok, Yes, No };

struct Box
{
    QString text;
    QString title;
    BoxIcon icon = BoxIcon::Information;
    BoxButtons buttons = BoxButtons::Ok;
    BoxKind kind = BoxKind::Message;
    Answer preset = Answer::Yes; ///< of a question: what Enter answers
};

struct InputRequest
{
    QString prompt;
    QString title;
    QString preset;
};

struct FileRequest
{
    enum class Purpose { Open, Save };
    Purpose purpose = Purpose::Open;
    QString title;
    QString filter;   ///< pairs of words and patterns, "恒仓宁帐本文件(*.hcn)|*.hcn|所有文件(*.*)|*.*"
    QString fileName; ///< what is offered: a path, or a folder with a pattern
};

/// A print, as the system's print dialog offers it and as the operator settles it.
struct PrintJob
{
    QString printer; ///< "" the standard one
    QString file;    ///< not empty: a PDF of that name instead of paper
    int copies = 1;
    bool collate = true;
    int first = 1;
    int last = 0; ///< 0: the last page
    QSizeF paper; ///< in millimetres; empty: what the report asks for
};

struct PrintRequest
{
    QString title;
    QString document; ///< what the printer's queue shows, and the name of a PDF
    PrintJob job;
    int pages = 1; ///< of the report
    QSizeF paper;  ///< of the report, in millimetres
};

class DialogHost
{
public:
    virtual ~DialogHost() = default;
    virtual Answer show(const Box& box) = 0;
    virtual std::optional<QString> input(const InputRequest& request) = 0;     ///< nothing on cancel
    virtual std::optional<QString> chooseFile(const FileRequest& request) = 0; ///< a full path; nothing on cancel
    virtual void doEvents() = 0;                                               ///< one turn of the message loop
    /// Nothing on cancel, which is what a host without printers answers.
    virtual std::optional<PrintJob> print(const PrintRequest&) { return {}; }
};

void setDialogHost(std::unique_ptr<DialogHost> host);

/// Called before each box and each turn of the message loop: an open write run is committed here, so that no lock
/// waits for an operator. Returns what was set before.
std::function<void()> setBeforeAsking(std::function<void()> hook);
/// Runs that hook; whatever shows a modal form by itself calls it first.
void beforeAsking();

void MsgBox(const QString& text, const QString& title = u"提示"_s, BoxIcon icon = BoxIcon::Information);
/// Yes and No, question icon. @param preset what Enter answers: Yes, but for what is likely a slip
bool askYesNo(const QString& text, const QString& title = u"提示"_s, Answer preset = Answer::Yes);
void errorBox(const QString& text);
/// "" when the operator cancels.
QString InputBox(const QString& prompt, const QString& title, const QString& preset);
std::optional<QString> openFileDialog(const QString& title, const QString& filter, const QString& fileName);
std::optional<QString> saveFileDialog(const QString& title, const QString& filter, const QString& fileName);
/// Where to write a file, an existing one only if the operator says so; nothing when they think better of it.
std::optional<QString> askFileToWrite(const QString& title, const QString& filter, const QString& fileName);
/// Why a file that was to be written isn't there, and what to look at.
QString notWritten(const QString& path);
/// The system's print dialog: printer, pages, copies, paper.
std::optional<PrintJob> printDialog(const PrintRequest& request);
void DoEvents();
