#pragma once

#include "editor/firstlook.h"
#include "editor/layoutguard.h"
#include "editor/pasteoffer.h"
#include "editor/smoothscrolling.h"
#include "editor/textspan.h"
#include "editor/undonames.h"
#include "editor/zoomeddevice.h"
#include "platform/nsfont.h"

#include <QElapsedTimer>
#include <QTextEdit>
#include <QTimer>

#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace quorvane {

/// The view and editor of a styled text.
///
/// It promises that no text makes it hang and that no line of a text is ever left out: what is too
/// tall for the toolkit's layout in one piece is laid out on pages, and what is too tall even for
/// that is refused. Whether a text fits is judged at
/// referenceWidth, whatever size the window has, so that a document which could be written can be
/// shown again in every window. Where a narrower window would break the lines into too many, they
/// stay wrapped at referenceWidth and the view scrolls sideways.
class TextEditor final : public QTextEdit
{
    Q_OBJECT

public:
    enum class ShowResult { Shown, TooTall };

    static constexpr int referenceWidth = 760;

    /// What becomes of files and images that other programs hand over.
    struct ForeignObjects
    {
        std::function<bool(const QMimeData &source)> offers; ///< There are some.
        std::function<bool(const QMimeData &source)> take; ///< Into the text, at the caret.
    };

    explicit TextEditor(QWidget *parent = nullptr);
    ~TextEditor() override;

    /// The only way to have a document shown. It was filled before it came here; it starts
    /// unmodified, with nothing to undo and the caret at its beginning. What was shown stays as it
    /// is where the answer is TooTall. While the content is hidden it stays hidden.
    [[nodiscard]] ShowResult showDocument(std::unique_ptr<QTextDocument> document);

    /// Shows another document of the same text in the place of this one: caret, selection, scroll
    /// place and modified state stay. \return false, with tooTall() sent and nothing changed, where
    /// it would not fit.
    bool showInPlace(std::unique_ptr<QTextDocument> document);

    /// The document, also while it is hidden and document() is an empty stand-in.
    QTextDocument *content() const { return m_content.get(); }

    /// Puts an empty document in the place of the content, since assistive programs read widgets
    /// that cannot be seen. The content keeps its undo stack; caret, selection and place come back.
    /// What was copied from here can no longer be pasted.
    void setContentHidden(bool hidden);

    bool isContentHidden() const { return m_standIn != nullptr; }

    /// The font of an empty document and of what is typed next; nothing leaves the fonts alone.
    void setTypingFont(const std::optional<NSFont> &font);

    const std::optional<NSFont> &typingFont() const { return m_typingFont; }

    /// Changes the text by a cursor, in one step of undo of that name. The cursor begins as the
    /// editor's and becomes the editor's. What makes the text too tall is taken back at once, with
    /// tooTall() sent. \return false where the text cannot be edited.
    bool edit(const QString &name, const std::function<void(QTextCursor &)> &change);
    /// Merges \a format into the selection, in one step of undo, or into what is typed next.
    /// \return false, with nothing changed, where the text cannot be edited or, with tooTall()
    /// sent, would not fit.
    bool applyCharFormat(const QTextCharFormat &format,
                         const QString &name = QStringLiteral("Formatting"));
    /// Inserts a text in the place of the selection, in one step of undo. \return as above.
    bool insertDocument(const QTextDocument &inserted,
                        const QString &name = QStringLiteral("Paste"));
    /// Gives each character that is selected another look, or what is typed next; attachments stay
    /// as they are. In one step of undo. \return as edit.
    bool changeLooks(const QString &name, const std::function<void(QTextCharFormat &look)> &change);
    /// The looks of what is selected, each once, or of what is typed next. Kept until the text or
    /// the selection is another one.
    const QList<QTextCharFormat> &looks();
    /// Inserts characters in the place of the selection, in its look. \return as above.
    bool insertText(const QString &text, const QString &name = QStringLiteral("Paste"));
    /// Inserts the characters that the clipboard holds, without a look of their own.
    void pasteAndMatchStyle();

    /// Whether the clipboard holds what can be pasted here. Cheaper to ask than the toolkit.
    bool isPasteOffered() { return m_pasteOffer.isFor(*this); }

    /// Whether so many more pixels of text can be shown. Ask before bulk edits by cursor.
    bool hasRoomFor(double height);

    /// How much larger than it is the text is shown; the document does not know of it.
    double zoom() const { return m_device.zoom(); }

    /// \return false, with nothing changed, where the text would be too tall to be shown so large.
    bool setZoom(double zoom);

