#pragma once

#include "editor/searchpattern.h"
#include "editor/textfinder.h"

#include <QClipboard>
#include <QPointer>
#include <QWidget>

#include <map>

class QCheckBox;
class QLabel;
class QLineEdit;
class QMimeData;
class QPushButton;
class QToolButton;

namespace quorvane {

enum class Glyph;

/// The bar below a text in which one says what to find and what to put in its place.
class FindBar final : public QWidget
{
    Q_OBJECT

public:
    explicit FindBar(QWidget *parent = nullptr);

    /// The words as they have to be looked for, by the options that are set.
    SearchPattern pattern() const;
    QString replacement() const;
    /// Puts words there that are to be found as they are.
    void setWords(const QString &words);

    bool isReplacing() const;
    void setReplacing(bool replaces);
    /// \a selected tells whether there is a selection to take.
    void showRange(bool hasRange, bool selected);
    void focusWords();

    void showStanding(const TextFinder::Standing &standing);
    /// Until something else happens.
    void tell(const QString &words);

    /// Leaves no word in the fields, nor in what they could undo or have copied.
    void forget();

    bool eventFilter(QObject *watched, QEvent *event) override;

signals:
    void patternEdited();
    void findAsked(TextFinder::Direction direction);
    void replaceAsked();
    void replaceAllAsked();
    void rangeAsked(bool on);
    void closeAsked();

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    QLineEdit *newField(const QString &name);
    QToolButton *newButton(Glyph glyph, const QString &name, const QString &tip);
    QToolButton *newOption(Glyph glyph, const QString &name);
    void addFindRow();
    void addReplaceRow();
    void showMessage(const QString &words, bool isWrong);
    void colourMessage();
    void edited();
    void noteCopy(QClipboard::Mode mode);

    QLineEdit *m_words;
    QToolButton *m_matchCase;
    QToolButton *m_wholeWords;
    QToolButton *m_isExpression;
    QToolButton *m_previous;
    QToolButton *m_next;
    QLabel *m_standing;
    QToolButton *m_close;
    QWidget *m_replaceTools;
    QLineEdit *m_replacement;
    QPushButton *m_replace;
    QPushButton *m_replaceAll;
    QCheckBox *m_inRange;
    QLabel *m_message;
    QString m_told;
    std::map<QClipboard::Mode, QPointer<const QMimeData>> m_copies; // made in the fields
    bool m_isWrong = false; // what the message says
};

} // namespace quorvane
