#pragma once

#include <QObject>
#include <QString>

class QComboBox;
class QTextCharFormat;
class QWidget;

namespace quorvane {

class FontFamilyBox;
class TextEditor;

/// The fields that show and set the font of a text. They are empty where a selection has several.
class FontFields final : public QObject
{
    Q_OBJECT

public:
    /// The fields belong to \a parent.
    FontFields(TextEditor &editor, QWidget *parent);

    QComboBox *size() const { return m_size; }

    FontFamilyBox *family() const { return m_family; }

    void setEnabled(bool enabled);
    /// Whether long names of families have room.
    void setRoomy(bool roomy);

    bool eventFilter(QObject *watched, QEvent *event) override;

signals:
    void applied();

private:
    void makeFamilies(QWidget *parent);
    void makeSizes(QWidget *parent);
    void applyFamily(const QString &family);
    void applySize(const QString &text);
    void apply(const QTextCharFormat &look);
    void show();
    void showLater();
    void showFamily(const QString &family);
    void tellOfMissing(const QString &family);

    TextEditor &m_editor;
    FontFamilyBox *m_family = nullptr;
    QComboBox *m_size = nullptr;
    QString m_shownFamily;
    bool m_shows = false; // in this turn
};

} // namespace quorvane