    /// What the steps of undo are called. Whoever edits by a cursor of his own opens a scope.
    UndoNames &undoNames() { return m_undoNames; }

    const UndoNames &undoNames() const { return m_undoNames; }

    /// The lines, and whole rows of tables, that are in view in a rectangle of the viewport, as far
    /// as the text is laid out: asking never lays out more.
    TextSpan spanIn(const QRect &view) const;

    /// In the place of the toolkit's: right in a text, too, that is still being laid out.
    QTextCursor cursorForPosition(const QPoint &place) const;

    /// Of the document, in the viewport: it moves as the text is scrolled.
    QPoint origin() const;

    /// Draws over the text, in the viewport's coordinates, whenever it is painted.
    void addOverlay(std::function<void(QPainter &painter)> draw);

    void setForeignObjects(ForeignObjects objects) { m_foreignObjects = std::move(objects); }

    QVariant loadResource(int type, const QUrl &name) override;

public slots: // in the place of the toolkit's, which menus call by name
    /// Take back a step, or do it again. The view stays where it is as long as the change is seen.
    void undo();
    void redo();

signals:
    /// An edit was refused, or an undo or a program has made the text taller than it should be.
    void tooTall();
    /// content() is another one.
    void contentReplaced();
    void contentHiddenChanged();
    void zoomChanged();
    /// Somebody turns the wheel for another zoom: up is larger.
    void zoomAsked(int steps);
    /// A menu is asked for at a place of the viewport.
    void contextMenuAsked(const QPoint &place, const QPoint &screenPlace);

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void inputMethodEvent(QInputMethodEvent *event) override;
    bool viewportEvent(QEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void changeEvent(QEvent *event) override;
    QMimeData *createMimeDataFromSelection() const override;
    bool canInsertFromMimeData(const QMimeData *source) const override;
    void insertFromMimeData(const QMimeData *source) override;

private:
    // The tallest document that is shown at all: the layout's numbers end at 2^25.
    static constexpr double tallestPaginated = 30'000'000;

    // All widths and heights here are those of the text at its own size.

    /// The narrowest wrap that is known to be safe, and a height that is not exceeded there.
    struct Bound
    {
        double width = referenceWidth;
        double height = 0;
    };

    struct Place
    {
        int anchor = 0;
        int caret = 0;
        int top = 0; // the first character in view
        int scroll = 0;
        int width = 0;
    };

    /// What the looks were last asked for.
    struct LooksKey
    {
        const QTextDocument *document = nullptr;
        int revision = 0;
        int from = 0;
        int to = 0;
        bool operator==(const LooksKey &) const = default;
    };

    void attach(QTextDocument *document);
    void detach();
    void showUnzoomed();
    void suspendLayout();
    void refuse();

    std::unique_ptr<QTextDocument> documentOf(const QMimeData &source);
    bool takesObjects(const QMimeData &source) const;
    bool beginsStep(const QString &text);
    void type(const QString &text, bool asNewStep);
    void leaveForeignLook();
    void handleTyped(const std::function<void()> &insert);

    double viewWidth() const { return viewport()->width() / zoom(); }

    double tallestInOnePiece() const;
    bool isAtMost(double height);
    void followHeight(int position, int removed, int added);
    bool fitsAt(double width);
    void fitWrap();
    void pinWrap();
    void paginate();

    void keepInView(const std::function<void()> &change);
    QPointF onLine(const QPointF &point) const;
    Place place() const;
    void restore(const Place &place);
    void restoreScroll(const Place &place);
    void showMarginWithFirstLine();

    std::unique_ptr<QTextDocument> m_content;
    std::unique_ptr<QTextDocument> m_standIn;
    FirstLook m_firstLook;
    std::optional<NSFont> m_typingFont;
    LayoutGuard m_layoutGuard {*this};
    ZoomedDevice m_device {*this};
    int m_wheelTurn = 0; // eighths of a degree that are no step yet
    std::vector<std::function<void(QPainter &)>> m_overlays;
    ForeignObjects m_foreignObjects;
    PasteOffer m_pasteOffer;

    UndoNames m_undoNames;
    QElapsedTimer m_sinceTyping;
    int m_typed = 0; // characters of the step that typing adds to
    QList<QTextCharFormat> m_looks;
    LooksKey m_looksKey;

    Bound m_bound; // at the reference width
    Bound m_narrow; // at most as wide
    bool m_paginated = false;

    Place m_place; // of the hidden content
    std::optional<Place> m_unsettled; // to be found again when the window has its size
    SmoothScrolling m_scrolling {*this};
    QTimer m_settling;
};

} // namespace quorvane
