#pragma once

#include "platform/base/dialogs.h"

#include <QStringList>
#include <QTest>

#include <deque>

/// The operator of a test: answers the boxes that it expects, in their order. A box that was not expected, one with
/// another text, and one that never came each fail the test and name its text; the last at the latest when this goes
/// out of scope.
///
///     ScriptedDialogs boxes;
///     boxes.expect(u"真的要删除吗？"_s, Answer::Yes);
///     form.Menu_del();
///     QVERIFY2(boxes.finished(), qPrintable(boxes.report()));
class ScriptedDialogs
{
public:
    ScriptedDialogs() { setDialogHost(std::make_unique<Host>(*this)); }
    ~ScriptedDialogs()
    {
        if (!expected_.empty())
            fail(u"never came: "_s + describe(expected_.front()));
        setDialogHost(nullptr);
    }
    ScriptedDialogs(const ScriptedDialogs&) = delete;
    ScriptedDialogs& operator=(const ScriptedDialogs&) = delete;

    /// A box of that text; with an answer, a question.
    void expect(const QString& text) { expected_.push_back({Kind::Message, text, {}, Answer::Ok}); }
    void expect(const QString& text, Answer answer) { expected_.push_back({Kind::Question, text, {}, answer}); }
    /// A box whose text begins so; what follows may be the store's words, which `lastBox` holds.
    void expectStart(const QString& text) { expected_.push_back({Kind::Message, text, {}, Answer::Ok, true}); }
    void expectStart(const QString& text, Answer answer)
    {
        expected_.push_back({Kind::Question, text, {}, answer, true});
    }
    void expectQuestionStart(const QString& text, Answer answer)
    {
        expected_.push_back({Kind::Question, text, {}, answer, true});
    }
    /// The box that tells a failure which nothing else caught; the text may be a part of it.
    void expectError(const QString& part) { expected_.push_back({Kind::Error, part, {}, Answer::Ok}); }
    /// An input box with that prompt; no answer cancels it.
    void expectInput(const QString& prompt, std::optional<QString> answer)
    {
        expected_.push_back({Kind::Input, prompt, std::move(answer), Answer::Ok});
    }
    /// A file dialog with that title; no path cancels it.
    void expectFile(const QString& title, std::optional<QString> path)
    {
        expected_.push_back({Kind::File, title, std::move(path), Answer::Ok});
    }
    /// The print dialog with that title; no job cancels it.
    void expectPrint(const QString& title, std::optional<PrintJob> job)
    {
        expected_.push_back({Kind::Print, title, {}, Answer::Ok, false, std::move(job)});
    }

    /// All that was expected came, and nothing else did.
    bool finished() const { return expected_.empty() && faults_.isEmpty(); }
    /// What didn't go as expected.
    QString report() const
    {
        QStringList lines = faults_;
        for (const Expectation& missing : expected_)
            lines += u"never came: "_s + describe(missing);
        return lines.join(u'\n');
    }

    /// The box that came last, and the requests of the last input box, file and print dialog.
    Box lastBox;
    InputRequest lastInput;
    FileRequest lastFile;
    PrintRequest lastPrint;
    int turns = 0; ///< of the message loop that the commands asked for

private:
    enum class Kind { Message, Question, Error, Input, File, Print };
    struct Expectation
    {
        Kind kind;
        QString text;
        std::optional<QString> answer;
        Answer button;
        bool startOnly = false;
        std::optional<PrintJob> job = {};
    };

    class Host : public DialogHost
    {
    public:
        explicit Host(ScriptedDialogs& script)
            : script_(script)
        {}

        Answer show(const Box& box) override
        {
            script_.lastBox = box;
            const Kind kind = box.buttons == BoxButtons::YesNo ? Kind::Question
                              : box.kind == BoxKind::Error     ? Kind::Error
                                                               : Kind::Message;
            const auto taken = script_.take(kind, box.text);
            return taken ? taken->button : kind == Kind::Question ? Answer::No : Answer::Ok;
        }
        std::optional<QString> input(const InputRequest& request) override
        {
            script_.lastInput = request;
            const auto taken = script_.take(Kind::Input, request.prompt);
            return taken ? taken->answer : std::nullopt;
        }
        std::optional<QString> chooseFile(const FileRequest& request) override
        {
            script_.lastFile = request;
            const auto taken = script_.take(Kind::File, request.title);
            return taken ? taken->answer : std::nullopt;
        }
        void doEvents() override { ++script_.turns; }
        std::optional<PrintJob> print(const PrintRequest& request) override
        {
            script_.lastPrint = request;
            const auto taken = script_.take(Kind::Print, request.title);
            return taken ? taken->job : std::nullopt;
        }

    private:
        ScriptedDialogs& script_;
    };

    std::optional<Expectation> take(Kind kind, const QString& text)
    {
        const Expectation came{kind, text, {}, Answer::Ok};
        if (expected_.empty()) {
            fail(u"not expected: "_s + describe(came));
            return std::nullopt;
        }
        const Expectation next = expected_.front();
        const bool sameWords = kind == Kind::Error ? text.contains(next.text)
                               : next.startOnly    ? text.startsWith(next.text)
                                                   : text == next.text;
        if (next.kind != kind || !sameWords) {
            fail(u"expected %1, but there came %2"_s.arg(describe(next), describe(came)));
            return std::nullopt;
        }
        expected_.pop_front();
        return next;
    }

    void fail(const QString& fault)
    {
        faults_ += fault;
        QTest::qFail(qPrintable(fault), __FILE__, __LINE__);
    }

    static QString describe(const Expectation& box)
    {
        static const QStringList names = {u"the box"_s,       u"the question"_s,    u"the error box"_s,
                                          u"the input box"_s, u"the file dialog"_s, u"the print dialog"_s};
        return u"%1 “%2”"_s.arg(names[int(box.kind)], box.text);
    }

    std::deque<Expectation> expected_;
    QStringList faults_;
};
