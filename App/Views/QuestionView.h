#pragma once

#include <functional>

#include <QtQml/qqmlregistration.h>
#include <QElapsedTimer>
#include <QWindow>

#include "App/Views/RecordListModel.h"
#include "App/Views/View.h"
#include "Core/Screens/QuestionScreen.h"

namespace ravik::app {

/// A question while it stands. What the keys mean in its window is decided here, whichever button has the focus.
class QuestionView : public View {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made with its window")
    Q_PROPERTY(QString title READ title CONSTANT)
    Q_PROPERTY(QString message READ message CONSTANT)
    Q_PROPERTY(QString verb READ verb CONSTANT)
    Q_PROPERTY(QString chord READ chord CONSTANT)
    Q_PROPERTY(QString cancel READ cancel CONSTANT)
    Q_PROPERTY(QString note READ note CONSTANT)
    /// What a screen reader says when the question appears.
    Q_PROPERTY(QString summary READ summary CONSTANT)
    Q_PROPERTY(ravik::app::RecordModel* rows READ rows CONSTANT)

public:
    /// A row of either list. The first of a list carries its heading, the last what is not shown.
    struct Row {
        /// Two may have the same name.
        std::size_t place = 0;
        QuestionScreen::Row row;
        std::string heading;
        std::string more;
    };
    using Answer = std::function<void(bool)>;

    /// `answer` is called once, with the first answer.
    QuestionView(QuestionScreen screen, Answer answer);

    QString title() const { return text(m_screen.title); }
    QString message() const { return text(m_screen.message); }
    QString verb() const { return text(m_screen.verb); }
    QString chord() const { return text(m_screen.chord); }
    QString cancel() const { return text(QuestionScreen::cancel); }
    QString note() const { return text(m_screen.note); }
    QString summary() const { return text(m_screen.summary); }
    RecordModel* rows() { return &m_rows; }

    /// The button that goes ahead, and its chord. Deaf from the first sight of the question for as long as a double
    /// click takes: the second press was meant for what stood there before.
    Q_INVOKABLE void goAhead();
    Q_INVOKABLE void cancelled() { answer(false); }

    /// Takes the keys of its window, and its closing as a no.
    void watch(QWindow& window);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void answer(bool yes);

    const QuestionScreen m_screen;
    RecordListModel<Row> m_rows;
    Answer m_answer;
    QElapsedTimer m_shown;
};

}  // namespace ravik::app
