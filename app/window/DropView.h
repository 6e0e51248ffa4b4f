// The box onto which files are dragged. It shows a drag that hovers by inverted greys and a
// marching outline, a press by the greys alone, holds the list of dropped files for the rest of the
// program, and a moment after a drop asks the controller to start processing. Pressing it stands
// for choosing files. While it is shut, which is when it does not accept drops, it hands on what is
// dropped beside it (DropArea). Main thread only.
#pragma once

#include <QAbstractButton>
#include <QColor>
#include <QFont>
#include <QStringList>

#include <filesystem>
#include <optional>
#include <vector>

class QMimeData;

class DropView : public QAbstractButton
{
    Q_OBJECT
    Q_PROPERTY(bool animate READ animate WRITE setAnimate)
    Q_PROPERTY(float phase READ phase WRITE setPhase)

public:
    using Files = std::vector<std::filesystem::path>;

    explicit DropView(QWidget* parent = nullptr);

    // The files in the order of the drop. Nothing is checked, duplicates are kept.
    [[nodiscard]] const Files& files() const { return _files; }
    void setFiles(Files files);
    void addFileWithPath(const std::filesystem::path& path) { _files.push_back(path); }
    void clearFiles() { setFiles({}); }

    // A smaller line under the caption; none when it is empty.
    void setHint(const QString& hint);

    // What came with the files, by its address, and is no file of this computer.
    [[nodiscard]] const QStringList& leftOut() const { return _leftOut; }

    // The folder that holds the first file.
    [[nodiscard]] std::optional<std::filesystem::path> folder() const;

    // While the flag is set a drop does not take the place of these files.
    void setKeepsFiles(bool flag) { _keepsFiles = flag; }

    // True while a drag hovers.
    [[nodiscard]] bool animate() const { return _animate; }
    void setAnimate(bool animate) { _animate = animate; }

    // Where the dash pattern begins, in points. It only ever grows.
    [[nodiscard]] float phase() const { return _phase; }
    void setPhase(float phase) { _phase = phase; }

    static const QColor& fgColor();
    static const QColor& bgColor();
    static const QColor& hfgColor(); // of a hovered box
    static const QColor& hbgColor();

    // The outline in its colour, and the caption in its colour and font, as the box is now.
    void drawDashedBoxWithPhase(QPainter& painter, float phase) const;
    struct Caption {
        QString text;
        QFont font;
        QColor color;
    };
    [[nodiscard]] Caption dropHereString() const;

    // What a drag goes through. The result of entering is what may be done with it: copied, when
    // it offers files, or nothing.
    Qt::DropAction draggingEntered(const QMimeData& pasteboard);
    void draggingExited();
    bool prepareForDragOperation();
    bool performDragOperation(const QMimeData& pasteboard);
    void concludeDragOperation();

    // Whether there are files of this computer in what is dragged or pasted.
    [[nodiscard]] static bool offersFiles(const QMimeData& pasteboard);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

Q_SIGNALS:
    // A moment after a drop.
    void filesDropped();

    // While the box is shut or keeps its files, which stay as they are.
    void droppedMeanwhile(const DropView::Files& files, const QStringList& leftOut);

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    [[nodiscard]] bool _isHighlighted() const { return _animate || isDown(); }
    void _drawTexts(QPainter& painter) const;
    void _drawFocus(QPainter& painter) const;

    bool _keepsFiles = false;
    bool _animate = false;
    bool _isOffered = false; // of the drag that hovers: it may be dropped
    float _phase = 0;
    Files _files;
    QStringList _leftOut;
    QString _hint;
};
